#include "page/verb_page.hpp"

#include <cstring>

std::string_view command_refusal(const command_text& command) {
    if (command.has_line_break()) return "A value may not contain a line break<BR>";
    if (command.overflowed() || command.view().size() > max_sendable_command)
        return "The command is too long to send<BR>";
    return {};
}

namespace {

void put(std::FILE* out, std::string_view text) { std::fwrite(text.data(), 1, text.size(), out); }

}  // namespace

void note_list::write(std::FILE* out) const {
    for (std::size_t i = 0; i < count_; ++i) {
        const piece& p = pieces_[i];
        if (p.is_number) {
            std::fprintf(out, "%d", static_cast<int>(p.number));
        } else {
            put(out, p.text);
        }
    }
}

void write_page(std::FILE* out, const verb_plan& plan, tool_runner run_tool, char* const* env) {
    const verb_page& page = *plan.page;
    put(out, "Content-type: text/html\n\n<HTML><HEAD>  ");
    put(out, page.title);
    put(out, "</HEAD><BODY>");
    put(out, "<HR><P>");
    put(out, plan.heading.empty() ? page.heading : plan.heading.view());
    plan.notes.write(out);
    put(out, page.output_opener);
    if (!plan.refusal.empty()) {
        put(out, plan.refusal);
    } else if (std::string_view refusal = command_refusal(plan.command); !refusal.empty()) {
        put(out, refusal);
    } else {
        run_tool(out, plan.command, env);
    }
    put(out, page.output_closer);
    put(out, "<A HREF=\"/verbs/");
    put(out, plan.verb);
    put(out, ".html\"> Back to the previous page </A>");
    put(out, "</BODY></HTML>");
}
