#include "page/fixed_verbs.hpp"

void plan_fixed_command(const form_input&, verb_plan& plan) { plan.command.append(plan.verb); }
