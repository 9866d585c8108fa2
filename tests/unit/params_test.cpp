#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "form/params.hpp"
#include "page/verb_page.hpp"

namespace {

// A null-terminated name/value list over the given texts.
struct item_list {
    std::vector<std::string> texts;
    std::vector<char*> items;
    explicit item_list(std::vector<std::string> t) : texts(std::move(t)) {
        for (std::string& s : texts) items.push_back(s.data());
        items.push_back(nullptr);
    }
};

}  // namespace

TEST(ParamTable, HoldsSeventyTwoUniqueIdsAndNames) {
    std::set<std::uint32_t> ids;
    std::set<std::string_view> names;
    for (const param_entry& entry : param_table) {
        EXPECT_LT(entry.id, param_count);
        EXPECT_FALSE(entry.name.empty());
        ids.insert(entry.id);
        names.insert(entry.name);
    }
    EXPECT_EQ(ids.size(), param_count);
    EXPECT_EQ(names.size(), param_count);
    EXPECT_EQ(param_table[30].name, "req_type_sel");
    EXPECT_EQ(param_table[70].name, "raw");
    EXPECT_EQ(param_table[71].name, "value");
}

TEST(BindParams, LastNonEmptyValueOfAKnownNameWins) {
    struct {
        std::vector<std::string> texts;
        std::uint32_t id;
        const char* expected;  // null: absent
    } cases[] = {
        {{"req_type", "1", "req_type", "2"}, param::req_type, "2"},
        {{"req_type", "1", "req_type", ""}, param::req_type, "1"},
        {{"addr1_0", ""}, param::addr1_0, nullptr},
        {{"submit", "req_type", "addr1_0", "20"}, param::req_type, nullptr},
        {{"submit", "req_type", "addr1_0", "20"}, param::addr1_0, "20"},
        {{"Verbose", "1"}, param::verbose, nullptr},
        {{"req_type_sel", "0"}, param::req_type_sel, "0"},
        {{"raw", "r", "value", "v"}, param::raw, "r"},
        {{"raw", "r", "value", "v"}, param::value, "v"},
        {{"value2_pwrdelay", "9"}, param::value2_pwrdelay, "9"},
        {{"verbose", "1"}, 72, nullptr},
        {{"verbose", "1"}, 4000000000u, nullptr},
    };
    for (const auto& c : cases) {
        item_list list(c.texts);
        param_registry registry;
        bind_params(registry, list.items.data());
        bind_params(registry, list.items.data());  // a second binding changes nothing
        const char* got = param_value(registry, c.id);
        if (c.expected == nullptr) {
            EXPECT_EQ(got, nullptr) << c.id;
        } else {
            ASSERT_NE(got, nullptr) << c.id;
            EXPECT_STREQ(got, c.expected);
        }
    }
    param_registry unbound;
    bind_params(unbound, nullptr);
    for (const param_entry& entry : param_table) EXPECT_EQ(param_value(unbound, entry.id), nullptr);
}

TEST(PostVarValue, ComparesNamesOnlyAndSkipsEmptyValues) {
    struct {
        std::vector<std::string> texts;
        const char* expected;
    } cases[] = {
        {{"verbose", "1", "verbose", "2", "verbose", ""}, "2"},
        {{"verbose", ""}, nullptr},
        {{"x", "verbose", "y", "1"}, nullptr},
        {{"Verbose", "1", "verbosee", "2"}, nullptr},
        {{}, nullptr},
    };
    for (const auto& c : cases) {
        item_list list(c.texts);
        const char* got = post_var_value(list.items.data(), "verbose");
        if (c.expected == nullptr) {
            EXPECT_EQ(got, nullptr);
        } else {
            ASSERT_NE(got, nullptr);
            EXPECT_STREQ(got, c.expected);
        }
    }
    EXPECT_EQ(post_var_value(nullptr, "verbose"), nullptr);
}
