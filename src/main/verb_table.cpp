#include "main/verb_table.hpp"

#include <iterator>

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

// One row a verb: its name, its page (the title and heading; its back link
// names the form page of the same name), how it reads its fields, the
// function that plans its command, what a viewer may do with it and
// whether a GET may run it. The build writes every other list of verbs
// from this table (the installed names, the servers' viewer, guarded and
// GET lists, the fields each verb reads), so adding a verb takes:
//   1. its plan function in its family's file under verbs/, declared in
//      the family's header as a `plan_function`;
//   2. its row at the end of this table (the build refuses a second row of
//      a name, a GET right its plan cannot honour, and a `direct` row whose
//      plan asks the registry);
//   3. its form page in tools/forms/make_forms.py (then run it), a link in
//      www/verbs/index.html, and what it reads in www/tests/forms.test.mjs
//      (and its name in CHANGING there if it changes the shelf);
//   4. its rows in the tests: its page in tests/shared/pages.cpp, its cases
//      in tests/shared/verb_cases.cpp, its request in
//      tests/browser/requests.mjs (and the viewer's or GET list there);
//   5. a new command word also needs its answer in the simulated shelf
//      (tools/shelfsim), which the browser suites run every form against;
//      a `viewer_guarded` verb, the rule that tells its reading commands in
//      deploy/guard.in.
// README.md, "Adding a verb", says the same with an example.
// The literals are the shelf's own, quirks included: no mark in the titles
// of frudata, setfanlevel and setipmbstate; no blank after "<TITLE>" in
// gethysteresis's, nor before "</TITLE>" in reset's and the event enable
// verbs'; no blank before "</H2>" in the set-threshold, set-hysteresis and
// event enable headings; fru and fruinfo share theirs.
// Table order is fixed (a new verb's row goes at the end); names are unique.
constexpr verb_entry verbs[] = {
    // name, {title element, heading},
    //  how it reads its fields, its plan, what a viewer may do, whether a GET may run it
    {"activate", {"<TITLE> Corvane&#8482; Shelf Manager, FRU Activate / Deactivate </TITLE>",
                 "<H2> FRU Action </H2>"},
     registry, plan_activate, operator_only, post_only},
    {"alarm", {"<TITLE> Corvane&#8482; Shelf Manager, Alarm </TITLE>",
              "<H2> Alarm </H2>"},
     registry, plan_alarm, viewer_guarded, get_reads},
    {"board", {"<TITLE> Corvane&#8482; Shelf Manager, Board Information </TITLE>",
              "<H2> Board Information </H2>"},
     direct, plan_board, viewer_reads, get_reads},
    {"fans", {"<TITLE> Corvane&#8482; Shelf Manager, Fan Information </TITLE>",
             "<H2> Fan Information </H2>"},
     registry, plan_fans, viewer_reads, get_reads},
    {"fru", {"<TITLE> Corvane&#8482; Shelf Manager, FRU Information </TITLE>",
            "<H2> FRU Information </H2>"},
     registry, plan_fru, viewer_reads, get_reads},
    {"gethysteresis", {"<TITLE>Corvane&#8482; Shelf Manager, Get Sensor Hysteresis Information </TITLE>",
                      "<H2> Sensor Hysteresis Information </H2>"},
     registry, plan_gethysteresis, viewer_reads, get_reads},
    {"getlanconfig", {"<TITLE> Corvane&#8482; Shelf Manager, LAN Configuration Information </TITLE>",
                     "<H2> Get LAN Configuration Information </H2>"},
     direct, plan_getlanconfig, viewer_reads, get_reads},
    {"getpef", {"<TITLE> Corvane&#8482; Shelf Manager, PEF Configuration Information </TITLE>",
               "<H2> Get PEF Configuration Information </H2>"},
     direct, plan_getpef, viewer_reads, get_reads},
    {"getthreshold", {"<TITLE> Corvane&#8482; Shelf Manager, Get Sensor Threshold Information </TITLE>",
                     "<H2> Sensor Threshold Information </H2>"},
     registry, plan_getthreshold, viewer_reads, get_reads},
    {"ipmc", {"<TITLE> Corvane&#8482; Shelf Manager, IPM Controller Information </TITLE>",
             "<H2> IPM Controller Information </H2>"},
     registry, plan_ipmc, viewer_reads, get_reads},
    {"reset", {"<TITLE> Corvane&#8482; Shelf Manager, Reset Board</TITLE>",
              "<H2> Reset Board </H2>"},
     direct, plan_reset, operator_only, post_only},
    {"sel", {"<TITLE> Corvane&#8482; Shelf Manager, SEL Info </TITLE>",
            "<H2> SEL Info </H2>"},
     registry, plan_sel, viewer_guarded, get_reads},
    {"sensor", {"<TITLE> Corvane&#8482; Shelf Manager, Sensor Information </TITLE>",
               "<H2> Sensor Information </H2>"},
     registry, plan_sensor, viewer_reads, get_reads},
    {"sensordata", {"<TITLE> Corvane&#8482; Shelf Manager, Sensor Data Information </TITLE>",
                   "<H2> Sensor Data Information </H2>"},
     registry, plan_sensordata, viewer_reads, get_reads},
    {"sethysteresis", {"<TITLE> Corvane&#8482; Shelf Manager, Set Sensor Hysteresis </TITLE>",
                      "<H2> Set Sensor Hysteresis</H2>"},
     registry, plan_sethysteresis, operator_only, post_only},
    {"setlanconfig", {"<TITLE> Corvane&#8482; Shelf Manager, Set LAN Configuration Information </TITLE>",
                     "<H2> Set LAN Configuration Information </H2>"},
     direct, plan_setlanconfig, operator_only, post_only},
    {"setpef", {"<TITLE> Corvane&#8482; Shelf Manager, Set PEF Configuration Information </TITLE>",
               "<H2> Set PEF Configuration Information </H2>"},
     direct, plan_setpef, operator_only, post_only},
    {"setthreshold", {"<TITLE> Corvane&#8482; Shelf Manager, Set Sensor Threshold </TITLE>",
                     "<H2> Set Sensor Threshold</H2>"},
     registry, plan_setthreshold, operator_only, post_only},
    {"shelf", {"<TITLE> Corvane&#8482; Shelf Manager, Shelf Information </TITLE>",
              "<H2> Shelf Information: Undefined </H2>"},
     registry, plan_shelf, operator_only, get_reads},
    {"showunhealthy", {"<TITLE> Corvane&#8482; Shelf Manager, Unhealthy Components Information </TITLE>",
                      "<H2> Unhealthy Components Information </H2>"},
     direct, plan_showunhealthy, viewer_reads, get_reads},
    {"version", {"<TITLE> Corvane&#8482; Shelf Manager, Version Information </TITLE>",
                "<H2> Version Information </H2>"},
     direct, plan_fixed_command, viewer_reads, get_reads},
    {"switchover", {"<TITLE> Corvane&#8482; Shelf Manager, Switchover </TITLE>",
                   "<H2> Switchover </H2>"},
     direct, plan_fixed_command, operator_only, post_only},
    {"frudata", {"<TITLE> Corvane Shelf Manager, FRU Data </TITLE>",
                "<H2> FRU Data </H2>"},
     registry, plan_frudata, operator_only, get_reads},
    {"fruinfo", {"<TITLE> Corvane&#8482; Shelf Manager, FRU Information </TITLE>",
                "<H2> FRU Information </H2>"},
     registry, plan_fruinfo, viewer_reads, post_only},
    {"getfanlevel", {"<TITLE> Corvane&#8482; Shelf Manager, Fan Level </TITLE>",
                    "<H2> Get Fan Level </H2>"},
     registry, plan_getfanlevel, viewer_reads, post_only},
    {"setfanlevel", {"<TITLE> Corvane Shelf Manager, Set Fan Level </TITLE>",
                    "<H2> Set Fan Level </H2>"},
     registry, plan_setfanlevel, operator_only, post_only},
    {"getsensoreventenable", {"<TITLE> Corvane&#8482; Shelf Manager, Get Sensor Event Enable Mask</TITLE>",
                             "<H2> Get Sensor Event Enable Mask</H2>"},
     registry, plan_getsensoreventenable, viewer_reads, get_reads},
    {"setsensoreventenable", {"<TITLE> Corvane&#8482; Shelf Manager, Set Sensor Event Enable Mask</TITLE>",
                             "<H2> Set Sensor Event Enable Mask</H2>"},
     registry, plan_setsensoreventenable, operator_only, post_only},
    {"getipmbstate", {"<TITLE> Corvane&#8482; Shelf Manager, IPMB State </TITLE>",
                     "<H2> Get IPMB State </H2>"},
     registry, plan_getipmbstate, viewer_reads, post_only},
    {"setipmbstate", {"<TITLE> Corvane Shelf Manager, Set IPMB State </TITLE>",
                     "<H2> Set IPMB State </H2>"},
     registry, plan_setipmbstate, operator_only, post_only},
    {"getfruledstate", {"<TITLE> Corvane&#8482; Shelf Manager, Get FRU LED State </TITLE>",
                       "<H2> FRU LED State </H2>"},
     registry, plan_getfruledstate, viewer_reads, get_reads},
    {"setfruledstate", {"<TITLE> Corvane&#8482; Shelf Manager, Set FRU LED State </TITLE>",
                       "<H2> Set FRU LED State </H2>"},
     registry, plan_setfruledstate, operator_only, post_only},
    {"session", {"<TITLE> Corvane&#8482; Shelf Manager, Session Information </TITLE>",
                "<H2> Session Information </H2>"},
     direct, plan_fixed_command, viewer_reads, get_reads},
};

// A lookup serves the first row of a name while the lists name every row,
// so a second row of a name would install and list what never runs.
constexpr bool names_are_unique() {
    for (std::size_t i = 0; i < std::size(verbs); ++i)
        for (std::size_t j = 0; j < i; ++j)
            if (verbs[i].name == verbs[j].name) return false;
    return true;
}
static_assert(names_are_unique(), "two rows of the verb table have the same name");

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
