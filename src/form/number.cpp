#include "form/number.hpp"

std::uint32_t read_ulong32(const char* text) {
    const char* p = text;
    while (is_c_space(*p)) ++p;
    bool negative = false;
    if (*p == '+' || *p == '-') negative = *p++ == '-';
    std::uint64_t value = 0;
    bool saturated = false;
    for (; *p >= '0' && *p <= '9'; ++p) {
        value = value * 10 + static_cast<std::uint64_t>(*p - '0');
        if (value > UINT32_MAX) {
            saturated = true;
            value = UINT32_MAX;
        }
    }
    if (saturated) return UINT32_MAX;
    std::uint32_t result = static_cast<std::uint32_t>(value);
    return negative ? static_cast<std::uint32_t>(0u - result) : result;
}

std::int32_t read_long32(const char* text) {
    return static_cast<std::int32_t>(read_ulong32(text));
}
