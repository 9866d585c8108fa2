// The FRU and board verbs end to end: every page byte for byte and exactly
// what the stand-in shelfctl received, or that it did not run.
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "gateway_run.hpp"
#include "verb_cases.hpp"

namespace {

const page_literals activate_literals = {
    "Content-type: text/html\n\n<HTML><HEAD>  <TITLE> Corvane&#8482; Shelf Manager, FRU Activate / Deactivate "
    "</TITLE></HEAD><BODY>",
    "<H2> FRU Action </H2>", "<A HREF=\"/verbs/activate.html\"> Back to the previous page </A>"};
const page_literals fru_literals = {
    "Content-type: text/html\n\n<HTML><HEAD>  <TITLE> Corvane&#8482; Shelf Manager, FRU Information "
    "</TITLE></HEAD><BODY>",
    "<H2> FRU Information </H2>", "<A HREF=\"/verbs/fru.html\"> Back to the previous page </A>"};
const page_literals frudata_literals = {
    "Content-type: text/html\n\n<HTML><HEAD>  <TITLE> Corvane Shelf Manager, FRU Data </TITLE></HEAD><BODY>",
    "<H2> FRU Data </H2>", "<A HREF=\"/verbs/frudata.html\"> Back to the previous page </A>"};
const page_literals fruinfo_literals = {
    "Content-type: text/html\n\n<HTML><HEAD>  <TITLE> Corvane&#8482; Shelf Manager, FRU Information "
    "</TITLE></HEAD><BODY>",
    "<H2> FRU Information </H2>", "<A HREF=\"/verbs/fruinfo.html\"> Back to the previous page </A>"};
const page_literals getfruledstate_literals = {
    "Content-type: text/html\n\n<HTML><HEAD>  <TITLE> Corvane&#8482; Shelf Manager, Get FRU LED State "
    "</TITLE></HEAD><BODY>",
    "<H2> FRU LED State </H2>", "<A HREF=\"/verbs/getfruledstate.html\"> Back to the previous page </A>"};
const page_literals setfruledstate_literals = {
    "Content-type: text/html\n\n<HTML><HEAD>  <TITLE> Corvane&#8482; Shelf Manager, Set FRU LED State "
    "</TITLE></HEAD><BODY>",
    "<H2> Set FRU LED State </H2>", "<A HREF=\"/verbs/setfruledstate.html\"> Back to the previous page </A>"};
const page_literals board_literals = {
    "Content-type: text/html\n\n<HTML><HEAD>  <TITLE> Corvane&#8482; Shelf Manager, Board Information "
    "</TITLE></HEAD><BODY>",
    "<H2> Board Information </H2>", "<A HREF=\"/verbs/board.html\"> Back to the previous page </A>"};
const page_literals reset_literals = {
    "Content-type: text/html\n\n<HTML><HEAD>  <TITLE> Corvane&#8482; Shelf Manager, Reset Board</TITLE></HEAD><BODY>",
    "<H2> Reset Board </H2>", "<A HREF=\"/verbs/reset.html\"> Back to the previous page </A>"};
const page_literals ipmc_literals = {
    "Content-type: text/html\n\n<HTML><HEAD>  <TITLE> Corvane&#8482; Shelf Manager, IPM Controller Information "
    "</TITLE></HEAD><BODY>",
    "<H2> IPM Controller Information </H2>", "<A HREF=\"/verbs/ipmc.html\"> Back to the previous page </A>"};

const std::string verbose_on = "Verbose mode turned on <BR>";
const std::string specify_all = "It is necessary to specify all parameters<BR>";
const std::string set_parameters = "It is necessary to set parameters!<BR>";
const std::string too_long = "The command is too long to send<BR>";
const std::string line_break = "A value may not contain a line break<BR>";
const std::string x300(300, 'x');
const std::optional<std::string> by_get = std::nullopt;

}  // namespace

