#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <unistd.h>

#include "state.h"

using namespace shelfsim;

TEST(State, ParseAcceptsOnlyStateFiles) {
    struct Case {
        const char* text;
        bool ok;
        std::size_t entries;
    } cases[] = {
        {"shelfsim-state 1\nfan.72.0 6\nalarm 0 1 0\n", true, 2},
        {"shelfsim-state 1\n", true, 0},
        {"shelfsim-state 1\nbroken\n ledonly\nfan.74.0 3", true, 1},   // damaged lines are skipped
        {"", false, 0},
        {"shelfsim-state 2\nfan.72.0 6\n", false, 0},
        {"\x01\x02garbage", false, 0},
    };
    for (const Case& c : cases) {
        State st;
        EXPECT_EQ(state_parse(c.text, st), c.ok) << c.text;
        EXPECT_EQ(st.kv.size(), c.entries) << c.text;
    }
}

TEST(State, FormatParseRoundTripKeepsValuesWithBlanks) {
    State st;
    state_put(st, "sel.000001", "2024-03-04 09:12:40|20|Shelf Manager started");
    state_put(st, "alarm", "0 1 0");
    State back;
    ASSERT_TRUE(state_parse(state_format(st), back));
    EXPECT_EQ(back.kv, st.kv);
}

TEST(State, PutMarksDirtyOnlyOnChangeAndKeepsOneLine) {
    State st;
    state_put(st, "a", "1");
    EXPECT_TRUE(st.dirty);
    st.dirty = false;
    state_put(st, "a", "1");
    EXPECT_FALSE(st.dirty);
    state_put(st, "a", "x\ny");
    EXPECT_EQ(*state_get(st, "a"), "x y");
    EXPECT_EQ(state_int(st, "a", 7), 7);   // not a number: the default
    state_put(st, "sel.000001", "x");
    state_put(st, "sel.000002", "y");
    state_put(st, "selnext", "3");
    state_erase_prefix(st, "sel.");
    EXPECT_EQ(st.kv.size(), 2u);
    EXPECT_EQ(state_int(st, "selnext", 0), 3);
}

TEST(State, LockedFileRewriteShrinksAndReadsBack) {
    char path[] = "/tmp/shelfsim-state-test-XXXXXX";
    int tmp = mkstemp(path);
    ASSERT_GE(tmp, 0);
    close(tmp);
    State big, small;
    for (int i = 0; i < 50; ++i) state_put(big, key("k.%03d", i), "a long value to make the file big");
    state_put(small, "only", "one");
    int fd = state_lock(path);
    ASSERT_GE(fd, 0);
    ASSERT_TRUE(state_write(fd, big));
    ASSERT_TRUE(state_write(fd, small));   // must not leave the tail of the bigger text
    std::string text;
    ASSERT_TRUE(state_read(fd, text));
    state_unlock(fd);
    EXPECT_EQ(text, "shelfsim-state 1\nonly one\n");
    std::remove(path);
}
