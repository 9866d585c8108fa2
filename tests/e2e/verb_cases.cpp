#include "verb_cases.hpp"

#include <gtest/gtest.h>

void expect_verb_page(const std::string& verb, const page_literals& page, const verb_request& request) {
    SCOPED_TRACE(verb + " " + request.body.value_or("(GET)"));
    gateway_result r = run_gateway(request.body ? post(verb, *request.body) : get(verb));
    EXPECT_EQ(r.status, 0);
    if (request.refusal.empty()) {
        EXPECT_EQ(r.out, expected_page(page, request.notes, stub_answer(request.command)));
        EXPECT_EQ(r.tool_input, tool_input_for(request.command));
    } else {
        EXPECT_EQ(r.out, expected_page(page, request.notes, request.refusal));
        EXPECT_FALSE(r.tool_input.has_value());
    }
}
