#include <gtest/gtest.h>

#include <string>

#include "answers.h"

using namespace shelfsim;

namespace {

State fresh() {
    State st;
    fill_defaults(st, true);
    st.dirty = false;
    return st;
}

std::string ask(State& st, const std::string& line) {
    std::string out;
    answer(line, st, out);
    return out;
}

// The gateway cuts its copy at lines starting with these texts and reads
// lines in pieces of 254 characters; no answer line may trip either.
void expect_safe_lines(const std::string& out, const std::string& cmd) {
    std::size_t pos = 0;
    while (pos < out.size()) {
        std::size_t eol = out.find('\n', pos);
        ASSERT_NE(eol, std::string::npos) << cmd << ": unterminated line";
        std::string line = out.substr(pos, eol - pos);
        EXPECT_LT(line.size(), 254u) << cmd;
        for (const char* bad : {"CLI>", "can't interact with", "Last item obtained"})
            EXPECT_NE(line.rfind(bad, 0), 0u) << cmd << ": " << line;
        pos = eol + 1;
    }
}

}  // namespace

// Command texts exactly as the gateway's templates build them, empty
// places included, and a piece of the answer each must give.
TEST(Answers, GatewayCommandShapes) {
    struct Case {
        const char* cmd;
        const char* expect;
    } cases[] = {
        {"version", "version 3.2.0"},
        {"session", "Active sessions"},
        {"switchover", "Switchover"},
        {"alarm", "Telco alarms: minor OFF"},
        {"showunhealthy ", "no unhealthy components"},
        {"getipmbstate  0x82 ", "0x82: IPMB-B state: enabled"},
        {"setipmbstate 0x82 A  disable", "0x82: IPMB-A disabled"},
        {"fru  0x82 1", "Rear Transition Module"},
        {"fru  type=0  /3", "0x86: FRU # 0"},
        {"fru -v 0x82 type=9", "Power capability: 25 W"},
        {"fru board2 0", "CPU Board"},
        {"fru   ", "0x74: FRU # 0"},
        {"frudata 0x82 0  ", "0x30:"},
        {"fruinfo   0x82 1", "Product Name: \"Rear Transition Module\""},
        {"getfruledstate  0x82 0 2", "LED # 2 (\"LED 2\", GREEN): local control"},
        {"setfruledstate 0x82 0 ALL LOCAL", "completed successfully"},
        {"setfruledstate board1 0 1 TEST 5", "lamp test started for 5 ms"},
        {"board  3", "Physical Slot # 3: IPMB address 0x86"},
        {"board ", "Physical Slot # 5: empty"},
        {"boardreset 2", "slot # 2 (IPMB address 0x84) reset"},
        {"ipmc  board2 0", "0x84: CPU Board"},
        {"ipmc  ", "0x74: Fan Tray 2"},
        {"sensor -v 0x82 3", "Unit: Volts"},
        {"sensor  board1 0 1", "\"CPU Temp\""},
        {"sensordata   ", "Invalid argument"},   // nothing named: the tool complains, it does not crash
        {"sensordata  0x72 1", "Processed data: 5400 RPM"},
        {"getthreshold  0x82 3", "Upper Non-Critical Threshold (unc): raw 0x7e, 12.60 Volts"},
        {"gethysteresis  board1 0 1", "Positive-going Threshold Hysteresis: raw 0x02"},
        {"getsensoreventenable 0x82 1", "Assertion Event Mask: 0x0285"},
        {"setsensoreventenable 0x82 1 0x80  ", "sensor scanning disabled"},
        {"sel   ", "SEL entries: 7"},
        {"sel -v 0x86 1", "0x0005:"},
        {"sel info   ", "Entries: 7"},
        {"fans  ", "0x72: FRU # 0 (Fan Tray 1): Current Level: 6"},
        {"getfanlevel  0x72 0", "0x72: FRU # 0 Current Level: 6"},
        {"getfanlevel -v fantray2 0", "Fan Tach: 5400 RPM"},
        {"getlanconfig 1 0", "3 IP Address: 192.0.2.10"},
        {"getpefconfig 0", "5 Number of Event Filters: 4"},
        {"activate 0x82 1", "already active"},
        {"shelf ", "sub-commands"},
        {"shelf cooling_state", "Cooling state: Normal"},
        {"shelf address_table", "IPMB Address 0x8c (empty)"},
        {"shelf pci_connectivity", "PCI"},
        {"shelf power_management", "Activation allowance: 30 s"},
        {"shelf power_distribution", "Feed 2:"},
        {"shelf fans_state", "level 6, 5400 RPM, OK"},
        {"shelf ha_connectivity", "Shelf managers"},
        {"shelf info_refresh", "refreshed"},
    };
    for (const Case& c : cases) {
        State st = fresh();
        std::string out = ask(st, c.cmd);
        EXPECT_NE(out.find(c.expect), std::string::npos) << c.cmd << "\n" << out;
        expect_safe_lines(out, c.cmd);
    }
}

