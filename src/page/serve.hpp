// The request lifecycle every verb follows.
#pragma once

#include "page/verb_page.hpp"

// What a viewer may do with a verb, by what its fields can make it do.
enum class viewer_right : unsigned char {
    operator_only,   // some field value changes the shelf
    viewer_reads,    // it only reads, whatever is posted
    viewer_guarded,  // the fields decide: a guard lets only reading commands reach the tool
};

// Whether a GET may run a verb: it runs with every field absent, so only a
// verb whose bare command runs the tool and only reads may take one.
enum class get_right : unsigned char { post_only, get_reads };

struct verb_entry {
    std::string_view name;
    verb_page page;  // the page a plan starts with
    form_reading reads;
    plan_function* plan;
    viewer_right viewer;
    get_right get;
};

// Decodes the request that the CGI environment `env` describes, plans the
// verb's command, writes its page to standard output (running the tool at
// most once) and returns 0. Ends the process with status 1, writing nothing
// more, when the body is unreadable.
int serve_verb(const verb_entry& verb, char* const* env);

// Decoding, binding and planning without any I/O, for tests, fuzzing and
// the build's lists; a watch is told every field the plan asks for.
void plan_verb(const verb_entry& verb, char* const* items, verb_plan& plan, field_watch watch = nullptr);
