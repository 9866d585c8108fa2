// One verb's end-to-end cases as a table: each request's whole page, and
// exactly what the stand-in shelfctl received or that it did not run.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "gateway_run.hpp"

struct verb_case {
    std::optional<std::string> body;  // nullopt: a GET request
    std::string notes;
    std::string command;  // what the tool receives
    std::string refusal;  // non-empty: the tool does not run and this fills the block
};

void expect_verb_page(const std::string& verb, const page_literals& page, const verb_case& c);
void expect_cases(const std::string& verb, const page_literals& page, const std::vector<verb_case>& cases);
