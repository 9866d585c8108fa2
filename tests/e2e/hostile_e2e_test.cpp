// Hostile requests end to end: each gives a complete page with the right
// text in its output block (and the tool run with exactly the intended
// line, or not at all), or no output and status 1. Never a crash, a hang
// or a write past a buffer (the sanitized and valgrind runs see to that).
#include <gtest/gtest.h>

#include <string>

#include "gateway_run.hpp"

namespace {

const page_literals sensor_literals = {
    "Content-type: text/html\n\n<HTML><HEAD>  <TITLE> Corvane&#8482; Shelf Manager, Sensor Information "
    "</TITLE></HEAD><BODY>",
    "<H2> Sensor Information </H2>", "<A HREF=\"/verbs/sensor.html\"> Back to the previous page </A>"};
const page_literals version_literals = {
    "Content-type: text/html\n\n<HTML><HEAD>  <TITLE> Corvane&#8482; Shelf Manager, Version Information "
    "</TITLE></HEAD><BODY>",
    "<H2> Version Information </H2>", "<A HREF=\"/verbs/version.html\"> Back to the previous page </A>"};

constexpr const char* line_break = "A value may not contain a line break<BR>";
constexpr const char* too_long = "The command is too long to send<BR>";
constexpr const char* verbose_note = "Verbose mode turned on <BR>";

enum class outcome { runs, refused, no_output };

struct hostile_case {
    std::string what;
    std::string body;
    std::optional<std::string> content_length = std::nullopt;  // default: the body's size
    outcome expect = outcome::runs;
    std::string sent = "";        // runs: the command text the tool must receive
    std::string refusal = "";     // refused: the message in the output block
    std::string notes = "";
    std::optional<std::string> method = "POST";
};

std::string repeat(const std::string& piece, std::size_t times) {
    std::string text;
    text.reserve(piece.size() * times);
    for (std::size_t i = 0; i < times; ++i) text += piece;
    return text;
}

std::string binary_bytes() {
    std::string bytes;
    for (int b = 1; b < 256; ++b) bytes += static_cast<char>(b);
    return bytes;
}

}  // namespace

