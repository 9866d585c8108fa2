#include "verb_cases.hpp"

namespace {

const std::string all_params = "It is necessary to specify all parameters<BR>";
const std::string the_params = "It is necessary to specify the parameters<BR>";
const std::string set_params = "It is necessary to set parameters!<BR>";
const std::string mask_pair = "Deasserted mask must be specified along with the asserted mask<BR>";
const std::string need_address = "It is necessary to specify IPMB address<BR>";
const std::string need_all = "It is necessary to specify IPMB address, bus, and action<BR>";
const std::string x300(300, 'x');

verb_case sends(std::string name, std::string page, std::string body, std::string command, std::string notes = "") {
    return {name, page, "POST", body, command, "", notes};
}
verb_case refuses(std::string name, std::string page, std::string body, std::string message, std::string notes = "") {
    return {name, page, "POST", body, std::nullopt, message, notes};
}
verb_case get_sends(std::string name, std::string page, std::string command, std::string notes = "") {
    return {name, page, "GET", "", command, "", notes};
}
verb_case get_refuses(std::string name, std::string page, std::string message) {
    return {name, page, "GET", "", std::nullopt, message, ""};
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

std::vector<verb_case> all_cases() {
    std::vector<verb_case> cases = {    // Fixed commands read no field.
    sends("fixed_command_ignores_fields", "version", "verbose=-v&command=reboot", "version"),
    get_sends("fixed_command_by_get", "session", "session"),
    sends("switchover_ignores_shell_text", "switchover", "x=$(reboot)", "switchover"),
    // FRUs and boards.
    sends("activate_setlocked_by_pti_sym", "activate", "command=SetLocked&req_type=1&pti_sym1_1=P&id2_1=2", "setlocked P 2 1"),
    sends("activate_clearlocked_any_case", "activate", "command=CLEARLOCKED&addr1_0=0x82&id2_0=1", "setlocked 0x82 1 0"),
    sends("activate_other_word_as_given", "activate", "command=Xetlocked&addr1_0=0x82&id2_0=1", "Xetlocked 0x82 1"),
    sends("fru_by_address_verbose", "fru", "verbose=-v&addr1_0=0x82&id2_0=1", "fru -v 0x82 1", verbose_on),
    sends("fru_by_site_type", "fru", "req_type=3&verbose=V&site_type1_3=S&id2_3=7", "fru V type=S  /7", verbose_on),
    sends("fru_by_address_and_type", "fru", "req_type=1&addr1_1=0x82&id2_1=3", "fru  0x82 type=3"),
    sends("fru_by_pti_sym", "fru", "req_type=2&pti_sym1_2=P&id2_2=3&verbose=V", "fru P 3", verbose_on),
    sends("frudata_by_pti_sym", "frudata", "req_type=1&pti_sym1_1=P&id2_1=2&offset=8", "frudata P 2 8 "),
    sends("fruinfo_by_address", "fruinfo", "verbose=V&dump=D&addr1_0=0x82&id2_0=1", "fruinfo V D 0x82 1"),
    sends("getfruledstate_by_pti_sym", "getfruledstate", "req_type=1&pti_sym1_1=P&id2_1=0&id2_3=2", "getfruledstate  P 0 2"),
    sends("setfruledstate_local", "setfruledstate", led + "addr1_1=LOCAL&addr1_2=5&verbose=V", "setfruledstate 0x82 0 ALL LOCAL"),
    sends("setfruledstate_blink", "setfruledstate", led + "addr1_1=BLINKING&id2_2=100&id2_3=200&addr1_2=3", "setfruledstate 0x82 0 ALL BLINK 100 200 3"),
    sends("setfruledstate_test", "setfruledstate", led + "addr1_1=TESTING&id2_2=5&addr1_2=1", "setfruledstate 0x82 0 ALL TEST 5"),
    sends("setfruledstate_off_by_pti_sym", "setfruledstate", "req_type=1&id2_1=0&addr1_1=OFF", "setfruledstate  0 ALL OFF"),
    sends("setfruledstate_unchecked_selector", "setfruledstate", "req_type=2&addr1_1=ON", "setfruledstate   ALL ON "),
    refuses("setfruledstate_line_break", "setfruledstate", led + "addr1_1=ON&addr1_2=1%0A", line_break),
    refuses("setfruledstate_long_address_incomplete", "setfruledstate", "addr1_0=" + x300 + "&addr1_1=OFF", set_params),
    sends("board_slot_wraps_to_one", "board", "slot=-4294967295", "board  1", "Board # 1<BR>"),
    sends("board_slot_saturates", "board", "slot=-4294967296", "board  -1", "Board # -1<BR>"),
    sends("reset_verbose", "reset", "slot=7&verbose=V", "boardreset 7", verbose_on + "Resetting board # 7<BR>"),
    sends("reset_slot_too_large", "reset", "slot=4294967295", "boardreset "),
    sends("reset_without_slot_sends_verbose", "reset", "verbose=V", "boardreset V", verbose_on),
    sends("ipmc_by_address", "ipmc", "addr1_0=0x82&id2_1=2&pti_sym1_1=P", "ipmc  0x82"),
    sends("ipmc_by_pti_sym", "ipmc", "verbose=V&req_type=1&pti_sym1_1=P", "ipmc V P ", verbose_on),
    // Sensors and the event log.
    get_refuses("setthreshold_by_get", "setthreshold", all_params),
    sends("setthreshold_by_address", "setthreshold", "addr1_0=20&id3_0=3&tr=unc&raw=r&value=9", "setthreshold  20 3 unc r 9"),
    sends("setthreshold_address_fields_in_pti_sym_form", "setthreshold", "req_type=1&addr1_0=20&id3_0=3&tr=unc&value=9", "setthreshold    3 unc  9"),
    sends("setthreshold_by_pti_sym", "setthreshold", "req_type=1&verbose=-v&pti_sym1_1=p&id2_1=2&id3_0=3&tr=unc&raw=r&value=9", "setthreshold -v p 2 3 unc r 9"),
    sends("sethysteresis_by_pti_sym", "sethysteresis", "req_type=1&verbose=-v&pti_sym1_1=p&id2_1=2&id3_0=3&tr=unc&value=9", "sethysteresis -v p 2 3 unc 9"),
    sends("sethysteresis_by_address", "sethysteresis", "verbose=-v&addr1_0=20&id3_0=3&tr=unc&value=9", "sethysteresis -v 20 3 unc 9"),
    refuses("sethysteresis_too_long", "sethysteresis", "addr1_0=20&id3_0=3&tr=unc&value=" + x300, too_long),
    sends("getsensoreventenable_by_address", "getsensoreventenable", "addr1_0=20&id3_0=3&pti_sym1_1=p&id2_1=2&verbose=-v", "getsensoreventenable 20 3"),
    sends("getsensoreventenable_by_pti_sym", "getsensoreventenable", "req_type=1&pti_sym1_1=p&id2_1=2&id3_0=3&addr1_0=20", "getsensoreventenable p 2 3"),
    sends("setsensoreventenable_by_address", "setsensoreventenable", sse0 + "&id2_2=a&id2_3=d", "setsensoreventenable 20 3 1 a d"),
    sends("setsensoreventenable_by_pti_sym", "setsensoreventenable", sse1 + "&id2_2=a&id2_3=d&addr1_0=20", "setsensoreventenable p 0 3 1 a d"),
    refuses("setsensoreventenable_selector_past_32_bits", "setsensoreventenable", sse0 + "&req_type=4294967297", the_params),
    refuses("setsensoreventenable_selector_2", "setsensoreventenable", sse0 + "&req_type=2", the_params),
    refuses("setsensoreventenable_mask_alone", "setsensoreventenable", sse1 + "&id2_3=d", mask_pair),
    sends("sel_info_by_address", "sel/info", "req_type_sel=2&addr1_0=20", "sel info  20 "),
    sends("sel_info_by_pti_sym", "sel/info", "req_type_sel=2&req_type=1&pti_sym1_1=p&id2_1=2", "sel info  p 2"),
    sends("sel_information_by_pti_sym", "sel", "req_type_sel=0&req_type=1&pti_sym1_1=p&value=9", "sel  p  "),
    sends("sel_clear_by_pti_sym", "sel/clear", "req_type_sel=1&req_type=1&pti_sym1_1=p&id2_1=2&addr1_0=20", "sel clear p 2"),
    sends("sel_clear_by_address", "sel/clear", "req_type_sel=1&verbose=-v&value=9&addr1_0=20", "sel clear 20 "),
    // Fans.
    sends("fans_by_address", "fans", "id2_0=3", "fans  3"),
    sends("fans_any_other_selector", "fans", "req_type=2&pti_sym1_1=P&id2_1=9", "fans P 9"),
    get_refuses("getfanlevel_by_get", "getfanlevel", all_params),
    sends("getfanlevel_by_address", "getfanlevel", "verbose=-v&addr1_0=a&id2_0=b", "getfanlevel -v a b"),
    sends("getfanlevel_by_pti_sym", "getfanlevel", "req_type=1&pti_sym1_1=P&id2_1=9", "getfanlevel  P 9"),
    sends("setfanlevel_by_address", "setfanlevel", "verbose=V&addr1_0=a&id2_0=b&value=5", "setfanlevel V a b 5"),
    sends("setfanlevel_by_pti_sym", "setfanlevel", "req_type=1&pti_sym1_1=P&id2_1=9&value=5", "setfanlevel  P 9 5"),
    sends("setfanlevel_all", "setfanlevel", "req_type=2&verbose=V&value=5&addr1_0=a&id2_0=b", "setfanlevel V all 5"),
    refuses("setfanlevel_incomplete", "setfanlevel", "req_type=1&id2_1=9&value=5", all_params),
    // Shelf-wide settings.
    get_sends("getlanconfig_by_get", "getlanconfig", "getlanconfig 1 0", "Retrieving Information of channel: 1<BR>"),
    sends("getlanconfig_empty_channel", "getlanconfig", "channel=&parameter=3", "getlanconfig 1 3", "Retrieving Information of channel: 1<BR>"),
    sends("setlanconfig_all_fields", "setlanconfig", "channel=1&parameter=3&sel=0&value=192.168.0.2&verbose=1", "setlanconfig 1 3 0 192.168.0.2"),
    sends("getpef_ignores_channel", "getpef", "parameter=7&channel=3", "getpefconfig 7"),
    get_sends("getpef_by_get", "getpef", "getpefconfig 0"),
    sends("setpef_all_fields", "setpef", "parameter=1&sel=2&value=3", "setpefconfig 1 2 3"),
    sends("alarm_command", "alarm", "command=clear+all&verbose=1", "alarm clear all"),
    sends("showunhealthy_last_verbose", "showunhealthy", "verbose=1&verbose=-v", "showunhealthy -v", verbose_on),
    sends("getipmbstate_by_address", "getipmbstate", "addr1_0=0x82&addr1_1=A", "getipmbstate  0x82 A"),
    get_refuses("getipmbstate_by_get", "getipmbstate", need_address),
    sends("setipmbstate_disable", "setipmbstate", "addr1_0=0x82&addr1_1=A&addr1_2=disable", "setipmbstate 0x82 A  disable"),
    refuses("setipmbstate_empty_action", "setipmbstate", "addr1_0=0x82&addr1_1=A&addr1_2=", need_all),
    // The shelf: `command` is a two-digit case number and the name in the heading.
    get_sends("shelf_by_get", "shelf", "shelf ", "Undefined"),
    sends("shelf_feed_current", "shelf", "command=8&current=2", "shelf   2", ""),
    sends("shelf_allowance", "shelf", "command=15&value_allowance=7", "shelf  7", ""),
    sends("shelf_unknown_case", "shelf", "command=17x", "shelf", "x"),
    refuses("shelf_name_too_long", "shelf", "command=00" + std::string(1500, '_'), too_long, std::string(1023, ' ')),
    sends("shelf_feed_voltage", "shelf", "command=09x&feed0=1&current=2&voltage=48", "shelf x 1 48", "x"),
    sends("shelf_bdselgrounded", "shelf", "command=13x&slot_bdselgrounded=5&value_bdselgrounded=1", "shelf x board 5 1", "x"),
    sends("shelf_activation_by_pti_sym", "shelf", "command=10x&req_type_activation=1" + act, "shelf x P I2 V", "x"),
    sends("shelf_activation_by_slot", "shelf", "command=10x&req_type_activation=2&slot_activation=4", "shelf x slot4 ", "x"),
    sends("shelf_activation_reads_its_own_selector", "shelf", "command=10x&req_type=2&req_type_deactivation=1" + act, "shelf x A I1 V", "x"),
    sends("shelf_deactivation_reads_its_own_selector", "shelf", "command=11x&req_type_activation=1" + act + deact, "shelf x a i1 v", "x"),
    sends("shelf_deactivation_by_slot", "shelf", "command=11x&req_type_deactivation=2" + deact, "shelf x slot5 v", "x"),
    sends("shelf_deactivation_by_pti_sym", "shelf", "command=11x&req_type_deactivation=1" + deact, "shelf x p i2 v", "x"),
    sends("shelf_pwrcapability_reads_its_own_selector", "shelf", "command=12x&req_type_pwrdelay=1" + cap + delay, "shelf x A I1 V1", "x"),
    sends("shelf_pwrcapability_by_pti_sym", "shelf", "command=12x&req_type_pwrcapability=1&value2_pwrcapability=V2" + cap, "shelf x P I2 V2", "x"),
    sends("shelf_pwrdelay_by_address", "shelf", "command=14x&value2_pwrdelay=v2" + cap + delay, "shelf x a i1 v1", "x"),
    sends("shelf_pwrdelay_by_pti_sym", "shelf", "command=14x&req_type_pwrdelay=1&value2_pwrdelay=v2" + delay, "shelf x p i2 v2", "x"),
    sends("shelf_pwrreorder_by_pti_sym", "shelf", "command=16x&req_type1_pwrreorder=1&req_type2_pwrreorder=1" + refs, "shelf x P1 I12 before P2 I22", "x"),
    sends("shelf_pwrreorder_address_then_pti_sym", "shelf", "command=16x&req_type1_pwrreorder=2&req_type2_pwrreorder=1" + refs, "shelf x A1 I11 before P2 I22", "x"),
    sends("shelf_pwrreorder_by_address", "shelf", "command=16x" + refs, "shelf x A1 I11 before A2 I21", "x"),
    };
    // Hostile bodies: every value reaches the tool as one argument of one
    // line, or the verb refuses.
    std::string binary;
    for (int b = 1; b < 256; ++b) binary += static_cast<char>(b);
    const std::vector<verb_case> hostile = {
        sends("shell_text_stays_text", "sensor", "verbose=%24(id)%3B%7C%26&addr1_0=%60id%60%22'&id3_0=%3E%2Ftmp%2Fx*~root",
              "sensor $(id);|& `id`\"' >/tmp/x*~root", verbose_on),
        refuses("line_feed", "sensor", "addr1_0=%0A", line_break),
        refuses("carriage_return", "sensor", "addr1_0=a%0Db", line_break),
        refuses("line_feed_and_quit", "sensor", "addr1_0=0x82&id3_0=1%0Aquit%0Aboardreset+1", line_break),
        refuses("line_break_before_length", "sensor", "addr1_0=" + std::string(500, 'a') + "%0A", line_break),
        sends("line_break_in_an_unread_field", "sensor", "pti_sym1_1=%0A&addr1_0=0x82", "sensor  0x82 "),
        sends("escaped_zero_cuts_the_value", "sensor", "addr1_0=a%00b&id3_0=2", "sensor  a 2"),
        sends("raw_zero_ends_the_body", "sensor", std::string("addr1_0=1\0&id3_0=2", 18), "sensor  1 "),
        sends("truncated_escape", "sensor", "addr1_0=5%", "sensor  5% "),
        sends("truncated_escape_before_a_field", "sensor", "addr1_0=5%&id3_0=4", "sensor  5% 4"),
        sends("half_escape", "sensor", "addr1_0=%4", "sensor  %4 "),
        sends("a_body_of_one_byte", "sensor", "a", "sensor   "),
        sends("invalid_escape", "sensor", "addr1_0=%zz%gg", "sensor  S\x10 "),
        sends("control_character_as_a_digit", "sensor", "addr1_0=%\x01" "1b", "sensor  \x11" "b "),
        sends("fields_without_equals", "sensor", "addr1_0=0x82&id3_0&verbose=x&id3_0", "sensor x 0x82 ", verbose_on),
        sends("plus_and_escaped_plus", "sensor", "addr1_0=a+b%2Bc", "sensor  a b+c "),
        sends("228_characters_are_sent", "sensor", "addr1_0=" + std::string(219, 'a'), "sensor  " + std::string(219, 'a') + " "),
        refuses("229_characters_are_not", "sensor", "addr1_0=" + std::string(220, 'a'), too_long),
        sends("binary_bytes", "sensor", binary, "sensor   "),
        sends("only_separators", "sensor", "&&&===&&", "sensor   "),
        sends("selector_with_a_sign", "sensor", "req_type=+1&pti_sym1_1=p&id2_1=2&id3_0=3", "sensor  p 2 3"),
        sends("selector_past_32_bits", "sensor", "req_type=4294967297&pti_sym1_1=p&addr1_0=20", "sensor  20 "),
        sends("selector_not_a_number", "sensor", "req_type=abc&pti_sym1_1=p&addr1_0=20", "sensor  20 "),
        sends("selector_after_vt_ff_cr", "sensor", "req_type=%0B%0C%0D1&pti_sym1_1=p&id2_1=2", "sensor  p 2 "),
    };
    cases.insert(cases.end(), hostile.begin(), hostile.end());
    // sensor, sensordata, getthreshold and gethysteresis read alike.
    for (std::string verb : {"sensor", "sensordata", "getthreshold", "gethysteresis"}) {
        cases.push_back(get_sends(verb + "_by_get", verb, verb + "   "));
        cases.push_back(sends(verb + "_by_pti_sym_without_id", verb, "req_type=1&pti_sym1_1=p&id3_0=3", verb + "  p  "));
    }
    return cases;
}

}  // namespace

const std::vector<verb_case>& verb_cases() {
    static const std::vector<verb_case> cases = all_cases();
    return cases;
}

std::string stub_answer(std::string_view command) { return "ran " + std::string(command) + "\n"; }

std::string tool_input_for(std::string_view command) { return std::string(command) + "\nquit\n\n"; }

std::string expected_page_of(const verb_case& c) {
    return expected_page(c.page, c.notes, c.command ? stub_answer(*c.command) : c.refusal);
}
