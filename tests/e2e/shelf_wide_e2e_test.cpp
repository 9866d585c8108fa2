// The LAN/PEF, alarm, health and IPMB state verbs end to end: every page
// byte for byte and exactly what the stand-in shelfctl received, or that
// it did not run.
#include <gtest/gtest.h>

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "gateway_run.hpp"

namespace {

const std::map<std::string, page_literals> literals = {
    {"getlanconfig",
     {"Content-type: text/html\n\n<HTML><HEAD>  <TITLE> Corvane&#8482; Shelf Manager, LAN Configuration Information "
      "</TITLE></HEAD><BODY>",
      "<H2> Get LAN Configuration Information </H2>",
      "<A HREF=\"/verbs/getlanconfig.html\"> Back to the previous page </A>"}},
    {"setlanconfig",
     {"Content-type: text/html\n\n<HTML><HEAD>  <TITLE> Corvane&#8482; Shelf Manager, Set LAN Configuration "
      "Information </TITLE></HEAD><BODY>",
      "<H2> Set LAN Configuration Information </H2>",
      "<A HREF=\"/verbs/setlanconfig.html\"> Back to the previous page </A>"}},
    {"getpef",
     {"Content-type: text/html\n\n<HTML><HEAD>  <TITLE> Corvane&#8482; Shelf Manager, PEF Configuration Information "
      "</TITLE></HEAD><BODY>",
      "<H2> Get PEF Configuration Information </H2>", "<A HREF=\"/verbs/getpef.html\"> Back to the previous page </A>"}},
    {"setpef",
     {"Content-type: text/html\n\n<HTML><HEAD>  <TITLE> Corvane&#8482; Shelf Manager, Set PEF Configuration "
      "Information </TITLE></HEAD><BODY>",
      "<H2> Set PEF Configuration Information </H2>", "<A HREF=\"/verbs/setpef.html\"> Back to the previous page </A>"}},
    {"alarm",
     {"Content-type: text/html\n\n<HTML><HEAD>  <TITLE> Corvane&#8482; Shelf Manager, Alarm </TITLE></HEAD><BODY>",
      "<H2> Alarm </H2>", "<A HREF=\"/verbs/alarm.html\"> Back to the previous page </A>"}},
    {"showunhealthy",
     {"Content-type: text/html\n\n<HTML><HEAD>  <TITLE> Corvane&#8482; Shelf Manager, Unhealthy Components "
      "Information </TITLE></HEAD><BODY>",
      "<H2> Unhealthy Components Information </H2>",
      "<A HREF=\"/verbs/showunhealthy.html\"> Back to the previous page </A>"}},
    {"getipmbstate",
     {"Content-type: text/html\n\n<HTML><HEAD>  <TITLE> Corvane&#8482; Shelf Manager, IPMB State "
      "</TITLE></HEAD><BODY>",
      "<H2> Get IPMB State </H2>", "<A HREF=\"/verbs/getipmbstate.html\"> Back to the previous page </A>"}},
    {"setipmbstate",
     {"Content-type: text/html\n\n<HTML><HEAD>  <TITLE> Corvane Shelf Manager, Set IPMB State </TITLE></HEAD><BODY>",
      "<H2> Set IPMB State </H2>", "<A HREF=\"/verbs/setipmbstate.html\"> Back to the previous page </A>"}},
};

const std::string verbose_on = "Verbose mode turned on <BR>";
const std::string too_long = "The command is too long to send<BR>";
const std::string line_break = "A value may not contain a line break<BR>";
const std::string need_address = "It is necessary to specify IPMB address<BR>";
const std::string need_all = "It is necessary to specify IPMB address, bus, and action<BR>";
const std::string x300(300, 'x');
const std::optional<std::string> by_get = std::nullopt;

std::string channel_note(const std::string& channel) {
    return "Retrieving Information of channel: " + channel + "<BR>";
}

struct verb_case {
    std::string verb;
    std::optional<std::string> body;  // nullopt: a GET request
    std::string notes;
    std::string command;  // what the tool receives
    std::string refusal;  // non-empty: the tool does not run and this fills the block
};

void expect_cases(const std::vector<verb_case>& cases) {
    for (const verb_case& c : cases) {
        SCOPED_TRACE(c.verb + " " + c.body.value_or("(GET)"));
        const page_literals& page = literals.at(c.verb);
        gateway_result r = run_gateway(c.body ? post(c.verb, *c.body) : get(c.verb));
        EXPECT_EQ(r.status, 0);
        if (c.refusal.empty()) {
            EXPECT_EQ(r.out, expected_page(page, c.notes, stub_answer(c.command)));
            EXPECT_EQ(r.tool_input, tool_input_for(c.command));
        } else {
            EXPECT_EQ(r.out, expected_page(page, c.notes, c.refusal));
            EXPECT_FALSE(r.tool_input.has_value());
        }
    }
}

}  // namespace

