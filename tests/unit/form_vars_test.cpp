#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "form/form_vars.hpp"

namespace {

using pairs = std::vector<std::pair<std::string, std::string>>;

pairs decode(std::string body) {
    char* text = static_cast<char*>(std::malloc(body.size() + 1));
    std::memcpy(text, body.data(), body.size());
    text[body.size()] = '\0';
    form_vars vars;
    EXPECT_TRUE(decode_form_body(text, vars));
    pairs result;
    for (char** p = vars.items; *p != nullptr; p += 2) result.emplace_back(p[0], p[1]);
    release_form_vars(vars);
    return result;
}

}  // namespace

TEST(DecodeFormBody, SplitsAndDecodes) {
    struct {
        std::string body;
        pairs expected;
    } cases[] = {
        {"req_type=1&addr1_0=0x20", {{"req_type", "1"}, {"addr1_0", "0x20"}}},
        {"a=1&&b", {{"a", "1"}, {"b", ""}}},
        {"a=x%3Dy%26z+w", {{"a", "x=y&z w"}}},
        {"a%2Bb=c+d", {{"a+b", "c d"}}},
        {"=v", {{"", "v"}}},
        {"&&", {}},
        {"", {}},
        {"&a=1&", {{"a", "1"}}},
        {"a=b=c", {{"a", "b=c"}}},
        {"a=1&a=2&a=", {{"a", "1"}, {"a", "2"}, {"a", ""}}},
        {"a=%00b", {{"a", ""}}},
        {std::string("a=1\0&b=2", 8), {{"a", "1"}}},
        {"a=5%", {{"a", "5%"}}},
        {"a=%4", {{"a", "%4"}}},
        {"a=%", {{"a", "%"}}},
        {"a=%2541", {{"a", "%41"}}},
        {"a=%7e%7E", {{"a", "~~"}}},
        {"%3D=%26", {{"=", "&"}}},
        {"x=$(reboot)%0A`id`", {{"x", "$(reboot)\n`id`"}}},
        {"verbose=x&addr1_0", {{"verbose", "x"}, {"addr1_0", ""}}},  // no "=" after another field
        {std::string("a=%\x01") + "1b", {{"a", "\x11" "b"}}},  // a control character is a digit too
    };
    for (const auto& c : cases) EXPECT_EQ(decode(c.body), c.expected) << c.body;
}

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

TEST(RequestMethodKind, OnlyExactPostHasABody) {
    struct {
        const char* method;
        int kind;
    } cases[] = {{"POST", 1}, {"GET", 0}, {"HEAD", 0}, {"post", -1}, {"PUT", -1}, {"", -1},
                 {nullptr, -1}, {"POST ", -1}, {"GETX", -1}};
    for (const auto& c : cases) EXPECT_EQ(request_method_kind(c.method), c.kind) << (c.method ? c.method : "(unset)");
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