TEST(Answers, MalformedCommandsGetAnErrorLine) {
    struct Case {
        const char* cmd;
        const char* expect;
    } cases[] = {
        {"frobnicate 1", "Unknown command: frobnicate"},
        {" 0x82 1", "Unknown command: 0x82"},              // activate form posted without an action
        {"getfanlevel  0x72 ", "missing FRU id"},
        {"getfanlevel  0x99 0", "no IPM controller at IPMB address 0x99"},
        {"getfanlevel  0x1ff 0", "not a valid IPMB address"},
        {"getfanlevel  nowhere 0", "unknown slot name \"nowhere\""},
        {"setfanlevel  0x72 0 16", "from 0 to 15"},
        {"setfanlevel  0x72 0 fast", "must be a number"},
        {"setfanlevel  0x82 0 3", "not a fan tray"},
        {"setfanlevel  all ", "missing fan level"},
        {"board  -1", "slots are numbered 1 to 6"},
        {"boardreset ", "missing slot"},
        {"boardreset 5", "No board present in physical slot # 5"},
        {"setlocked  0x82 1", "missing lock flag"},
        {"setfruledstate   ALL OFF", "unknown slot name"},
        {"setfruledstate 0x82 0 1 BLINK 100 ", "missing off duration"},
        {"setfruledstate 0x82 0 1 ON purple", "LED color"},
        {"setfruledstate 0x82 0 9 OFF", "LED id"},
        {"setthreshold  0x82 1 unc  ", "missing threshold value"},
        {"setthreshold  0x82 1 xyz  50", "use lnr, lcr"},
        {"setthreshold  0x82 0 unc  50", "discrete sensor"},
        {"setthreshold  0x82 1 unc  999", "outside the range"},
        {"setthreshold  0x82 1 lnr  90", "would lie above"},
        {"sethysteresis  0x82 1 up 2", "use pos or neg"},
        {"setsensoreventenable 0x82 1 0x80 0x5 ", "deassertion mask must be given"},
        {"sensor  0x82 42", "no sensor # 42"},
        {"sel info 0x82 ", "keeps no event log"},
        {"setipmbstate 0x82 C  disable", "use A or B"},
        {"setipmbstate 0x82 A  explode", "use enable or disable"},
        {"getlanconfig 3 0", "channel"},
        {"setlanconfig 1 3  300.1.2.3", "must be written like"},
        {"setlanconfig 1 1  x", "read-only"},
        {"setlanconfig    ", "missing channel"},
        {"setpefconfig 6  0x11", "set selector"},
        {"getpefconfig 7", "not supported"},
        {"deactivate 0x20 0", "cannot be deactivated"},
        {"shelf x_y", "unknown shelf sub-command"},
        {"shelf  12", "unknown shelf sub-command"},
        {"shelf max_current 3 10", "feed number"},
        {"shelf min_voltage 1 -20", "between -36 and -75"},
        {"shelf activation slot 1", "write slot1"},
        {"shelf activation slot5 1", "no board in physical slot # 5"},
        {"shelf activation 0x20 0 1", "not under shelf power management"},
        {"shelf bdsel_grounded 3 1", "expected \"board\""},
        {"shelf pwr_reorder 0x82 0 beside 0x84 0", "use before or after"},
        {"shelf pwr_reorder 0x82 0 before 0x82 0", "relative to itself"},
        {"alarm loud", "use minor, major, critical"},
        {"frudata 0x82 0 63 1 2", "pass the end"},
    };
    for (const Case& c : cases) {
        State st = fresh();
        std::string out = ask(st, c.cmd);
        EXPECT_NE(out.find(c.expect), std::string::npos) << c.cmd << "\n" << out;
        EXPECT_FALSE(st.dirty) << c.cmd << ": a refused command changed the state";
        expect_safe_lines(out, c.cmd);
    }
}

