#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "form/form_vars.hpp"
#include "form/number.hpp"
#include "verbs/command_shape.hpp"

TEST(ParseContentLength, RefusesWhatCanNeverBeRead) {
    struct {
        const char* text;
        std::size_t length;
    } cases[] = {
        {"23", 23}, {" 23", 23}, {"3abc", 3}, {"1:", 1}, {"+5", 5},
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

// Each kind of white space strtoul skips before a number, and the
// characters beside them, before each number the gateway reads.
TEST(NumberReading, SkipsEachKindOfWhiteSpaceAndNothingElse) {
    for (std::string prefix : {" ", "\t", "\n", "\v", "\f", "\r", "\b", "\x0e", "!"}) {
        std::uint32_t expected = prefix == "\b" || prefix == "\x0e" || prefix == "!" ? 0 : 7;
        EXPECT_EQ(read_ulong32((prefix + "7").c_str()), expected) << static_cast<int>(prefix[0]);
        EXPECT_EQ(parse_content_length((prefix + "7").c_str()), expected) << static_cast<int>(prefix[0]);
    }
}

// A set is complete only with every one of its parameters bound, whatever its id.
TEST(ParameterSets, AreCompleteOnlyWithEveryParameterBound) {
    static char one[] = "1";
    for (std::uint32_t id = 0; id < param_count; ++id) {
        const param::id other = id == param::value ? param::tr : param::value;
        const param_set set = params_of({static_cast<param::id>(id), other});
        std::vector<char*> items;
        for (std::uint32_t bound : {std::uint32_t{other}, id}) {
            for (const param_entry& entry : param_table)
                if (entry.id == bound) items.insert(items.end(), {const_cast<char*>(entry.name.data()), one});
            items.push_back(nullptr);
            form_input form;
            bind_params(form.params, items.data());
            EXPECT_EQ(all_present(form, set), bound == id) << "parameter " << id;
            items.pop_back();
        }
    }
}

// Only an entry named exactly `name`, followed by "=", gives its value.
TEST(EnvironmentValue, MatchesTheWholeName) {
    char pathx[] = "PATHX=/x", bare[] = "PATH", pat[] = "PAT=/p", empty[] = "PATH=", path[] = "PATH=/bin";
    char* env[] = {pathx, bare, pat, empty, path, nullptr};
    EXPECT_STREQ(environment_value(env, "PATH"), "");
    EXPECT_STREQ(environment_value(env + 4, "PATH"), "/bin");
    EXPECT_EQ(environment_value(env + 5, "PATH"), nullptr);
    EXPECT_EQ(environment_value(env, "PATHX="), nullptr);
}
