// The FRU and board verbs: activate, fru, frudata, fruinfo, getfruledstate,
// setfruledstate, board, reset, ipmc.
#pragma once

#include "page/verb_page.hpp"

void plan_activate(const form_input& form, verb_plan& plan);
void plan_fru(const form_input& form, verb_plan& plan);
void plan_frudata(const form_input& form, verb_plan& plan);
void plan_fruinfo(const form_input& form, verb_plan& plan);
void plan_getfruledstate(const form_input& form, verb_plan& plan);
void plan_setfruledstate(const form_input& form, verb_plan& plan);
// board and reset read `slot` and `verbose` straight from the POST pairs.
void plan_board(const form_input& form, verb_plan& plan);
void plan_reset(const form_input& form, verb_plan& plan);
void plan_ipmc(const form_input& form, verb_plan& plan);
