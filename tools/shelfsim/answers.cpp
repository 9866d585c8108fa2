#include "answers.h"

#include <cstdarg>
#include <cstdio>
#include <ctime>

#include "parse.h"

namespace shelfsim {

namespace {

struct Command {
    const char* word;
    void (*run)(Ctx&);
    const char* usage;
};

void cmd_help(Ctx& c);

const Command commands[] = {
    {"version", cmd_version, "version"},
    {"session", cmd_session, "session"},
    {"switchover", cmd_switchover, "switchover"},
    {"alarm", cmd_alarm, "alarm [minor | major | critical | clear [all | minor | major | critical]]"},
    {"showunhealthy", cmd_showunhealthy, "showunhealthy [-v]"},
    {"getipmbstate", cmd_getipmbstate, "getipmbstate <addr> [A | B]"},
    {"setipmbstate", cmd_setipmbstate, "setipmbstate <addr> <A | B> [link] <enable | disable>"},
    {"fru", cmd_fru, "fru [-v] [<addr> [<fru id> | type=<site type>] | <slot name> <fru id> | type=<site type> [/<site number>]]"},
    {"frudata", cmd_frudata, "frudata <addr | slot name> <fru id> [<offset> [<byte> ...]]"},
    {"fruinfo", cmd_fruinfo, "fruinfo [-v] [-d] <addr | slot name> <fru id>"},
    {"getfruledstate", cmd_getfruledstate, "getfruledstate [-v] <addr | slot name> [<fru id> [<led id> | ALL]]"},
    {"setfruledstate", cmd_setfruledstate, "setfruledstate <addr | slot name> <fru id> <led id | ALL> ON [color] | OFF | LOCAL | BLINK <on ms> <off ms> [color] | TEST <ms>"},
    {"board", cmd_board, "board [-v] [<slot>]"},
    {"boardreset", cmd_boardreset, "boardreset <slot>"},
    {"ipmc", cmd_ipmc, "ipmc [-v] [<addr> | <slot name> <fru id>]"},
    {"sensor", cmd_sensor, "sensor [-v] [<addr> [<sensor>] | <slot name> <fru id> [<sensor>]]"},
    {"sensordata", cmd_sensordata, "sensordata [-v] [<addr> [<sensor>] | <slot name> <fru id> [<sensor>]]"},
    {"getthreshold", cmd_getthreshold, "getthreshold [-v] <addr> [<sensor>] | <slot name> <fru id> [<sensor>]"},
    {"setthreshold", cmd_setthreshold, "setthreshold [-v] <addr> <sensor> <lnr|lcr|lnc|unc|ucr|unr> [-r] <value>  (or <slot name> <fru id> <sensor> ...)"},
    {"gethysteresis", cmd_gethysteresis, "gethysteresis [-v] <addr> [<sensor>] | <slot name> <fru id> [<sensor>]"},
    {"sethysteresis", cmd_sethysteresis, "sethysteresis [-v] <addr> <sensor> <pos | neg> <value>  (or <slot name> <fru id> <sensor> ...)"},
    {"getsensoreventenable", cmd_getsensoreventenable, "getsensoreventenable <addr> [<sensor>] | <slot name> <fru id> [<sensor>]"},
    {"setsensoreventenable", cmd_setsensoreventenable, "setsensoreventenable <addr> <sensor> <global> [<assert mask> <deassert mask>]  (or <slot name> <fru id> <sensor> ...)"},
    {"sel", cmd_sel, "sel [-v] [<addr> [<count>]] | sel info [<addr>] | sel clear [<addr>]"},
    {"shelf", cmd_shelf, "shelf <sub-command> [arguments]  (\"shelf\" alone lists the sub-commands)"},
    {"fans", cmd_fans, "fans [<addr | slot name> <fru id>]"},
    {"getfanlevel", cmd_getfanlevel, "getfanlevel [-v] <addr | slot name> <fru id>"},
    {"setfanlevel", cmd_setfanlevel, "setfanlevel [-v] <addr | slot name> <fru id> <level> | setfanlevel all <level>"},
    {"getlanconfig", cmd_getlanconfig, "getlanconfig <channel> [<parameter>]  (parameter 0: all)"},
    {"setlanconfig", cmd_setlanconfig, "setlanconfig <channel> <parameter> [<selector>] <value>"},
    {"getpefconfig", cmd_getpefconfig, "getpefconfig [<parameter>]  (parameter 0: all)"},
    {"setpefconfig", cmd_setpefconfig, "setpefconfig <parameter> [<selector>] <value>"},
    {"activate", cmd_activate, "activate <addr | slot name> <fru id>"},
    {"deactivate", cmd_deactivate, "deactivate <addr | slot name> <fru id>"},
    {"setlocked", cmd_setlocked, "setlocked <addr | slot name> <fru id> <1 | 0>"},
    {"help", cmd_help, "help"},
    {"whoami", cmd_whoami, "whoami  (the account the tool runs under)"},
};

void cmd_help(Ctx& c) {
    say(c.out, "Commands:");
    for (const Command& cmd : commands) say(c.out, "  %s", cmd.usage);
    say(c.out, "  quit");
}

std::string log_time() {
    std::time_t now = std::time(nullptr);
    std::tm tm{};
    localtime_r(&now, &tm);
    char buf[32];
    std::strftime(buf, sizeof buf, "%Y-%m-%d %H:%M:%S", &tm);
    return buf;
}

void add_log_entry(State& st, const char* when, unsigned addr, const char* text) {
    constexpr long capacity = 100;
    long next = state_int(st, "selnext", 1);
    state_put(st, key("sel.%06ld", next), key("%s|%02x|", when, addr) + text);
    state_put_int(st, "selnext", next + 1);
    // A full log drops its oldest entries.
    long count = 0;
    for (auto it = st.kv.lower_bound("sel."); it != st.kv.end() && it->first.compare(0, 4, "sel.") == 0; ++it)
        ++count;
    while (count-- > capacity) st.kv.erase(st.kv.lower_bound("sel."));
}

}  // namespace

void say(std::string& out, const char* fmt, ...) {
    char buf[512];
    va_list ap;
    va_start(ap, fmt);
    std::vsnprintf(buf, sizeof buf, fmt, ap);
    va_end(ap);
    out += buf;
    out += '\n';
}

bool invalid(Ctx& c, const char* fmt, ...) {
    char buf[400];
    va_list ap;
    va_start(ap, fmt);
    std::vsnprintf(buf, sizeof buf, fmt, ap);
    va_end(ap);
    say(c.out, "Invalid argument: %s", buf);
    if (c.usage) say(c.out, "Usage: %s", c.usage);
    return false;
}

void strip_flags(Ctx& c, std::size_t from) {
    while (from < c.args.size() && is_flag(c.args[from])) {
        c.opts += c.args[from].substr(1);
        if (c.args[from].find('v') != std::string_view::npos) c.verbose = true;
        c.args.erase(c.args.begin() + static_cast<std::ptrdiff_t>(from));
    }
}

bool need(Ctx& c, std::size_t i, const char* what) {
    if (i < c.args.size()) return true;
    return invalid(c, "missing %s", what);
}

const Ipmc* ipmc_arg(Ctx& c, std::size_t i) {
    if (!need(c, i, "IPMB address or slot name")) return nullptr;
    std::string_view w = c.args[i];
    unsigned long addr = 0;
    if (parse_uint(w, 0xff, addr)) {
        const Ipmc* ipmc = find_ipmc(static_cast<unsigned>(addr));
        if (!ipmc) invalid(c, "no IPM controller at IPMB address 0x%02lx", addr);
        return ipmc;
    }
    if (w[0] >= '0' && w[0] <= '9') {
        invalid(c, "\"%s\" is not a valid IPMB address", clip(w).c_str());
        return nullptr;
    }
    const Ipmc* ipmc = find_ipmc_sym(w);
    if (!ipmc) invalid(c, "unknown slot name \"%s\"", clip(w).c_str());
    return ipmc;
}

const Fru* fru_arg(Ctx& c, std::size_t i) {
    const Ipmc* ipmc = ipmc_arg(c, i);
    if (!ipmc) return nullptr;
    long id = 0;
    if (!int_arg(c, i + 1, "FRU id", 0, 255, id)) return nullptr;
    const Fru* f = find_fru(ipmc->addr, static_cast<int>(id));
    if (!f) invalid(c, "no FRU # %ld at IPMB address 0x%02x", id, ipmc->addr);
    return f;
}

bool int_arg(Ctx& c, std::size_t i, const char* what, long min, long max, long& out) {
    if (!need(c, i, what)) return false;
    unsigned long u = 0;
    if (min >= 0 && parse_uint(c.args[i], static_cast<unsigned long>(max), u)) {
        out = static_cast<long>(u);
        return true;
    }
    if (parse_int(c.args[i], min, max, out)) return true;
    return invalid(c, "%s \"%s\" must be a number from %ld to %ld", what, clip(c.args[i]).c_str(), min, max);
}

bool uint_arg(Ctx& c, std::size_t i, const char* what, unsigned long max, unsigned long& out) {
    if (!need(c, i, what)) return false;
    if (parse_uint(c.args[i], max, out)) return true;
    return invalid(c, "%s \"%s\" must be a number from 0 to 0x%lx", what, clip(c.args[i]).c_str(), max);
}

void log_event(State& st, unsigned addr, const char* fmt, ...) {
    char buf[200];
    va_list ap;
    va_start(ap, fmt);
    std::vsnprintf(buf, sizeof buf, fmt, ap);
    va_end(ap);
    add_log_entry(st, log_time().c_str(), addr, buf);
}

namespace {

// The threshold state of every sensor of every controller, in table order
// (-1 where none is crossed).
std::vector<int> threshold_states(const State& st) {
    std::size_t n = 0, sn = 0;
    const Ipmc* ipmcs = ipmc_table(n);
    const SensorDef* sensors = sensor_table(sn);
    std::vector<int> states;
    for (std::size_t i = 0; i < n; ++i)
        for (std::size_t j = 0; j < sn; ++j)
            if (sensors[j].profile == ipmcs[i].profile) states.push_back(sensor_status(st, ipmcs[i], sensors[j]));
    return states;
}

void log_crossing(State& st, unsigned addr, const SensorDef& s, int threshold, bool asserted) {
    log_event(st, addr, "%s: %s going %s, %s", s.name, threshold_long_name(threshold), threshold <= t_lnc ? "low" : "high",
              asserted ? "asserted" : "deasserted");
}

// A command that moves a sensor past a threshold (a fan level, a new
// threshold) logs the event a shelf would: the old state deasserted, the
// new one asserted. So the event log, the unhealthy list and the sensors
// always agree.
void log_threshold_changes(State& st, const std::vector<int>& before) {
    std::vector<int> after = threshold_states(st);
    std::size_t n = 0, sn = 0, k = 0;
    const Ipmc* ipmcs = ipmc_table(n);
    const SensorDef* sensors = sensor_table(sn);
    for (std::size_t i = 0; i < n; ++i)
        for (std::size_t j = 0; j < sn; ++j) {
            if (sensors[j].profile != ipmcs[i].profile) continue;
            int was = before[k], now = after[k];
            ++k;
            if (was == now) continue;
            if (was >= 0) log_crossing(st, ipmcs[i].addr, sensors[j], was, false);
            if (now >= 0) log_crossing(st, ipmcs[i].addr, sensors[j], now, true);
        }
}

}  // namespace

void answer(std::string_view line, State& st, std::string& out) {
    std::vector<std::string_view> words = tokenize(line);
    if (words.empty()) return;
    const Command* cmd = nullptr;
    for (const Command& candidate : commands)
        if (iequals(words[0], candidate.word)) cmd = &candidate;
    if (!cmd) {
        say(out, "Unknown command: %s", clip(words[0]).c_str());
        say(out, "Type \"help\" for the list of commands");
        return;
    }
    Ctx c{st, out, {words.begin() + 1, words.end()}, false, {}, cmd->usage};
    strip_flags(c, 0);
    std::vector<int> before = threshold_states(st);
    cmd->run(c);
    log_threshold_changes(st, before);
}

// --- state accessors -------------------------------------------------------

int fan_level(const State& st, const Fru& f) {
    return static_cast<int>(state_int(st, key("fan.%02x.%d", f.addr, f.id), 6));
}

int hot_swap_state(const State& st, const Fru& f) {
    return static_cast<int>(state_int(st, key("hs.%02x.%d", f.addr, f.id), 4));
}

bool fru_locked(const State& st, const Fru& f) {
    return state_int(st, key("locked.%02x.%d", f.addr, f.id), 0) != 0;
}

int sensor_raw(const State& st, const Ipmc& ipmc, const SensorDef& s) {
    if (s.type_code == 0xf0) {   // hot swap sensor: the M-state of FRU 0
        const Fru* f = find_fru(ipmc.addr, 0);
        return f ? hot_swap_state(st, *f) : 0;
    }
    if (s.type_code == 0x04) {   // fan speed follows the fan level
        const Fru* f = find_fru(ipmc.addr, 0);
        return f ? fan_level(st, *f) * 15 : 0;
    }
    if (s.type_code == 0x01) return s.raw + ipmc.slot;   // boards differ a little
    return s.raw;
}

void sensor_thresholds(const State& st, const Ipmc& ipmc, const SensorDef& s, int thr[threshold_count]) {
    for (int t = 0; t < threshold_count; ++t) thr[t] = s.thr[t];
    const std::string* v = state_get(st, key("thr.%02x.%d", ipmc.addr, s.num));
    int got[threshold_count];
    if (v && std::sscanf(v->c_str(), "%d %d %d %d %d %d", &got[0], &got[1], &got[2], &got[3], &got[4],
                         &got[5]) == threshold_count)
        for (int t = 0; t < threshold_count; ++t) thr[t] = got[t];
}

int sensor_status(const State& st, const Ipmc& ipmc, const SensorDef& s) {
    if (!s.unit) return -1;
    int thr[threshold_count];
    sensor_thresholds(st, ipmc, s, thr);
    int r = sensor_raw(st, ipmc, s);
    if (r >= thr[t_unr]) return t_unr;
    if (r <= thr[t_lnr]) return t_lnr;
    if (r >= thr[t_ucr]) return t_ucr;
    if (r <= thr[t_lcr]) return t_lcr;
    if (r >= thr[t_unc]) return t_unc;
    if (r <= thr[t_lnc]) return t_lnc;
    return -1;
}

bool ipmb_enabled(const State& st, unsigned addr, int bus) {
    std::string v = state_str(st, key("ipmb.%02x", addr), "1 1");
    std::size_t pos = bus == 0 ? 0 : 2;
    return v.size() > pos && v[pos] == '1';
}

const char* hot_swap_name(int m) {
    static const char* const names[] = {
        "Not Installed", "Inactive", "Activation Request", "Activation In Progress",
        "Active", "Deactivation Request", "Deactivation In Progress", "Communication Lost",
    };
    return (m >= 0 && m <= 7) ? names[m] : "Unknown";
}

// --- defaults --------------------------------------------------------------

void fill_defaults(State& st, bool with_log) {
    std::size_t n = 0;
    const Ipmc* ipmcs = ipmc_table(n);
    for (std::size_t i = 0; i < n; ++i) {
        const Ipmc& ipmc = ipmcs[i];
        state_put(st, key("ipmb.%02x", ipmc.addr), "1 1");
        std::size_t sn = 0;
        const SensorDef* sensors = sensor_table(sn);
        for (std::size_t j = 0; j < sn; ++j) {
            const SensorDef& s = sensors[j];
            if (s.profile != ipmc.profile) continue;
            state_put(st, key("evt.%02x.%d", ipmc.addr, s.num), s.unit ? "0xc0 0x0285 0x0285" : "0xc0 0x00ff 0x0000");
            if (!s.unit) continue;
            state_put(st, key("thr.%02x.%d", ipmc.addr, s.num),
                      key("%d %d %d %d %d %d", s.thr[0], s.thr[1], s.thr[2], s.thr[3], s.thr[4], s.thr[5]));
            state_put(st, key("hyst.%02x.%d", ipmc.addr, s.num), key("%d %d", s.hyst_pos, s.hyst_neg));
        }
    }
    const Fru* frus = fru_table(n);
    std::string order;
    for (std::size_t i = 0; i < n; ++i) {
        const Fru& f = frus[i];
        state_put(st, key("hs.%02x.%d", f.addr, f.id), "4");
        state_put(st, key("locked.%02x.%d", f.addr, f.id), "0");
        for (int led = 0; led < led_count; ++led)
            state_put(st, key("led.%02x.%d.%d", f.addr, f.id, led), "LOCAL");
        if (f.fan) state_put(st, key("fan.%02x.%d", f.addr, f.id), "6");
        if (f.permanent) continue;
        state_put(st, key("act.%02x.%d", f.addr, f.id), "1 1");
        state_put(st, key("pwrcap.%02x.%d", f.addr, f.id), f.fan ? "40" : (f.id == 0 ? "80" : "25"));
        state_put(st, key("pwrdelay.%02x.%d", f.addr, f.id), "0");
        if (!order.empty()) order += ' ';
        order += key("%02x:%d", f.addr, f.id);
    }
    state_put(st, "order", order);
    for (int slot = 1; slot <= slot_count; ++slot) state_put(st, key("bdsel.%d", slot), "0");
    for (int feed = 1; feed <= feed_count; ++feed) state_put(st, key("feed.%d", feed), "60.0 -40.5");
    state_put(st, "allowance", "30");
    state_put(st, "alarm", "0 0 0");
    const ConfigParam* lan = lan_param_table(n);
    for (int ch = 1; ch <= lan_channel_count; ++ch)
        for (std::size_t i = 0; i < n; ++i)
            if (!lan[i].read_only) state_put(st, key("lan.%d.%d", ch, lan[i].num), ch == 1 ? lan[i].def1 : lan[i].def2);
    const ConfigParam* pef = pef_param_table(n);
    for (std::size_t i = 0; i < n; ++i) {
        if (pef[i].read_only) continue;
        if (!pef[i].has_selector) {
            state_put(st, key("pef.%d", pef[i].num), pef[i].def1);
            continue;
        }
        for (int sel = 1; sel <= pef_selector_max; ++sel) state_put(st, key("pef.%d.%d", pef[i].num, sel), pef[i].def1);
    }
    if (with_log) {
        state_put(st, "selnext", "1");
        add_log_entry(st, "2024-03-04 09:12:40", shm_addr, "Shelf Manager started, role Active");
        add_log_entry(st, "2024-03-04 09:12:52", 0x72, "Hot Swap: FRU # 0 M3 -> M4 (Normal State Change)");
        add_log_entry(st, "2024-03-04 09:12:53", 0x82, "Hot Swap: FRU # 0 M3 -> M4 (Normal State Change)");
        add_log_entry(st, "2024-03-04 09:12:55", 0x86, "Board Temp: Upper Non-Critical going high, asserted");
        add_log_entry(st, "2024-03-04 09:14:02", 0x86, "Board Temp: Upper Non-Critical going high, deasserted");
        add_log_entry(st, "2024-03-04 10:01:17", 0x74, "Fan Tach: Lower Critical going low, asserted");
        add_log_entry(st, "2024-03-04 10:01:49", 0x74, "Fan Tach: Lower Critical going low, deasserted");
    }
}

}  // namespace shelfsim
