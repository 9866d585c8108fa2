// The FRU and board verbs: activate, fru, frudata, fruinfo, getfruledstate,
// setfruledstate, board, reset, ipmc.
#pragma once

#include "page/verb_page.hpp"

plan_function plan_activate, plan_fru, plan_frudata, plan_fruinfo, plan_ipmc;
plan_function plan_getfruledstate, plan_setfruledstate;
// board and reset read `slot` and `verbose` straight from the POST pairs.
plan_function plan_board, plan_reset;