TEST(FruE2E, Activate) {
    expect_cases("activate", activate_literals, {
        {by_get, "", "  ", ""},
        {"command=activate&addr1_0=0x82&id2_0=1", "", "activate 0x82 1", ""},
        {"command=SetLocked&req_type=1&pti_sym1_1=P&id2_1=2", "", "setlocked P 2 1", ""},
        {"command=CLEARLOCKED&addr1_0=0x82&id2_0=1", "", "setlocked 0x82 1 0", ""},
        {"command=clearLocked&req_type=1&id2_1=2", "", "setlocked  2 0", ""},
        {"command=%53ETLOCKED", "", "setlocked   1", ""},
        {"command=setlocked+&addr1_0=0x82&id2_0=1", "", "setlocked  0x82 1", ""},
        {"command=setlockedx", "", "setlockedx  ", ""},
        {"command=clear&addr1_0=0x82", "", "clear 0x82 ", ""},
        {"command=deactivate&id2_0=1", "", "deactivate  1", ""},
        {"addr1_0=0x82&id2_0=1", "", " 0x82 1", ""},
        {"command=activate&req_type=1&addr1_0=0x82&id2_0=1", "", "activate  ", ""},
        {"command=activate&req_type=+1&pti_sym1_1=P&id2_1=2", "", "activate P 2", ""},
        {"command=activate&req_type=1x&pti_sym1_1=P&id2_1=2", "", "activate P 2", ""},
        {"command=activate&req_type=4294967297&pti_sym1_1=P&addr1_0=0x82", "", "activate 0x82 ", ""},
        {"command=activate&req_type=2&addr1_0=0x82&id2_0=1&id2_1=9", "", "activate 0x82 1", ""},
        {"command=activate&command=&addr1_0=0x82&id2_0=1", "", "activate 0x82 1", ""},
        {"command=activate&addr1_0=" + std::string(218, 'a'), "", "activate " + std::string(218, 'a') + " ", ""},
        {"command=activate&addr1_0=" + std::string(219, 'a'), "", "", too_long},
        {"command=setlocked&addr1_0=" + std::string(5000, 'a'), "", "", too_long},
        {"command=activate&addr1_0=a%0Ab", "", "", line_break},
        {"command=activate%0D&addr1_0=" + x300, "", "", line_break},
    });
}

TEST(FruE2E, Fru) {
    expect_cases("fru", fru_literals, {
        {by_get, "", "fru   ", ""},
        {"addr1_0=0x82&id2_0=1", "", "fru  0x82 1", ""},
        {"verbose=-v&addr1_0=0x82&id2_0=1", verbose_on, "fru -v 0x82 1", ""},
        {"id2_0=1", "", "fru   ", ""},
        {"req_type=3&site_type1_3=S&id2_3=7", "", "fru  type=S  /7", ""},
        {"req_type=3&verbose=V&site_type1_3=S&id2_3=7", verbose_on, "fru V type=S  /7", ""},
        {"req_type=3&site_type1_3=S", "", "fru  type=S ", ""},
        {"req_type=3&id2_3=7&addr1_0=0x82", "", "fru   ", ""},
        {"req_type=1&addr1_1=0x82", "", "fru  0x82 ", ""},
        {"req_type=1&addr1_1=0x82&id2_1=3", "", "fru  0x82 type=3", ""},
        {"req_type=1&id2_1=3", "", "fru   ", ""},
        {"req_type=1&addr1_0=0x82&id2_0=1&addr1_1=A", "", "fru  A ", ""},
        {"req_type=2&pti_sym1_2=P&id2_2=3&verbose=V", verbose_on, "fru P 3", ""},
        {"req_type=2&id2_2=3", "", "fru  ", ""},
        {"req_type=2&pti_sym1_2=P", "", "fru P ", ""},
        {"req_type=+2&pti_sym1_2=P&id2_2=3", "", "fru P 3", ""},
        {"req_type=2x&pti_sym1_2=P&id2_2=3", "", "fru P 3", ""},
        {"req_type=2&req_type=&pti_sym1_2=P", "", "fru P ", ""},
        {"req_type=4&addr1_0=0x82&id2_0=1", "", "fru  0x82 1", ""},
        {"req_type=0&addr1_0=0x82&id2_0=1", "", "fru  0x82 1", ""},
        {"req_type=x&addr1_0=0x82&id2_0=1", "", "fru  0x82 1", ""},
        {"req_type=-1&addr1_0=0x82&id2_0=1", "", "fru  0x82 1", ""},
        {"req_type=-4294967294&pti_sym1_2=P", "", "fru P ", ""},
        {"req_type=2&pti_sym1_2=P&addr1_0=a%0Ab&verbose=" + x300, verbose_on, "fru P ", ""},
        {"verbose=V&addr1_0=" + x300, verbose_on, "", too_long},
        {"req_type=3&site_type1_3=a%0Ab", "", "", line_break},
    });
}

