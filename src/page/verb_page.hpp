// What a verb is made of (its page literals and a function that plans its
// command), and the one renderer that writes every verb's page.
#pragma once

#include <array>
#include <cstdint>
#include <cstdio>
#include <string_view>

#include "cli/command_text.hpp"
#include "form/number.hpp"
#include "form/params.hpp"
#include "page/fixed_text.hpp"

// The literals of one page that differ from verb to verb, each quoted
// exactly: some titles lack the mark or a blank, some headings a blank.
struct verb_page {
    std::string_view title;  // the whole title element
    std::string_view heading;
    std::string_view back_link;
    std::string_view fixed_command = {};  // for the verbs whose command never varies
    std::string_view output_opener = "</P><HR><PRE>";
    std::string_view output_closer = "</PRE><HR>";
};

// The last non-empty value of the POST field `name`, or null; names are
// compared exactly and only names are compared.
const char* post_var_value(char* const* items, std::string_view name);

// One form field as a verb sees it: present with a non-empty text, or absent.
struct field {
    const char* text = nullptr;

    bool present() const { return text != nullptr; }
    std::string_view or_empty() const { return text != nullptr ? text : ""; }
    // Selectors read as the target's strtoul does; an absent one reads as 0.
    std::uint32_t number() const { return text != nullptr ? read_ulong32(text) : 0; }
    bool reads_as(std::uint32_t n) const { return present() && number() == n; }
};

// Told the name of every field a plan asks for: the build lists each
// verb's fields this way. Requests run without one.
using field_watch = void (*)(std::string_view name);

// The request's form as the verbs read it.
struct form_input {
    char* const* items = nullptr;  // POST pairs; null for any other request
    param_registry params;         // bound only for verbs that read the registry
    field_watch watch = nullptr;

    field param(param::id id) const {
        if (watch != nullptr) watch(param_name(id));
        return {param_value(params, id)};
    }
    field post_var(std::string_view name) const {
        if (watch != nullptr) watch(name);
        return {post_var_value(items, name)};
    }
};

// The notes written after the heading, held as pieces (literals, form
// values, numbers) and written out whole: a note that repeats a form value
// is never cut, however long the value. Texts must outlive the plan.
class note_list {
public:
    static constexpr std::size_t max_pieces = 6;

    // False when the list has no room for another piece (no verb needs that many).
    bool append(std::string_view text) { return add({text, 0, false}); }
    bool append_number(std::int32_t number) { return add({{}, number, true}); }
    bool overflowed() const { return overflowed_; }
    void write(std::FILE* out) const;

private:
    struct piece {
        std::string_view text;
        std::int32_t number;
        bool is_number;
    };
    bool add(piece p) {
        if (count_ == max_pieces) {
            overflowed_ = true;
            return false;
        }
        pieces_[count_++] = p;
        return true;
    }
    std::array<piece, max_pieces> pieces_{};
    std::size_t count_ = 0;
    bool overflowed_ = false;
};

// What a verb decided for one request, before anything is written.
struct verb_plan {
    const verb_page* page = nullptr;
    fixed_text<1024 + 64> heading;  // empty: the page's own heading literal
    note_list notes;                // written after the heading, in order
    command_text command;
    std::string_view refusal;  // the verb's validation message; empty: run the tool
};

using plan_builder = void (*)(const form_input& form, verb_plan& plan);

// How a verb reads its fields: through the registry, or directly from the
// POST pairs (the verbs whose fields are not registry parameters).
enum class form_reading { registry, direct };

using tool_runner = void (*)(std::FILE* out, const command_text& command, char* const* env);

// Writes the page skeleton around the plan: header, heading and notes, then
// inside the output block the verb's refusal, the runner's refusal, or the
// tool's answer, then the back link.
// `env` is the gateway's environment, handed to the runner.
void write_page(std::FILE* out, const verb_plan& plan, tool_runner run_tool, char* const* env);

// Notes most verbs share.
inline constexpr std::string_view verbose_note = "Verbose mode turned on <BR>";
