// Fixed description of the simulated shelf: its IPM controllers, FRUs,
// sensors, LEDs, power feeds and the LAN/PEF parameter sets. Everything here
// is constant data in plain arrays, so start-up costs nothing.
#pragma once

#include <cstddef>
#include <string_view>

namespace shelfsim {

enum Profile { profile_shm, profile_board, profile_fan };

struct Ipmc {
    unsigned addr;        // IPMB address (8-bit form)
    const char* sym;      // physical-slot name accepted in place of the address
    int slot;             // physical slot of a front board, 0 for other sites
    const char* name;
    int site_type;
    int site_num;
    Profile profile;
};

struct Fru {
    unsigned addr;
    int id;
    const char* name;
    int site_type;
    bool fan;             // a fan tray: has a fan level
    bool permanent;       // may not be deactivated (the shelf manager itself)
};

enum Threshold { t_lnr, t_lcr, t_lnc, t_unc, t_ucr, t_unr, threshold_count };

struct SensorDef {
    Profile profile;
    int num;
    const char* name;
    int type_code;
    const char* type_name;
    const char* unit;     // nullptr for a discrete sensor
    double m;             // reading = raw * m + b
    double b;
    int raw;              // nominal raw reading
    int thr[threshold_count];
    int hyst_pos;
    int hyst_neg;
};

struct LedDef {
    int id;
    const char* name;
    const char* color;
};

enum ParamKind { k_ip, k_mac, k_source, k_number, k_bytes, k_fixed };

struct ConfigParam {
    int num;
    const char* name;
    ParamKind kind;
    bool read_only;
    bool has_selector;    // value addressed by a set selector (1..4)
    long max;             // upper bound for k_number
    const char* def1;     // default (channel 1 for LAN)
    const char* def2;     // default (channel 2 for LAN)
};

inline constexpr int slot_count = 6;
inline constexpr int feed_count = 2;
inline constexpr int led_count = 4;
inline constexpr int fan_level_max = 15;
inline constexpr int lan_channel_count = 2;
inline constexpr int pef_selector_max = 4;
inline constexpr int shm_addr = 0x20;

const Ipmc* ipmc_table(std::size_t& count);
const Fru* fru_table(std::size_t& count);
const SensorDef* sensor_table(std::size_t& count);
const LedDef* led_table();
const ConfigParam* lan_param_table(std::size_t& count);
const ConfigParam* pef_param_table(std::size_t& count);

const Ipmc* find_ipmc(unsigned addr);
const Ipmc* find_ipmc_sym(std::string_view sym);
const Ipmc* find_slot(int slot);
const Fru* find_fru(unsigned addr, int id);
const SensorDef* find_sensor(const Ipmc& ipmc, int num);
const ConfigParam* find_param(const ConfigParam* table, std::size_t count, int num);

const char* site_type_name(int type);
const char* threshold_name(int t);        // "lnr" ...
const char* threshold_long_name(int t);   // "Lower Non-Recoverable" ...
int threshold_index(std::string_view word);   // -1 when unknown

}  // namespace shelfsim