TEST(FruE2E, Frudata) {
    expect_cases("frudata", frudata_literals, {
        {by_get, "", "frudata    ", ""},
        {"addr1_0=0x82&id2_0=1&offset=8&to_write=FF", "", "frudata 0x82 1 8 FF", ""},
        {"req_type=1&pti_sym1_1=P&id2_1=2&offset=8", "", "frudata P 2 8 ", ""},
        {"req_type=1&id2_1=2", "", "frudata  2  ", ""},
        {"req_type=1&addr1_0=0x82&id2_0=1", "", "frudata    ", ""},
        {"id2_0=1&to_write=AA+BB&verbose=V", "", "frudata  1  AA BB", ""},
        {"req_type=0&addr1_0=0x82&id2_0=1&pti_sym1_1=P", "", "frudata 0x82 1  ", ""},
        {"req_type=-1&addr1_0=0x82", "", "frudata 0x82   ", ""},
        {"to_write=" + x300, "", "", too_long},
        {"offset=1%0A", "", "", line_break},
    });
}

TEST(FruE2E, Fruinfo) {
    expect_cases("fruinfo", fruinfo_literals, {
        {by_get, "", "", specify_all},
        {"addr1_0=0x82&id2_0=1", "", "fruinfo   0x82 1", ""},
        {"verbose=V&dump=D&addr1_0=0x82&id2_0=1", "", "fruinfo V D 0x82 1", ""},
        {"req_type=1&pti_sym1_1=P&id2_1=2", "", "fruinfo   P 2", ""},
        {"req_type=1&addr1_0=0x82&id2_0=1", "", "fruinfo    ", ""},
        {"pti_sym1_1=P&id2_1=2", "", "fruinfo    ", ""},
        {"req_type=2&pti_sym1_1=P&id2_1=2&addr1_0=0x82", "", "fruinfo   0x82 ", ""},
        {"addr1_0=0x82", "", "", specify_all},
        {"addr1_0=0x82&id2_0=", "", "", specify_all},
        {"addr1_0=0x82&id2_1=2", "", "", specify_all},
        {"req_type=1&pti_sym1_1=P&id2_0=1", "", "", specify_all},
        {"verbose=V&dump=D", "", "", specify_all},
        {"verbose=" + x300 + "&addr1_0=0x82", "", "", specify_all},
        {"verbose=a%0Ab&pti_sym1_1=P", "", "", specify_all},
        {"verbose=" + x300 + "&addr1_0=0x82&id2_0=1", "", "", too_long},
        {"dump=a%0Ab&addr1_0=0x82&id2_0=1", "", "", line_break},
    });
}

