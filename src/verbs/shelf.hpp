// The shelf verb: a case number and a sub-command name in `command`, and
// the arguments of the parameter family the case number selects.
#pragma once

#include "page/verb_page.hpp"

plan_function plan_shelf;
