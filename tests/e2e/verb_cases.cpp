#include "verb_cases.hpp"

#include <gtest/gtest.h>

void expect_verb_page(const std::string& verb, const page_literals& page, const verb_case& c) {
    SCOPED_TRACE(verb + " " + c.body.value_or("(GET)"));
    gateway_result r = run_gateway(c.body ? post(verb, *c.body) : get(verb));
    EXPECT_EQ(r.status, 0);
    if (c.refusal.empty()) {
        EXPECT_EQ(r.out, expected_page(page, c.notes, stub_answer(c.command)));
        EXPECT_EQ(r.tool_input, tool_input_for(c.command));
    } else {
        EXPECT_EQ(r.out, expected_page(page, c.notes, c.refusal));
        EXPECT_FALSE(r.tool_input.has_value());
    }
}

void expect_cases(const std::string& verb, const page_literals& page, const std::vector<verb_case>& cases) {
    for (const verb_case& c : cases) expect_verb_page(verb, page, c);
}
