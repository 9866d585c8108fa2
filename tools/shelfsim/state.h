// The persistent state of the simulated shelf: a sorted set of
// "key value" entries kept in one text file, read and rewritten under an
// exclusive flock so that concurrent requests never lose each other's
// changes.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace shelfsim {

struct State {
    std::map<std::string, std::string, std::less<>> kv;
    bool dirty = false;   // changed since it was read
};

const std::string* state_get(const State& st, std::string_view key);
std::string state_str(const State& st, std::string_view key, std::string_view def);
long state_int(const State& st, std::string_view key, long def);
void state_put(State& st, std::string_view key, std::string_view value);
void state_put_int(State& st, std::string_view key, long value);
void state_erase_prefix(State& st, std::string_view prefix);

// Key built like printf ("fan.72.0").
std::string key(const char* fmt, ...) __attribute__((format(printf, 1, 2)));

// Text form: a header line, then one "key value" line per entry.
std::string state_format(const State& st);
// Adds the entries of a text to st; false when the header is missing
// (an empty, foreign or damaged file), in which case st is unchanged.
bool state_parse(std::string_view text, State& st);

// Opens (creating it if needed) and exclusively locks the state file.
// Returns the descriptor, or -1 when the file cannot be opened.
int state_lock(const char* path);
// Reads the whole locked file into text.
bool state_read(int fd, std::string& text);
// Replaces the contents of the locked file by the text form of st.
bool state_write(int fd, const State& st);
// Releases the lock and closes the descriptor.
void state_unlock(int fd);

}  // namespace shelfsim
