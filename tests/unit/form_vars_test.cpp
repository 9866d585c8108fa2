#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "form/form_vars.hpp"

TEST(ParseContentLength, RefusesWhatCanNeverBeRead) {
    struct {
        const char* text;
        std::size_t length;
    } cases[] = {
        {"23", 23}, {" 23", 23}, {"3abc", 3}, {"1:", 1}, {"\v\f\r4", 4}, {"+5", 5},
        {nullptr, 0}, {"", 0}, {"0", 0}, {"-1", 0},
        {"abc", 0}, {"-0", 0}, {"18446744073709551616", 0}, {"18446744073709551625", 0}, {"184467440737095516159", 0},
        {"9223372036854775808", 0}, {"99999999999999999999999999", 0},
    };
    for (const auto& c : cases)
        EXPECT_EQ(parse_content_length(c.text), c.length) << (c.text ? c.text : "(unset)");
    // 2^31 and 2^32 fit a 64-bit host's buffer sizes but not a 32-bit target's.
    EXPECT_EQ(parse_content_length("4294967296"), sizeof(std::size_t) == 8 ? 4294967296u : 0u);
}

TEST(FormListBytes, RefusesWhatWouldWrapOnTheTarget) {
    constexpr std::uint64_t max32 = UINT32_MAX;
    struct {
        std::uint64_t segments, entry_size, limit, bytes;
    } cases[] = {
        {1, 4, max32, 12},
        {(1ull << 29) - 1, 4, max32, (1ull << 32) - 4},  // the largest list a 32-bit target can hold
        {1ull << 29, 4, max32, 0},                       // 512 MiB of "&": 2^32 + 4 bytes would wrap to 4
        {1ull << 31, 4, max32, 0},
        {1ull << 29, 8, UINT64_MAX, ((1ull << 30) + 1) * 8},
        {1ull << 62, 8, UINT64_MAX, 0},
    };
    for (const auto& c : cases) EXPECT_EQ(form_list_bytes(c.segments, c.entry_size, c.limit), c.bytes) << c.segments;
}
