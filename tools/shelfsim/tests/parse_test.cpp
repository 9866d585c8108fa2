#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "parse.h"

using namespace shelfsim;

TEST(Parse, TokenizeCollapsesEmptyPlaces) {
    struct Case {
        std::string line;
        std::vector<std::string> words;
    } cases[] = {
        {"getfanlevel  0x72 0", {"getfanlevel", "0x72", "0"}},
        {"sel info   ", {"sel", "info"}},
        {"  \t\r", {}},
        {"fru\ttype=S  /7\r", {"fru", "type=S", "/7"}},
        {"", {}},
    };
    for (const Case& c : cases) {
        std::vector<std::string> got;
        for (std::string_view w : tokenize(c.line)) got.emplace_back(w);
        EXPECT_EQ(got, c.words) << '"' << c.line << '"';
    }
}

TEST(Parse, UnsignedNumbers) {
    struct Case {
        const char* word;
        unsigned long max;
        bool ok;
        unsigned long value;
    } cases[] = {
        {"0x82", 0xff, true, 0x82},  {"130", 0xff, true, 130},  {"0X1f", 0xff, true, 0x1f},
        {"0x100", 0xff, false, 0},   {"256", 0xff, false, 0},   {"0x", 0xff, false, 0},
        {"", 0xff, false, 0},        {"12a", 0xff, false, 0},   {"-1", 0xff, false, 0},
        {"99999999999999999999999", 0xffffffff, false, 0},     {"0xfff", 0xfff, true, 0xfff},
    };
    for (const Case& c : cases) {
        unsigned long v = 0;
        EXPECT_EQ(parse_uint(c.word, c.max, v), c.ok) << c.word;
        if (c.ok) {
            EXPECT_EQ(v, c.value) << c.word;
        }
    }
}

TEST(Parse, SignedAndRealNumbers) {
    struct IntCase {
        const char* word;
        bool ok;
        long value;
    } ints[] = {{"-2", true, -2}, {"+7", true, 7}, {"-", false, 0}, {"1.5", false, 0}, {"1234567890123456", false, 0}};
    for (const IntCase& c : ints) {
        long v = 0;
        EXPECT_EQ(parse_int(c.word, -1000, 1000, v), c.ok) << c.word;
        if (c.ok) {
            EXPECT_EQ(v, c.value) << c.word;
        }
    }
    struct RealCase {
        const char* word;
        bool ok;
        double value;
    } reals[] = {{"-40.5", true, -40.5}, {"12", true, 12}, {".5", true, 0.5}, {"nan", false, 0},
                 {"1e3", false, 0},      {".", false, 0},  {"1.2.3", false, 0}, {"0x10", false, 0}};
    for (const RealCase& c : reals) {
        double v = 0;
        EXPECT_EQ(parse_real(c.word, v), c.ok) << c.word;
        if (c.ok) {
            EXPECT_DOUBLE_EQ(v, c.value) << c.word;
        }
    }
}

TEST(Parse, FlagsAndClipping) {
    EXPECT_TRUE(is_flag("-v"));
    EXPECT_TRUE(is_flag("-Dump"));
    EXPECT_FALSE(is_flag("-1"));
    EXPECT_FALSE(is_flag("-"));
    EXPECT_FALSE(is_flag("v"));
    EXPECT_EQ(clip("a\nb\x7f"), "a?b?");
    EXPECT_EQ(clip(std::string(100, 'x')), std::string(32, 'x') + "...");
}
