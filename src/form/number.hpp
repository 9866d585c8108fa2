// Reading numbers from form texts exactly as the target's 32-bit strtoul
// (base 10) reads them, whatever the width of unsigned long on the host.
#pragma once

#include <cstdint>

// The white space strtoul skips in the C locale: blank, \t, \n, \v, \f, \r.
inline bool is_c_space(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

// White space skipped, optional sign, digits up to the first non-digit;
// no digits read as 0. Digits beyond 4294967295 give 4294967295 whatever the
// sign; otherwise a minus sign negates modulo 2^32.
std::uint32_t read_ulong32(const char* text);

// The same reading taken as a signed 32-bit number ('4294967295' is -1).
std::int32_t read_long32(const char* text);