TEST(FruE2E, Getfruledstate) {
    expect_cases("getfruledstate", getfruledstate_literals, {
        {by_get, "", "getfruledstate    ", ""},
        {"addr1_0=0x82&id2_2=1&id2_3=2", "", "getfruledstate  0x82 1 2", ""},
        {"id2_2=1&id2_3=2", "", "getfruledstate    ", ""},
        {"addr1_0=0x82&id2_3=2", "", "getfruledstate  0x82  ", ""},
        {"verbose=V&addr1_0=0x82&id2_2=1", verbose_on, "getfruledstate V 0x82 1 ", ""},
        {"req_type=1&pti_sym1_1=P&id2_1=0&id2_3=2", "", "getfruledstate  P 0 2", ""},
        {"req_type=1&pti_sym1_1=P&id2_3=2", "", "getfruledstate  P  ", ""},
        {"req_type=1&id2_1=0&id2_3=2&addr1_0=0x82", "", "getfruledstate   0 2", ""},
        {"req_type=0&addr1_0=0x82&id2_2=1&id2_3=2", "", "getfruledstate  0x82 1 2", ""},
        {"req_type=2&addr1_0=0x82&id2_2=1&id2_1=9", "", "getfruledstate  0x82 1 ", ""},
        {"addr1_0=0x82&id2_2=" + x300, "", "", too_long},
        {"addr1_0=0x82&id2_2=%0D", "", "", line_break},
    });
}

TEST(FruE2E, Setfruledstate) {
    const std::string unit = "addr1_0=0x82&id3_0=0&";
    expect_cases("setfruledstate", setfruledstate_literals, {
        {by_get, "", "", set_parameters},
        {unit + "addr1_3=1&addr1_1=ON&addr1_2=100", "", "setfruledstate 0x82 0 1 ON 100", ""},
        {unit + "addr1_1=ON&addr1_2=100", "", "setfruledstate 0x82 0 ALL ON 100", ""},
        {unit + "addr1_1=ON", "", "setfruledstate 0x82 0 ALL ON ", ""},
        {unit + "addr1_1=ONE&addr1_2=5", "", "setfruledstate 0x82 0 ALL ON 5", ""},
        {unit + "addr1_1=OFFLINE", "", "setfruledstate 0x82 0 ALL OFF", ""},
        {unit + "addr1_1=LOCAL&addr1_2=5&verbose=V", "", "setfruledstate 0x82 0 ALL LOCAL", ""},
        {unit + "addr1_1=BLINK&id2_2=100&id2_3=200", "", "setfruledstate 0x82 0 ALL BLINK 100 200 ", ""},
        {unit + "addr1_1=BLINKING&id2_2=100&id2_3=200&addr1_2=3", "", "setfruledstate 0x82 0 ALL BLINK 100 200 3", ""},
        {unit + "addr1_1=BLINK&id2_2=100&addr1_2=3", "", "", set_parameters},
        {unit + "addr1_1=BLINK&id2_3=200", "", "", set_parameters},
        {unit + "addr1_1=TEST&id2_2=5", "", "setfruledstate 0x82 0 ALL TEST 5", ""},
        {unit + "addr1_1=TESTING&id2_2=5&addr1_2=1", "", "setfruledstate 0x82 0 ALL TEST 5", ""},
        {unit + "addr1_1=TEST", "", "", set_parameters},
        {unit + "addr1_1=on", "", "", set_parameters},
        {unit + "addr1_1=BLUE", "", "", set_parameters},
        {unit + "addr1_1=+OFF", "", "", set_parameters},
        {unit + "addr1_2=100", "", "", set_parameters},
        {"addr1_0=0x82&addr1_3=1&addr1_1=OFF", "", "", set_parameters},
        {"addr1_0=0x82&addr1_1=TEST&id2_2=5", "", "", set_parameters},
        {"id3_0=0&addr1_1=OFF", "", "", set_parameters},
        {"req_type=0&addr1_0=0x82&id3_0=0&addr1_1=OFF", "", "setfruledstate 0x82 0 ALL OFF", ""},
        {"req_type=0&addr1_1=OFF", "", "", set_parameters},
        {"req_type=1&pti_sym1_1=P&id2_1=0&addr1_1=LOCAL", "", "setfruledstate P 0 ALL LOCAL", ""},
        {"req_type=1&pti_sym1_1=P&id2_1=0&addr1_3=2&addr1_1=OFF", "", "setfruledstate P 0 2 OFF", ""},
        {"req_type=1&id2_1=0&addr1_1=OFF", "", "setfruledstate  0 ALL OFF", ""},
        {"req_type=1&pti_sym1_1=P&addr1_0=0x82&id3_0=0&addr1_1=OFF", "", "", set_parameters},
        {"req_type=1&pti_sym1_1=P&addr1_1=TEST&id2_2=5", "", "", set_parameters},
        {"req_type=2&addr1_1=OFF", "", "setfruledstate   ALL OFF", ""},
        {"req_type=2&id3_0=0&addr1_3=1&addr1_1=OFF", "", "setfruledstate   ALL OFF", ""},
        {"req_type=2&addr1_0=0x82&id3_0=0&addr1_3=1&addr1_1=OFF", "", "setfruledstate 0x82 0 1 OFF", ""},
        {"req_type=2&addr1_0=0x82&addr1_3=1&addr1_1=OFF", "", "setfruledstate 0x82  ALL OFF", ""},
        {"req_type=2&addr1_1=BLUE", "", "", set_parameters},
        {unit + "addr1_1=ON&addr1_2=" + x300, "", "", too_long},
        {unit + "addr1_1=ON&addr1_2=1%0A", "", "", line_break},
        {unit + "addr1_1=OFF&addr1_2=1%0A", "", "setfruledstate 0x82 0 ALL OFF", ""},
        {"addr1_0=" + x300 + "&addr1_1=OFF", "", "", set_parameters},
        {"addr1_0=a%0Ab&addr1_1=OFF", "", "", set_parameters},
    });
}

