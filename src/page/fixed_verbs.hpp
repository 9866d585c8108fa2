// The verbs whose command never varies: version, session, switchover.
#pragma once

#include "page/verb_page.hpp"

extern const verb_page version_page;
extern const verb_page session_page;
extern const verb_page switchover_page;

// Sends the page's fixed command; the form's fields are ignored.
void plan_fixed_command(const form_input& form, verb_plan& plan);