TEST(ShelfWideE2E, LanAndPefConfiguration) {
    expect_cases({
        {"getlanconfig", by_get, channel_note("1"), "getlanconfig 1 0", ""},
        {"getlanconfig", "channel=2", channel_note("2"), "getlanconfig 2 0", ""},
        {"getlanconfig", "channel=&parameter=3", channel_note("1"), "getlanconfig 1 3", ""},
        {"getlanconfig", "channel=2&channel=5", channel_note("5"), "getlanconfig 5 0", ""},
        {"getlanconfig", "channel=2&channel=", channel_note("2"), "getlanconfig 2 0", ""},
        {"getlanconfig", "Channel=2&channels=3&parameter=", channel_note("1"), "getlanconfig 1 0", ""},
        {"getlanconfig", "req_type=1&addr1_0=0x82&channel=3&parameter=4", channel_note("3"), "getlanconfig 3 4", ""},
        {"getlanconfig", "channel=%24(reboot)&parameter=%60id%60", channel_note("$(reboot)"),
         "getlanconfig $(reboot) `id`", ""},
        {"getlanconfig", "parameter=" + x300, channel_note("1"), "", too_long},
        {"getlanconfig", "channel=1%0Areboot", channel_note("1\nreboot"), "", line_break},
        {"setlanconfig", by_get, "", "setlanconfig    ", ""},
        {"setlanconfig", "verbose=1&command=x", "", "setlanconfig    ", ""},
        {"setlanconfig", "channel=1&parameter=3&sel=0&value=192.168.0.2", "", "setlanconfig 1 3 0 192.168.0.2", ""},
        {"setlanconfig", "channel=1&value=a+b", "", "setlanconfig 1   a b", ""},
        {"setlanconfig", "channel=%22&parameter=%27&sel=%3B&value=%7C%26", "", "setlanconfig \" ' ; |&", ""},
        {"setlanconfig", "value=" + x300, "", "", too_long},
        {"setlanconfig", "sel=%0D", "", "", line_break},
        {"getpef", by_get, "", "getpefconfig 0", ""},
        {"getpef", "parameter=7&channel=3", "", "getpefconfig 7", ""},
        {"getpef", "parameter=a%5Cnb", "", "getpefconfig a\\nb", ""},
        {"getpef", "parameter=" + x300, "", "", too_long},
        {"setpef", by_get, "", "setpefconfig   ", ""},
        {"setpef", "parameter=1&sel=2&value=3", "", "setpefconfig 1 2 3", ""},
        {"setpef", "x=parameter&y=4", "", "setpefconfig   ", ""},
        {"setpef", "value=%24(reboot)%3Bid", "", "setpefconfig   $(reboot);id", ""},
        {"setpef", "parameter=1&value=2%0A3", "", "", line_break},
        {"setpef", "sel=" + x300 + "%0A", "", "", line_break},
    });
}

TEST(ShelfWideE2E, AlarmAndHealth) {
    expect_cases({
        {"alarm", by_get, "", "alarm", ""},
        {"alarm", "command=", "", "alarm", ""},
        {"alarm", "verbose=1", "", "alarm", ""},
        {"alarm", "command=clear+all", "", "alarm clear all", ""},
        {"alarm", "command=%20", "", "alarm  ", ""},
        {"alarm", "command=%60id%60%7C%22%27%26", "", "alarm `id`|\"'&", ""},
        {"alarm", "command=" + x300, "", "", too_long},
        {"alarm", "command=clear%0Aall", "", "", line_break},
        {"showunhealthy", by_get, "", "showunhealthy ", ""},
        {"showunhealthy", "verbose=-v", verbose_on, "showunhealthy -v", ""},
        {"showunhealthy", "verbose=", "", "showunhealthy ", ""},
        {"showunhealthy", "Verbose=-v&command=x", "", "showunhealthy ", ""},
        {"showunhealthy", "verbose=1&verbose=2", verbose_on, "showunhealthy 2", ""},
        {"showunhealthy", "verbose=%24(reboot)%5Cn", verbose_on, "showunhealthy $(reboot)\\n", ""},
        {"showunhealthy", "verbose=" + x300, verbose_on, "", too_long},
        {"showunhealthy", "verbose=-v%0A", verbose_on, "", line_break},
    });
}

TEST(ShelfWideE2E, IpmbState) {
    expect_cases({
        {"getipmbstate", by_get, "", "", need_address},
        {"getipmbstate", "addr1_0=0x82", "", "getipmbstate  0x82 ", ""},
        {"getipmbstate", "addr1_0=0x82&addr1_1=A", "", "getipmbstate  0x82 A", ""},
        {"getipmbstate", "addr1_1=A", "", "", need_address},
        {"getipmbstate", "addr1_0=&addr1_1=A", "", "", need_address},
        {"getipmbstate", "addr1_0=%24(reboot)&addr1_1=%3B%7C", "", "getipmbstate  $(reboot) ;|", ""},
        {"getipmbstate", "addr1_0=" + x300, "", "", too_long},
        {"getipmbstate", "addr1_0=0x82&addr1_1=A%0A", "", "", line_break},
        // The verb's own message wins over the runner's checks.
        {"getipmbstate", "addr1_1=" + x300 + "%0A", "", "", need_address},
        {"setipmbstate", by_get, "", "", need_all},
        {"setipmbstate", "addr1_0=0x82&addr1_1=A&addr1_2=disable", "", "setipmbstate 0x82 A  disable", ""},
        {"setipmbstate", "addr1_0=0x82&addr1_1=A&addr1_3=1&addr1_2=enable", "", "setipmbstate 0x82 A 1 enable", ""},
        {"setipmbstate", "addr1_0=0x82&addr1_1=A", "", "", need_all},
        {"setipmbstate", "addr1_0=0x82&addr1_1=A&addr1_2=", "", "", need_all},
        {"setipmbstate", "addr1_0=0x82&addr1_2=enable", "", "", need_all},
        {"setipmbstate", "addr1_1=A&addr1_3=1&addr1_2=enable", "", "", need_all},
        {"setipmbstate", "addr1_0=%22&addr1_1=%27&addr1_3=%26&addr1_2=%60id%60", "", "setipmbstate \" ' & `id`", ""},
        {"setipmbstate", "addr1_0=0x82&addr1_1=A&addr1_2=" + x300, "", "", too_long},
        {"setipmbstate", "addr1_0=0x82&addr1_1=A&addr1_3=%0A&addr1_2=on", "", "", line_break},
        {"setipmbstate", "addr1_0=0x82&addr1_3=" + x300 + "%0A&addr1_2=on", "", "", need_all},
    });
}
