// The shelf verb: a case number and a sub-command name in `command`, and
// the arguments of the parameter family the case number selects.
#pragma once

#include "page/verb_page.hpp"

void plan_shelf(const form_input& form, verb_plan& plan);
