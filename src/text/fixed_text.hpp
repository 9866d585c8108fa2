// Fixed-capacity text that refuses to overflow: appends stop at the
// capacity, the text stays zero-terminated, and the cut is reported.
#pragma once

#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <initializer_list>
#include <string_view>

template <std::size_t Capacity>  // bytes, terminating zero included
class fixed_text {
    static_assert(Capacity >= 1);

public:
    fixed_text() { buf_[0] = '\0'; }

    static constexpr std::size_t capacity() { return Capacity - 1; }
    std::size_t size() const { return len_; }
    bool empty() const { return len_ == 0; }
    bool overflowed() const { return overflowed_; }
    const char* c_str() const { return buf_; }
    std::string_view view() const { return {buf_, len_}; }

    void clear() {
        len_ = 0;
        overflowed_ = false;
        buf_[0] = '\0';
    }

    // Appends what fits; returns false when anything was cut.
    bool append(std::string_view s) {
        std::size_t room = capacity() - len_;
        std::size_t n = s.size() <= room ? s.size() : room;
        for (std::size_t i = 0; i < n; ++i) buf_[len_ + i] = s[i];
        len_ += n;
        buf_[len_] = '\0';
        if (n < s.size()) overflowed_ = true;
        return n == s.size();
    }

    // printf-style append for number slots ("%d"); at most 63 characters.
    __attribute__((format(printf, 2, 3))) bool appendf(const char* fmt, ...) {
        va_list ap;
        va_start(ap, fmt);
        bool whole = vappendf(fmt, ap);
        va_end(ap);
        return whole;
    }

    bool vappendf(const char* fmt, va_list ap) {
        char scratch[64];
        int n = std::vsnprintf(scratch, sizeof scratch, fmt, ap);
        if (n < 0) return false;
        std::size_t want = static_cast<std::size_t>(n);
        std::size_t got = want < sizeof scratch ? want : sizeof scratch - 1;
        bool whole = append({scratch, got});
        if (got < want) overflowed_ = true;
        return whole && got == want;
    }

private:
    char buf_[Capacity];
    std::size_t len_ = 0;
    bool overflowed_ = false;
};

// Fills a template in which every "%s" takes the next argument (an absent
// field is passed as the empty text); works for any text with append().
template <typename Text>
bool append_filled(Text& text, std::string_view tmpl, std::initializer_list<std::string_view> args) {
    const std::string_view* next = args.begin();
    bool whole = true;
    std::size_t literal_start = 0;
    for (std::size_t i = 0; i + 1 < tmpl.size(); ++i) {
        if (tmpl[i] != '%' || tmpl[i + 1] != 's') continue;
        whole &= text.append({tmpl.data() + literal_start, i - literal_start});
        if (next != args.end()) whole &= text.append(*next++);
        literal_start = i + 2;
        ++i;
    }
    whole &= text.append({tmpl.data() + literal_start, tmpl.size() - literal_start});
    return whole;
}
