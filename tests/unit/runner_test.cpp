#include <gtest/gtest.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "cli/runner.hpp"

namespace {

// Feeds `lines` through a fresh filter; returns what the page would get.
std::string filtered(const std::vector<std::string>& lines) {
    output_filter filter;
    std::string page;
    for (const std::string& line : lines) {
        filter_step step = filter.next(line);
        if (step == filter_step::copy) page += line;
        if (step == filter_step::cant_interact) page += cant_interact_message;
        if (step == filter_step::stop || step == filter_step::cant_interact) break;
    }
    return page;
}

std::vector<std::string> pieces_of(const std::string& output) {
    int fds[2];
    EXPECT_EQ(pipe(fds), 0);
    EXPECT_EQ(write(fds[1], output.data(), output.size()), static_cast<ssize_t>(output.size()));
    close(fds[1]);
    piece_reader reader(fds[0], tool_limits_in_force);
    std::vector<std::string> pieces;
    for (std::string_view piece; reader.next(piece);) pieces.emplace_back(piece);
    close(fds[0]);
    return pieces;
}

}  // namespace

TEST(OutputFilter, KeepsTheAnswerBetweenTheFirstTwoPrompts) {
    struct {
        std::vector<std::string> lines;
        std::string page;
    } cases[] = {
        {{"banner\n", "CLI> \n", "line a\n", "line b\n", "CLI> \n", "after\n"}, "line a\nline b\n"},
        {{"CLI> \n", "can't interact with shelf manager\n", "more\n"}, std::string(cant_interact_message)},
        {{"CLI> \n", "x\n", "Last item obtained.\n", "y\n"}, "x\n"},
        {{"can't interact with x\n", "CLI> \n", "a\n"}, "a\n"},
        {{"banner\n", "no prompt\n"}, ""},
        {{"CLI>\n", "<b>&amp;\n"}, "<b>&amp;\n"},
        {{"CLI> \n", "a\n"}, "a\n"},
        {{"CLI\n", "a\n", "CLI>x\n", "b\n", "CLI> \n"}, "b\n"},
        {{"CLI> \n", "Can't interact with\n", "cli> \n", "Last item\n", "CLI>"}, "Can't interact with\ncli> \nLast item\n"},
    };
    for (const auto& c : cases) EXPECT_EQ(filtered(c.lines), c.page);
}

TEST(PieceReader, CutsLinesAt254Bytes) {
    std::string long_line(300, 'x');
    struct {
        std::string output;
        std::vector<std::string> pieces;
    } cases[] = {
        {"a\nb\n", {"a\n", "b\n"}},
        {"a\nlast", {"a\n", "last"}},
        {long_line + "\n", {std::string(254, 'x'), std::string(46, 'x') + "\n"}},
        {std::string(254, 'y') + "\n", {std::string(254, 'y'), "\n"}},
        {std::string(253, 'z') + "\n", {std::string(253, 'z') + "\n"}},
        {std::string("a\0b\n", 4) + "c\n", {"a", "c\n"}},
        {"", {}},
    };
    for (const auto& c : cases) EXPECT_EQ(pieces_of(c.output), c.pieces);
    // A continuation that begins with a stop text stops the copy.
    std::vector<std::string> lines = {"CLI> \n"};
    for (auto& piece : pieces_of(std::string(254, 'x') + "CLI> tail\n")) lines.push_back(piece);
    EXPECT_EQ(filtered(lines), std::string(254, 'x'));
}

TEST(CommandRefusal, LineBreaksFirstThenLength) {
    struct {
        std::vector<std::string> pieces;
        std::string_view refusal;
    } cases[] = {
        {{"version"}, ""},
        {{std::string(228, 'a')}, ""},
        {{std::string(229, 'a')}, "The command is too long to send<BR>"},
        {{std::string(5000, 'a')}, "The command is too long to send<BR>"},
        {{"a\nb"}, "A value may not contain a line break<BR>"},
        {{"a\rb"}, "A value may not contain a line break<BR>"},
        {{std::string(300, 'a') + "\n"}, "A value may not contain a line break<BR>"},
        {{std::string(2000, 'a'), "\n"}, "A value may not contain a line break<BR>"},
        {{"$(reboot) `id` \"'\\n;|&"}, ""},
    };
    for (const auto& c : cases) {
        command_text command;
        for (const std::string& piece : c.pieces) command.append(piece);
        EXPECT_EQ(command_refusal(command), c.refusal);
        EXPECT_LE(command.view().size(), 1023u);
    }
}

TEST(ToolEnvironment, DropsWhatTheClientChoseAndKeepsTheServersSettings) {
    std::vector<std::string> entries = {
        "PATH=/opt/shelf/bin:/usr/bin", "HTTP_USER_AGENT=$(id)", "SHELFSIM_STATE=/tmp/s", "QUERY_STRING=a=1",
        "CONTENT_TYPE=x", "CONTENT_LENGTH=3", "PATH_INFO=/x", "PATH_TRANSLATED=/w/x", "REQUEST_URI=/cgi-bin/x",
        "REQUEST_METHOD=POST", "HTTP_=", "HTTPS=on", "HTTP_COOKIE", "SERVER_NAME=shelf", "REQUEST_METHODS=kept",
        "QUERY_STRING", "REMOTE_USER=operator", "X=HTTP_Y"};
    std::vector<char*> env;
    for (std::string& entry : entries) env.push_back(entry.data());
    env.push_back(nullptr);
    EXPECT_EQ(keep_tool_environment(env.data()), 7u);
    std::vector<std::string> kept(env.begin(), env.begin() + 7);
    EXPECT_EQ(kept, (std::vector<std::string>{"PATH=/opt/shelf/bin:/usr/bin", "SHELFSIM_STATE=/tmp/s", "HTTPS=on",
                                              "SERVER_NAME=shelf", "REQUEST_METHODS=kept", "REMOTE_USER=operator",
                                              "X=HTTP_Y"}));
    EXPECT_EQ(env[7], nullptr);
}
