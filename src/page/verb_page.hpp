// What a verb is made of (its page literals and a function that plans its
// command), and the one renderer that writes every verb's page.
#pragma once

#include <array>
#include <cstdint>
#include <cstdio>
#include <string_view>

#include "cli/command_text.hpp"
#include "form/form_input.hpp"
#include "text/fixed_text.hpp"

// The literals of one page that differ from verb to verb, each quoted
// exactly: some titles lack the mark or a blank, some headings a blank.
struct verb_page {
    std::string_view title;  // the whole title element
    std::string_view heading;
    std::string_view output_opener = "</P><HR><PRE>";
    std::string_view output_closer = "</PRE><HR>";
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
    std::string_view verb;          // its name: the form page the back link names
    fixed_text<1024 + 64> heading;  // empty: the page's own heading literal
    note_list notes;                // written after the heading, in order
    command_text command;
    std::string_view refusal;  // the verb's validation message; empty: run the tool
};

// Every verb's plan has this one signature; its header declares it by
// this type (`plan_function plan_fru;`), the table holds a pointer.
using plan_function = void(const form_input& form, verb_plan& plan);

// How a verb reads its fields: through the registry, or directly from the
// POST pairs (the verbs whose fields are not registry parameters).
enum class form_reading { registry, direct };

using tool_runner = void (*)(std::FILE* out, const command_text& command, char* const* env);

// Why a command text may not be sent, or empty when it may: a line break
// would make it several tool commands (checked first), and a text longer
// than the tool's line is refused, never cut.
std::string_view command_refusal(const command_text& command);

// Writes the page skeleton around the plan: header, heading and notes, then
// inside the output block the verb's refusal, the command's refusal, or the
// tool's answer, then the back link. `env` is the gateway's environment,
// handed to the runner.
void write_page(std::FILE* out, const verb_plan& plan, tool_runner run_tool, char* const* env);

// Notes most verbs share.
inline constexpr std::string_view verbose_note = "Verbose mode turned on <BR>";
