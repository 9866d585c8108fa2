// The shelf verb end to end: the heading built from `command`, every page
// byte for byte, and exactly what the stand-in shelfctl received.
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "verb_cases.hpp"

namespace {

constexpr std::string_view shelf_header =
    "Content-type: text/html\n\n<HTML><HEAD>  <TITLE> Corvane&#8482; Shelf Manager, Shelf Information "
    "</TITLE></HEAD><BODY>";
constexpr std::string_view shelf_back_link = "<A HREF=\"/verbs/shelf.html\"> Back to the previous page </A>";

const std::string too_long = "The command is too long to send<BR>";
const std::string line_break = "A value may not contain a line break<BR>";
const std::optional<std::string> by_get = std::nullopt;
const std::optional<std::string> undefined = std::nullopt;

struct shelf_case {
    std::optional<std::string> body;     // nullopt: a GET request
    std::optional<std::string> display;  // what the heading shows; nullopt: "Undefined"
    std::string command;                 // what the tool receives
    std::string refusal;                 // non-empty: the tool does not run and this fills the block
};

void expect_cases(const std::vector<shelf_case>& cases) {
    for (const shelf_case& c : cases) {
        std::string heading = "<H2> Shelf Information: " + c.display.value_or("Undefined") + " </H2>";
        expect_verb_page("shelf", {shelf_header, heading, shelf_back_link}, {c.body, "", c.command, c.refusal});
    }
}

}  // namespace

TEST(ShelfE2E, CommandGivesCaseNumberNameAndHeading) {
    expect_cases({
        {by_get, undefined, "shelf ", ""},
        {"feed0=1&current=2&value_allowance=7", undefined, "shelf ", ""},
        {"command=&submit=Go", undefined, "shelf ", ""},
        {"command=03x_y", "x y", "shelf x_y", ""},
        {"command=00a__b_", "a  b ", "shelf a__b_", ""},
        {"command=07", "", "shelf ", ""},
        {"command=abc", "c", "shelf c", ""},
        {"command=1", "", "shelf ", ""},
        {"command=8&current=2", "", "shelf   2", ""},
        {"command=15", "", "shelf  ", ""},
        {"command=15&value_allowance=7", "", "shelf  7", ""},
        {"command=17x", "x", "shelf", ""},
        {"command=-1x", "x", "shelf", ""},
        {"command=4294967306x", "94967306x", "shelf", ""},
        {"command=-4294967286x", "294967286x", "shelf 294967286x   ", ""},
        {"command=+2x", "x", "shelf x", ""},
        {"command=+1x&feed0=1", "x", "shelf x", ""},
        {"command=0%24%28reboot%29", "(reboot)", "shelf (reboot)", ""},
        {"command=00%24%28reboot%29;`id`|%26", "$(reboot);`id`|&", "shelf $(reboot);`id`|&", ""},
        {"command=00%22'\\n<B>", "\"'\\n<B>", "shelf \"'\\n<B>", ""},
        {"command=00" + std::string(222, 'n'), std::string(222, 'n'), "shelf " + std::string(222, 'n'), ""},
        {"command=00" + std::string(223, 'n'), std::string(223, 'n'), "", too_long},
        {"command=00" + std::string(1500, '_'), std::string(1023, ' '), "", too_long},
        {"command=00a%0Ab", "a\nb", "", line_break},
        {"command=15x&value_allowance=%0D" + std::string(300, 'v'), "x", "", line_break},
    });
}

TEST(ShelfE2E, PlainFamilies) {
    expect_cases({
        {"command=05x&feed0=1&current=2", "x", "shelf x", ""},
        {"command=08x&feed0=1&current=2&voltage=48", "x", "shelf x 1 2", ""},
        {"command=08x&current=12", "x", "shelf x  12", ""},
        {"command=09x&feed0=1&current=2&voltage=48", "x", "shelf x 1 48", ""},
        {"command=09x", "x", "shelf x  ", ""},
        {"command=13x&slot_bdselgrounded=5&value_bdselgrounded=1", "x", "shelf x board 5 1", ""},
        {"command=13x&value_bdselgrounded=1", "x", "shelf x board  1", ""},
        {"command=15x&value_allowance=7&feed0=1", "x", "shelf x 7", ""},
        {"command=08x&feed0=%24%28reboot%29&current=`id`%26", "x", "shelf x $(reboot) `id`&", ""},
    });
}

