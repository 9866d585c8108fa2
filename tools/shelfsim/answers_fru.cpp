// FRU, LED, board and IPM controller commands.
#include <cstdio>
#include <cstring>

#include "answers.h"
#include "parse.h"

namespace shelfsim {

namespace {

constexpr int fru_data_size = 64;

struct LedColor {
    const char* name;
    int code;
};
const LedColor colors[] = {{"BLUE", 1}, {"RED", 2}, {"GREEN", 3}, {"AMBER", 4}, {"ORANGE", 5}, {"WHITE", 6}};

const Ipmc& owner(const Fru& f) {
    const Ipmc* ipmc = find_ipmc(f.addr);
    return *ipmc;   // every FRU of the table belongs to a controller of the table
}

void fru_line(Ctx& c, const Fru& f) {
    int m = hot_swap_state(c.st, f);
    say(c.out, "0x%02x: FRU # %d  %-24s M%d (%s)%s", f.addr, f.id, f.name, m, hot_swap_name(m),
        fru_locked(c.st, f) ? ", locked" : "");
}

void fru_details(Ctx& c, const Fru& f) {
    const Ipmc& ipmc = owner(f);
    int m = hot_swap_state(c.st, f);
    say(c.out, "0x%02x: FRU # %d", f.addr, f.id);
    say(c.out, "    Device ID String: \"%s\"", f.name);
    say(c.out, "    Hot Swap State: M%d (%s), Previous: M%d (%s)", m, hot_swap_name(m), m == 4 ? 3 : 6,
        hot_swap_name(m == 4 ? 3 : 6));
    say(c.out, "    Site Type: 0x%02x (%s), Site Number: %d", f.site_type, site_type_name(f.site_type), ipmc.site_num);
    say(c.out, "    Locked: %s", fru_locked(c.st, f) ? "Yes" : "No");
    if (!c.verbose) return;
    if (f.permanent) {
        say(c.out, "    Power management: not managed (always powered)");
        return;
    }
    say(c.out, "    Power capability: %ld W, power-on delay: %ld x 100 ms",
        state_int(c.st, key("pwrcap.%02x.%d", f.addr, f.id), 0),
        state_int(c.st, key("pwrdelay.%02x.%d", f.addr, f.id), 0));
}

// "type=3" or "type=board": a site type number.
bool site_type_word(Ctx& c, std::string_view w, int& type) {
    w.remove_prefix(5);
    unsigned long n = 0;
    if (!parse_uint(w, 255, n)) return invalid(c, "site type \"%s\" must be a number", clip(w).c_str());
    type = static_cast<int>(n);
    return true;
}

bool starts_with_type(std::string_view w) { return w.size() >= 5 && iequals(w.substr(0, 5), "type="); }

// The FRU data area: a common header and a board area holding the name,
// unless a frudata write has stored a changed image.
void fru_image(const State& st, const Fru& f, unsigned char data[fru_data_size]) {
    std::memset(data, 0, fru_data_size);
    const std::string* saved = state_get(st, key("frudata.%02x.%d", f.addr, f.id));
    if (saved && saved->size() == 2 * fru_data_size) {
        for (int i = 0; i < fru_data_size; ++i) {
            unsigned long b = 0;
            if (parse_uint("0x" + saved->substr(2 * i, 2), 0xff, b)) data[i] = static_cast<unsigned char>(b);
        }
        return;
    }
    const unsigned char header[8] = {0x01, 0x00, 0x00, 0x01, 0x00, 0x00, 0x00, 0xfe};
    std::memcpy(data, header, sizeof header);
    data[8] = 0x01;
    data[9] = 0x07;
    data[10] = 0x19;
    std::size_t len = std::strlen(f.name);
    if (len > 40) len = 40;
    data[11] = static_cast<unsigned char>(0xc0 | len);
    std::memcpy(data + 12, f.name, len);
    data[12 + len] = 0xc1;
}

void dump_rows(Ctx& c, const unsigned char* data, int from, int to) {
    for (int row = from; row < to; row += 16) {
        char line[80];
        int n = std::snprintf(line, sizeof line, "    0x%02x:", row);
        for (int i = row; i < row + 16 && i < to; ++i)
            n += std::snprintf(line + n, sizeof line - static_cast<std::size_t>(n), " %02x", data[i]);
        say(c.out, "%s", line);
    }
}

std::string led_text(const std::string& state) {
    std::vector<std::string_view> w = tokenize(state);
    if (w.empty() || iequals(w[0], "LOCAL")) return "local control";
    if (iequals(w[0], "OFF")) return "override OFF";
    std::string color = w.size() > (iequals(w[0], "BLINK") ? 3u : 1u) ? std::string(w.back()) : std::string();
    if (iequals(w[0], "ON")) return "override ON" + (color.empty() ? std::string() : ", color " + color);
    if (iequals(w[0], "BLINK") && w.size() >= 3)
        return "override BLINK, " + std::string(w[1]) + " ms on, " + std::string(w[2]) + " ms off" +
               (color.empty() ? std::string() : ", color " + color);
    return "local control";
}

void led_line(Ctx& c, const Fru& f, int led) {
    const LedDef& d = led_table()[led];
    std::string state = state_str(c.st, key("led.%02x.%d.%d", f.addr, f.id, led), "LOCAL");
    say(c.out, "0x%02x: FRU # %d, LED # %d (\"%s\", %s): %s", f.addr, f.id, led, d.name, d.color,
        led_text(state).c_str());
}

bool color_arg(Ctx& c, std::size_t i, std::string& color) {
    if (i >= c.args.size()) return true;
    unsigned long n = 0;
    bool numeric = parse_uint(c.args[i], 0xff, n);
    for (const LedColor& col : colors)
        if ((numeric && n == static_cast<unsigned long>(col.code)) || iequals(c.args[i], col.name)) {
            color = col.name;
            return true;
        }
    return invalid(c, "LED color \"%s\": use BLUE, RED, GREEN, AMBER, ORANGE, WHITE or 1 to 6",
                   clip(c.args[i]).c_str());
}

}  // namespace

void cmd_fru(Ctx& c) {
    std::size_t n = 0;
    const Fru* frus = fru_table(n);
    if (c.args.empty()) {
        for (std::size_t i = 0; i < n; ++i) fru_line(c, frus[i]);
        return;
    }
    if (starts_with_type(c.args[0])) {   // type=<site type> [/<site number>]
        int type = 0;
        if (!site_type_word(c, c.args[0], type)) return;
        long site = -1;
        if (c.args.size() > 1) {
            std::string_view w = c.args[1];
            if (w[0] == '/') w.remove_prefix(1);
            if (!parse_int(w, 0, 255, site)) {
                invalid(c, "site number \"%s\" must be a number", clip(c.args[1]).c_str());
                return;
            }
        }
        int shown = 0;
        for (std::size_t i = 0; i < n; ++i) {
            if (frus[i].site_type != type) continue;
            if (site >= 0 && owner(frus[i]).site_num != site) continue;
            c.verbose ? fru_details(c, frus[i]) : fru_line(c, frus[i]);
            ++shown;
        }
        if (shown == 0) say(c.out, "No FRU found at site type %d%s", type, site >= 0 ? key(", site number %ld", site).c_str() : "");
        return;
    }
    const Ipmc* ipmc = ipmc_arg(c, 0);
    if (!ipmc) return;
    if (c.args.size() > 1 && starts_with_type(c.args[1])) {
        int type = 0;
        if (!site_type_word(c, c.args[1], type)) return;
        int shown = 0;
        for (std::size_t i = 0; i < n; ++i)
            if (frus[i].addr == ipmc->addr && frus[i].site_type == type) {
                fru_details(c, frus[i]);
                ++shown;
            }
        if (shown == 0) say(c.out, "0x%02x: no FRU of site type %d", ipmc->addr, type);
        return;
    }
    if (c.args.size() == 1) {
        for (std::size_t i = 0; i < n; ++i)
            if (frus[i].addr == ipmc->addr) fru_line(c, frus[i]);
        return;
    }
    if (const Fru* f = fru_arg(c, 0)) fru_details(c, *f);
}

void cmd_frudata(Ctx& c) {
    const Fru* f = fru_arg(c, 0);
    if (!f) return;
    unsigned char data[fru_data_size];
    fru_image(c.st, *f, data);
    if (c.args.size() < 3) {
        say(c.out, "0x%02x: FRU # %d, FRU data (%d bytes):", f->addr, f->id, fru_data_size);
        dump_rows(c, data, 0, fru_data_size);
        return;
    }
    unsigned long offset = 0;
    if (!uint_arg(c, 2, "offset", fru_data_size - 1, offset)) return;
    if (c.args.size() == 3) {
        int end = static_cast<int>(offset) + 16 > fru_data_size ? fru_data_size : static_cast<int>(offset) + 16;
        say(c.out, "0x%02x: FRU # %d, FRU data at offset 0x%02lx:", f->addr, f->id, offset);
        dump_rows(c, data, static_cast<int>(offset), end);
        return;
    }
    std::size_t count = c.args.size() - 3;
    if (offset + count > fru_data_size)
        return void(invalid(c, "%zu byte(s) at offset 0x%02lx pass the end of the %d-byte FRU data", count, offset,
                            fru_data_size));
    for (std::size_t i = 0; i < count; ++i) {
        unsigned long b = 0;
        if (!uint_arg(c, 3 + i, "data byte", 0xff, b)) return;
        data[offset + i] = static_cast<unsigned char>(b);
    }
    std::string hex;
    for (unsigned char b : data) hex += key("%02x", b);
    state_put(c.st, key("frudata.%02x.%d", f->addr, f->id), hex);
    say(c.out, "0x%02x: FRU # %d, wrote %zu byte(s) at offset 0x%02lx", f->addr, f->id, count, offset);
}

void cmd_fruinfo(Ctx& c) {
    const Fru* f = fru_arg(c, 0);
    if (!f) return;
    say(c.out, "0x%02x: FRU # %d, FRU Info", f->addr, f->id);
    say(c.out, "  Board Area:");
    say(c.out, "    Manufacturer: \"Simulated Systems\"");
    say(c.out, "    Product Name: \"%s\"", f->name);
    say(c.out, "    Serial Number: \"SIM%02X%02d-%04d\"", f->addr, f->id, 1000 + static_cast<int>(f->addr));
    say(c.out, "    Part Number: \"SB-%d-%02X\"", f->site_type * 1000 + 100, f->addr);
    say(c.out, "    Manufacturing Date: 2023-11-%02d", 1 + static_cast<int>(f->addr % 28));
    if (c.verbose) say(c.out, "    FRU File ID: \"sim-%02x-%d.bin\"", f->addr, f->id);
    if (c.opts.find('d') != std::string::npos) {
        unsigned char data[fru_data_size];
        fru_image(c.st, *f, data);
        say(c.out, "  Raw data:");
        dump_rows(c, data, 0, fru_data_size);
    }
}

void cmd_getfruledstate(Ctx& c) {
    const Ipmc* ipmc = ipmc_arg(c, 0);
    if (!ipmc) return;
    std::size_t n = 0;
    const Fru* frus = fru_table(n);
    if (c.args.size() == 1) {
        for (std::size_t i = 0; i < n; ++i)
            if (frus[i].addr == ipmc->addr)
                for (int led = 0; led < led_count; ++led) led_line(c, frus[i], led);
        return;
    }
    const Fru* f = fru_arg(c, 0);
    if (!f) return;
    if (c.args.size() == 2 || iequals(c.args[2], "ALL")) {
        for (int led = 0; led < led_count; ++led) led_line(c, *f, led);
        return;
    }
    long led = 0;
    if (int_arg(c, 2, "LED id", 0, led_count - 1, led)) led_line(c, *f, static_cast<int>(led));
}

void cmd_setfruledstate(Ctx& c) {
    const Fru* f = fru_arg(c, 0);
    if (!f || !need(c, 2, "LED id or ALL") || !need(c, 3, "LED operation")) return;
    long first = 0, last = led_count - 1;
    if (!iequals(c.args[2], "ALL")) {
        if (!int_arg(c, 2, "LED id", 0, led_count - 1, first)) return;
        last = first;
    }
    std::string_view op = c.args[3];
    std::string state, color;
    if (iequals(op, "ON")) {
        if (!color_arg(c, 4, color)) return;
        state = color.empty() ? "ON" : "ON " + color;
    } else if (iequals(op, "OFF")) {
        state = "OFF";
    } else if (iequals(op, "LOCAL")) {
        state = "LOCAL";
    } else if (iequals(op, "BLINK")) {
        long on = 0, off = 0;
        if (!int_arg(c, 4, "on duration (ms)", 10, 2500, on) || !int_arg(c, 5, "off duration (ms)", 10, 2500, off) ||
            !color_arg(c, 6, color))
            return;
        state = key("BLINK %ld %ld", on, off) + (color.empty() ? "" : " " + color);
    } else if (iequals(op, "TEST")) {
        long ms = 0;
        if (!int_arg(c, 4, "lamp test duration (ms)", 1, 12700, ms)) return;
        say(c.out, "0x%02x: FRU # %d, lamp test started for %ld ms", f->addr, f->id, ms);
        return;
    } else {
        invalid(c, "LED operation \"%s\": use ON, OFF, LOCAL, BLINK or TEST", clip(op).c_str());
        return;
    }
    for (long led = first; led <= last; ++led) {
        state_put(c.st, key("led.%02x.%d.%ld", f->addr, f->id, led), state);
        led_line(c, *f, static_cast<int>(led));
    }
    say(c.out, "Setting FRU's LED state completed successfully");
}

void cmd_board(Ctx& c) {
    if (c.args.empty()) {
        for (int slot = 1; slot <= slot_count; ++slot) {
            const Ipmc* ipmc = find_slot(slot);
            if (!ipmc) {
                say(c.out, "Physical Slot # %d: empty", slot);
                continue;
            }
            const Fru* f = find_fru(ipmc->addr, 0);
            int m = hot_swap_state(c.st, *f);
            say(c.out, "Physical Slot # %d: IPMB address 0x%02x, %s, M%d (%s)", slot, ipmc->addr, ipmc->name, m,
                hot_swap_name(m));
        }
        return;
    }
    long slot = 0;
    if (!int_arg(c, 0, "slot", -2147483647L, 2147483647L, slot)) return;
    if (slot < 1 || slot > slot_count) return void(invalid(c, "slot %ld: slots are numbered 1 to %d", slot, slot_count));
    const Ipmc* ipmc = find_slot(static_cast<int>(slot));
    if (!ipmc) return void(say(c.out, "No board present in physical slot # %ld", slot));
    say(c.out, "Physical Slot # %ld: IPMB address 0x%02x (%s), %s", slot, ipmc->addr, ipmc->sym, ipmc->name);
    std::size_t n = 0;
    const Fru* frus = fru_table(n);
    for (std::size_t i = 0; i < n; ++i)
        if (frus[i].addr == ipmc->addr) fru_line(c, frus[i]);
    if (!c.verbose) return;
    say(c.out, "    IPMB-A: %s, IPMB-B: %s", ipmb_enabled(c.st, ipmc->addr, 0) ? "enabled" : "disabled",
        ipmb_enabled(c.st, ipmc->addr, 1) ? "enabled" : "disabled");
    say(c.out, "    Board select (BDSEL#) grounded: %s", state_int(c.st, key("bdsel.%ld", slot), 0) ? "Yes" : "No");
}

void cmd_boardreset(Ctx& c) {
    long slot = 0;
    if (!int_arg(c, 0, "slot", -2147483647L, 2147483647L, slot)) return;
    if (slot < 1 || slot > slot_count) return void(invalid(c, "slot %ld: slots are numbered 1 to %d", slot, slot_count));
    const Ipmc* ipmc = find_slot(static_cast<int>(slot));
    if (!ipmc) return void(say(c.out, "No board present in physical slot # %ld", slot));
    const Fru* f = find_fru(ipmc->addr, 0);
    int m = hot_swap_state(c.st, *f);
    if (m != 4)
        return void(say(c.out, "Board in physical slot # %ld is in state M%d (%s); reset not performed", slot, m,
                        hot_swap_name(m)));
    log_event(c.st, ipmc->addr, "Board reset by command (physical slot %ld)", slot);
    say(c.out, "Board in physical slot # %ld (IPMB address 0x%02x) reset", slot, ipmc->addr);
}

void cmd_ipmc(Ctx& c) {
    std::size_t n = 0;
    const Ipmc* ipmcs = ipmc_table(n);
    if (c.args.empty()) {
        for (std::size_t i = 0; i < n; ++i)
            say(c.out, "0x%02x: %-14s %-10s %s", ipmcs[i].addr, ipmcs[i].name, ipmcs[i].sym,
                site_type_name(ipmcs[i].site_type));
        return;
    }
    const Ipmc* ipmc = ipmc_arg(c, 0);
    if (!ipmc || (c.args.size() > 1 && !fru_arg(c, 0))) return;
    const Fru* fru0 = find_fru(ipmc->addr, 0);
    int m = hot_swap_state(c.st, *fru0);
    int max_id = 0;
    const Fru* frus = fru_table(n);
    for (std::size_t i = 0; i < n; ++i)
        if (frus[i].addr == ipmc->addr && frus[i].id > max_id) max_id = frus[i].id;
    say(c.out, "0x%02x: %s, slot name %s", ipmc->addr, ipmc->name, ipmc->sym);
    say(c.out, "    Site Type: 0x%02x (%s), Site Number: %d", ipmc->site_type, site_type_name(ipmc->site_type),
        ipmc->site_num);
    say(c.out, "    Maximum FRU Device ID: %d", max_id);
    say(c.out, "    Hot Swap State: M%d (%s)", m, hot_swap_name(m));
    say(c.out, "    IPMB-A: %s, IPMB-B: %s", ipmb_enabled(c.st, ipmc->addr, 0) ? "enabled" : "disabled",
        ipmb_enabled(c.st, ipmc->addr, 1) ? "enabled" : "disabled");
    if (!c.verbose) return;
    say(c.out, "    Firmware Revision: 1.%d, Manufacturer ID: 0x000000 (simulated)", ipmc->addr % 10);
    std::size_t sn = 0;
    const SensorDef* sensors = sensor_table(sn);
    int count = 0;
    for (std::size_t i = 0; i < sn; ++i) count += sensors[i].profile == ipmc->profile;
    say(c.out, "    Sensors: %d", count);
}

void cmd_activate(Ctx& c) {
    const Fru* f = fru_arg(c, 0);
    if (!f) return;
    int m = hot_swap_state(c.st, *f);
    if (m == 4) return void(say(c.out, "0x%02x: FRU # %d is already active (M4)", f->addr, f->id));
    if (fru_locked(c.st, *f))
        return void(say(c.out, "0x%02x: FRU # %d is locked; clear the lock before activating it", f->addr, f->id));
    state_put_int(c.st, key("hs.%02x.%d", f->addr, f->id), 4);
    log_event(c.st, f->addr, "Hot Swap: FRU # %d M%d -> M4 (Set by command)", f->id, m);
    say(c.out, "Command issued via IPMB, status = 0 (0x0)");
    say(c.out, "0x%02x: FRU # %d activated, now M4 (Active)", f->addr, f->id);
}

void cmd_deactivate(Ctx& c) {
    const Fru* f = fru_arg(c, 0);
    if (!f) return;
    if (f->permanent) return void(say(c.out, "0x%02x: FRU # %d cannot be deactivated", f->addr, f->id));
    std::size_t n = 0;
    const Fru* frus = fru_table(n);
    bool changed = false;
    // Deactivating FRU 0 takes the other FRUs of the controller down too.
    for (std::size_t i = 0; i < n; ++i) {
        const Fru& g = frus[i];
        if (g.addr != f->addr || (g.id != f->id && f->id != 0)) continue;
        int m = hot_swap_state(c.st, g);
        if (m == 1) continue;
        state_put_int(c.st, key("hs.%02x.%d", g.addr, g.id), 1);
        log_event(c.st, g.addr, "Hot Swap: FRU # %d M%d -> M1 (Set by command)", g.id, m);
        changed = true;
    }
    if (!changed) return void(say(c.out, "0x%02x: FRU # %d is already inactive (M1)", f->addr, f->id));
    say(c.out, "Command issued via IPMB, status = 0 (0x0)");
    say(c.out, "0x%02x: FRU # %d deactivated, now M1 (Inactive)", f->addr, f->id);
}

void cmd_setlocked(Ctx& c) {
    const Fru* f = fru_arg(c, 0);
    long flag = 0;
    if (!f || !int_arg(c, 2, "lock flag (1 to lock, 0 to unlock)", 0, 1, flag)) return;
    state_put_int(c.st, key("locked.%02x.%d", f->addr, f->id), flag);
    say(c.out, "0x%02x: FRU # %d is now %s", f->addr, f->id, flag ? "locked" : "unlocked");
}

}  // namespace shelfsim