// A set command followed by the command that shows its effect.
TEST(Answers, ChangesShowInLaterAnswers) {
    struct Case {
        const char* set;
        const char* get;
        const char* expect;
    } cases[] = {
        {"setfanlevel  0x72 0 9", "getfanlevel  0x72 0", "Current Level: 9"},
        {"setfanlevel -v all 2", "fans  ", "0x74: FRU # 0 (Fan Tray 2): Current Level: 2"},
        {"setfanlevel  0x72 0 0", "showunhealthy ", "\"Fan Tach\"): Lower Non-Recoverable threshold crossed"},
        {"sel clear ", "sel   ", "no SEL entries"},
        {"boardreset 1", "sel   ", "SEL entries: 8"},
        {"setthreshold  0x82 3 unc -r 0x7d", "getthreshold  0x82 3", "(unc): raw 0x7d, 12.50 Volts"},
        {"setthreshold  board1 0 1 ucr  80", "getthreshold  0x82 1", "(ucr): raw 0x50"},
        {"setthreshold  0x82 2 unc  30", "shelf cooling_state", "Cooling state: Warning"},
        {"sethysteresis  0x82 3 neg 0.3", "gethysteresis  0x82 3", "Negative-going Threshold Hysteresis: raw 0x03"},
        {"setsensoreventenable 0x82 1 0x40 0x1 0x2", "getsensoreventenable 0x82 1", "Deassertion Event Mask: 0x0002"},
        {"setfruledstate 0x82 0 1 BLINK 100 200 ", "getfruledstate  0x82 0 1", "BLINK, 100 ms on, 200 ms off"},
        {"setfruledstate 0x82 0 ALL ON 2", "getfruledstate  0x82 0 3", "override ON, color RED"},
        {"setlanconfig 2 6  255.255.0.0", "getlanconfig 2 6", "Subnet Mask): 255.255.0.0"},
        {"setlanconfig 1 4 0 dhcp", "getlanconfig 1 4", "IP Address Source): dhcp"},
        {"setpefconfig 6 2 0x11 0x22", "getpefconfig 6", "entry 2: 0x11 0x22"},
        {"setpefconfig 3  30", "getpefconfig 3", "Startup Delay (seconds): 30"},
        {"setipmbstate 0x84 b 1 disable", "getipmbstate  0x84 B", "IPMB-B state: disabled"},
        {"setipmbstate 0x84 A  disable", "showunhealthy ", "0x84: IPMB-A is disabled"},
        {"deactivate 0x82 0", "fru  0x82 1", "M1 (Inactive)"},
        {"setlocked 0x82 0 1", "fru  0x82 0", "Locked: Yes"},
        {"alarm critical", "alarm", "critical ON"},
        {"shelf max_current 1 45.5", "shelf power_distribution", "maximum current 45.5 A"},
        {"shelf min_voltage 2 42", "shelf power_distribution", "minimum voltage -42.0 V"},
        {"shelf activation slot3 0", "shelf power_management", "(Switch Board): M4, 80 W, delay 0.0 s, activation by command"},
        {"shelf deactivation board2 0 0", "shelf power_management", "(CPU Board): M4, 80 W, delay 0.0 s, activation by shelf manager, deactivation by command"},
        {"shelf pwr_capability 0x84 0 120", "shelf power_management", "120 W"},
        {"shelf bdsel_grounded board 3 1", "shelf power_management", "BDSEL# grounded: 3"},
        {"shelf pwr_delay 0x86 0 15", "shelf power_management", "delay 1.5 s"},
        {"shelf allowance 45", "shelf power_management", "allowance: 45 s"},
        {"shelf pwr_reorder 0x74 0 before 0x82 0", "shelf power_management", "1. 0x74: FRU # 0"},
        {"shelf pwr_reorder 0x82 0 after 0x74 0", "shelf power_management", "7. 0x82: FRU # 0"},
        {"frudata 0x82 0 8 0x11 0x22", "frudata 0x82 0 8", "0x08: 11 22 19"},
    };
    for (const Case& c : cases) {
        State st = fresh();
        std::string set = ask(st, c.set);
        EXPECT_EQ(set.find("Invalid argument"), std::string::npos) << c.set << "\n" << set;
        std::string out = ask(st, c.get);
        EXPECT_NE(out.find(c.expect), std::string::npos) << c.set << " / " << c.get << "\n" << out;
    }
}

