// The request lifecycle every verb follows.
#pragma once

#include "page/verb_page.hpp"

struct verb_entry {
    std::string_view name;
    const verb_page* page;  // the page a plan starts with
    form_reading reads;
    plan_builder plan;
};

// Decodes the request, plans the verb's command, writes its page to
// standard output (running the tool at most once) and returns 0. Ends the
// process with status 1, writing nothing more, when the body is unreadable.
int serve_verb(const verb_entry& verb);

// Decoding, binding and planning without any I/O, for tests and fuzzing.
void plan_verb(const verb_entry& verb, char* const* items, verb_plan& plan);
