// The fan verbs: fans, getfanlevel, setfanlevel.
#pragma once

#include "page/verb_page.hpp"

void plan_fans(const form_input& form, verb_plan& plan);
void plan_getfanlevel(const form_input& form, verb_plan& plan);
void plan_setfanlevel(const form_input& form, verb_plan& plan);