TEST(Answers, LockedFruStaysDownUntilUnlocked) {
    State st = fresh();
    ask(st, "deactivate board1 0");
    ask(st, "setlocked board1 0 1");
    EXPECT_NE(ask(st, "activate 0x82 0").find("is locked"), std::string::npos);
    ask(st, "setlocked 0x82 0 0");
    EXPECT_NE(ask(st, "activate 0x82 0").find("now M4"), std::string::npos);
}

// The unhealthy list and the event log follow the sensors: a command that
// moves a sensor past a threshold logs it asserted, and deasserted when it
// moves back; a fresh shelf is healthy and its log ends with nothing
// asserted.
TEST(Answers, ThresholdEventsFollowTheSensors) {
    State st = fresh();
    EXPECT_NE(ask(st, "showunhealthy ").find("no unhealthy components"), std::string::npos);
    struct Step {
        const char* cmd;
        const char* unhealthy;  // in the unhealthy list after it, or nullptr when healthy
        const char* logged;     // the log's last entry after it
    } steps[] = {
        {"setfanlevel 0x74 0 0", "Lower Non-Recoverable threshold crossed", "Fan Tach: Lower Non-Recoverable going low, asserted"},
        {"setfanlevel 0x74 0 6", nullptr, "Fan Tach: Lower Non-Recoverable going low, deasserted"},
        {"setthreshold 0x86 2 unc 30", "Upper Non-Critical threshold crossed", "Board Temp: Upper Non-Critical going high, asserted"},
        {"setthreshold 0x86 2 unc 60", nullptr, "Board Temp: Upper Non-Critical going high, deasserted"},
    };
    for (const Step& step : steps) {
        ask(st, step.cmd);
        std::string unhealthy = ask(st, "showunhealthy ");
        if (step.unhealthy) EXPECT_NE(unhealthy.find(step.unhealthy), std::string::npos) << step.cmd << unhealthy;
        else EXPECT_NE(unhealthy.find("no unhealthy components"), std::string::npos) << step.cmd << unhealthy;
        std::string log = ask(st, "sel  0x20 ");
        EXPECT_NE(log.rfind(step.logged), std::string::npos) << step.cmd << log;
        EXPECT_EQ(log.size() - log.rfind(step.logged), std::string(step.logged).size() + 1) << step.cmd << log;
    }
}
