// Every case of the shared table in-process: the request decoded, the verb
// planned and its page written through a runner that records the command
// and answers as the stand-in tool does; no process is started.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <optional>
#include <set>
#include <string>

#include "form/form_vars.hpp"
#include "main/verb_table.hpp"
#include "verb_cases.hpp"

namespace {

std::optional<std::string> sent;

void recording_runner(std::FILE* out, const command_text& command, char* const*) {
    sent = std::string(command.view());
    std::fputs(stub_answer(command.view()).c_str(), out);
}

// The page `verb` writes for the case's request, and what its runner was sent.
std::string page_for(const verb_case& c) {
    const verb_entry* verb = find_verb(verb_of(c.page));
    if (verb == nullptr) return "no verb " + c.page;
    form_vars vars;
    if (c.method == "POST") {
        char* body = static_cast<char*>(std::malloc(c.body.size() + 1));
        c.body.copy(body, c.body.size());
        body[c.body.size()] = '\0';
        if (!decode_form_body(body, vars)) return "undecodable body";
    }
    verb_plan plan;
    plan_verb(*verb, vars.items, plan);
    char* text = nullptr;
    std::size_t size = 0;
    std::FILE* out = open_memstream(&text, &size);
    sent.reset();
    write_page(out, plan, recording_runner, nullptr);
    std::fclose(out);
    std::string page(text, size);
    std::free(text);
    release_form_vars(vars);
    return page;
}

class EveryCase : public testing::TestWithParam<verb_case> {};

TEST_P(EveryCase, PlansItsCommandAndWritesItsPage) {
    const verb_case& c = GetParam();
    EXPECT_EQ(page_for(c), expected_page_of(c));
    EXPECT_EQ(sent, c.command);
}

// Every verb of the table has a case of its own.
TEST(VerbPlans, EveryVerbHasACase) {
    std::set<std::string> covered;
    for (const verb_case& c : verb_cases()) covered.insert(verb_of(c.page));
    for (const verb_entry& verb : verb_table) EXPECT_TRUE(covered.count(std::string(verb.name))) << verb.name;
}

INSTANTIATE_TEST_SUITE_P(VerbPlans, EveryCase, testing::ValuesIn(verb_cases()),
                         [](const testing::TestParamInfo<verb_case>& info) { return info.param.name; });

}  // namespace
