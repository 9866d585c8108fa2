// The LAN/PEF, alarm, health and IPMB state verbs end to end: every page
// byte for byte and exactly what the stand-in shelfctl received, or that
// it did not run.
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "gateway_run.hpp"
#include "verb_cases.hpp"

namespace {

const page_literals getlanconfig_literals = {
    "Content-type: text/html\n\n<HTML><HEAD>  <TITLE> Corvane&#8482; Shelf Manager, LAN Configuration Information "
    "</TITLE></HEAD><BODY>",
    "<H2> Get LAN Configuration Information </H2>",
    "<A HREF=\"/verbs/getlanconfig.html\"> Back to the previous page </A>"};
const page_literals setlanconfig_literals = {
    "Content-type: text/html\n\n<HTML><HEAD>  <TITLE> Corvane&#8482; Shelf Manager, Set LAN Configuration "
    "Information </TITLE></HEAD><BODY>",
    "<H2> Set LAN Configuration Information </H2>",
    "<A HREF=\"/verbs/setlanconfig.html\"> Back to the previous page </A>"};
const page_literals getpef_literals = {
    "Content-type: text/html\n\n<HTML><HEAD>  <TITLE> Corvane&#8482; Shelf Manager, PEF Configuration Information "
    "</TITLE></HEAD><BODY>",
    "<H2> Get PEF Configuration Information </H2>", "<A HREF=\"/verbs/getpef.html\"> Back to the previous page </A>"};
const page_literals setpef_literals = {
    "Content-type: text/html\n\n<HTML><HEAD>  <TITLE> Corvane&#8482; Shelf Manager, Set PEF Configuration "
    "Information </TITLE></HEAD><BODY>",
    "<H2> Set PEF Configuration Information </H2>", "<A HREF=\"/verbs/setpef.html\"> Back to the previous page </A>"};
const page_literals alarm_literals = {
    "Content-type: text/html\n\n<HTML><HEAD>  <TITLE> Corvane&#8482; Shelf Manager, Alarm </TITLE></HEAD><BODY>",
    "<H2> Alarm </H2>", "<A HREF=\"/verbs/alarm.html\"> Back to the previous page </A>"};
const page_literals showunhealthy_literals = {
    "Content-type: text/html\n\n<HTML><HEAD>  <TITLE> Corvane&#8482; Shelf Manager, Unhealthy Components "
    "Information </TITLE></HEAD><BODY>",
    "<H2> Unhealthy Components Information </H2>",
    "<A HREF=\"/verbs/showunhealthy.html\"> Back to the previous page </A>"};
const page_literals getipmbstate_literals = {
    "Content-type: text/html\n\n<HTML><HEAD>  <TITLE> Corvane&#8482; Shelf Manager, IPMB State "
    "</TITLE></HEAD><BODY>",
    "<H2> Get IPMB State </H2>", "<A HREF=\"/verbs/getipmbstate.html\"> Back to the previous page </A>"};
const page_literals setipmbstate_literals = {
    "Content-type: text/html\n\n<HTML><HEAD>  <TITLE> Corvane Shelf Manager, Set IPMB State </TITLE></HEAD><BODY>",
    "<H2> Set IPMB State </H2>", "<A HREF=\"/verbs/setipmbstate.html\"> Back to the previous page </A>"};

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

}  // namespace

TEST(ShelfWideE2E, LanAndPefConfiguration) {
    expect_cases("getlanconfig", getlanconfig_literals, {
        {by_get, channel_note("1"), "getlanconfig 1 0", ""},
        {"channel=2", channel_note("2"), "getlanconfig 2 0", ""},
        {"channel=&parameter=3", channel_note("1"), "getlanconfig 1 3", ""},
        {"channel=2&channel=5", channel_note("5"), "getlanconfig 5 0", ""},
        {"channel=2&channel=", channel_note("2"), "getlanconfig 2 0", ""},
        {"Channel=2&channels=3&parameter=", channel_note("1"), "getlanconfig 1 0", ""},
        {"req_type=1&addr1_0=0x82&channel=3&parameter=4", channel_note("3"), "getlanconfig 3 4", ""},
        {"channel=%24(reboot)&parameter=%60id%60", channel_note("$(reboot)"),
         "getlanconfig $(reboot) `id`", ""},
        {"parameter=" + x300, channel_note("1"), "", too_long},
        {"channel=" + x300, channel_note(x300), "", too_long},  // the note is written whole
        {"channel=1%0Areboot", channel_note("1\nreboot"), "", line_break},
    });
    expect_cases("setlanconfig", setlanconfig_literals, {
        {by_get, "", "setlanconfig    ", ""},
        {"verbose=1&command=x", "", "setlanconfig    ", ""},
        {"channel=1&parameter=3&sel=0&value=192.168.0.2", "", "setlanconfig 1 3 0 192.168.0.2", ""},
        {"channel=1&value=a+b", "", "setlanconfig 1   a b", ""},
        {"channel=%22&parameter=%27&sel=%3B&value=%7C%26", "", "setlanconfig \" ' ; |&", ""},
        {"value=" + x300, "", "", too_long},
        {"sel=%0D", "", "", line_break},
    });
    expect_cases("getpef", getpef_literals, {
        {by_get, "", "getpefconfig 0", ""},
        {"parameter=7&channel=3", "", "getpefconfig 7", ""},
        {"parameter=a%5Cnb", "", "getpefconfig a\\nb", ""},
        {"parameter=" + x300, "", "", too_long},
    });
    expect_cases("setpef", setpef_literals, {
        {by_get, "", "setpefconfig   ", ""},
        {"parameter=1&sel=2&value=3", "", "setpefconfig 1 2 3", ""},
        {"x=parameter&y=4", "", "setpefconfig   ", ""},
        {"value=%24(reboot)%3Bid", "", "setpefconfig   $(reboot);id", ""},
        {"parameter=1&value=2%0A3", "", "", line_break},
        {"sel=" + x300 + "%0A", "", "", line_break},
    });
}

