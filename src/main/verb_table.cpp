#include "main/verb_table.hpp"

#include "page/fixed_verbs.hpp"
#include "verbs/fans.hpp"
#include "verbs/fru_board.hpp"
#include "verbs/sensor_sel.hpp"
#include "verbs/shelf.hpp"
#include "verbs/shelf_wide.hpp"

namespace {

using enum form_reading;
using enum viewer_right;
using enum get_right;

// One row a verb: its name, the page its plan starts from, how it reads its
// fields, the function that plans its command, what a viewer may do with it
// and whether a GET may run it. The build writes every other list of verbs
// from this table (the installed names, the servers' viewer, guarded and
// GET lists, the fields each verb reads), so adding a verb takes:
//   1. its page and plan function in its family's file under verbs/;
//   2. its row here;
//   3. its form page in tools/forms/make_forms.py (then make forms);
//   4. its rows in the end-to-end tables (tests/e2e/pages.cpp and
//      verbs_e2e_test.cpp) and its request in tests/browser/requests.mjs.
// Table order is fixed; a lookup takes the first equal name.
constexpr verb_entry verbs[] = {
    // name                  page                             fields    plan                                    viewer          GET
    {"activate",             &activate_page,                  registry, plan_activate,                          operator_only,  post_only},
    {"alarm",                &alarm_page,                     registry, plan_alarm,                             viewer_guarded, get_reads},
    {"board",                &board_page,                     direct,   plan_board,                             viewer_reads,   get_reads},
    {"fans",                 &fans_page,                      registry, plan_fans,                              viewer_reads,   get_reads},
    {"fru",                  &fru_page,                       registry, plan_fru,                               viewer_reads,   get_reads},
    {"gethysteresis",        &gethysteresis_verb.page,        registry, plan_shaped<gethysteresis_verb>,        viewer_reads,   get_reads},
    {"getlanconfig",         &getlanconfig_page,              direct,   plan_getlanconfig,                      viewer_reads,   get_reads},
    {"getpef",               &getpef_page,                    direct,   plan_getpef,                            viewer_reads,   get_reads},
    {"getthreshold",         &getthreshold_verb.page,         registry, plan_shaped<getthreshold_verb>,         viewer_reads,   get_reads},
    {"ipmc",                 &ipmc_page,                      registry, plan_ipmc,                              viewer_reads,   get_reads},
    {"reset",                &reset_page,                     direct,   plan_reset,                             operator_only,  post_only},
    {"sel",                  &sel_info_verb.page,             registry, plan_sel,                               viewer_guarded, get_reads},
    {"sensor",               &sensor_verb.page,               registry, plan_shaped<sensor_verb>,               viewer_reads,   get_reads},
    {"sensordata",           &sensordata_verb.page,           registry, plan_shaped<sensordata_verb>,           viewer_reads,   get_reads},
    {"sethysteresis",        &sethysteresis_verb.page,        registry, plan_shaped<sethysteresis_verb>,        operator_only,  post_only},
    {"setlanconfig",         &setlanconfig_page,              direct,   plan_setlanconfig,                      operator_only,  post_only},
    {"setpef",               &setpef_page,                    direct,   plan_setpef,                            operator_only,  post_only},
    {"setthreshold",         &setthreshold_verb.page,         registry, plan_shaped<setthreshold_verb>,         operator_only,  post_only},
    {"shelf",                &shelf_page,                     registry, plan_shelf,                             operator_only,  get_reads},
    {"showunhealthy",        &showunhealthy_page,             direct,   plan_showunhealthy,                     viewer_reads,   get_reads},
    {"version",              &version_page,                   direct,   plan_fixed_command,                     viewer_reads,   get_reads},
    {"switchover",           &switchover_page,                direct,   plan_fixed_command,                     operator_only,  post_only},
    {"frudata",              &frudata_page,                   registry, plan_frudata,                           operator_only,  get_reads},
    {"fruinfo",              &fruinfo_page,                   registry, plan_fruinfo,                           viewer_reads,   post_only},
    {"getfanlevel",          &getfanlevel_page,               registry, plan_getfanlevel,                       viewer_reads,   post_only},
    {"setfanlevel",          &setfanlevel_page,               registry, plan_setfanlevel,                       operator_only,  post_only},
    {"getsensoreventenable", &getsensoreventenable_verb.page, registry, plan_shaped<getsensoreventenable_verb>, viewer_reads,   get_reads},
    {"setsensoreventenable", &setsensoreventenable_verb.page, registry, plan_shaped<setsensoreventenable_verb>, operator_only,  post_only},
    {"getipmbstate",         &getipmbstate_page,              registry, plan_getipmbstate,                      viewer_reads,   post_only},
    {"setipmbstate",         &setipmbstate_page,              registry, plan_setipmbstate,                      operator_only,  post_only},
    {"getfruledstate",       &getfruledstate_page,            registry, plan_getfruledstate,                    viewer_reads,   get_reads},
    {"setfruledstate",       &setfruledstate_page,            registry, plan_setfruledstate,                    operator_only,  post_only},
    {"session",              &session_page,                   direct,   plan_fixed_command,                     viewer_reads,   get_reads},
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
