#include "main/verb_table.hpp"

#include "page/fixed_verbs.hpp"
#include "verbs/fans.hpp"
#include "verbs/fru_board.hpp"
#include "verbs/sensor_sel.hpp"
#include "verbs/shelf.hpp"
#include "verbs/shelf_wide.hpp"

namespace {

// Table order is fixed; a lookup takes the first equal name.
constexpr verb_entry verbs[] = {
    {"activate", &activate_page, form_reading::registry, plan_activate},
    {"alarm", &alarm_page, form_reading::registry, plan_alarm},
    {"board", &board_page, form_reading::direct, plan_board},
    {"fans", &fans_page, form_reading::registry, plan_fans},
    {"fru", &fru_page, form_reading::registry, plan_fru},
    {"gethysteresis", &gethysteresis_verb.page, form_reading::registry, plan_shaped<gethysteresis_verb>},
    {"getlanconfig", &getlanconfig_page, form_reading::direct, plan_getlanconfig},
    {"getpef", &getpef_page, form_reading::direct, plan_getpef},
    {"getthreshold", &getthreshold_verb.page, form_reading::registry, plan_shaped<getthreshold_verb>},
    {"ipmc", &ipmc_page, form_reading::registry, plan_ipmc},
    {"reset", &reset_page, form_reading::direct, plan_reset},
    {"sel", &sel_info_verb.page, form_reading::registry, plan_sel},
    {"sensor", &sensor_verb.page, form_reading::registry, plan_shaped<sensor_verb>},
    {"sensordata", &sensordata_verb.page, form_reading::registry, plan_shaped<sensordata_verb>},
    {"sethysteresis", &sethysteresis_verb.page, form_reading::registry, plan_shaped<sethysteresis_verb>},
    {"setlanconfig", &setlanconfig_page, form_reading::direct, plan_setlanconfig},
    {"setpef", &setpef_page, form_reading::direct, plan_setpef},
    {"setthreshold", &setthreshold_verb.page, form_reading::registry, plan_shaped<setthreshold_verb>},
    {"shelf", &shelf_page, form_reading::registry, plan_shelf},
    {"showunhealthy", &showunhealthy_page, form_reading::direct, plan_showunhealthy},
    {"version", &version_page, form_reading::direct, plan_fixed_command},
    {"switchover", &switchover_page, form_reading::direct, plan_fixed_command},
    {"frudata", &frudata_page, form_reading::registry, plan_frudata},
    {"fruinfo", &fruinfo_page, form_reading::registry, plan_fruinfo},
    {"getfanlevel", &getfanlevel_page, form_reading::registry, plan_getfanlevel},
    {"setfanlevel", &setfanlevel_page, form_reading::registry, plan_setfanlevel},
    {"getsensoreventenable", &getsensoreventenable_verb.page, form_reading::registry,
     plan_shaped<getsensoreventenable_verb>},
    {"setsensoreventenable", &setsensoreventenable_verb.page, form_reading::registry,
     plan_shaped<setsensoreventenable_verb>},
    {"getipmbstate", &getipmbstate_page, form_reading::registry, plan_getipmbstate},
    {"setipmbstate", &setipmbstate_page, form_reading::registry, plan_setipmbstate},
    {"getfruledstate", &getfruledstate_page, form_reading::registry, plan_getfruledstate},
    {"setfruledstate", &setfruledstate_page, form_reading::registry, plan_setfruledstate},
    {"session", &session_page, form_reading::direct, plan_fixed_command},
};

}  // namespace

const std::span<const verb_entry> verb_table = verbs;

const verb_entry* find_verb(std::string_view name) {
    for (const verb_entry& verb : verb_table) {
        if (verb.name == name) return &verb;
    }
    return nullptr;
}

std::string_view verb_name_of(const char* invocation) {
    if (invocation == nullptr) return {};
    std::string_view name = invocation;
    if (std::size_t slash = name.rfind('/'); slash != std::string_view::npos) name.remove_prefix(slash + 1);
    if (std::size_t dot = name.find('.'); dot != std::string_view::npos) name = {name.data(), dot};
    return name;
}
