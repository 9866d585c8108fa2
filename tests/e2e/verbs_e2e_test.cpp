// Every verb end to end, as one table: the whole page byte for byte, and
// exactly the command the stand-in shelfctl received, or that it never ran.
#include <gtest/gtest.h>

#include <fstream>
#include <set>

#include "gateway_run.hpp"

namespace {

const std::string all_params = "It is necessary to specify all parameters<BR>";
const std::string the_params = "It is necessary to specify the parameters<BR>";
const std::string set_params = "It is necessary to set parameters!<BR>";
const std::string mask_pair = "Deasserted mask must be specified along with the asserted mask<BR>";
const std::string need_address = "It is necessary to specify IPMB address<BR>";
const std::string need_all = "It is necessary to specify IPMB address, bus, and action<BR>";
const std::string x300(300, 'x');
const std::string GET = "(GET)";

struct verb_case {
    std::string page;   // the page's key: the verb, or "verb/page"
    std::string body;   // GET: a GET request
    std::string sent;   // the tool's command; a refusal ("...<BR>"): the tool must not run
    std::string notes = "";  // after the heading (for shelf: the name in it)
};

void expect_case(const verb_case& c) {
    SCOPED_TRACE(c.page + " " + c.body.substr(0, 120));
    std::string verb = verb_of(c.page);
    gateway_result r = run_gateway(c.body == GET ? get(verb) : post(verb, c.body));
    bool refused = c.sent.ends_with("<BR>");
    EXPECT_EQ(r.status, 0);
    EXPECT_EQ(r.out, expected_page(c.page, c.notes, refused ? c.sent : stub_answer(c.sent)));
    EXPECT_EQ(r.tool_input, refused ? std::nullopt : std::optional(tool_input_for(c.sent)));
}

const std::string led = "addr1_0=0x82&id3_0=0&";
const std::string sse0 = "addr1_0=20&id3_0=3&id2_1=1";
const std::string sse1 = "req_type=1&pti_sym1_1=p&id2_0=0&id3_0=3&id2_1=1";
const std::string act = "&addr_activation=A&id1_activation=I1&pti_sym_activation=P&id2_activation=I2"
                        "&slot_activation=4&value_activation=V";
const std::string deact = "&addr_deactivation=a&id1_deactivation=i1&pti_sym_deactivation=p"
                          "&id2_deactivation=i2&slot_deactivation=5&value_deactivation=v";
const std::string cap = "&addr_pwrcapability=A&id1_pwrcapability=I1&value1_pwrcapability=V1"
                        "&pti_sym_pwrcapability=P&id2_pwrcapability=I2";
const std::string delay = "&addr_pwrdelay=a&id1_pwrdelay=i1&value1_pwrdelay=v1&pti_sym_pwrdelay=p&id2_pwrdelay=i2";
const std::string refs = "&addr1_pwrreorder=A1&id11_pwrreorder=I11&pti_sym1_pwrreorder=P1&id12_pwrreorder=I12"
                         "&op_pwrreorder=before&addr2_pwrreorder=A2&id21_pwrreorder=I21&pti_sym2_pwrreorder=P2"
                         "&id22_pwrreorder=I22";

const verb_case cases[] = {
    // Fixed commands read no field.
    {"version", "verbose=-v&command=reboot", "version"},
    {"session", GET, "session"},
    {"switchover", "x=$(reboot)", "switchover"},
    // FRUs and boards.
    {"activate", "command=SetLocked&req_type=1&pti_sym1_1=P&id2_1=2", "setlocked P 2 1"},
    {"activate", "command=CLEARLOCKED&addr1_0=0x82&id2_0=1", "setlocked 0x82 1 0"},
    {"activate", "command=Xetlocked&addr1_0=0x82&id2_0=1", "Xetlocked 0x82 1"},  // as long as setlocked
    {"fru", "verbose=-v&addr1_0=0x82&id2_0=1", "fru -v 0x82 1", verbose_on},
    {"fru", "req_type=3&verbose=V&site_type1_3=S&id2_3=7", "fru V type=S  /7", verbose_on},
    {"fru", "req_type=1&addr1_1=0x82&id2_1=3", "fru  0x82 type=3"},
    {"fru", "req_type=2&pti_sym1_2=P&id2_2=3&verbose=V", "fru P 3", verbose_on},
    {"frudata", "req_type=1&pti_sym1_1=P&id2_1=2&offset=8", "frudata P 2 8 "},
    {"fruinfo", "verbose=V&dump=D&addr1_0=0x82&id2_0=1", "fruinfo V D 0x82 1"},
    {"getfruledstate", "req_type=1&pti_sym1_1=P&id2_1=0&id2_3=2", "getfruledstate  P 0 2"},
    {"setfruledstate", led + "addr1_1=LOCAL&addr1_2=5&verbose=V", "setfruledstate 0x82 0 ALL LOCAL"},
    {"setfruledstate", led + "addr1_1=BLINKING&id2_2=100&id2_3=200&addr1_2=3", "setfruledstate 0x82 0 ALL BLINK 100 200 3"},
    {"setfruledstate", led + "addr1_1=TESTING&id2_2=5&addr1_2=1", "setfruledstate 0x82 0 ALL TEST 5"},
    {"setfruledstate", "req_type=1&id2_1=0&addr1_1=OFF", "setfruledstate  0 ALL OFF"},
    {"setfruledstate", "req_type=2&addr1_1=ON", "setfruledstate   ALL ON "},  // only selectors 0 and 1 are checked
    {"setfruledstate", led + "addr1_1=ON&addr1_2=1%0A", line_break},
    {"setfruledstate", "addr1_0=" + x300 + "&addr1_1=OFF", set_params},
    {"board", "slot=-4294967295", "board  1", "Board # 1<BR>"},
    {"board", "slot=-4294967296", "board  -1", "Board # -1<BR>"},  // saturated before the sign
    {"reset", "slot=7&verbose=V", "boardreset 7", verbose_on + "Resetting board # 7<BR>"},
    {"reset", "slot=4294967295", "boardreset "},
    {"ipmc", "addr1_0=0x82&id2_1=2&pti_sym1_1=P", "ipmc  0x82"},
    {"ipmc", "verbose=V&req_type=1&pti_sym1_1=P", "ipmc V P ", verbose_on},
    // Sensors and the event log.
    {"setthreshold", GET, all_params},
    {"setthreshold", "addr1_0=20&id3_0=3&tr=unc&raw=r&value=9", "setthreshold  20 3 unc r 9"},
    {"setthreshold", "req_type=1&addr1_0=20&id3_0=3&tr=unc&value=9", "setthreshold    3 unc  9"},
    {"setthreshold", "req_type=1&verbose=-v&pti_sym1_1=p&id2_1=2&id3_0=3&tr=unc&raw=r&value=9",
     "setthreshold -v p 2 3 unc r 9"},
    {"sethysteresis", "req_type=1&verbose=-v&pti_sym1_1=p&id2_1=2&id3_0=3&tr=unc&value=9",
     "sethysteresis -v p 2 3 unc 9"},
    {"sethysteresis", "addr1_0=20&id3_0=3&tr=unc&value=" + x300, too_long},
    {"getsensoreventenable", "addr1_0=20&id3_0=3&pti_sym1_1=p&id2_1=2&verbose=-v", "getsensoreventenable 20 3"},
    {"getsensoreventenable", "req_type=1&pti_sym1_1=p&id2_1=2&id3_0=3&addr1_0=20", "getsensoreventenable p 2 3"},
    {"setsensoreventenable", sse0 + "&id2_2=a&id2_3=d", "setsensoreventenable 20 3 1 a d"},
    {"setsensoreventenable", sse1 + "&id2_2=a&id2_3=d&addr1_0=20", "setsensoreventenable p 0 3 1 a d"},
    {"setsensoreventenable", sse0 + "&req_type=4294967297", the_params},
    {"setsensoreventenable", sse1 + "&id2_3=d", mask_pair},
    {"sel/info", "req_type_sel=2&addr1_0=20", "sel info  20 "},
    {"sel/info", "req_type_sel=2&req_type=1&pti_sym1_1=p&id2_1=2", "sel info  p 2"},
    {"sel", "req_type_sel=0&req_type=1&pti_sym1_1=p&value=9", "sel  p  "},
    {"sel/clear", "req_type_sel=1&verbose=-v&value=9&addr1_0=20", "sel clear 20 "},
    // Fans.
    {"fans", "id2_0=3", "fans  3"},
    {"fans", "req_type=2&pti_sym1_1=P&id2_1=9", "fans P 9"},
    {"getfanlevel", GET, all_params},
    {"getfanlevel", "verbose=-v&addr1_0=a&id2_0=b", "getfanlevel -v a b"},
    {"getfanlevel", "req_type=1&pti_sym1_1=P&id2_1=9", "getfanlevel  P 9"},
    {"setfanlevel", "verbose=V&addr1_0=a&id2_0=b&value=5", "setfanlevel V a b 5"},
    {"setfanlevel", "req_type=1&pti_sym1_1=P&id2_1=9&value=5", "setfanlevel  P 9 5"},
    {"setfanlevel", "req_type=2&verbose=V&value=5&addr1_0=a&id2_0=b", "setfanlevel V all 5"},
    {"setfanlevel", "req_type=1&id2_1=9&value=5", all_params},
    // Shelf-wide settings.
    {"getlanconfig", GET, "getlanconfig 1 0", "Retrieving Information of channel: 1<BR>"},
    {"getlanconfig", "channel=&parameter=3", "getlanconfig 1 3", "Retrieving Information of channel: 1<BR>"},
    {"setlanconfig", "channel=1&parameter=3&sel=0&value=192.168.0.2&verbose=1", "setlanconfig 1 3 0 192.168.0.2"},
    {"getpef", "parameter=7&channel=3", "getpefconfig 7"},
    {"getpef", GET, "getpefconfig 0"},
    {"setpef", "parameter=1&sel=2&value=3", "setpefconfig 1 2 3"},
    {"alarm", "command=clear+all&verbose=1", "alarm clear all"},
    {"showunhealthy", "verbose=1&verbose=-v", "showunhealthy -v", verbose_on},
    {"getipmbstate", "addr1_0=0x82&addr1_1=A", "getipmbstate  0x82 A"},
    {"getipmbstate", GET, need_address},
    {"setipmbstate", "addr1_0=0x82&addr1_1=A&addr1_2=disable", "setipmbstate 0x82 A  disable"},
    {"setipmbstate", "addr1_0=0x82&addr1_1=A&addr1_2=", need_all},
    // The shelf: `command` is a two-digit case number and the name in the heading.
    {"shelf", GET, "shelf ", "Undefined"},
    {"shelf", "command=8&current=2", "shelf   2", ""},
    {"shelf", "command=15&value_allowance=7", "shelf  7", ""},
    {"shelf", "command=17x", "shelf", "x"},
    {"shelf", "command=00" + std::string(1500, '_'), too_long, std::string(1023, ' ')},
    {"shelf", "command=09x&feed0=1&current=2&voltage=48", "shelf x 1 48", "x"},
    {"shelf", "command=13x&slot_bdselgrounded=5&value_bdselgrounded=1", "shelf x board 5 1", "x"},
    {"shelf", "command=10x&req_type_activation=1" + act, "shelf x P I2 V", "x"},
    {"shelf", "command=10x&req_type_activation=2&slot_activation=4", "shelf x slot4 ", "x"},
    {"shelf", "command=10x&req_type=2&req_type_deactivation=1" + act, "shelf x A I1 V", "x"},
    {"shelf", "command=11x&req_type_activation=1" + act + deact, "shelf x a i1 v", "x"},
    {"shelf", "command=11x&req_type_deactivation=2" + deact, "shelf x slot5 v", "x"},
    {"shelf", "command=11x&req_type_deactivation=1" + deact, "shelf x p i2 v", "x"},
    {"shelf", "command=12x&req_type_pwrdelay=1" + cap + delay, "shelf x A I1 V1", "x"},
    {"shelf", "command=12x&req_type_pwrcapability=1&value2_pwrcapability=V2" + cap, "shelf x P I2 V2", "x"},
    {"shelf", "command=14x&value2_pwrdelay=v2" + cap + delay, "shelf x a i1 v1", "x"},
    {"shelf", "command=14x&req_type_pwrdelay=1&value2_pwrdelay=v2" + delay, "shelf x p i2 v2", "x"},
    {"shelf", "command=16x&req_type1_pwrreorder=1&req_type2_pwrreorder=1" + refs, "shelf x P1 I12 before P2 I22", "x"},
    {"shelf", "command=16x&req_type1_pwrreorder=2&req_type2_pwrreorder=1" + refs, "shelf x A1 I11 before P2 I22", "x"},
    {"shelf", "command=16x" + refs, "shelf x A1 I11 before A2 I21", "x"},
};

// sensor, sensordata, getthreshold and gethysteresis read alike: each
// row's command is the verb followed by the row's text.
const verb_case reading_rows[] = {
    {"", GET, "   "},
    {"", "req_type=1&pti_sym1_1=p&id3_0=3", "  p  "},
};

}  // namespace

