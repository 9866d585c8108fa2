// The fan verbs end to end: every page byte for byte and exactly what the
// stand-in shelfctl received, or that it did not run.
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "verb_cases.hpp"

namespace {

const page_literals fans_literals = {
    "Content-type: text/html\n\n<HTML><HEAD>  <TITLE> Corvane&#8482; Shelf Manager, Fan Information "
    "</TITLE></HEAD><BODY>",
    "<H2> Fan Information </H2>", "<A HREF=\"/verbs/fans.html\"> Back to the previous page </A>"};
const page_literals getfanlevel_literals = {
    "Content-type: text/html\n\n<HTML><HEAD>  <TITLE> Corvane&#8482; Shelf Manager, Fan Level "
    "</TITLE></HEAD><BODY>",
    "<H2> Get Fan Level </H2>", "<A HREF=\"/verbs/getfanlevel.html\"> Back to the previous page </A>"};
const page_literals setfanlevel_literals = {
    "Content-type: text/html\n\n<HTML><HEAD>  <TITLE> Corvane Shelf Manager, Set Fan Level </TITLE></HEAD><BODY>",
    "<H2> Set Fan Level </H2>", "<A HREF=\"/verbs/setfanlevel.html\"> Back to the previous page </A>"};

const std::string specify_all = "It is necessary to specify all parameters<BR>";
const std::string too_long = "The command is too long to send<BR>";
const std::string line_break = "A value may not contain a line break<BR>";
const std::string x300(300, 'x');
const std::optional<std::string> by_get = std::nullopt;

struct fan_case {
    std::optional<std::string> body;  // nullopt: a GET request
    std::string command;              // what the tool receives
    std::string refusal;              // non-empty: the tool does not run and this fills the block
};

void expect_fan_cases(const std::string& verb, const page_literals& page, const std::vector<fan_case>& cases) {
    for (const fan_case& c : cases) expect_verb_page(verb, page, {c.body, "", c.command, c.refusal});
}

}  // namespace

TEST(FansE2E, Fans) {
    expect_fan_cases("fans", fans_literals, {
        {by_get, "fans  ", ""},
        {"submit=Go", "fans  ", ""},
        {"addr1_0=0x20&id2_0=3", "fans 0x20 3", ""},
        {"addr1_0=0x20", "fans 0x20 ", ""},
        {"id2_0=3", "fans  3", ""},
        {"req_type=0&addr1_0=0x20&id2_0=3&pti_sym1_1=P&id2_1=9", "fans 0x20 3", ""},
        {"req_type=x&addr1_0=0x20&id2_0=3", "fans 0x20 3", ""},
        {"req_type=&addr1_0=0x20&id2_0=3", "fans 0x20 3", ""},
        {"req_type=1&pti_sym1_1=P&id2_1=9&addr1_0=0x20", "fans P 9", ""},
        {"req_type=2&pti_sym1_1=P&id2_1=9", "fans P 9", ""},
        {"req_type=-1&pti_sym1_1=P", "fans P ", ""},
        {"req_type=4294967296&id2_1=9", "fans  9", ""},
        {"req_type=1&addr1_0=0x20&id2_0=3", "fans  ", ""},
        {"verbose=V&value=5&addr1_0=0x20&id2_0=3", "fans 0x20 3", ""},
        {"addr1_0=%24%28reboot%29&id2_0=`id`", "fans $(reboot) `id`", ""},
        {"addr1_0=%22'&id2_0=\\n;|%26", "fans \"' \\n;|&", ""},
        {"addr1_0=" + std::string(222, 'a'), "fans " + std::string(222, 'a') + " ", ""},
        {"addr1_0=" + std::string(223, 'a'), "", too_long},
        {"addr1_0=" + std::string(5000, 'a'), "", too_long},
        {"addr1_0=a%0Ab", "", line_break},
        {"req_type=1&id2_1=%0D%0A&pti_sym1_1=" + x300, "", line_break},
    });
}