TEST(FruE2E, Board) {
    const std::string board_minus_one = "Board # -1<BR>";
    expect_cases("board", board_literals, {
        {by_get, board_minus_one, "board  -1", ""},
        {"slot=3", "Board # 3<BR>", "board  3", ""},
        {"slot=0&verbose=V", verbose_on, "board V", ""},
        {"verbose=V&slot=4", verbose_on + "Board # 4<BR>", "board V 4", ""},
        {"slot=abc", "", "board ", ""},
        {"slot=", board_minus_one, "board  -1", ""},
        {"slot=-2", "Board # -2<BR>", "board  -2", ""},
        {"slot=4294967295", board_minus_one, "board  -1", ""},
        {"slot=99999999999", board_minus_one, "board  -1", ""},
        {"slot=-4294967295", "Board # 1<BR>", "board  1", ""},
        {"slot=+7x", "Board # 7<BR>", "board  7", ""},
        {"slot=2&slot=5", "Board # 5<BR>", "board  5", ""},
        {"slot=2&slot=", "Board # 2<BR>", "board  2", ""},
        {"Slot=3&slots=4&x=slot", board_minus_one, "board  -1", ""},
        {"verbose=1&verbose=2&verbose=&slot=1", verbose_on + "Board # 1<BR>", "board 2 1", ""},
        {"req_type=1&addr1_0=0x82&id2_0=1", board_minus_one, "board  -1", ""},
        {"verbose=" + x300 + "&slot=3", verbose_on + "Board # 3<BR>", "", too_long},
        {"verbose=a%0Ab&slot=0", verbose_on, "", line_break},
    });
}

TEST(FruE2E, Reset) {
    expect_cases("reset", reset_literals, {
        {by_get, "", "boardreset ", ""},
        {"slot=0", "Resetting board # 0<BR>", "boardreset 0", ""},
        {"slot=7&verbose=V", verbose_on + "Resetting board # 7<BR>", "boardreset 7", ""},
        {"verbose=V", verbose_on, "boardreset V", ""},
        {"slot=-1&verbose=V", verbose_on, "boardreset V", ""},
        {"slot=4294967295", "", "boardreset ", ""},
        {"slot=abc", "Resetting board # 0<BR>", "boardreset 0", ""},
        {"slot=-2", "Resetting board # -2<BR>", "boardreset -2", ""},
        {"slot=3&slot=", "Resetting board # 3<BR>", "boardreset 3", ""},
        {"slots=3&Slot=4", "", "boardreset ", ""},
        {"slot=7&verbose=" + x300, verbose_on + "Resetting board # 7<BR>", "boardreset 7", ""},
        {"slot=7&verbose=a%0Ab", verbose_on + "Resetting board # 7<BR>", "boardreset 7", ""},
        {"verbose=" + x300, verbose_on, "", too_long},
        {"verbose=a%0Ab", verbose_on, "", line_break},
    });
}

