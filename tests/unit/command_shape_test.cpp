#include "verbs/command_shape.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using namespace param;

// A form bound from name/value pairs, as the registry verbs see it.
struct bound_form {
    std::vector<std::string> texts;
    std::vector<char*> items;
    form_input form;
    explicit bound_form(std::vector<std::string> pairs) : texts(std::move(pairs)) {
        for (std::string& s : texts) items.push_back(s.data());
        items.push_back(nullptr);
        form.items = items.data();
        bind_params(form.params, form.items);
    }
};

// Ids past 63 (value, raw, feed0), a caller's text, and a place that gives
// way to another field when that one is present.
constexpr command_shape high_ids = {
    "h %s %s %s%s", {given_text(), take(feed0), take(value), take(raw).except({value})}, params_of({feed0, raw})};

}  // namespace

TEST(CommandShape, HighIdsCallerTextAndPlacesThatGiveWay) {
    struct {
        std::vector<std::string> pairs;
        std::string text;
        bool complete;
    } cases[] = {
        {{}, "h name  ", false},
        {{"feed0", "F", "raw", "R"}, "h name F R", true},
        {{"feed0", "F", "value", "V", "raw", "R"}, "h name F V", true},
        {{"raw", "R"}, "h name  R", false},
        {{"value", "V", "addr1_0", "A", "command", "C"}, "h name  V", false},
        {{"value", "", "raw", "R"}, "h name  R", false},
    };
    for (const auto& c : cases) {
        bound_form input(c.pairs);
        command_text command;
        append_shape(input.form, high_ids, command, "name");
        EXPECT_EQ(command.view(), c.text);
        EXPECT_EQ(all_present(input.form, high_ids.complete), c.complete) << c.text;
        EXPECT_EQ(none_present(input.form, params_of({value, raw})), c.text.find_first_of("VR") == std::string::npos)
            << c.text;
    }
}