TEST(FansE2E, Getfanlevel) {
    expect_fan_cases("getfanlevel", getfanlevel_literals, {
        {by_get, "", specify_all},
        {"verbose=-v", "", specify_all},
        {"addr1_0=a&id2_0=b", "getfanlevel  a b", ""},
        {"verbose=-v&addr1_0=a&id2_0=b", "getfanlevel -v a b", ""},
        {"addr1_0=a", "", specify_all},
        {"id2_0=b&pti_sym1_1=P", "", specify_all},
        {"req_type=1&pti_sym1_1=P&id2_1=9", "getfanlevel  P 9", ""},
        {"req_type=1&addr1_0=a&id2_0=b", "getfanlevel   ", ""},
        {"pti_sym1_1=P&id2_1=9", "getfanlevel   ", ""},
        {"req_type=1&pti_sym1_1=P", "", specify_all},
        {"req_type=2&pti_sym1_1=P&id2_1=9&addr1_0=a", "getfanlevel  a ", ""},
        {"req_type=+1x&pti_sym1_1=P&id2_1=9", "getfanlevel  P 9", ""},
        {"req_type=4294967297&pti_sym1_1=P&id2_1=9&addr1_0=a&id2_0=b", "getfanlevel  a b", ""},
        {"verbose=%24%28reboot%29&addr1_0=`id`&id2_0=%22'\\n;|%26", "getfanlevel $(reboot) `id` \"'\\n;|&", ""},
        {"addr1_0=a&id2_0=" + std::string(213, 'b'), "getfanlevel  a " + std::string(213, 'b'), ""},
        {"addr1_0=a&id2_0=" + std::string(214, 'b'), "", too_long},
        {"addr1_0=a&id2_0=b%0A", "", line_break},
        {"addr1_0=a&id2_1=b&verbose=" + x300, "", specify_all},
        {"addr1_0=a%0A&verbose=" + x300, "", specify_all},
    });
}

TEST(FansE2E, Setfanlevel) {
    expect_fan_cases("setfanlevel", setfanlevel_literals, {
        {by_get, "", specify_all},
        {"addr1_0=a&id2_0=b&value=5", "setfanlevel  a b 5", ""},
        {"verbose=V&addr1_0=a&id2_0=b&value=5", "setfanlevel V a b 5", ""},
        {"addr1_0=a&id2_0=b", "", specify_all},
        {"addr1_0=a&value=5", "", specify_all},
        {"req_type=1&pti_sym1_1=P&id2_1=9&value=5", "setfanlevel  P 9 5", ""},
        {"req_type=1&addr1_0=a&id2_0=b&value=5", "setfanlevel    5", ""},
        {"pti_sym1_1=P&id2_1=9&value=5", "setfanlevel    5", ""},
        {"req_type=1&pti_sym1_1=P&id2_1=9", "", specify_all},
        {"req_type=2&value=5", "setfanlevel  all 5", ""},
        {"req_type=2&verbose=V&value=5&addr1_0=a&id2_0=b", "setfanlevel V all 5", ""},
        {"req_type=2&addr1_0=a&id2_0=b&pti_sym1_1=P&id2_1=9", "", specify_all},
        {"req_type=3&addr1_0=a&id2_0=b&value=5", "setfanlevel  a b 5", ""},
        {"req_type=3&value=5", "", specify_all},
        {"req_type=02x&value=5", "setfanlevel  all 5", ""},
        {"req_type=4294967298&value=5", "", specify_all},
        {"req_type=2&value=%24%28reboot%29;`id`|%22'\\n%26", "setfanlevel  all $(reboot);`id`|\"'\\n&", ""},
        {"req_type=2&value=" + std::string(211, '9'), "setfanlevel  all " + std::string(211, '9'), ""},
        {"req_type=2&value=" + std::string(212, '9'), "", too_long},
        {"req_type=2&value=5%0A6", "", line_break},
        {"req_type=2&verbose=" + x300, "", specify_all},
        {"addr1_0=a&id2_0=b%0A&verbose=" + x300, "", specify_all},
    });
}
