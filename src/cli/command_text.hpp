// The one-line command a verb sends to shelfctl, in its 1024-byte buffer.
#pragma once

#include <cstdarg>
#include <string_view>

#include "text/fixed_text.hpp"

// The longest command text whose classic pipeline line
// "echo -e \"<text>\nquit\n\" | shelfctl" (27 fixed characters) fits the
// 255-character line buffer; anything longer is refused, never cut.
inline constexpr std::size_t max_sendable_command = 228;

class command_text {
public:
    bool append(std::string_view s) {
        if (s.find_first_of("\r\n") != std::string_view::npos) line_break_ = true;
        return text_.append(s);
    }
    // Number slots only ("%d"): formatted numbers hold no line break.
    __attribute__((format(printf, 2, 3))) bool appendf(const char* fmt, ...) {
        va_list ap;
        va_start(ap, fmt);
        bool whole = text_.vappendf(fmt, ap);
        va_end(ap);
        return whole;
    }

    std::string_view view() const { return text_.view(); }
    const char* c_str() const { return text_.c_str(); }
    bool overflowed() const { return text_.overflowed(); }
    // True when any appended piece held a line feed or carriage return,
    // including a piece that did not fit.
    bool has_line_break() const { return line_break_; }

private:
    fixed_text<1024> text_;
    bool line_break_ = false;
};

