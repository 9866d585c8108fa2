#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "page/fixed_text.hpp"
#include "page/verb_page.hpp"

namespace {

const verb_page test_page = {.header = "H", .heading = "<h>", .back_link = "B"};
const verb_page bare_page = {
    .header = "H", .heading = "<h>", .back_link = "B", .output_opener = "</P><HR>", .output_closer = "<HR>"};

int tool_runs = 0;
void fake_tool(std::FILE* out, const command_text& command) {
    ++tool_runs;
    std::fprintf(out, "[%s]", command.c_str());
}

std::string render(const verb_plan& plan) {
    char* text = nullptr;
    std::size_t size = 0;
    std::FILE* out = open_memstream(&text, &size);
    write_page(out, plan, fake_tool);
    std::fclose(out);
    std::string page(text, size);
    std::free(text);
    return page;
}

}  // namespace

TEST(WritePage, PutsRefusalsBeforeTheToolAndNeverRunsItTwice) {
    struct {
        std::string command, heading, notes;
        std::string_view refusal;
        const verb_page* page;
        std::string expected;
        int runs;
    } cases[] = {
        {"cmd x", "", "", "", &test_page, "H<HR><P><h></P><HR><PRE>[cmd x]</PRE><HR>B</BODY></HTML>", 1},
        {"cmd", "<H2> dyn </H2>", "n1<BR>n2<BR>", "", &test_page,
         "H<HR><P><H2> dyn </H2>n1<BR>n2<BR></P><HR><PRE>[cmd]</PRE><HR>B</BODY></HTML>", 1},
        {"cmd", "", "", "Missing<BR>", &test_page, "H<HR><P><h></P><HR><PRE>Missing<BR></PRE><HR>B</BODY></HTML>", 0},
        {"a\nb", "", "", "Missing<BR>", &test_page, "H<HR><P><h></P><HR><PRE>Missing<BR></PRE><HR>B</BODY></HTML>", 0},
        {"a\nb", "", "", "", &test_page,
         "H<HR><P><h></P><HR><PRE>A value may not contain a line break<BR></PRE><HR>B</BODY></HTML>", 0},
        {std::string(229, 'x'), "", "", "", &test_page,
         "H<HR><P><h></P><HR><PRE>The command is too long to send<BR></PRE><HR>B</BODY></HTML>", 0},
        {"c", "", "", "", &bare_page, "H<HR><P><h></P><HR>[c]<HR>B</BODY></HTML>", 1},
    };
    for (const auto& c : cases) {
        verb_plan plan;
        plan.page = c.page;
        plan.command.append(c.command);
        plan.heading.append(c.heading);
        plan.notes.append(c.notes);
        plan.refusal = c.refusal;
        tool_runs = 0;
        EXPECT_EQ(render(plan), c.expected);
        EXPECT_EQ(tool_runs, c.runs);
    }
}

TEST(FixedText, RefusesToOverflowAndSaysSo) {
    fixed_text<8> text;
    EXPECT_TRUE(text.append("abc"));
    EXPECT_FALSE(text.append("defgh"));
    EXPECT_EQ(text.view(), "abcdefg");
    EXPECT_TRUE(text.overflowed());
    EXPECT_FALSE(text.append("x"));
    EXPECT_EQ(text.view(), "abcdefg");

    struct {
        std::string_view tmpl;
        std::initializer_list<std::string_view> args;
        std::string_view expected;
    } cases[] = {
        {"fru %s %s %s", {"", "0x82", "1"}, "fru  0x82 1"},
        {"sel info %s %s ", {"", ""}, "sel info   "},
        {"shelf %s slot%s %s", {"x", "4", ""}, "shelf x slot4 "},
        {"%s%%s", {"a", "b"}, "a%b"},
        {"a %s", {}, "a "},
        {"%", {"z"}, "%"},
    };
    for (const auto& c : cases) {
        fixed_text<64> filled;
        EXPECT_TRUE(append_filled(filled, c.tmpl, c.args));
        EXPECT_EQ(filled.view(), c.expected);
    }
    fixed_text<6> small;
    EXPECT_FALSE(append_filled(small, "ab %s", {"cdef"}));
    EXPECT_EQ(small.view(), "ab cd");
    EXPECT_TRUE(small.overflowed());
}
