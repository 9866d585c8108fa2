// Splitting a command line into words and reading numbers from words.
// The gateway leaves empty places in its command texts (two adjacent
// blanks, trailing blanks), so words are separated by any run of blanks.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace shelfsim {

// Words of a line, separated by blanks, tabs or carriage returns.
std::vector<std::string_view> tokenize(std::string_view line);

// ASCII case-insensitive comparison.
bool iequals(std::string_view a, std::string_view b);

// An option word such as "-v": a dash followed by a letter ("-1" is a number).
bool is_flag(std::string_view word);

// Unsigned number, decimal or "0x" hexadecimal, whole word, at most max.
bool parse_uint(std::string_view word, unsigned long max, unsigned long& out);

// Signed decimal number within [min, max], whole word.
bool parse_int(std::string_view word, long min, long max, long& out);

// Decimal number with optional sign and fraction ("12", "-40.5").
bool parse_real(std::string_view word, double& out);

// A word made safe to repeat in an answer: at most 32 characters, control
// characters replaced, so an echoed word can never start a new line.
std::string clip(std::string_view word);

}  // namespace shelfsim
