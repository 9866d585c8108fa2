#include <gtest/gtest.h>

#include "form/number.hpp"

TEST(ReadUlong32, ReadsAsTheTargetsStrtoul) {
    struct {
        const char* text;
        std::uint32_t value;
    } cases[] = {
        {"1", 1}, {" 1", 1}, {"\t\n 7", 7}, {"\v\f\r8", 8}, {"01", 1}, {"1x", 1}, {"+1", 1}, {"", 0}, {"abc", 0},
        {"-", 0}, {"+", 0}, {"- 1", 0}, {"x1", 0}, {"2", 2},
        {"4294967295", 4294967295u}, {"4294967296", 4294967295u}, {"4294967297", 4294967295u},
        {"99999999999999999999999", 4294967295u}, {"-1", 4294967295u}, {"-2", 4294967294u},
        {"-4294967295", 1}, {"-4294967296", 4294967295u}, {"-0", 0}, {"-1x", 4294967295u},
        {"4294967306x", 4294967295u}, {"00000000000000000000017", 17},
    };
    for (const auto& c : cases) EXPECT_EQ(read_ulong32(c.text), c.value) << '\'' << c.text << '\'';
}

TEST(ReadLong32, TakesTheUnsignedResultAsSigned) {
    struct {
        const char* text;
        std::int32_t value;
    } cases[] = {
        {"-2", -2}, {"4294967295", -1}, {"99999999999", -1}, {"-4294967295", 1}, {"2147483648", INT32_MIN},
        {"abc", 0}, {"3", 3},
    };
    for (const auto& c : cases) EXPECT_EQ(read_long32(c.text), c.value) << '\'' << c.text << '\'';
}
