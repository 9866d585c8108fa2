// Answers of the simulated shelf manager: one handler per command word,
// each reading its arguments from Ctx and writing answer lines to out.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "model.h"
#include "state.h"

namespace shelfsim {

struct Ctx {
    State& st;
    std::string& out;
    std::vector<std::string_view> args;   // words after the command word, options removed
    bool verbose = false;                 // an option word containing 'v' was given
    std::string opts;                     // letters of all option words ("-v -d" gives "vd")
    const char* usage = nullptr;          // shown after an "Invalid argument" line
};

// Answers one command line; the answer lines are appended to out.
void answer(std::string_view line, State& st, std::string& out);

// Contents of a fresh state; the event log is added only when with_log.
void fill_defaults(State& st, bool with_log);

// --- helpers shared by the handlers -------------------------------------

void say(std::string& out, const char* fmt, ...) __attribute__((format(printf, 2, 3)));
// Writes "Invalid argument: ..." and returns false.
bool invalid(Ctx& c, const char* fmt, ...) __attribute__((format(printf, 2, 3)));
// Removes option words standing at args[from] and after, noting their letters.
void strip_flags(Ctx& c, std::size_t from);
// args[i] exists, or an error naming what is missing.
bool need(Ctx& c, std::size_t i, const char* what);
// args[i] as an IPMB address ("0x82") or a physical-slot name ("board1").
const Ipmc* ipmc_arg(Ctx& c, std::size_t i);
// args[i] names the controller, args[i + 1] the FRU id.
const Fru* fru_arg(Ctx& c, std::size_t i);
bool int_arg(Ctx& c, std::size_t i, const char* what, long min, long max, long& out);
bool uint_arg(Ctx& c, std::size_t i, const char* what, unsigned long max, unsigned long& out);
// Appends an entry to the event log.
void log_event(State& st, unsigned addr, const char* fmt, ...) __attribute__((format(printf, 3, 4)));

// --- shelf state accessors ----------------------------------------------

int fan_level(const State& st, const Fru& f);
int hot_swap_state(const State& st, const Fru& f);
bool fru_locked(const State& st, const Fru& f);
int sensor_raw(const State& st, const Ipmc& ipmc, const SensorDef& s);
void sensor_thresholds(const State& st, const Ipmc& ipmc, const SensorDef& s, int thr[threshold_count]);
// Worst threshold crossed by the reading: -1 none, else a Threshold index.
int sensor_status(const State& st, const Ipmc& ipmc, const SensorDef& s);
bool ipmb_enabled(const State& st, unsigned addr, int bus);
const char* hot_swap_name(int m);

// --- handlers, by family --------------------------------------------------

void cmd_fru(Ctx&);
void cmd_frudata(Ctx&);
void cmd_fruinfo(Ctx&);
void cmd_getfruledstate(Ctx&);
void cmd_setfruledstate(Ctx&);
void cmd_board(Ctx&);
void cmd_boardreset(Ctx&);
void cmd_ipmc(Ctx&);
void cmd_activate(Ctx&);
void cmd_deactivate(Ctx&);
void cmd_setlocked(Ctx&);

void cmd_sensor(Ctx&);
void cmd_sensordata(Ctx&);
void cmd_getthreshold(Ctx&);
void cmd_setthreshold(Ctx&);
void cmd_gethysteresis(Ctx&);
void cmd_sethysteresis(Ctx&);
void cmd_getsensoreventenable(Ctx&);
void cmd_setsensoreventenable(Ctx&);
void cmd_sel(Ctx&);

void cmd_version(Ctx&);
void cmd_whoami(Ctx&);
void cmd_session(Ctx&);
void cmd_switchover(Ctx&);
void cmd_alarm(Ctx&);
void cmd_showunhealthy(Ctx&);
void cmd_getipmbstate(Ctx&);
void cmd_setipmbstate(Ctx&);
void cmd_shelf(Ctx&);
void cmd_fans(Ctx&);
void cmd_getfanlevel(Ctx&);
void cmd_setfanlevel(Ctx&);
void cmd_getlanconfig(Ctx&);
void cmd_setlanconfig(Ctx&);
void cmd_getpefconfig(Ctx&);
void cmd_setpefconfig(Ctx&);

}  // namespace shelfsim
