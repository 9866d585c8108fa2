#include "parse.h"

#include <cstdlib>
#include <cstring>

namespace shelfsim {

namespace {

bool is_blank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }
bool is_digit(char c) { return c >= '0' && c <= '9'; }
char lower(char c) { return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c; }

int hex_value(char c) {
    if (is_digit(c)) return c - '0';
    c = lower(c);
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return -1;
}

}  // namespace

std::vector<std::string_view> tokenize(std::string_view line) {
    std::vector<std::string_view> words;
    std::size_t i = 0;
    while (i < line.size()) {
        while (i < line.size() && is_blank(line[i])) ++i;
        std::size_t start = i;
        while (i < line.size() && !is_blank(line[i])) ++i;
        if (i > start) words.push_back(line.substr(start, i - start));
    }
    return words;
}

bool iequals(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (lower(a[i]) != lower(b[i])) return false;
    return true;
}

bool is_flag(std::string_view word) {
    if (word.size() < 2 || word[0] != '-') return false;
    char c = lower(word[1]);
    return c >= 'a' && c <= 'z';
}

bool parse_uint(std::string_view word, unsigned long max, unsigned long& out) {
    unsigned long long value = 0;
    int base = 10;
    if (word.size() > 2 && word[0] == '0' && lower(word[1]) == 'x') {
        base = 16;
        word.remove_prefix(2);
    }
    if (word.empty()) return false;
    for (char c : word) {
        int d = base == 16 ? hex_value(c) : (is_digit(c) ? c - '0' : -1);
        if (d < 0) return false;
        value = value * base + static_cast<unsigned>(d);
        if (value > max) return false;
    }
    out = static_cast<unsigned long>(value);
    return true;
}

bool parse_int(std::string_view word, long min, long max, long& out) {
    bool negative = false;
    if (!word.empty() && (word[0] == '-' || word[0] == '+')) {
        negative = word[0] == '-';
        word.remove_prefix(1);
    }
    if (word.empty() || word.size() > 12) return false;
    long value = 0;
    for (char c : word) {
        if (!is_digit(c)) return false;
        value = value * 10 + (c - '0');
    }
    if (negative) value = -value;
    if (value < min || value > max) return false;
    out = value;
    return true;
}

bool parse_real(std::string_view word, double& out) {
    if (word.empty() || word.size() > 24) return false;
    std::size_t i = 0;
    if (word[0] == '-' || word[0] == '+') ++i;
    std::size_t digits = 0;
    bool point = false;
    for (; i < word.size(); ++i) {
        if (is_digit(word[i])) {
            ++digits;
        } else if (word[i] == '.' && !point) {
            point = true;
        } else {
            return false;
        }
    }
    if (digits == 0) return false;
    char buf[32];
    std::memcpy(buf, word.data(), word.size());
    buf[word.size()] = '\0';
    out = std::strtod(buf, nullptr);
    return true;
}

std::string clip(std::string_view word) {
    constexpr std::size_t limit = 32;
    std::string s;
    for (std::size_t i = 0; i < word.size() && i < limit; ++i) {
        unsigned char c = static_cast<unsigned char>(word[i]);
        s += (c < 0x20 || c == 0x7f) ? '?' : static_cast<char>(c);
    }
    if (word.size() > limit) s += "...";
    return s;
}

}  // namespace shelfsim
