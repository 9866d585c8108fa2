#include "model.h"

#include "parse.h"

namespace shelfsim {
namespace {

const Ipmc ipmcs[] = {
    {0x20, "shm1", 0, "Shelf Manager", 3, 1, profile_shm},
    {0x82, "board1", 1, "CPU Board", 0, 1, profile_board},
    {0x84, "board2", 2, "CPU Board", 0, 2, profile_board},
    {0x86, "board3", 3, "Switch Board", 0, 3, profile_board},
    {0x88, "board4", 4, "Storage Board", 0, 4, profile_board},
    {0x72, "fantray1", 0, "Fan Tray 1", 4, 1, profile_fan},
    {0x74, "fantray2", 0, "Fan Tray 2", 4, 2, profile_fan},
};

const Fru frus[] = {
    {0x20, 0, "Shelf Manager", 3, false, true},
    {0x20, 1, "Shelf FRU Information", 2, false, true},
    {0x82, 0, "CPU Board", 0, false, false},
    {0x82, 1, "Rear Transition Module", 9, false, false},
    {0x84, 0, "CPU Board", 0, false, false},
    {0x86, 0, "Switch Board", 0, false, false},
    {0x88, 0, "Storage Board", 0, false, false},
    {0x72, 0, "Fan Tray 1", 4, true, false},
    {0x74, 0, "Fan Tray 2", 4, true, false},
};

// Thresholds are raw values in the order lnr, lcr, lnc, unc, ucr, unr.
const SensorDef sensors[] = {
    {profile_shm, 0, "Hot Swap", 0xf0, "Hot Swap", nullptr, 1, 0, 0, {}, 0, 0},
    {profile_shm, 1, "Shelf Temp", 0x01, "Temperature", "degrees C", 1, 0, 31,
     {0, 2, 5, 55, 65, 75}, 2, 2},
    {profile_shm, 2, "+3.3V", 0x02, "Voltage", "Volts", 0.02, 0, 165,
     {145, 150, 155, 175, 180, 185}, 1, 1},
    {profile_board, 0, "Hot Swap", 0xf0, "Hot Swap", nullptr, 1, 0, 0, {}, 0, 0},
    {profile_board, 1, "CPU Temp", 0x01, "Temperature", "degrees C", 1, 0, 47,
     {0, 2, 5, 75, 85, 95}, 2, 2},
    {profile_board, 2, "Board Temp", 0x01, "Temperature", "degrees C", 1, 0, 36,
     {0, 2, 5, 60, 70, 80}, 2, 2},
    {profile_board, 3, "+12V", 0x02, "Voltage", "Volts", 0.1, 0, 121,
     {102, 108, 114, 126, 132, 138}, 1, 1},
    {profile_fan, 0, "Hot Swap", 0xf0, "Hot Swap", nullptr, 1, 0, 0, {}, 0, 0},
    // The fan speed follows the fan level (see fan_tach_raw in the answers).
    {profile_fan, 1, "Fan Tach", 0x04, "Fan", "RPM", 60, 0, 0,
     {5, 8, 12, 240, 245, 250}, 1, 1},
    {profile_fan, 2, "Inlet Temp", 0x01, "Temperature", "degrees C", 1, 0, 26,
     {0, 2, 5, 45, 50, 55}, 2, 2},
};

const LedDef leds[led_count] = {
    {0, "BLUE LED", "BLUE"},
    {1, "LED 1", "RED"},
    {2, "LED 2", "GREEN"},
    {3, "LED 3", "AMBER"},
};

const ConfigParam lan_params[] = {
    {1, "Authentication Type Support", k_fixed, true, false, 0, "0x15 (none, MD5, straight password)",
     "0x15 (none, MD5, straight password)"},
    {3, "IP Address", k_ip, false, false, 0, "192.0.2.10", "198.51.100.10"},
    {4, "IP Address Source", k_source, false, false, 0, "static", "static"},
    {5, "MAC Address", k_mac, false, false, 0, "00:00:5e:00:53:10", "00:00:5e:00:53:11"},
    {6, "Subnet Mask", k_ip, false, false, 0, "255.255.255.0", "255.255.255.0"},
    {12, "Default Gateway Address", k_ip, false, false, 0, "192.0.2.1", "198.51.100.1"},
    {13, "Default Gateway MAC Address", k_mac, false, false, 0, "00:00:5e:00:53:01",
     "00:00:5e:00:53:02"},
    {20, "802.1q VLAN ID", k_number, false, false, 4095, "0", "0"},
};

const ConfigParam pef_params[] = {
    {1, "PEF Control", k_number, false, false, 15, "1", nullptr},
    {2, "PEF Action Global Control", k_number, false, false, 63, "0x01", nullptr},
    {3, "PEF Startup Delay (seconds)", k_number, false, false, 255, "60", nullptr},
    {4, "PEF Alert Startup Delay (seconds)", k_number, false, false, 255, "60", nullptr},
    {5, "Number of Event Filters", k_fixed, true, false, 0, "4", nullptr},
    {6, "Event Filter Table", k_bytes, false, true, 0, "0x00 0x00 0x00 0x00", nullptr},
    {8, "Number of Alert Policy Entries", k_fixed, true, false, 0, "4", nullptr},
    {9, "Alert Policy Table", k_bytes, false, true, 0, "0x00 0x00 0x00", nullptr},
};

const char* const site_names[] = {
    "Front Board", "Power Entry", "Shelf FRU Information", "Dedicated Shelf Manager",
    "Fan Tray", "Fan Filter Tray", "Alarm", "Mezzanine Module", "PMC", "Rear Transition Module",
};

const char* const thr_short[threshold_count] = {"lnr", "lcr", "lnc", "unc", "ucr", "unr"};
const char* const thr_long[threshold_count] = {
    "Lower Non-Recoverable", "Lower Critical", "Lower Non-Critical",
    "Upper Non-Critical", "Upper Critical", "Upper Non-Recoverable",
};

template <typename T, std::size_t N>
constexpr std::size_t length(const T (&)[N]) { return N; }

}  // namespace

const Ipmc* ipmc_table(std::size_t& count) { count = length(ipmcs); return ipmcs; }
const Fru* fru_table(std::size_t& count) { count = length(frus); return frus; }
const SensorDef* sensor_table(std::size_t& count) { count = length(sensors); return sensors; }
const LedDef* led_table() { return leds; }
const ConfigParam* lan_param_table(std::size_t& count) { count = length(lan_params); return lan_params; }
const ConfigParam* pef_param_table(std::size_t& count) { count = length(pef_params); return pef_params; }

const Ipmc* find_ipmc(unsigned addr) {
    for (const Ipmc& i : ipmcs)
        if (i.addr == addr) return &i;
    return nullptr;
}

const Ipmc* find_ipmc_sym(std::string_view sym) {
    for (const Ipmc& i : ipmcs)
        if (iequals(sym, i.sym)) return &i;
    return nullptr;
}

const Ipmc* find_slot(int slot) {
    for (const Ipmc& i : ipmcs)
        if (i.slot != 0 && i.slot == slot) return &i;
    return nullptr;
}

const Fru* find_fru(unsigned addr, int id) {
    for (const Fru& f : frus)
        if (f.addr == addr && f.id == id) return &f;
    return nullptr;
}

const SensorDef* find_sensor(const Ipmc& ipmc, int num) {
    for (const SensorDef& s : sensors)
        if (s.profile == ipmc.profile && s.num == num) return &s;
    return nullptr;
}

const ConfigParam* find_param(const ConfigParam* table, std::size_t count, int num) {
    for (std::size_t i = 0; i < count; ++i)
        if (table[i].num == num) return &table[i];
    return nullptr;
}

const char* site_type_name(int type) {
    if (type < 0 || static_cast<std::size_t>(type) >= length(site_names)) return "Unknown";
    return site_names[type];
}

const char* threshold_name(int t) { return thr_short[t]; }
const char* threshold_long_name(int t) { return thr_long[t]; }

int threshold_index(std::string_view word) {
    for (int t = 0; t < threshold_count; ++t)
        if (iequals(word, thr_short[t])) return t;
    return -1;
}

}  // namespace shelfsim
