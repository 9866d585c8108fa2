// What every verb does with a request, as one table that two layers run:
// the unit tests plan and write each page in-process, and the end-to-end
// tests run the built gateway for the first row of each page. Each row is
// a test of its own, named by its first field.
#pragma once

#include <optional>
#include <ostream>
#include <set>
#include <string>
#include <string_view>
#include <vector>

struct verb_case {
    std::string name;
    std::string page;      // the page's key: the verb, or "verb/page"
    std::string method;    // "POST" or "GET"
    std::string body;      // the POST body
    std::optional<std::string> command;  // what the tool is sent; none: it must not run
    std::string refusal;   // written in the tool's place when it does not run
    std::string notes;     // after the heading (for shelf: the name in it)
};

const std::vector<verb_case>& verb_cases();

// The page of `key` (a verb, or "verb/page" for a verb with several) with
// `notes` after the heading and `block` as the tool's answer.
std::string expected_page(std::string_view key, std::string_view notes, std::string_view block);
// The verb that shows the page of `key`.
std::string verb_of(std::string_view key);
// The verbs the page table knows.
std::set<std::string> expected_verbs();

// The stand-in tool's answer to `command`, as the page shows it, and what
// the tool receives for it.
std::string stub_answer(std::string_view command);
std::string tool_input_for(std::string_view command);

// The page a case must produce.
std::string expected_page_of(const verb_case& c);

// A case as a failing test names it.
inline void PrintTo(const verb_case& c, std::ostream* os) { *os << c.page << " " << c.method << " " << c.body.substr(0, 80); }

// Notes and refusals that stand in the page.
inline const std::string too_long = "The command is too long to send<BR>";
inline const std::string line_break = "A value may not contain a line break<BR>";
inline const std::string verbose_on = "Verbose mode turned on <BR>";