TEST(HostileE2E, EveryRequestEndsInAPageOrInSilence) {
    const std::string big = std::string(1 << 20, 'x');
    const hostile_case cases[] = {
        // Shell metacharacters reach the tool as plain text, in every position.
        {"command substitution", "addr1_0=%24(reboot)&id3_0=1", {}, outcome::runs, "sensor  $(reboot) 1"},
        {"backquotes", "addr1_0=%60id%60", {}, outcome::runs, "sensor  `id` "},
        {"double quote", "addr1_0=%22&id3_0=%22%22", {}, outcome::runs, "sensor  \" \"\""},
        {"single quote", "addr1_0='&id3_0=''", {}, outcome::runs, "sensor  ' ''"},
        {"literal backslash-n", "addr1_0=a%5Cnb", {}, outcome::runs, "sensor  a\\nb "},
        {"backslash at the end", "addr1_0=a%5C", {}, outcome::runs, "sensor  a\\ "},
        {"semicolon", "addr1_0=%3Breboot%3B", {}, outcome::runs, "sensor  ;reboot; "},
        {"pipe", "addr1_0=a%7Ccat", {}, outcome::runs, "sensor  a|cat "},
        {"ampersand", "addr1_0=a%26%26b", {}, outcome::runs, "sensor  a&&b "},
        {"redirections", "addr1_0=%3E%2Ftmp%2Fx&id3_0=%3C%2Fetc%2Fpasswd", {}, outcome::runs,
         "sensor  >/tmp/x </etc/passwd"},
        {"metacharacters first", "verbose=%24(id)%3B%7C%26&addr1_0=0x82&id3_0=%24HOME", {}, outcome::runs,
         "sensor $(id);|& 0x82 $HOME", "", verbose_note},
        {"metacharacters last", "addr1_0=0x82&id3_0=%60reboot%60%7C%7Cx", {}, outcome::runs,
         "sensor  0x82 `reboot`||x"},
        {"echo escapes", "addr1_0=%5Cc%5C0101%5Cx41", {}, outcome::runs, "sensor  \\c\\0101\\x41 "},
        {"glob and tilde", "addr1_0=*&id3_0=~root", {}, outcome::runs, "sensor  * ~root"},
        {"metacharacters in a name", "%24(reboot)=1&addr1_0=0x82", {}, outcome::runs, "sensor  0x82 "},
        // Line breaks never split the command.
        {"line feed", "addr1_0=%0A", {}, outcome::refused, "", line_break},
        {"carriage return", "addr1_0=a%0Db", {}, outcome::refused, "", line_break},
        {"line feed and quit", "addr1_0=0x82&id3_0=1%0Aquit%0Aboardreset+1", {}, outcome::refused, "", line_break},
        {"line break before length", "addr1_0=" + std::string(500, 'a') + "%0A", {}, outcome::refused, "",
         line_break},
        {"line break in an unread field", "pti_sym1_1=%0A&addr1_0=0x82", {}, outcome::runs, "sensor  0x82 "},
        // Zero bytes and broken escapes.
        {"escaped zero cuts the value", "addr1_0=a%00b&id3_0=2", {}, outcome::runs, "sensor  a 2"},
        {"escaped zero empties the value", "addr1_0=%00&id3_0=2", {}, outcome::runs, "sensor   "},
        {"raw zero ends the body", std::string("addr1_0=1\0&id3_0=2", 18), {}, outcome::runs, "sensor  1 "},
        {"truncated escape", "addr1_0=5%", {}, outcome::runs, "sensor  5% "},
        {"half escape", "addr1_0=%4", {}, outcome::runs, "sensor  %4 "},
        {"invalid escape", "addr1_0=%zz%gg", {}, outcome::runs, "sensor  S\x10 "},
        {"escaped escape", "addr1_0=%2541", {}, outcome::runs, "sensor  %41 "},
        {"plus and escaped plus", "addr1_0=a+b%2Bc", {}, outcome::runs, "sensor  a b+c "},
        // Sizes.
        {"228 characters are sent", "addr1_0=" + std::string(219, 'a'), {}, outcome::runs,
         "sensor  " + std::string(219, 'a') + " "},
        {"229 characters are not", "addr1_0=" + std::string(220, 'a'), {}, outcome::refused, "", too_long},
        {"value of 10000", "addr1_0=" + std::string(10000, 'v'), {}, outcome::refused, "", too_long},
        {"verbose of 10000", "verbose=" + std::string(10000, 'v'), {}, outcome::refused, "", too_long,
         verbose_note},
        {"name of 10000", std::string(10000, 'n') + "=1&addr1_0=0x82", {}, outcome::runs, "sensor  0x82 "},
        {"body of 1 MB", "junk=" + big + "&addr1_0=0x82&id3_0=4", {}, outcome::runs, "sensor  0x82 4"},
        {"value of 1 MB", "addr1_0=" + big, {}, outcome::refused, "", too_long},
        {"100000 fields", repeat("a=1&", 100000) + "addr1_0=0x82", {}, outcome::runs, "sensor  0x82 "},
        {"100000 repeated names", repeat("addr1_0=1&", 100000) + "addr1_0=2", {}, outcome::runs, "sensor  2 "},
        {"repeated names, last empty", "addr1_0=1&addr1_0=2&addr1_0=", {}, outcome::runs, "sensor  2 "},
        {"binary bytes", binary_bytes(), {}, outcome::runs, "sensor   "},
        {"only separators", "&&&===&&", {}, outcome::runs, "sensor   "},
        // CONTENT_LENGTH that cannot be read ends with status 1.
        {"length 2^31", "addr1_0=1", "2147483648", outcome::no_output},
        {"length 2^32", "addr1_0=1", "4294967296", outcome::no_output},
        {"length 2^32 + 9", "addr1_0=1", "4294967305", outcome::no_output},
        {"length 2^64", "addr1_0=1", "18446744073709551616", outcome::no_output},
        {"length 2^64 + 9", "addr1_0=1", "18446744073709551625", outcome::no_output},
        {"length far beyond", "addr1_0=1", std::string(400, '9'), outcome::no_output},
        {"negative length", "addr1_0=1", "-9", outcome::no_output},
        {"negative 2^32", "addr1_0=1", "-4294967296", outcome::no_output},
        {"blank length", "addr1_0=1", "   ", outcome::no_output},
        {"empty length", "addr1_0=1", "", outcome::no_output},
        {"zero length", "addr1_0=1", "0", outcome::no_output},
        {"length longer than the body", "addr1_0=1", "100", outcome::no_output},
        {"length with trailing text", "addr1_0=0x82&tail", "12abc", outcome::runs, "sensor  0x82 "},
        {"length shorter than the body", "addr1_0=0x82", "7", outcome::runs, "sensor   "},
        // Methods other than POST have no fields.
        {"unknown method", "addr1_0=0x82", {}, outcome::runs, "sensor   ", "", "", "DELETE"},
        {"lower-case post", "addr1_0=0x82", {}, outcome::runs, "sensor   ", "", "", "post"},
        {"no method", "addr1_0=0x82", {}, outcome::runs, "sensor   ", "", "", std::nullopt},
    };
    for (const hostile_case& c : cases) {
        SCOPED_TRACE(c.what);
        gateway_request request = post("sensor", c.body);
        request.method = c.method;
        request.content_length = c.content_length;
        gateway_result r = run_gateway(request);
        switch (c.expect) {
            case outcome::runs:
                EXPECT_EQ(r.status, 0);
                EXPECT_EQ(r.out, expected_page(sensor_literals, c.notes, stub_answer(c.sent)));
                EXPECT_EQ(r.tool_input, tool_input_for(c.sent));
                break;
            case outcome::refused:
                EXPECT_EQ(r.status, 0);
                EXPECT_EQ(r.out, expected_page(sensor_literals, c.notes, c.refusal));
                EXPECT_FALSE(r.tool_input.has_value());
                break;
            case outcome::no_output:
                EXPECT_EQ(r.status, 1);
                EXPECT_EQ(r.out, "");
                EXPECT_FALSE(r.tool_input.has_value());
                break;
        }
    }
}

TEST(HostileE2E, OverlongInvocationNamesTakeTheNotFoundPath) {
    for (const std::string& name : {std::string(5000, 's'), "/" + std::string(5000, 'd') + "/sensor.cgi",
                                    std::string(5000, '/'), "sensor" + std::string(5000, '.')}) {
        gateway_result r = run_gateway(get(name));
        bool is_sensor = name.find("sensor") != std::string::npos;
        SCOPED_TRACE(name.substr(0, 20));
        EXPECT_EQ(r.status, is_sensor ? 0 : 234);
        std::string page = is_sensor ? expected_page(sensor_literals, "", stub_answer("sensor   "))
                                     : "Can't find the requested command\n" +
                                           expected_page(version_literals, "", stub_answer("version"));
        EXPECT_EQ(r.out, page);
    }
}
