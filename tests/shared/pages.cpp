// Every verb's pages as the tests expect them, written independently of
// the gateway's own literals so that a typo there shows. A verb with
// several pages has one row each, keyed "verb/page".
#include <cstring>
#include <set>
#include <stdexcept>

#include "verb_cases.hpp"

namespace {

struct page_row {
    const char* key;
    const char* title;    // between <TITLE> and </TITLE>
    const char* heading;  // between <H2> and </H2>
};

const page_row pages[] = {
    {"activate", " Corvane&#8482; Shelf Manager, FRU Activate / Deactivate ", " FRU Action "},
    {"alarm", " Corvane&#8482; Shelf Manager, Alarm ", " Alarm "},
    {"board", " Corvane&#8482; Shelf Manager, Board Information ", " Board Information "},
    {"fans", " Corvane&#8482; Shelf Manager, Fan Information ", " Fan Information "},
    {"fru", " Corvane&#8482; Shelf Manager, FRU Information ", " FRU Information "},
    {"frudata", " Corvane Shelf Manager, FRU Data ", " FRU Data "},
    {"fruinfo", " Corvane&#8482; Shelf Manager, FRU Information ", " FRU Information "},
    {"getfanlevel", " Corvane&#8482; Shelf Manager, Fan Level ", " Get Fan Level "},
    {"getfruledstate", " Corvane&#8482; Shelf Manager, Get FRU LED State ", " FRU LED State "},
    {"gethysteresis", "Corvane&#8482; Shelf Manager, Get Sensor Hysteresis Information ",
     " Sensor Hysteresis Information "},
    {"getipmbstate", " Corvane&#8482; Shelf Manager, IPMB State ", " Get IPMB State "},
    {"getlanconfig", " Corvane&#8482; Shelf Manager, LAN Configuration Information ",
     " Get LAN Configuration Information "},
    {"getpef", " Corvane&#8482; Shelf Manager, PEF Configuration Information ", " Get PEF Configuration Information "},
    {"getsensoreventenable", " Corvane&#8482; Shelf Manager, Get Sensor Event Enable Mask",
     " Get Sensor Event Enable Mask"},
    {"getthreshold", " Corvane&#8482; Shelf Manager, Get Sensor Threshold Information ",
     " Sensor Threshold Information "},
    {"ipmc", " Corvane&#8482; Shelf Manager, IPM Controller Information ", " IPM Controller Information "},
    {"reset", " Corvane&#8482; Shelf Manager, Reset Board", " Reset Board "},
    {"sel", " Corvane&#8482; Shelf Manager, SEL Information ", " SEL Information "},
    {"sel/clear", " Corvane&#8482; Shelf Manager, SEL Clear ", " SEL Clear "},
    {"sel/info", " Corvane&#8482; Shelf Manager, SEL Info ", " SEL Info "},
    {"sensor", " Corvane&#8482; Shelf Manager, Sensor Information ", " Sensor Information "},
    {"sensordata", " Corvane&#8482; Shelf Manager, Sensor Data Information ", " Sensor Data Information "},
    {"session", " Corvane&#8482; Shelf Manager, Session Information ", " Session Information "},
    {"setfanlevel", " Corvane Shelf Manager, Set Fan Level ", " Set Fan Level "},
    {"setfruledstate", " Corvane&#8482; Shelf Manager, Set FRU LED State ", " Set FRU LED State "},
    {"sethysteresis", " Corvane&#8482; Shelf Manager, Set Sensor Hysteresis ", " Set Sensor Hysteresis"},
    {"setipmbstate", " Corvane Shelf Manager, Set IPMB State ", " Set IPMB State "},
    {"setlanconfig", " Corvane&#8482; Shelf Manager, Set LAN Configuration Information ",
     " Set LAN Configuration Information "},
    {"setpef", " Corvane&#8482; Shelf Manager, Set PEF Configuration Information ",
     " Set PEF Configuration Information "},
    {"setsensoreventenable", " Corvane&#8482; Shelf Manager, Set Sensor Event Enable Mask",
     " Set Sensor Event Enable Mask"},
    {"setthreshold", " Corvane&#8482; Shelf Manager, Set Sensor Threshold ", " Set Sensor Threshold"},
    {"shelf", " Corvane&#8482; Shelf Manager, Shelf Information ", " Shelf Information: "},
    {"showunhealthy", " Corvane&#8482; Shelf Manager, Unhealthy Components Information ",
     " Unhealthy Components Information "},
    {"switchover", " Corvane&#8482; Shelf Manager, Switchover ", " Switchover "},
    {"version", " Corvane&#8482; Shelf Manager, Version Information ", " Version Information "},
};

}  // namespace

std::set<std::string> expected_verbs() {
    std::set<std::string> verbs;
    for (const page_row& page : pages) verbs.insert(verb_of(page.key));
    return verbs;
}

std::string verb_of(std::string_view key) { return std::string(key.substr(0, key.find('/'))); }

std::string expected_page(std::string_view key, std::string_view notes, std::string_view block) {
    for (const page_row& page : pages) {
        if (key != page.key) continue;
        std::string text = "Content-type: text/html\n\n<HTML><HEAD>  <TITLE>" + std::string(page.title) +
                           "</TITLE></HEAD><BODY><HR><P><H2>" + page.heading;
        // The shelf heading ends with the sub-command's name, which the
        // cases give as their notes.
        if (key == "shelf") text += std::string(notes) + " ";
        text += "</H2>";
        if (key != "shelf") text += notes;
        // SEL Clear shows the tool's answer without a PRE block.
        text += key == "sel/clear" ? "</P><HR>" : "</P><HR><PRE>";
        text += block;
        text += key == "sel/clear" ? "<HR>" : "</PRE><HR>";
        return text + "<A HREF=\"/verbs/" + verb_of(key) + ".html\"> Back to the previous page </A></BODY></HTML>";
    }
    throw std::invalid_argument("no page " + std::string(key));
}
