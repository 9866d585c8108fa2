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

// A place filled only after the ones before it, a fixed word that needs two
// fields, and a fallback for an unfilled place.
constexpr command_shape chained = {
    "w %s %s%s %s",
    {take(addr1_0), put("id=").when({addr1_0, id2_0}), take(id2_0).when({addr1_0}),
     take(addr1_3).when({addr1_0, id2_0}).or_else("ALL")},
    params_of({addr1_0, id2_0})};

constexpr command_form forms[] = {
    {2, {"two"}},
    {0, {"zero"}},
    {std::nullopt, {"other"}},
};

}  // namespace

TEST(CommandShape, FillsEachPlaceOnlyWhenWhatItNeedsIsPresent) {
    struct {
        std::vector<std::string> pairs;
        std::string text;
        bool complete;
    } cases[] = {
        {{}, "w   ALL", false},
        {{"addr1_0", "A"}, "w A  ALL", false},
        {{"id2_0", "I", "addr1_3", "L"}, "w   ALL", false},
        {{"addr1_0", "A", "id2_0", "I"}, "w A id=I ALL", true},
        {{"addr1_0", "A", "id2_0", "I", "addr1_3", "L"}, "w A id=I L", true},
        {{"addr1_0", "A", "id2_0", "", "addr1_3", "L"}, "w A  ALL", false},
        {{"addr1_0", "%s", "id2_0", "%d"}, "w %s id=%d ALL", true},
    };
    for (const auto& c : cases) {
        bound_form input(c.pairs);
        command_text command;
        append_shape(input.form, chained, command);
        EXPECT_EQ(command.view(), c.text);
        EXPECT_EQ(all_present(input.form, chained.complete), c.complete) << c.text;
    }
}

TEST(CommandShape, PicksTheFormByReqTypeWithAbsentReadingAsZero) {
    struct {
        std::vector<std::string> pairs;
        std::string picked;
    } cases[] = {
        {{}, "zero"},
        {{"req_type", ""}, "zero"},
        {{"req_type", "x"}, "zero"},
        {{"req_type", "2"}, "two"},
        {{"req_type", " 2x"}, "two"},
        {{"req_type", "-4294967294"}, "two"},
        {{"req_type", "1"}, "other"},
        {{"req_type", "4294967298"}, "other"},
        {{"Req_type", "2"}, "zero"},
    };
    for (const auto& c : cases) {
        bound_form input(c.pairs);
        EXPECT_EQ(pick_shape(input.form, forms).tmpl, c.picked) << (c.pairs.empty() ? "" : c.pairs[1]);
    }
}

namespace {

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

TEST(CommandShape, PicksByTheNamedSelector) {
    struct {
        std::vector<std::string> pairs;
        std::string picked;
    } cases[] = {
        {{"req_type_pwrdelay", "2"}, "two"},
        {{"req_type_pwrdelay", "1", "req_type", "2"}, "other"},
        {{"req_type", "2"}, "zero"},
    };
    for (const auto& c : cases) {
        bound_form input(c.pairs);
        EXPECT_EQ(pick_shape(input.form, forms, req_type_pwrdelay).tmpl, c.picked) << c.pairs[1];
    }
}
