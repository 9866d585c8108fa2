// Shelf-wide commands: identity, alarms, health, IPMB, shelf, fans, LAN and PEF.
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "answers.h"
#include "parse.h"

namespace shelfsim {

namespace {

const char* const alarm_names[3] = {"minor", "major", "critical"};

bool fan_arg(Ctx& c, std::size_t i, const Fru*& fan) {
    const Fru* f = fru_arg(c, i);
    if (!f) return false;
    if (!f->fan) return invalid(c, "0x%02x: FRU # %d is not a fan tray", f->addr, f->id);
    fan = f;
    return true;
}

int fan_rpm(const State& st, const Fru& f) { return fan_level(st, f) * 15 * 60; }

template <typename Each>
void each_fan(Each each) {
    std::size_t n = 0;
    const Fru* frus = fru_table(n);
    for (std::size_t i = 0; i < n; ++i)
        if (frus[i].fan) each(frus[i]);
}

bool bus_word(std::string_view w, int& bus) {
    if (iequals(w, "A") || iequals(w, "IPMB-A") || w == "0") bus = 0;
    else if (iequals(w, "B") || iequals(w, "IPMB-B") || w == "1") bus = 1;
    else return false;
    return true;
}

// --- shelf sub-commands --------------------------------------------------

// A FRU named by "<addr|slot name> <fru id>" or, where allowed, "slot<N>".
const Fru* managed_fru_arg(Ctx& c, std::size_t i, bool slot_form, std::size_t& next) {
    const Fru* f = nullptr;
    if (slot_form && i < c.args.size() && c.args[i].size() >= 4 && iequals(c.args[i].substr(0, 4), "slot")) {
        long slot = 0;
        if (!parse_int(c.args[i].substr(4), 1, slot_count, slot)) {
            invalid(c, "\"%s\": write slot1 to slot%d", clip(c.args[i]).c_str(), slot_count);
            return nullptr;
        }
        const Ipmc* ipmc = find_slot(static_cast<int>(slot));
        if (!ipmc) {
            invalid(c, "no board in physical slot # %ld", slot);
            return nullptr;
        }
        f = find_fru(ipmc->addr, 0);
        next = i + 1;
    } else {
        f = fru_arg(c, i);
        next = i + 2;
    }
    if (f && f->permanent) {
        invalid(c, "0x%02x: FRU # %d is not under shelf power management", f->addr, f->id);
        return nullptr;
    }
    return f;
}

std::vector<std::string> power_order(const State& st) {
    std::vector<std::string> order;
    std::string text = state_str(st, "order", "");
    for (std::string_view w : tokenize(text)) order.emplace_back(w);
    return order;
}

void shelf_cooling_state(Ctx& c) {
    int worst = 0;   // 0 normal, 1 warning, 2 critical
    each_fan([&](const Fru& f) {
        if (hot_swap_state(c.st, f) != 4 || fan_level(c.st, f) == 0) worst = 2;
    });
    std::size_t n = 0;
    const Ipmc* ipmcs = ipmc_table(n);
    std::size_t sn = 0;
    const SensorDef* sensors = sensor_table(sn);
    for (std::size_t i = 0; i < n; ++i)
        for (std::size_t j = 0; j < sn; ++j) {
            if (sensors[j].profile != ipmcs[i].profile || sensors[j].type_code != 0x01) continue;
            int st = sensor_status(c.st, ipmcs[i], sensors[j]);
            if (st == t_unc && worst < 1) worst = 1;
            if (st == t_ucr || st == t_unr) worst = 2;
        }
    static const char* const names[] = {"Normal", "Warning", "Critical"};
    say(c.out, "Cooling state: %s", names[worst]);
}

void shelf_fans_state(Ctx& c) {
    each_fan([&](const Fru& f) {
        int m = hot_swap_state(c.st, f);
        say(c.out, "0x%02x: FRU # %d (%s): M%d, level %d, %d RPM, %s", f.addr, f.id, f.name, m, fan_level(c.st, f),
            m == 4 ? fan_rpm(c.st, f) : 0, (m == 4 && fan_level(c.st, f) > 0) ? "OK" : "Failure");
    });
}

void shelf_power_distribution(Ctx& c) {
    double watts = 0;
    for (const std::string& w : power_order(c.st)) {
        unsigned addr = 0;
        int id = 0;
        if (std::sscanf(w.c_str(), "%x:%d", &addr, &id) != 2) continue;
        const Fru* f = find_fru(addr, id);
        if (f && hot_swap_state(c.st, *f) == 4) watts += static_cast<double>(state_int(c.st, key("pwrcap.%02x.%d", addr, id), 0));
    }
    for (int feed = 1; feed <= feed_count; ++feed) {
        std::string v = state_str(c.st, key("feed.%d", feed), "60.0 -40.5");
        double max_a = 0, min_v = 0;
        std::sscanf(v.c_str(), "%lf %lf", &max_a, &min_v);
        say(c.out, "Feed %d: present -48.2 V, drawing %.1f A; maximum current %.1f A, minimum voltage %.1f V", feed,
            watts / 48.2 / feed_count, max_a, min_v);
    }
}

void shelf_power_management(Ctx& c) {
    int pos = 0;
    long total = 0;
    for (const std::string& w : power_order(c.st)) {
        unsigned addr = 0;
        int id = 0;
        if (std::sscanf(w.c_str(), "%x:%d", &addr, &id) != 2) continue;
        const Fru* f = find_fru(addr, id);
        if (!f) continue;
        long cap = state_int(c.st, key("pwrcap.%02x.%d", addr, id), 0);
        long delay = state_int(c.st, key("pwrdelay.%02x.%d", addr, id), 0);
        std::string act = state_str(c.st, key("act.%02x.%d", addr, id), "1 1");
        int m = hot_swap_state(c.st, *f);
        if (m == 4) total += cap;
        say(c.out, "%d. 0x%02x: FRU # %d (%s): M%d, %ld W, delay %ld.%ld s, activation %s, deactivation %s", ++pos,
            addr, id, f->name, m, cap, delay / 10, delay % 10, act[0] == '1' ? "by shelf manager" : "by command",
            act.size() > 2 && act[2] == '1' ? "by shelf manager" : "by command");
    }
    say(c.out, "Power allocated: %ld W of 800 W", total);
    say(c.out, "Activation allowance: %ld s", state_int(c.st, "allowance", 30));
    std::string grounded;
    for (int slot = 1; slot <= slot_count; ++slot)
        if (state_int(c.st, key("bdsel.%d", slot), 0)) grounded += key(" %d", slot);
    say(c.out, "Slots with BDSEL# grounded:%s", grounded.empty() ? " none" : grounded.c_str());
}

void shelf_address_table(Ctx& c) {
    for (int slot = 1; slot <= slot_count; ++slot) {
        unsigned addr = 0x80 + 2 * static_cast<unsigned>(slot);
        say(c.out, "Site Type 0x00 (Front Board), Site # %d: Hardware Address 0x%02x, IPMB Address 0x%02x%s", slot,
            addr / 2, addr, find_slot(slot) ? "" : " (empty)");
    }
    std::size_t n = 0;
    const Ipmc* ipmcs = ipmc_table(n);
    for (std::size_t i = 0; i < n; ++i)
        if (ipmcs[i].slot == 0)
            say(c.out, "Site Type 0x%02x (%s), Site # %d: Hardware Address 0x%02x, IPMB Address 0x%02x",
                ipmcs[i].site_type, site_type_name(ipmcs[i].site_type), ipmcs[i].site_num, ipmcs[i].addr / 2,
                ipmcs[i].addr);
}

void shelf_ha_connectivity(Ctx& c) {
    say(c.out, "Shelf managers: 1 (0x20, active); no redundant shelf manager installed");
    say(c.out, "Radial IPMB links: slots 1 to %d, one link per slot", slot_count);
}

void shelf_pci_connectivity(Ctx& c) { say(c.out, "No PCI connectivity records in the shelf FRU information"); }

void shelf_info_refresh(Ctx& c) { say(c.out, "Shelf FRU information refreshed from 0x%02x FRU # 1", shm_addr); }

void shelf_max_current(Ctx& c) {
    long feed = 0;
    if (!int_arg(c, 1, "feed number", 1, feed_count, feed) || !need(c, 2, "maximum current (A)")) return;
    double amps = 0;
    if (!parse_real(c.args[2], amps) || amps < 1 || amps > 200)
        return void(invalid(c, "maximum current \"%s\" must be a number from 1 to 200", clip(c.args[2]).c_str()));
    std::string v = state_str(c.st, key("feed.%ld", feed), "60.0 -40.5");
    double old_a = 0, min_v = -40.5;
    std::sscanf(v.c_str(), "%lf %lf", &old_a, &min_v);
    state_put(c.st, key("feed.%ld", feed), key("%.1f %.1f", amps, min_v));
    say(c.out, "Feed %ld: maximum current set to %.1f A", feed, amps);
}

void shelf_min_voltage(Ctx& c) {
    long feed = 0;
    if (!int_arg(c, 1, "feed number", 1, feed_count, feed) || !need(c, 2, "minimum voltage (V)")) return;
    double volts = 0;
    if (!parse_real(c.args[2], volts) || std::fabs(volts) < 36 || std::fabs(volts) > 75)
        return void(invalid(c, "minimum voltage \"%s\" must be between -36 and -75", clip(c.args[2]).c_str()));
    std::string v = state_str(c.st, key("feed.%ld", feed), "60.0 -40.5");
    double max_a = 60, old_v = 0;
    std::sscanf(v.c_str(), "%lf %lf", &max_a, &old_v);
    state_put(c.st, key("feed.%ld", feed), key("%.1f %.1f", max_a, -std::fabs(volts)));
    say(c.out, "Feed %ld: minimum voltage set to %.1f V", feed, -std::fabs(volts));
}

void shelf_activation_flag(Ctx& c, int which) {
    std::size_t next = 0;
    const Fru* f = managed_fru_arg(c, 1, true, next);
    long value = 0;
    if (!f || !int_arg(c, next, "value (1: by shelf manager, 0: by command)", 0, 1, value)) return;
    std::string k = key("act.%02x.%d", f->addr, f->id);
    std::string act = state_str(c.st, k, "1 1");
    if (act.size() < 3) act = "1 1";
    act[which == 0 ? 0 : 2] = value ? '1' : '0';
    state_put(c.st, k, act);
    say(c.out, "0x%02x: FRU # %d, shelf manager controlled %s: %s", f->addr, f->id,
        which == 0 ? "activation" : "deactivation", value ? "enabled" : "disabled");
}

void shelf_activation(Ctx& c) { shelf_activation_flag(c, 0); }
void shelf_deactivation(Ctx& c) { shelf_activation_flag(c, 1); }

void shelf_pwr_capability(Ctx& c) {
    std::size_t next = 0;
    const Fru* f = managed_fru_arg(c, 1, false, next);
    long watts = 0;
    if (!f || !int_arg(c, next, "power capability (W)", 1, 400, watts)) return;
    state_put_int(c.st, key("pwrcap.%02x.%d", f->addr, f->id), watts);
    say(c.out, "0x%02x: FRU # %d, power capability set to %ld W", f->addr, f->id, watts);
}

void shelf_pwr_delay(Ctx& c) {
    std::size_t next = 0;
    const Fru* f = managed_fru_arg(c, 1, false, next);
    long delay = 0;
    if (!f || !int_arg(c, next, "power-on delay (x 100 ms)", 0, 255, delay)) return;
    state_put_int(c.st, key("pwrdelay.%02x.%d", f->addr, f->id), delay);
    say(c.out, "0x%02x: FRU # %d, power-on delay set to %ld.%ld s", f->addr, f->id, delay / 10, delay % 10);
}

void shelf_bdsel_grounded(Ctx& c) {
    if (!need(c, 1, "word \"board\"")) return;
    if (!iequals(c.args[1], "board")) return void(invalid(c, "expected \"board\", found \"%s\"", clip(c.args[1]).c_str()));
    long slot = 0, value = 0;
    if (!int_arg(c, 2, "slot", 1, slot_count, slot) || !int_arg(c, 3, "value (1 or 0)", 0, 1, value)) return;
    state_put_int(c.st, key("bdsel.%ld", slot), value);
    say(c.out, "Physical slot # %ld: BDSEL# %s", slot, value ? "grounded" : "not grounded");
}

void shelf_allowance(Ctx& c) {
    long seconds = 0;
    if (!int_arg(c, 1, "allowance (s)", 0, 255, seconds)) return;
    state_put_int(c.st, "allowance", seconds);
    say(c.out, "Activation allowance set to %ld s", seconds);
}

void shelf_pwr_reorder(Ctx& c) {
    std::size_t next = 0;
    const Fru* first = managed_fru_arg(c, 1, false, next);
    if (!first || !need(c, next, "operation (before or after)")) return;
    std::string_view op = c.args[next];
    bool before = iequals(op, "before");
    if (!before && !iequals(op, "after"))
        return void(invalid(c, "operation \"%s\": use before or after", clip(op).c_str()));
    std::size_t after_second = 0;
    const Fru* second = managed_fru_arg(c, next + 1, false, after_second);
    if (!second) return;
    if (first == second) return void(invalid(c, "a FRU cannot be moved relative to itself"));
    std::vector<std::string> order = power_order(c.st);
    std::string a = key("%02x:%d", first->addr, first->id), b = key("%02x:%d", second->addr, second->id);
    std::erase(order, a);
    auto it = std::find(order.begin(), order.end(), b);
    if (it == order.end()) order.push_back(b), it = order.end() - 1;
    order.insert(before ? it : it + 1, a);
    std::string text;
    for (const std::string& w : order) text += (text.empty() ? "" : " ") + w;
    state_put(c.st, "order", text);
    say(c.out, "Power-on order: 0x%02x FRU # %d moved %s 0x%02x FRU # %d", first->addr, first->id,
        before ? "before" : "after", second->addr, second->id);
}

struct ShelfSub {
    const char* name;
    void (*run)(Ctx&);
    const char* args;
};

const ShelfSub shelf_subs[] = {
    {"cooling_state", shelf_cooling_state, ""},
    {"fans_state", shelf_fans_state, ""},
    {"power_distribution", shelf_power_distribution, ""},
    {"power_management", shelf_power_management, ""},
    {"address_table", shelf_address_table, ""},
    {"ha_connectivity", shelf_ha_connectivity, ""},
    {"pci_connectivity", shelf_pci_connectivity, ""},
    {"info_refresh", shelf_info_refresh, ""},
    {"max_current", shelf_max_current, " <feed> <amps>"},
    {"min_voltage", shelf_min_voltage, " <feed> <volts>"},
    {"activation", shelf_activation, " <addr|slot name> <fru id> <1|0> | slot<N> <1|0>"},
    {"deactivation", shelf_deactivation, " <addr|slot name> <fru id> <1|0> | slot<N> <1|0>"},
    {"pwr_capability", shelf_pwr_capability, " <addr|slot name> <fru id> <watts>"},
    {"bdsel_grounded", shelf_bdsel_grounded, " board <slot> <1|0>"},
    {"pwr_delay", shelf_pwr_delay, " <addr|slot name> <fru id> <x 100 ms>"},
    {"allowance", shelf_allowance, " <seconds>"},
    {"pwr_reorder", shelf_pwr_reorder, " <addr|slot name> <fru id> <before|after> <addr|slot name> <fru id>"},
};

// --- LAN and PEF ----------------------------------------------------------

bool ip_text(std::string_view w) {
    int parts = 0;
    while (true) {
        std::size_t dot = w.find('.');
        unsigned long n = 0;
        std::string_view part = w.substr(0, dot);
        if (part.empty() || part.size() > 3 || (part.size() > 1 && part[0] == '0') || !parse_uint(part, 255, n)) return false;
        ++parts;
        if (dot == std::string_view::npos) break;
        w.remove_prefix(dot + 1);
    }
    return parts == 4;
}

bool mac_text(std::string_view w) {
    if (w.size() != 17) return false;
    for (std::size_t i = 0; i < w.size(); ++i) {
        char ch = w[i];
        bool hex = (ch >= '0' && ch <= '9') || (ch >= 'a' && ch <= 'f') || (ch >= 'A' && ch <= 'F');
        if (i % 3 == 2 ? ch != ':' : !hex) return false;
    }
    return true;
}

// Checks a value against the kind of its parameter; returns the stored form.
bool config_value(Ctx& c, const ConfigParam& p, std::size_t from, std::string& stored) {
    if (!need(c, from, "value")) return false;
    std::string_view w = c.args[from];
    bool single = from + 1 == c.args.size();
    switch (p.kind) {
    case k_ip:
        if (!single || !ip_text(w)) return invalid(c, "%s must be written like 192.0.2.10", p.name);
        stored = std::string(w);
        return true;
    case k_mac:
        if (!single || !mac_text(w)) return invalid(c, "%s must be written like 00:00:5e:00:53:10", p.name);
        stored = std::string(w);
        return true;
    case k_source: {
        static const char* const sources[] = {"none", "static", "dhcp", "bios"};
        for (int i = 0; i < 4; ++i)
            if (single && (iequals(w, sources[i]) || w == std::to_string(i))) {
                stored = sources[i];
                return true;
            }
        return invalid(c, "%s must be static, dhcp, bios or none", p.name);
    }
    case k_number: {
        unsigned long n = 0;
        if (!single || !parse_uint(w, static_cast<unsigned long>(p.max), n))
            return invalid(c, "%s must be a number from 0 to %ld", p.name, p.max);
        stored = std::string(w);
        return true;
    }
    case k_bytes:
        stored.clear();
        for (std::size_t i = from; i < c.args.size(); ++i) {
            unsigned long b = 0;
            if (!uint_arg(c, i, "data byte", 0xff, b)) return false;
            stored += key(stored.empty() ? "0x%02lx" : " 0x%02lx", b);
        }
        return true;
    case k_fixed:
        break;
    }
    return invalid(c, "%s is read-only", p.name);
}

std::string lan_value(const State& st, int ch, const ConfigParam& p) {
    if (p.read_only) return ch == 1 ? p.def1 : p.def2;
    return state_str(st, key("lan.%d.%d", ch, p.num), ch == 1 ? p.def1 : p.def2);
}

void pef_show(Ctx& c, const ConfigParam& p) {
    if (p.read_only) return void(say(c.out, "    %d %s: %s", p.num, p.name, p.def1));
    if (!p.has_selector)
        return void(say(c.out, "    %d %s: %s", p.num, p.name, state_str(c.st, key("pef.%d", p.num), p.def1).c_str()));
    for (int sel = 1; sel <= pef_selector_max; ++sel)
        say(c.out, "    %d %s, entry %d: %s", p.num, p.name, sel,
            state_str(c.st, key("pef.%d.%d", p.num, sel), p.def1).c_str());
}

std::string param_list(const ConfigParam* table, std::size_t n) {
    std::string s;
    for (std::size_t i = 0; i < n; ++i) s += key(" %d", table[i].num);
    return s;
}

}  // namespace

void cmd_version(Ctx& c) {
    say(c.out, "Shelf manager command line interpreter version 3.2.0 (simulated shelf)");
    say(c.out, "Firmware: 3.2.0, build 2024-03-01; hardware: simulated shelf, 6 slots, 2 fan trays");
}

// Not a shelf command: tells a deployment test which account the web
// server runs the gateway, and so the tool, under.
void cmd_whoami(Ctx& c) { say(c.out, "shelfctl runs as user %u", static_cast<unsigned>(getuid())); }

void cmd_session(Ctx& c) {
    say(c.out, "Active sessions: 1 of 16");
    say(c.out, "  Session 1: user \"admin\", privilege Administrator, channel 1 (LAN), from 192.0.2.50");
}

void cmd_switchover(Ctx& c) {
    say(c.out, "Switchover is not possible: no backup shelf manager is present in this shelf");
}

void cmd_alarm(Ctx& c) {
    std::string v = state_str(c.st, "alarm", "0 0 0");
    if (v.size() < 5) v = "0 0 0";
    if (!c.args.empty()) {
        std::string_view w = c.args[0];
        bool clear = iequals(w, "clear") || iequals(w, "off");
        std::string_view level = clear ? (c.args.size() > 1 ? c.args[1] : "all") : w;
        if (!clear && c.args.size() > 1) {
            if (iequals(c.args[1], "off")) clear = true;
            else if (!iequals(c.args[1], "on")) return void(invalid(c, "\"%s\": use on or off", clip(c.args[1]).c_str()));
        }
        int which = -1;
        for (int i = 0; i < 3; ++i)
            if (iequals(level, alarm_names[i])) which = i;
        if (which < 0 && !(clear && iequals(level, "all")))
            return void(invalid(c, "alarm \"%s\": use minor, major, critical or clear", clip(level).c_str()));
        for (int i = 0; i < 3; ++i) {
            if (which >= 0 && i != which) continue;
            char now = clear ? '0' : '1';
            if (v[2 * static_cast<std::size_t>(i)] == now) continue;
            v[2 * static_cast<std::size_t>(i)] = now;
            log_event(c.st, shm_addr, "Telco %s alarm %s", alarm_names[i], clear ? "cleared" : "set");
        }
        state_put(c.st, "alarm", v);
    }
    say(c.out, "Telco alarms: minor %s, major %s, critical %s", v[0] == '1' ? "ON" : "OFF", v[2] == '1' ? "ON" : "OFF",
        v[4] == '1' ? "ON" : "OFF");
}

void cmd_showunhealthy(Ctx& c) {
    int found = 0;
    std::size_t n = 0;
    const Fru* frus = fru_table(n);
    for (std::size_t i = 0; i < n; ++i) {
        int m = hot_swap_state(c.st, frus[i]);
        if (m == 4) continue;
        say(c.out, "0x%02x: FRU # %d (%s) is in state M%d (%s)", frus[i].addr, frus[i].id, frus[i].name, m, hot_swap_name(m));
        ++found;
    }
    const Ipmc* ipmcs = ipmc_table(n);
    std::size_t sn = 0;
    const SensorDef* sensors = sensor_table(sn);
    for (std::size_t i = 0; i < n; ++i) {
        for (int bus = 0; bus < 2; ++bus)
            if (!ipmb_enabled(c.st, ipmcs[i].addr, bus)) {
                say(c.out, "0x%02x: IPMB-%c is disabled", ipmcs[i].addr, bus == 0 ? 'A' : 'B');
                ++found;
            }
        for (std::size_t j = 0; j < sn; ++j) {
            if (sensors[j].profile != ipmcs[i].profile) continue;
            int st = sensor_status(c.st, ipmcs[i], sensors[j]);
            if (st < 0) continue;
            int raw = sensor_raw(c.st, ipmcs[i], sensors[j]);
            say(c.out, "0x%02x: Sensor # %d (\"%s\"): %s threshold crossed", ipmcs[i].addr, sensors[j].num,
                sensors[j].name, threshold_long_name(st));
            if (c.verbose)
                say(c.out, "        reading %g %s", raw * sensors[j].m + sensors[j].b, sensors[j].unit);
            ++found;
        }
    }
    std::string alarms = state_str(c.st, "alarm", "0 0 0");
    for (std::size_t i = 0; i < 3 && 2 * i < alarms.size(); ++i)
        if (alarms[2 * i] == '1') {
            say(c.out, "Shelf: telco %s alarm is on", alarm_names[i]);
            ++found;
        }
    if (found == 0) say(c.out, "There are no unhealthy components in the shelf");
}

void cmd_getipmbstate(Ctx& c) {
    const Ipmc* ipmc = ipmc_arg(c, 0);
    if (!ipmc) return;
    int only = -1;
    if (c.args.size() > 1 && !bus_word(c.args[1], only))
        return void(invalid(c, "bus \"%s\": use A or B", clip(c.args[1]).c_str()));
    for (int bus = 0; bus < 2; ++bus) {
        if (only >= 0 && bus != only) continue;
        bool on = ipmb_enabled(c.st, ipmc->addr, bus);
        say(c.out, "0x%02x: IPMB-%c state: %s", ipmc->addr, bus == 0 ? 'A' : 'B',
            on ? "enabled, link OK" : "disabled (isolated)");
    }
}

void cmd_setipmbstate(Ctx& c) {
    const Ipmc* ipmc = ipmc_arg(c, 0);
    if (!ipmc || !need(c, 1, "bus (A or B)")) return;
    int bus = 0;
    if (!bus_word(c.args[1], bus)) return void(invalid(c, "bus \"%s\": use A or B", clip(c.args[1]).c_str()));
    std::size_t action_at = 2;
    long link = 0;
    if (c.args.size() > 3) {   // an optional link number stands before the action
        if (!int_arg(c, 2, "link number", 0, 15, link)) return;
        action_at = 3;
    }
    if (!need(c, action_at, "action (enable or disable)")) return;
    std::string_view a = c.args[action_at];
    bool enable = iequals(a, "enable") || a == "1";
    if (!enable && !iequals(a, "disable") && a != "0")
        return void(invalid(c, "action \"%s\": use enable or disable", clip(a).c_str()));
    if (c.args.size() > action_at + 1) return void(invalid(c, "too many arguments"));
    std::string v = state_str(c.st, key("ipmb.%02x", ipmc->addr), "1 1");
    if (v.size() < 3) v = "1 1";
    v[bus == 0 ? 0 : 2] = enable ? '1' : '0';
    state_put(c.st, key("ipmb.%02x", ipmc->addr), v);
    log_event(c.st, ipmc->addr, "IPMB-%c %s by command", bus == 0 ? 'A' : 'B', enable ? "enabled" : "disabled");
    say(c.out, "0x%02x: IPMB-%c %s%s", ipmc->addr, bus == 0 ? 'A' : 'B', enable ? "enabled" : "disabled",
        link ? key(" (link %ld)", link).c_str() : "");
}

void cmd_shelf(Ctx& c) {
    if (c.args.empty()) {
        say(c.out, "Usage: shelf <sub-command> [arguments]; sub-commands:");
        for (const ShelfSub& s : shelf_subs) say(c.out, "    %s%s", s.name, s.args);
        return;
    }
    for (const ShelfSub& s : shelf_subs)
        if (iequals(c.args[0], s.name)) {
            std::string usage = std::string("shelf ") + s.name + s.args;
            c.usage = usage.c_str();
            s.run(c);
            return;
        }
    invalid(c, "unknown shelf sub-command \"%s\"", clip(c.args[0]).c_str());
}

void cmd_fans(Ctx& c) {
    if (c.args.empty()) {
        each_fan([&](const Fru& f) {
            say(c.out, "0x%02x: FRU # %d (%s): Current Level: %d, %d RPM", f.addr, f.id, f.name, fan_level(c.st, f),
                hot_swap_state(c.st, f) == 4 ? fan_rpm(c.st, f) : 0);
        });
        return;
    }
    const Fru* f = nullptr;
    if (!fan_arg(c, 0, f)) return;
    say(c.out, "0x%02x: FRU # %d (%s)", f->addr, f->id, f->name);
    say(c.out, "    Minimum Speed Level: 0, Maximum Speed Level: %d, Normal Operating Level: 6", fan_level_max);
    say(c.out, "    Current Level: %d, Fan Tach: %d RPM", fan_level(c.st, *f),
        hot_swap_state(c.st, *f) == 4 ? fan_rpm(c.st, *f) : 0);
}

void cmd_getfanlevel(Ctx& c) {
    const Fru* f = nullptr;
    if (!fan_arg(c, 0, f)) return;
    say(c.out, "0x%02x: FRU # %d Current Level: %d", f->addr, f->id, fan_level(c.st, *f));
    if (c.verbose) say(c.out, "    Fan Tach: %d RPM", fan_rpm(c.st, *f));
}

void cmd_setfanlevel(Ctx& c) {
    long level = 0;
    if (!c.args.empty() && iequals(c.args[0], "all")) {
        if (!int_arg(c, 1, "fan level", 0, fan_level_max, level)) return;
        each_fan([&](const Fru& f) {
            state_put_int(c.st, key("fan.%02x.%d", f.addr, f.id), level);
            say(c.out, "0x%02x: FRU # %d Set Fan Level to: %ld", f.addr, f.id, level);
        });
        return;
    }
    const Fru* f = nullptr;
    if (!fan_arg(c, 0, f) || !int_arg(c, 2, "fan level", 0, fan_level_max, level)) return;
    state_put_int(c.st, key("fan.%02x.%d", f->addr, f->id), level);
    say(c.out, "0x%02x: FRU # %d Set Fan Level to: %ld", f->addr, f->id, level);
}

void cmd_getlanconfig(Ctx& c) {
    long ch = 0, num = 0;
    if (!int_arg(c, 0, "channel", 1, lan_channel_count, ch)) return;
    if (c.args.size() > 1 && !int_arg(c, 1, "parameter", 0, 255, num)) return;
    std::size_t n = 0;
    const ConfigParam* params = lan_param_table(n);
    if (num == 0) {
        say(c.out, "LAN configuration parameters of channel %ld:", ch);
        for (std::size_t i = 0; i < n; ++i)
            say(c.out, "    %d %s: %s", params[i].num, params[i].name, lan_value(c.st, static_cast<int>(ch), params[i]).c_str());
        return;
    }
    const ConfigParam* p = find_param(params, n, static_cast<int>(num));
    if (!p) return void(invalid(c, "LAN parameter %ld is not supported (supported:%s)", num, param_list(params, n).c_str()));
    say(c.out, "Channel %ld, parameter %d (%s): %s", ch, p->num, p->name, lan_value(c.st, static_cast<int>(ch), *p).c_str());
}

void cmd_setlanconfig(Ctx& c) {
    long ch = 0, num = 0;
    if (!int_arg(c, 0, "channel", 1, lan_channel_count, ch) || !int_arg(c, 1, "parameter", 1, 255, num)) return;
    std::size_t n = 0;
    const ConfigParam* params = lan_param_table(n);
    const ConfigParam* p = find_param(params, n, static_cast<int>(num));
    if (!p) return void(invalid(c, "LAN parameter %ld is not supported (supported:%s)", num, param_list(params, n).c_str()));
    // "<channel> <parameter> <selector> <value>": LAN parameters take no selector.
    std::size_t from = c.args.size() > 3 ? 3 : 2;
    std::string stored;
    if (!config_value(c, *p, from, stored)) return;
    state_put(c.st, key("lan.%ld.%d", ch, p->num), stored);
    say(c.out, "Channel %ld, parameter %d (%s) set to %s", ch, p->num, p->name, stored.c_str());
}

void cmd_getpefconfig(Ctx& c) {
    long num = 0;
    if (!c.args.empty() && !int_arg(c, 0, "parameter", 0, 255, num)) return;
    std::size_t n = 0;
    const ConfigParam* params = pef_param_table(n);
    if (num == 0) {
        say(c.out, "PEF configuration parameters:");
        for (std::size_t i = 0; i < n; ++i) pef_show(c, params[i]);
        return;
    }
    const ConfigParam* p = find_param(params, n, static_cast<int>(num));
    if (!p) return void(invalid(c, "PEF parameter %ld is not supported (supported:%s)", num, param_list(params, n).c_str()));
    pef_show(c, *p);
}

void cmd_setpefconfig(Ctx& c) {
    long num = 0;
    if (!int_arg(c, 0, "parameter", 1, 255, num)) return;
    std::size_t n = 0;
    const ConfigParam* params = pef_param_table(n);
    const ConfigParam* p = find_param(params, n, static_cast<int>(num));
    if (!p) return void(invalid(c, "PEF parameter %ld is not supported (supported:%s)", num, param_list(params, n).c_str()));
    std::string stored;
    if (p->has_selector) {
        long sel = 0;
        if (!int_arg(c, 1, "set selector", 1, pef_selector_max, sel) || !config_value(c, *p, 2, stored)) return;
        state_put(c.st, key("pef.%d.%ld", p->num, sel), stored);
        say(c.out, "PEF parameter %d (%s), entry %ld set to %s", p->num, p->name, sel, stored.c_str());
        return;
    }
    std::size_t from = c.args.size() > 2 ? 2 : 1;   // a selector, if given, is not used
    if (!config_value(c, *p, from, stored)) return;
    state_put(c.st, key("pef.%d", p->num), stored);
    say(c.out, "PEF parameter %d (%s) set to %s", p->num, p->name, stored.c_str());
}

}  // namespace shelfsim
