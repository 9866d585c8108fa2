// The verbs whose command never varies: version, session, switchover.
#pragma once

#include "page/verb_page.hpp"

// Sends the verb's own name as its command; the form's fields are ignored.
plan_function plan_fixed_command;
