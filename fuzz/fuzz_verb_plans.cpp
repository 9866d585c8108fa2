// Fuzzes every verb of the verb table with one decoded body: a plan that
// may be sent holds a command the tool can take as one line, the page runs
// the tool exactly for such plans, every text buffer stays consistent, no
// verb writes into the form, and the sanitizers catch any write past a
// buffer. Verbs added to the table are covered without touching this file.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "cli/command_text.hpp"
#include "form/form_vars.hpp"
#include "fuzz_support.hpp"
#include "main/verb_table.hpp"
#include "page/serve.hpp"

namespace {

// The command buffer's design limit: 1024 bytes with the terminating zero.
constexpr std::size_t command_capacity = 1023;

std::FILE* page_sink = nullptr;
int tool_runs = 0;

void counting_runner(std::FILE*, const command_text&, char* const*) { ++tool_runs; }

void check_buffer(std::string_view text, const char* c_str, std::size_t capacity, std::string_view verb) {
    fuzz_check(text.size() <= capacity, "buffer within its capacity", verb);
    fuzz_check(text.data() == c_str && c_str[text.size()] == '\0', "buffer zero-terminated at its end", verb);
    fuzz_check(std::strlen(c_str) == text.size(), "no zero byte inside a buffer", verb);
}

std::vector<std::string> texts_of(char* const* items) {
    std::vector<std::string> texts;
    for (char* const* p = items; p != nullptr && *p != nullptr; ++p) texts.emplace_back(*p);
    return texts;
}

void plan_and_check(const verb_entry& verb, char* const* items) {
    verb_plan plan;
    plan_verb(verb, items, plan);
    fuzz_check(plan.page != nullptr, "a plan has a page", verb.name);
    check_buffer(plan.heading.view(), plan.heading.c_str(), plan.heading.capacity(), verb.name);
    fuzz_check(!plan.notes.overflowed(), "every note piece kept", verb.name);
    check_buffer(plan.command.view(), plan.command.c_str(), command_capacity, verb.name);

    bool may_send = plan.refusal.empty() && command_refusal(plan.command).empty();
    if (may_send) {
        std::string_view command = plan.command.view();
        fuzz_check(command.size() <= max_sendable_command, "a sent command fits the line", command);
        fuzz_check(command.find_first_of("\r\n") == std::string_view::npos, "a sent command is one line", command);
    }
    tool_runs = 0;
    write_page(page_sink, plan, counting_runner, nullptr);
    fuzz_check(tool_runs == (may_send ? 1 : 0), "the page runs the tool exactly when it may", verb.name);
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    page_sink = std::fopen("/dev/null", "w");
    fuzz_check(page_sink != nullptr, "/dev/null opens for the pages");
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) {  // a request without a body: every field absent
        for (const verb_entry& verb : verb_table) plan_and_check(verb, nullptr);
    }
    form_vars vars;
    decode_body_copy(body_text(data, size), vars);
    const std::vector<std::string> form = texts_of(vars.items);
    for (const verb_entry& verb : verb_table) {
        plan_and_check(verb, vars.items);
        fuzz_check(texts_of(vars.items) == form, "planning leaves the form unchanged", verb.name);
    }
    release_form_vars(vars);
    return 0;
}