TEST(VerbsE2E, EveryVerbBuildsItsCommandOrRefuses) {
    for (const verb_case& c : cases) expect_case(c);
    for (std::string verb : {"sensor", "sensordata", "getthreshold", "gethysteresis"}) {
        for (verb_case row : reading_rows) {
            row.page = verb;
            if (!row.sent.ends_with("<BR>")) row.sent = verb + row.sent;
            expect_case(row);
        }
    }
}

// The install links the verbs the build listed from the verb table: they
// are the verbs these tests know, and each one is served under its own
// title, heading and back link.
TEST(VerbsE2E, EveryInstalledVerbIsServed) {
    std::ifstream list(VERBGW_VERB_LIST);
    std::set<std::string> listed;
    for (std::string name; std::getline(list, name);) {
        listed.insert(name);
        std::string page = expected_page(name == "sel" ? "sel/info" : name, name == "shelf" ? "Undefined" : "", "");
        gateway_result r = run_gateway(get(name));
        EXPECT_EQ(r.status, 0) << name;
        EXPECT_TRUE(r.out.starts_with(page.substr(0, page.find("</H2>") + 5))) << r.out;
        EXPECT_TRUE(r.out.ends_with(page.substr(page.rfind("<HR><A HREF")))) << r.out;
    }
    EXPECT_EQ(listed, expected_verbs());
}
