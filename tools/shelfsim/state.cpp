#include "state.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace shelfsim {

namespace {
constexpr std::string_view header = "shelfsim-state 1";
}

const std::string* state_get(const State& st, std::string_view k) {
    auto it = st.kv.find(k);
    return it == st.kv.end() ? nullptr : &it->second;
}

std::string state_str(const State& st, std::string_view k, std::string_view def) {
    const std::string* v = state_get(st, k);
    return v ? *v : std::string(def);
}

long state_int(const State& st, std::string_view k, long def) {
    const std::string* v = state_get(st, k);
    if (!v || v->empty()) return def;
    char* end = nullptr;
    long n = std::strtol(v->c_str(), &end, 0);
    return (end && *end == '\0') ? n : def;
}

void state_put(State& st, std::string_view k, std::string_view value) {
    // Values are stored on one line; a line break would split the entry.
    std::string v(value);
    for (char& c : v)
        if (c == '\n' || c == '\r') c = ' ';
    auto it = st.kv.find(k);
    if (it != st.kv.end()) {
        if (it->second == v) return;
        it->second = v;
    } else {
        st.kv.emplace(std::string(k), v);
    }
    st.dirty = true;
}

void state_put_int(State& st, std::string_view k, long value) {
    state_put(st, k, std::to_string(value));
}

void state_erase_prefix(State& st, std::string_view prefix) {
    auto it = st.kv.lower_bound(prefix);
    while (it != st.kv.end() && std::string_view(it->first).substr(0, prefix.size()) == prefix) {
        it = st.kv.erase(it);
        st.dirty = true;
    }
}

std::string key(const char* fmt, ...) {
    char buf[96];
    va_list ap;
    va_start(ap, fmt);
    std::vsnprintf(buf, sizeof buf, fmt, ap);
    va_end(ap);
    return buf;
}

std::string state_format(const State& st) {
    std::string text(header);
    text += '\n';
    for (const auto& [k, v] : st.kv) {
        text += k;
        text += ' ';
        text += v;
        text += '\n';
    }
    return text;
}

bool state_parse(std::string_view text, State& st) {
    std::size_t eol = text.find('\n');
    if (eol == std::string_view::npos || text.substr(0, eol) != header) return false;
    text.remove_prefix(eol + 1);
    while (!text.empty()) {
        eol = text.find('\n');
        std::string_view line = text.substr(0, eol);
        text.remove_prefix(eol == std::string_view::npos ? text.size() : eol + 1);
        std::size_t sp = line.find(' ');
        if (sp == 0 || sp == std::string_view::npos) continue;   // damaged line
        st.kv[std::string(line.substr(0, sp))] = std::string(line.substr(sp + 1));
    }
    return true;
}

int state_lock(const char* path) {
    int fd = ::open(path, O_RDWR | O_CREAT | O_CLOEXEC, 0644);
    if (fd < 0) return -1;
    while (::flock(fd, LOCK_EX) != 0) {
        if (errno != EINTR) {
            ::close(fd);
            return -1;
        }
    }
    return fd;
}

bool state_read(int fd, std::string& text) {
    text.clear();
    char buf[8192];
    off_t off = 0;
    for (;;) {
        ssize_t n = ::pread(fd, buf, sizeof buf, off);
        if (n < 0) {
            if (errno == EINTR) continue;
            return false;
        }
        if (n == 0) return true;
        text.append(buf, static_cast<std::size_t>(n));
        off += n;
    }
}

bool state_write(int fd, const State& st) {
    // Rewritten in place: the lock belongs to this inode, so a rename would
    // let the next reader lock a different file than the current writer.
    std::string text = state_format(st);
    if (::ftruncate(fd, 0) != 0) return false;
    std::size_t done = 0;
    while (done < text.size()) {
        ssize_t n = ::pwrite(fd, text.data() + done, text.size() - done, static_cast<off_t>(done));
        if (n < 0) {
            if (errno == EINTR) continue;
            return false;
        }
        done += static_cast<std::size_t>(n);
    }
    return true;
}

void state_unlock(int fd) {
    if (fd < 0) return;
    ::flock(fd, LOCK_UN);
    ::close(fd);
}

}  // namespace shelfsim
