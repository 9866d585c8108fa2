// The fan verbs: fans, getfanlevel, setfanlevel.
#pragma once

#include "page/verb_page.hpp"

extern const verb_page fans_page;
extern const verb_page getfanlevel_page;
extern const verb_page setfanlevel_page;

void plan_fans(const form_input& form, verb_plan& plan);
void plan_getfanlevel(const form_input& form, verb_plan& plan);
void plan_setfanlevel(const form_input& form, verb_plan& plan);
