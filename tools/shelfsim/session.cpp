#include "session.h"

#include <cstdlib>

#include "answers.h"
#include "parse.h"
#include "state.h"

namespace shelfsim {

namespace {

constexpr const char* prompt = "CLI> ";

// A state holding the file's entries, or the defaults (event log included)
// when the file is new, empty or not a state file.
void load_state(int fd, State& st) {
    fill_defaults(st, false);
    std::string text;
    if (fd >= 0 && state_read(fd, text) && state_parse(text, st)) {
        st.dirty = false;
        return;
    }
    fill_defaults(st, true);
    st.dirty = true;
}

bool is_quit(std::string_view line) {
    std::vector<std::string_view> words = tokenize(line);
    return words.size() == 1 && (iequals(words[0], "quit") || iequals(words[0], "exit"));
}

}  // namespace

std::string run_command(std::string_view line, const SessionConfig& cfg) {
    std::string out;
    if (tokenize(line).empty()) return out;
    if (cfg.offline) return "can't interact with the shelf manager\n";
    int fd = state_lock(cfg.state_path.c_str());
    State st;
    load_state(fd, st);
    answer(line, st, out);
    if (fd >= 0 && st.dirty && !state_write(fd, st))
        std::fprintf(stderr, "shelfctl: cannot write the state file %s\n", cfg.state_path.c_str());
    if (fd < 0) std::fprintf(stderr, "shelfctl: cannot open the state file %s; changes are not kept\n", cfg.state_path.c_str());
    state_unlock(fd);
    return out;
}

int run_session(std::FILE* in, std::FILE* out, const SessionConfig& cfg) {
    std::fputs("Shelf manager command line interpreter, simulated shelf\n", out);
    std::fputs("Version 3.2.0 (simulated); type \"help\" for the commands, \"quit\" to leave\n", out);
    std::string line;
    for (;;) {
        std::fprintf(out, "%s\n", prompt);
        std::fflush(out);
        line.clear();
        int ch = 0;
        while ((ch = std::fgetc(in)) != EOF && ch != '\n') line += static_cast<char>(ch);
        if (ch == EOF && line.empty()) break;
        if (is_quit(line)) break;
        std::string answer_text = run_command(line, cfg);
        std::fwrite(answer_text.data(), 1, answer_text.size(), out);
        if (ch == EOF) {
            std::fprintf(out, "%s\n", prompt);
            break;
        }
    }
    std::fflush(out);
    return 0;
}

}  // namespace shelfsim
