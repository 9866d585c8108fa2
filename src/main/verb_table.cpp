#include "main/verb_table.hpp"

#include "page/fixed_verbs.hpp"
#include "verbs/fru_board.hpp"
#include "verbs/shelf_wide.hpp"

namespace {

// Table order is fixed; a lookup takes the first equal name.
constexpr verb_entry verbs[] = {
    {"activate", &activate_page, form_reading::registry, plan_activate},
    {"alarm", &alarm_page, form_reading::registry, plan_alarm},
    {"board", &board_page, form_reading::direct, plan_board},
    {"fru", &fru_page, form_reading::registry, plan_fru},
    {"getlanconfig", &getlanconfig_page, form_reading::direct, plan_getlanconfig},
    {"getpef", &getpef_page, form_reading::direct, plan_getpef},
    {"ipmc", &ipmc_page, form_reading::registry, plan_ipmc},
    {"reset", &reset_page, form_reading::direct, plan_reset},
    {"setlanconfig", &setlanconfig_page, form_reading::direct, plan_setlanconfig},
    {"setpef", &setpef_page, form_reading::direct, plan_setpef},
    {"showunhealthy", &showunhealthy_page, form_reading::direct, plan_showunhealthy},
    {"version", &version_page, form_reading::direct, plan_fixed_command},
    {"switchover", &switchover_page, form_reading::direct, plan_fixed_command},
    {"frudata", &frudata_page, form_reading::registry, plan_frudata},
    {"fruinfo", &fruinfo_page, form_reading::registry, plan_fruinfo},
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
    if (std::size_t dot = name.find('.'); dot != std::string_view::npos) name = name.substr(0, dot);
    return name;
}
