#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

#include "main/verb_table.hpp"

// The table holds the 33 verbs in their fixed order, the same list the web
// root's links are made from.
TEST(VerbTable, MatchesTheDeployedVerbList) {
    std::ifstream list(VERBGW_VERB_LIST);
    std::vector<std::string> deployed;
    for (std::string name; std::getline(list, name);) deployed.push_back(name);
    std::vector<std::string> table;
    for (const verb_entry& verb : verb_table) table.emplace_back(verb.name);
    EXPECT_EQ(table, deployed);
    EXPECT_EQ(table.size(), 33u);
    for (const verb_entry& verb : verb_table) {
        EXPECT_EQ(find_verb(verb.name), &verb);
        EXPECT_NE(verb.page, nullptr);
        EXPECT_NE(verb.plan, nullptr);
    }
}

TEST(VerbTable, NameIsTheLastComponentCutAtItsFirstDot) {
    struct {
        const char* invocation;
        std::string_view name;
    } cases[] = {
        {"/www/cgi-bin/sensor.cgi", "sensor"}, {"shelf", "shelf"}, {"/a.b/fru", "fru"}, {"sel.x.y", "sel"},
        {"/cgi-bin/", ""}, {".sensor", ""}, {"", ""}, {nullptr, ""}, {"a/b/", ""}, {"//x", "x"},
    };
    for (const auto& c : cases) EXPECT_EQ(verb_name_of(c.invocation), c.name) << (c.invocation ? c.invocation : "null");
    for (const char* unknown : {"SENSOR", "sensors", "", "Version"}) EXPECT_EQ(find_verb(unknown), nullptr);
}
