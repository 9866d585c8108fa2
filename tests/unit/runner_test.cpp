#include <gtest/gtest.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "cli/runner.hpp"

namespace {

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
}

// The silence limit ends a hung tool before a server's timeout (45 s in the
// shipped configurations) ends the gateway with it.
TEST(ToolLimits, AreThirtySecondsOfSilenceAndSixteenMiB) {
    EXPECT_EQ(tool_limits_in_force.silence_seconds, 30);
    EXPECT_EQ(tool_limits_in_force.max_output_mib, 16u);
}
