#include "page/verb_page.hpp"

#include <cstring>

const char* post_var_value(char* const* items, std::string_view name) {
    const char* found = nullptr;
    if (items == nullptr) return found;
    for (char* const* pair = items; pair[0] != nullptr; pair += 2) {
        if (pair[1][0] != '\0' && name == pair[0]) found = pair[1];
    }
    return found;
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
    put(out, page.back_link);
    put(out, "</BODY></HTML>");
}
