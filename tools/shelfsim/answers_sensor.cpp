// Sensor, threshold, hysteresis, event enable and event log commands.
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>

#include "answers.h"
#include "parse.h"

namespace shelfsim {

namespace {

// The controller named at args[0]: "<addr>" or "<slot name> <fru id>".
// next receives the index of the first word after it.
const Ipmc* owner_arg(Ctx& c, std::size_t& next) {
    const Ipmc* ipmc = ipmc_arg(c, 0);
    if (!ipmc) return nullptr;
    unsigned long addr = 0;
    if (parse_uint(c.args[0], 0xff, addr)) {
        next = 1;
        return ipmc;
    }
    next = 2;
    return fru_arg(c, 0) ? ipmc : nullptr;
}

const SensorDef* sensor_arg(Ctx& c, const Ipmc& ipmc, std::size_t i) {
    long num = 0;
    if (!int_arg(c, i, "sensor number", 0, 255, num)) return nullptr;
    const SensorDef* s = find_sensor(ipmc, static_cast<int>(num));
    if (!s) invalid(c, "no sensor # %ld at IPMB address 0x%02x", num, ipmc.addr);
    return s;
}

// Runs show for one sensor (args[i] given) or for every sensor of the
// controller; with only_threshold, discrete sensors are skipped in the list.
template <typename Show>
void for_sensors(Ctx& c, bool only_threshold, Show show) {
    std::size_t i = 0;
    const Ipmc* ipmc = owner_arg(c, i);
    if (!ipmc) return;
    if (i < c.args.size()) {
        if (const SensorDef* s = sensor_arg(c, *ipmc, i)) show(*ipmc, *s);
        return;
    }
    std::size_t n = 0;
    const SensorDef* sensors = sensor_table(n);
    for (std::size_t j = 0; j < n; ++j)
        if (sensors[j].profile == ipmc->profile && (!only_threshold || sensors[j].unit)) show(*ipmc, sensors[j]);
}

std::string value_text(const SensorDef& s, int raw) {
    double v = raw * s.m + s.b;
    bool whole = std::floor(s.m) == s.m && std::floor(s.b) == s.b;
    return key(whole ? "%.0f %s" : "%.2f %s", v, s.unit ? s.unit : "");
}

void sensor_head(Ctx& c, const Ipmc& ipmc, const SensorDef& s) {
    say(c.out, "0x%02x: LUN: 0, Sensor # %d (\"%s\")", ipmc.addr, s.num, s.name);
    if (s.unit)
        say(c.out, "    Type: Threshold (0x01), \"%s\" (0x%02x)", s.type_name, s.type_code);
    else
        say(c.out, "    Type: Discrete (0x6f), \"%s\" (0x%02x)", s.type_name, s.type_code);
}

bool no_thresholds(Ctx& c, const Ipmc& ipmc, const SensorDef& s) {
    if (s.unit) return false;
    say(c.out, "0x%02x: Sensor # %d (\"%s\") is a discrete sensor: it has no thresholds or hysteresis", ipmc.addr,
        s.num, s.name);
    return true;
}

void event_enables(const State& st, const Ipmc& ipmc, const SensorDef& s, unsigned long v[3]) {
    v[0] = 0xc0;
    v[1] = v[2] = 0;
    std::string text = state_str(st, key("evt.%02x.%d", ipmc.addr, s.num), "0xc0 0 0");
    std::vector<std::string_view> w = tokenize(text);
    for (std::size_t i = 0; i < 3 && i < w.size(); ++i) parse_uint(w[i], 0xffff, v[i]);
}

void show_event_enables(Ctx& c, const Ipmc& ipmc, const SensorDef& s) {
    unsigned long v[3];
    event_enables(c.st, ipmc, s, v);
    say(c.out, "0x%02x: LUN: 0, Sensor # %d (\"%s\")", ipmc.addr, s.num, s.name);
    say(c.out, "    Global: 0x%02lx (event messages %s, sensor scanning %s)", v[0], (v[0] & 0x80) ? "enabled" : "disabled",
        (v[0] & 0x40) ? "enabled" : "disabled");
    say(c.out, "    Assertion Event Mask: 0x%04lx", v[1]);
    say(c.out, "    Deassertion Event Mask: 0x%04lx", v[2]);
}

void hysteresis(const State& st, const Ipmc& ipmc, const SensorDef& s, int& pos, int& neg) {
    pos = s.hyst_pos;
    neg = s.hyst_neg;
    const std::string* v = state_get(st, key("hyst.%02x.%d", ipmc.addr, s.num));
    int p = 0, n = 0;
    if (v && std::sscanf(v->c_str(), "%d %d", &p, &n) == 2) {
        pos = p;
        neg = n;
    }
}

struct LogEntry {
    long id;
    std::string when;
    unsigned addr;
    std::string text;
};

std::vector<LogEntry> log_entries(const State& st) {
    std::vector<LogEntry> list;
    for (auto it = st.kv.lower_bound("sel."); it != st.kv.end() && it->first.compare(0, 4, "sel.") == 0; ++it) {
        const std::string& v = it->second;
        std::size_t a = v.find('|');
        std::size_t b = a == std::string::npos ? a : v.find('|', a + 1);
        if (b == std::string::npos) continue;
        LogEntry e{std::strtol(it->first.c_str() + 4, nullptr, 10), v.substr(0, a), 0, v.substr(b + 1)};
        e.addr = static_cast<unsigned>(std::strtoul(v.substr(a + 1, b - a - 1).c_str(), nullptr, 16));
        list.push_back(e);
    }
    return list;
}

// "sel info" and "sel clear" work on the shelf manager's log; an address
// other than the shelf manager's has no log of its own.
bool shelf_log_owner(Ctx& c, std::size_t i) {
    if (i >= c.args.size()) return true;
    const Ipmc* ipmc = ipmc_arg(c, i);
    if (!ipmc) return false;
    if (ipmc->addr == shm_addr) return true;
    return invalid(c, "0x%02x keeps no event log: the shelf event log is kept at 0x%02x", ipmc->addr, shm_addr);
}

}  // namespace

void cmd_sensor(Ctx& c) {
    for_sensors(c, false, [&](const Ipmc& ipmc, const SensorDef& s) {
        sensor_head(c, ipmc, s);
        if (c.verbose && s.unit)
            say(c.out, "    Unit: %s, conversion: value = raw x %g + %g", s.unit, s.m, s.b);
    });
}

void cmd_sensordata(Ctx& c) {
    for_sensors(c, false, [&](const Ipmc& ipmc, const SensorDef& s) {
        sensor_head(c, ipmc, s);
        int raw = sensor_raw(c.st, ipmc, s);
        if (!s.unit) {
            say(c.out, "    Current State: M%d (%s)", raw, hot_swap_name(raw));
            return;
        }
        say(c.out, "    Raw data: %d (0x%02x)", raw, raw);
        say(c.out, "    Processed data: %s", value_text(s, raw).c_str());
        int status = sensor_status(c.st, ipmc, s);
        say(c.out, "    Status: %s", status < 0 ? "Normal" : (std::string(threshold_long_name(status)) + " threshold crossed").c_str());
    });
}

void cmd_getthreshold(Ctx& c) {
    for_sensors(c, true, [&](const Ipmc& ipmc, const SensorDef& s) {
        if (no_thresholds(c, ipmc, s)) return;
        int thr[threshold_count];
        sensor_thresholds(c.st, ipmc, s, thr);
        say(c.out, "0x%02x: LUN: 0, Sensor # %d (\"%s\")", ipmc.addr, s.num, s.name);
        for (int t = 0; t < threshold_count; ++t)
            say(c.out, "    %s Threshold (%s): raw 0x%02x, %s", threshold_long_name(t), threshold_name(t), thr[t],
                value_text(s, thr[t]).c_str());
    });
}

void cmd_setthreshold(Ctx& c) {
    std::size_t i = 0;
    const Ipmc* ipmc = owner_arg(c, i);
    if (!ipmc) return;
    const SensorDef* s = sensor_arg(c, *ipmc, i);
    if (!s || no_thresholds(c, *ipmc, *s) || !need(c, i + 1, "threshold name (lnr, lcr, lnc, unc, ucr, unr)")) return;
    int t = threshold_index(c.args[i + 1]);
    if (t < 0) return void(invalid(c, "threshold \"%s\": use lnr, lcr, lnc, unc, ucr or unr", clip(c.args[i + 1]).c_str()));
    std::size_t v = i + 2;
    bool raw_mode = false;
    if (c.args.size() > v + 1) {   // a raw selector stands before the value
        std::string_view r = c.args[v];
        raw_mode = iequals(r, "-r") || iequals(r, "raw") || r == "1";
        if (!raw_mode && r != "0") return void(invalid(c, "\"%s\" before the value: use -r for a raw value", clip(r).c_str()));
        ++v;
    }
    if (!need(c, v, "threshold value")) return;
    if (c.args.size() > v + 1) return void(invalid(c, "too many arguments"));
    long raw = 0;
    if (raw_mode) {
        unsigned long u = 0;
        if (!uint_arg(c, v, "raw value", 0xff, u)) return;
        raw = static_cast<long>(u);
    } else {
        double value = 0;
        if (!parse_real(c.args[v], value))
            return void(invalid(c, "threshold value \"%s\" is not a number", clip(c.args[v]).c_str()));
        raw = std::lround((value - s->b) / s->m);
        if (raw < 0 || raw > 255)
            return void(invalid(c, "%s is outside the range of the sensor (%s to %s)", clip(c.args[v]).c_str(),
                                value_text(*s, 0).c_str(), value_text(*s, 255).c_str()));
    }
    int thr[threshold_count];
    sensor_thresholds(c.st, *ipmc, *s, thr);
    thr[t] = static_cast<int>(raw);
    for (int k = 0; k + 1 < threshold_count; ++k)
        if (thr[k] > thr[k + 1])
            return void(invalid(c, "%s threshold would lie above %s threshold", threshold_name(k), threshold_name(k + 1)));
    state_put(c.st, key("thr.%02x.%d", ipmc->addr, s->num),
              key("%d %d %d %d %d %d", thr[0], thr[1], thr[2], thr[3], thr[4], thr[5]));
    say(c.out, "0x%02x: Sensor # %d (\"%s\"): %s threshold set to %s (raw 0x%02lx)", ipmc->addr, s->num, s->name,
        threshold_long_name(t), value_text(*s, static_cast<int>(raw)).c_str(), raw);
}

void cmd_gethysteresis(Ctx& c) {
    for_sensors(c, true, [&](const Ipmc& ipmc, const SensorDef& s) {
        if (no_thresholds(c, ipmc, s)) return;
        int pos = 0, neg = 0;
        hysteresis(c.st, ipmc, s, pos, neg);
        say(c.out, "0x%02x: LUN: 0, Sensor # %d (\"%s\")", ipmc.addr, s.num, s.name);
        say(c.out, "    Positive-going Threshold Hysteresis: raw 0x%02x, %s", pos, value_text(s, pos).c_str());
        say(c.out, "    Negative-going Threshold Hysteresis: raw 0x%02x, %s", neg, value_text(s, neg).c_str());
    });
}

void cmd_sethysteresis(Ctx& c) {
    std::size_t i = 0;
    const Ipmc* ipmc = owner_arg(c, i);
    if (!ipmc) return;
    const SensorDef* s = sensor_arg(c, *ipmc, i);
    if (!s || no_thresholds(c, *ipmc, *s) || !need(c, i + 1, "hysteresis direction (pos or neg)")) return;
    std::string_view dir = c.args[i + 1];
    bool pos = iequals(dir, "pos") || iequals(dir, "positive") || dir == "+";
    if (!pos && !(iequals(dir, "neg") || iequals(dir, "negative") || dir == "-"))
        return void(invalid(c, "hysteresis direction \"%s\": use pos or neg", clip(dir).c_str()));
    if (!need(c, i + 2, "hysteresis value")) return;
    double value = 0;
    if (!parse_real(c.args[i + 2], value) || value < 0)
        return void(invalid(c, "hysteresis value \"%s\" must be a number of 0 or more", clip(c.args[i + 2]).c_str()));
    long raw = std::lround(value / s->m);
    if (raw > 255) return void(invalid(c, "hysteresis %s is too large for the sensor", clip(c.args[i + 2]).c_str()));
    int p = 0, n = 0;
    hysteresis(c.st, *ipmc, *s, p, n);
    (pos ? p : n) = static_cast<int>(raw);
    state_put(c.st, key("hyst.%02x.%d", ipmc->addr, s->num), key("%d %d", p, n));
    say(c.out, "0x%02x: Sensor # %d (\"%s\"): %s-going hysteresis set to %s (raw 0x%02lx)", ipmc->addr, s->num,
        s->name, pos ? "Positive" : "Negative", value_text(*s, static_cast<int>(raw)).c_str(), raw);
}

void cmd_getsensoreventenable(Ctx& c) {
    for_sensors(c, false, [&](const Ipmc& ipmc, const SensorDef& s) { show_event_enables(c, ipmc, s); });
}

void cmd_setsensoreventenable(Ctx& c) {
    std::size_t i = 0;
    const Ipmc* ipmc = owner_arg(c, i);
    if (!ipmc) return;
    const SensorDef* s = sensor_arg(c, *ipmc, i);
    unsigned long global = 0, assert_mask = 0, deassert_mask = 0;
    if (!s || !uint_arg(c, i + 1, "global enables", 0xff, global)) return;
    std::size_t left = c.args.size() - (i + 2);
    if (left == 1) return void(invalid(c, "the deassertion mask must be given along with the assertion mask"));
    if (left > 2) return void(invalid(c, "too many arguments"));
    unsigned long v[3];
    event_enables(c.st, *ipmc, *s, v);
    assert_mask = v[1];
    deassert_mask = v[2];
    if (left == 2 && (!uint_arg(c, i + 2, "assertion mask", 0x7fff, assert_mask) ||
                      !uint_arg(c, i + 3, "deassertion mask", 0x7fff, deassert_mask)))
        return;
    state_put(c.st, key("evt.%02x.%d", ipmc->addr, s->num), key("0x%02lx 0x%04lx 0x%04lx", global, assert_mask, deassert_mask));
    say(c.out, "Sensor event enables set");
    show_event_enables(c, *ipmc, *s);
}

void cmd_sel(Ctx& c) {
    std::vector<LogEntry> entries = log_entries(c.st);
    if (!c.args.empty() && iequals(c.args[0], "info")) {
        strip_flags(c, 1);
        if (!shelf_log_owner(c, 1)) return;
        say(c.out, "0x%02x: SEL Info: Version 0x51, Entries: %zu, Free Space: %zu bytes", shm_addr, entries.size(),
            (100 - entries.size()) * 16);
        say(c.out, "    Last Addition: %s", entries.empty() ? "none" : entries.back().when.c_str());
        say(c.out, "    Last Erase: %s", state_str(c.st, "selerase", "never").c_str());
        if (c.verbose) say(c.out, "    Capacity: 100 entries of 16 bytes; oldest entries are overwritten");
        return;
    }
    if (!c.args.empty() && iequals(c.args[0], "clear")) {
        strip_flags(c, 1);
        if (!shelf_log_owner(c, 1)) return;
        state_erase_prefix(c.st, "sel.");
        char when[32];
        std::time_t now = std::time(nullptr);
        std::tm tm{};
        localtime_r(&now, &tm);
        std::strftime(when, sizeof when, "%Y-%m-%d %H:%M:%S", &tm);
        state_put(c.st, "selerase", when);
        say(c.out, "SEL clearing completed");
        return;
    }
    unsigned filter = shm_addr;
    long count = 0;   // 0: all entries
    if (!c.args.empty()) {
        std::size_t i = 0;
        const Ipmc* ipmc = owner_arg(c, i);
        if (!ipmc) return;
        filter = ipmc->addr;
        if (i < c.args.size() && !int_arg(c, i, "number of entries", 1, 100, count)) return;
    }
    std::vector<const LogEntry*> shown;
    for (const LogEntry& e : entries)
        if (filter == shm_addr || e.addr == filter) shown.push_back(&e);
    if (count > 0 && shown.size() > static_cast<std::size_t>(count))
        shown.erase(shown.begin(), shown.end() - count);
    if (shown.empty()) return void(say(c.out, "0x%02x: no SEL entries", filter));
    say(c.out, "0x%02x: SEL entries: %zu", filter, shown.size());
    for (const LogEntry* e : shown) {
        say(c.out, "0x%04lx: %s from 0x%02x: %s", e->id & 0xffff, e->when.c_str(), e->addr, e->text.c_str());
        if (c.verbose) say(c.out, "        Record Type: 0x02 (system event), Generator ID: 0x%02x", e->addr);
    }
}

}  // namespace shelfsim
