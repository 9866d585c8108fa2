// Writes the lists of verbs that the install and the web servers use, all
// from the gateway's own verb table, into one directory:
//   verbs.txt          every verb, in table order (the installed names)
//   reading_verbs.txt  the verbs a viewer may run: they only read
//   guarded_verbs.txt  the verbs a viewer reaches behind the guard
//   get_verbs.txt      the verbs a GET may run
//   verb_fields.txt    each verb and the form fields it can ask for
// It fails, writing nothing, when a row promises what its plan does not
// do: a verb a GET may run that would refuse a GET, or a verb whose row
// reads its fields directly (leaving the registry unbound) while its plan
// asks the registry, where every field would read as absent.
//   verb_lists OUTDIR
#include <cstdio>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "main/verb_table.hpp"

namespace {

std::set<std::string> asked, asked_through_registry;

void note_asked(std::string_view name, bool through_registry) {
    asked.emplace(name);
    if (through_registry) asked_through_registry.emplace(name);
}

using assignment = std::map<std::string, std::string>;

// What a plan of `verb` shows of itself when the form holds `form`: the
// fields it asked for, then its page, heading and refusal.
struct plan_trace {
    std::set<std::string> fields;
    std::string outcome;
    bool operator<(const plan_trace& other) const {
        return fields != other.fields ? fields < other.fields : outcome < other.outcome;
    }
};

plan_trace trace_plan(const verb_entry& verb, const assignment& form) {
    std::vector<char*> items;
    for (const auto& [name, value] : form) {
        items.push_back(const_cast<char*>(name.c_str()));
        items.push_back(const_cast<char*>(value.c_str()));
    }
    items.push_back(nullptr);
    asked.clear();
    verb_plan plan;
    plan_verb(verb, items.data(), plan, note_asked);
    std::string outcome(plan.page->title);
    outcome.append(plan.heading.view()).append(plan.refusal);
    return {asked, outcome};
}

// Every field a verb can ask for. A plan asks for its selectors first, and
// a selector's value (or a field's presence) can open further fields or
// another page, so every value that changes what the plan asks for or
// where it goes is followed in turn. Selectors are read as small numbers,
// the shelf's case number as two digits, and the LED operations as words.
std::set<std::string> fields_read(const verb_entry& verb) {
    std::vector<std::string> probes = {"ON", "OFF", "LOCAL", "BLINK", "TEST"};
    for (int n = 0; n <= 20; ++n) {
        probes.push_back(std::to_string(n));
        char two[3];
        std::snprintf(two, sizeof two, "%02d", n);
        probes.push_back(two);
    }
    std::set<std::string> all;
    std::set<plan_trace> seen;
    std::vector<assignment> open = {{}};
    while (!open.empty()) {
        assignment form = open.back();
        open.pop_back();
        plan_trace here = trace_plan(verb, form);
        seen.insert(here);
        all.insert(here.fields.begin(), here.fields.end());
        for (const std::string& name : here.fields) {
            if (form.count(name) != 0) continue;
            for (const std::string& value : probes) {
                assignment next = form;
                next[name] = value;
                if (seen.insert(trace_plan(verb, next)).second) open.push_back(next);
            }
        }
    }
    return all;
}

bool write_list(const std::string& path, bool (*wanted)(const verb_entry&)) {
    std::FILE* out = std::fopen(path.c_str(), "w");
    if (out == nullptr) return false;
    for (const verb_entry& verb : verb_table) {
        if (wanted(verb)) std::fprintf(out, "%.*s\n", static_cast<int>(verb.name.size()), verb.name.data());
    }
    return std::fclose(out) == 0;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fputs("usage: verb_lists OUTDIR\n", stderr);
        return 2;
    }
    const std::string dir = argv[1];
    for (const verb_entry& verb : verb_table) {
        verb_plan plan;
        plan_verb(verb, nullptr, plan);
        if (verb.get == get_right::get_reads && (!plan.refusal.empty() || plan.command.view().empty())) {
            std::fprintf(stderr, "verb_lists: a GET of %.*s would not run the tool; make its row post_only\n",
                         static_cast<int>(verb.name.size()), verb.name.data());
            return 1;
        }
    }
    std::vector<std::set<std::string>> fields_of;
    for (const verb_entry& verb : verb_table) {
        asked_through_registry.clear();
        fields_of.push_back(fields_read(verb));
        if (verb.reads == form_reading::direct && !asked_through_registry.empty()) {
            std::fprintf(stderr, "verb_lists: %.*s asks the registry for %s, but its row reads directly\n",
                         static_cast<int>(verb.name.size()), verb.name.data(), asked_through_registry.begin()->c_str());
            return 1;
        }
    }
    bool written =
        write_list(dir + "/verbs.txt", [](const verb_entry&) { return true; }) &&
        write_list(dir + "/reading_verbs.txt",
                   [](const verb_entry& v) { return v.viewer == viewer_right::viewer_reads; }) &&
        write_list(dir + "/guarded_verbs.txt",
                   [](const verb_entry& v) { return v.viewer == viewer_right::viewer_guarded; }) &&
        write_list(dir + "/get_verbs.txt", [](const verb_entry& v) { return v.get == get_right::get_reads; });
    std::FILE* fields = written ? std::fopen((dir + "/verb_fields.txt").c_str(), "w") : nullptr;
    if (fields == nullptr) {
        std::perror("verb_lists");
        return 1;
    }
    for (std::size_t i = 0; i < verb_table.size(); ++i) {
        std::fprintf(fields, "%.*s", static_cast<int>(verb_table[i].name.size()), verb_table[i].name.data());
        for (const std::string& name : fields_of[i]) std::fprintf(fields, " %s", name.c_str());
        std::fputc('\n', fields);
    }
    return std::fclose(fields) == 0 ? 0 : 1;
}
