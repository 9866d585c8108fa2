#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "form/form_vars.hpp"
#include "form/number.hpp"
#include "verbs/command_shape.hpp"

// Every kind of white space strtoul skips before a number, and the
// characters just outside that range, before each number the gateway reads.
TEST(NumberReading, SkipsEachKindOfWhiteSpaceAndNothingElse) {
    struct {
        const char* prefix;
        bool skipped;
    } cases[] = {
        {" ", true}, {"\t", true}, {"\n", true}, {"\v", true}, {"\f", true}, {"\r", true},
        {"\b", false}, {"\x0e", false}, {"\x1f", false}, {"!", false},
    };
    for (const auto& c : cases) {
        std::string text = std::string(c.prefix) + "7";
        EXPECT_EQ(read_ulong32(text.c_str()), c.skipped ? 7u : 0u) << static_cast<int>(c.prefix[0]);
        EXPECT_EQ(parse_content_length(text.c_str()), c.skipped ? 7u : 0u) << static_cast<int>(c.prefix[0]);
    }
}

// A set is complete only when every one of its parameters is bound, the
// first id and the last among them.
TEST(ParameterSets, AreCompleteOnlyWithEveryParameterBound) {
    auto bound = [](std::initializer_list<std::uint32_t> ids) {
        static char one[] = "1";
        std::vector<char*> items;
        for (std::uint32_t id : ids)
            for (const param_entry& entry : param_table)
                if (entry.id == id) items.insert(items.end(), {const_cast<char*>(entry.name.data()), one});
        items.push_back(nullptr);
        form_input form;
        bind_params(form.params, items.data());
        return form;
    };
    for (std::uint32_t id = 0; id < param_count; ++id) {
        const param::id other = id == param::value ? param::tr : param::value;
        const param_set set = params_of({static_cast<param::id>(id), other});
        EXPECT_FALSE(all_present(bound({other}), set)) << "without parameter " << id;
        EXPECT_TRUE(all_present(bound({other, id}), set)) << "with parameter " << id;
    }
}
