#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
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

// A form the size the pages post stays in the room; one pair or one byte
// more is allocated, and decodes to the same list either way.
TEST(FormRoom, HoldsFormsUpToItsSizeAndAllocatesLarger) {
    struct {
        std::size_t pairs, pad;  // "a=1" pairs, then a value of `pad` bytes in the last
        bool items_in_room, body_in_room;
    } cases[] = {{128, 0, true, true}, {129, 0, false, true}, {1, 4093, true, true}, {1, 4094, true, false}};
    for (const auto& c : cases) {
        std::string body;
        for (std::size_t i = 0; i < c.pairs; ++i) body += i == 0 ? "a=1" : "&a=1";
        body += std::string(c.pad, 'x');
        static form_room room;
        char* text = body.size() < sizeof room.body ? room.body : static_cast<char*>(std::malloc(body.size() + 1));
        body.copy(text, body.size());
        text[body.size()] = '\0';
        form_vars vars;
        ASSERT_TRUE(decode_form_body(text, vars, &room));
        EXPECT_EQ(vars.items_allocated, !c.items_in_room) << body.size();
        EXPECT_EQ(vars.body_allocated, !c.body_in_room) << body.size();
        std::size_t count = 0;
        while (vars.items[count] != nullptr) ++count;
        EXPECT_EQ(count, 2 * c.pairs);
        std::string last_value = "1";
        last_value.append(c.pad, 'x');
        EXPECT_EQ(vars.items[2 * c.pairs - 1], last_value);
        release_form_vars(vars);
    }
}

// Only an entry named exactly `name`, followed by "=", gives its value.
TEST(EnvironmentValue, MatchesTheWholeName) {
    char path[] = "PATH=/bin", pathx[] = "PATHX=/x", bare[] = "PATH", empty[] = "PATH=", pat[] = "PAT=/p";
    struct {
        std::vector<char*> env;
        const char* value;
    } cases[] = {{{pathx, path}, "/bin"}, {{bare, pat}, nullptr}, {{empty, path}, ""}, {{}, nullptr}};
    for (auto& c : cases) {
        c.env.push_back(nullptr);
        const char* value = environment_value(c.env.data(), "PATH");
        EXPECT_EQ(value == nullptr ? "(none)" : std::string(value), c.value == nullptr ? "(none)" : c.value);
    }
    EXPECT_EQ(environment_value(nullptr, "PATH"), nullptr);
}