TEST(FruE2E, Ipmc) {
    expect_cases("ipmc", ipmc_literals, {
        {by_get, "", "ipmc  ", ""},
        {"req_type=1&pti_sym1_1=P&id2_1=2", "", "ipmc  P 2", ""},
        {"req_type=1&id2_1=2&addr1_0=0x82", "", "ipmc   2", ""},
        {"addr1_0=0x82&id2_1=2&pti_sym1_1=P", "", "ipmc  0x82", ""},
        {"req_type=2&addr1_0=0x82", "", "ipmc  0x82", ""},
        {"verbose=V&addr1_0=0x82", verbose_on, "ipmc V 0x82", ""},
        {"verbose=V&req_type=1&pti_sym1_1=P", verbose_on, "ipmc V P ", ""},
        {"addr1_0=" + x300, "", "", too_long},
        {"req_type=1&id2_1=%0A", "", "", line_break},
    });
}

// Values reach the tool as plain text: nothing interprets them on the way.
TEST(FruE2E, HostileValuesReachTheToolAsPlainText) {
    struct {
        std::string encoded, plain;
    } values[] = {
        {"$(reboot)", "$(reboot)"}, {"`id`", "`id`"}, {"%22", "\""},  {"'", "'"},       {"\\n", "\\n"},
        {";", ";"},                 {"|", "|"},       {"%26", "&"},   {"a+b", "a b"},   {"%25s%25d", "%s%d"},
    };
    struct {
        std::string verb;
        const page_literals* page;
        std::string body, notes, command;  // '@' stands for the value
    } verbs[] = {
        {"activate", &activate_literals, "command=@&addr1_0=@&id2_0=1", "", "@ @ 1"},
        {"fru", &fru_literals, "req_type=3&verbose=@&site_type1_3=@&id2_3=@", verbose_on, "fru @ type=@  /@"},
        {"frudata", &frudata_literals, "addr1_0=@&id2_0=1&offset=@&to_write=@", "", "frudata @ 1 @ @"},
        {"fruinfo", &fruinfo_literals, "verbose=@&dump=@&addr1_0=@&id2_0=@", "", "fruinfo @ @ @ @"},
        {"getfruledstate", &getfruledstate_literals, "verbose=@&addr1_0=@&id2_2=@&id2_3=@", verbose_on,
         "getfruledstate @ @ @ @"},
        {"setfruledstate", &setfruledstate_literals,
         "addr1_0=@&id3_0=@&addr1_3=@&addr1_1=BLINK&id2_2=@&id2_3=@&addr1_2=@", "",
         "setfruledstate @ @ @ BLINK @ @ @"},
        {"board", &board_literals, "verbose=@&slot=5", verbose_on + "Board # 5<BR>", "board @ 5"},
        {"reset", &reset_literals, "verbose=@", verbose_on, "boardreset @"},
        {"ipmc", &ipmc_literals, "verbose=@&req_type=1&pti_sym1_1=@&id2_1=@", verbose_on, "ipmc @ @ @"},
    };
    auto fill = [](std::string pattern, const std::string& value) {
        for (std::size_t at = pattern.find('@'); at != std::string::npos; at = pattern.find('@', at + value.size())) {
            pattern.replace(at, 1, value);
        }
        return pattern;
    };
    for (const auto& verb : verbs) {
        std::vector<verb_case> cases;
        for (const auto& value : values) {
            cases.push_back({fill(verb.body, value.encoded), verb.notes, fill(verb.command, value.plain), ""});
        }
        expect_cases(verb.verb, *verb.page, cases);
    }
}