TEST(ShelfE2E, ActivationFamiliesTakeThreeForms) {
    const std::string act = "&addr_activation=A&id1_activation=I1&pti_sym_activation=P&id2_activation=I2"
                            "&slot_activation=4&value_activation=V";
    const std::string deact = "&addr_deactivation=a&id1_deactivation=i1&pti_sym_deactivation=p"
                              "&id2_deactivation=i2&slot_deactivation=5&value_deactivation=v";
    expect_cases({
        {"command=10x" + act + deact, "x", "shelf x A I1 V", ""},
        {"command=10x&req_type_activation=0" + act, "x", "shelf x A I1 V", ""},
        {"command=10x&req_type_activation=z" + act, "x", "shelf x A I1 V", ""},
        {"command=10x&req_type_activation=1" + act, "x", "shelf x P I2 V", ""},
        {"command=10x&req_type_activation=2" + act, "x", "shelf x slot4 V", ""},
        {"command=10x&req_type_activation=2&slot_activation=4", "x", "shelf x slot4 ", ""},
        {"command=10x&req_type_activation=3" + act, "x", "shelf", ""},
        {"command=10x&req_type_activation=-1" + act, "x", "shelf", ""},
        {"command=10x&req_type_activation=1&req_type_deactivation=2" + act + deact, "x", "shelf x P I2 V", ""},
        {"command=10x&req_type=2" + act, "x", "shelf x A I1 V", ""},
        {"command=10x", "x", "shelf x   ", ""},
        {"command=11x" + act + deact, "x", "shelf x a i1 v", ""},
        {"command=11x&req_type_deactivation=1" + deact, "x", "shelf x p i2 v", ""},
        {"command=11x&req_type_deactivation=2" + deact, "x", "shelf x slot5 v", ""},
        {"command=11x&req_type_deactivation=3" + deact, "x", "shelf", ""},
        {"command=11x&req_type_activation=1" + act + deact, "x", "shelf x a i1 v", ""},
        {"command=10x&req_type_activation=2&slot_activation=`id`|%26&value_activation=%24%28reboot%29", "x",
         "shelf x slot`id`|& $(reboot)", ""},
    });
}

TEST(ShelfE2E, PowerFamiliesTakeTwoForms) {
    const std::string cap = "&addr_pwrcapability=A&id1_pwrcapability=I1&value1_pwrcapability=V1"
                            "&pti_sym_pwrcapability=P&id2_pwrcapability=I2";
    const std::string delay = "&addr_pwrdelay=a&id1_pwrdelay=i1&value1_pwrdelay=v1&pti_sym_pwrdelay=p&id2_pwrdelay=i2";
    expect_cases({
        {"command=12x" + cap + delay, "x", "shelf x A I1 V1", ""},
        {"command=12x&req_type_pwrcapability=1" + cap, "x", "shelf x P I2 V1", ""},
        {"command=12x&req_type_pwrcapability=1&value2_pwrcapability=V2" + cap, "x", "shelf x P I2 V2", ""},
        {"command=12x&value2_pwrcapability=V2" + cap, "x", "shelf x A I1 V1", ""},
        {"command=12x&req_type_pwrcapability=1&value2_pwrcapability=", "x", "shelf x   ", ""},
        {"command=12x&req_type_pwrcapability=2" + cap, "x", "shelf", ""},
        {"command=12x&req_type_pwrdelay=1" + cap, "x", "shelf x A I1 V1", ""},
        {"command=14x" + cap + delay, "x", "shelf x a i1 v1", ""},
        {"command=14x&req_type_pwrdelay=1" + delay, "x", "shelf x p i2 v1", ""},
        {"command=14x&req_type_pwrdelay=1&value2_pwrdelay=v2" + delay, "x", "shelf x p i2 v2", ""},
        {"command=14x&req_type_pwrdelay=2" + delay, "x", "shelf", ""},
        {"command=14x", "x", "shelf x   ", ""},
    });
}

TEST(ShelfE2E, PowerReorderReadsEachReferenceOnItsOwn) {
    const std::string refs = "&addr1_pwrreorder=A1&id11_pwrreorder=I11&pti_sym1_pwrreorder=P1&id12_pwrreorder=I12"
                             "&op_pwrreorder=before"
                             "&addr2_pwrreorder=A2&id21_pwrreorder=I21&pti_sym2_pwrreorder=P2&id22_pwrreorder=I22";
    expect_cases({
        {"command=16x" + refs, "x", "shelf x A1 I11 before A2 I21", ""},
        {"command=16x&req_type1_pwrreorder=1&req_type2_pwrreorder=1" + refs, "x", "shelf x P1 I12 before P2 I22", ""},
        {"command=16x&req_type1_pwrreorder=2&req_type2_pwrreorder=1" + refs, "x", "shelf x A1 I11 before P2 I22", ""},
        {"command=16x&req_type1_pwrreorder=1&req_type2_pwrreorder=7" + refs, "x", "shelf x P1 I12 before A2 I21", ""},
        {"command=16x", "x", "shelf x     ", ""},
        {"command=16x&op_pwrreorder=after", "x", "shelf x   after  ", ""},
        {"command=16x" + refs + "&op_pwrreorder=%0A", "x", "", line_break},
    });
}