TEST(ShelfWideE2E, AlarmAndHealth) {
    expect_cases("alarm", alarm_literals, {
        {by_get, "", "alarm", ""},
        {"command=", "", "alarm", ""},
        {"verbose=1", "", "alarm", ""},
        {"command=clear+all", "", "alarm clear all", ""},
        {"command=%20", "", "alarm  ", ""},
        {"command=%60id%60%7C%22%27%26", "", "alarm `id`|\"'&", ""},
        {"command=" + x300, "", "", too_long},
        {"command=clear%0Aall", "", "", line_break},
    });
    expect_cases("showunhealthy", showunhealthy_literals, {
        {by_get, "", "showunhealthy ", ""},
        {"verbose=-v", verbose_on, "showunhealthy -v", ""},
        {"verbose=", "", "showunhealthy ", ""},
        {"Verbose=-v&command=x", "", "showunhealthy ", ""},
        {"verbose=1&verbose=2", verbose_on, "showunhealthy 2", ""},
        {"verbose=%24(reboot)%5Cn", verbose_on, "showunhealthy $(reboot)\\n", ""},
        {"verbose=" + x300, verbose_on, "", too_long},
        {"verbose=-v%0A", verbose_on, "", line_break},
    });
}

TEST(ShelfWideE2E, IpmbState) {
    expect_cases("getipmbstate", getipmbstate_literals, {
        {by_get, "", "", need_address},
        {"addr1_0=0x82", "", "getipmbstate  0x82 ", ""},
        {"addr1_0=0x82&addr1_1=A", "", "getipmbstate  0x82 A", ""},
        {"addr1_1=A", "", "", need_address},
        {"addr1_0=&addr1_1=A", "", "", need_address},
        {"addr1_0=%24(reboot)&addr1_1=%3B%7C", "", "getipmbstate  $(reboot) ;|", ""},
        {"addr1_0=" + x300, "", "", too_long},
        {"addr1_0=0x82&addr1_1=A%0A", "", "", line_break},
        // The verb's own message wins over the runner's checks.
        {"addr1_1=" + x300 + "%0A", "", "", need_address},
    });
    expect_cases("setipmbstate", setipmbstate_literals, {
        {by_get, "", "", need_all},
        {"addr1_0=0x82&addr1_1=A&addr1_2=disable", "", "setipmbstate 0x82 A  disable", ""},
        {"addr1_0=0x82&addr1_1=A&addr1_3=1&addr1_2=enable", "", "setipmbstate 0x82 A 1 enable", ""},
        {"addr1_0=0x82&addr1_1=A", "", "", need_all},
        {"addr1_0=0x82&addr1_1=A&addr1_2=", "", "", need_all},
        {"addr1_0=0x82&addr1_2=enable", "", "", need_all},
        {"addr1_1=A&addr1_3=1&addr1_2=enable", "", "", need_all},
        {"addr1_0=%22&addr1_1=%27&addr1_3=%26&addr1_2=%60id%60", "", "setipmbstate \" ' & `id`", ""},
        {"addr1_0=0x82&addr1_1=A&addr1_2=" + x300, "", "", too_long},
        {"addr1_0=0x82&addr1_1=A&addr1_3=%0A&addr1_2=on", "", "", line_break},
        {"addr1_0=0x82&addr1_3=" + x300 + "%0A&addr1_2=on", "", "", need_all},
    });
}
