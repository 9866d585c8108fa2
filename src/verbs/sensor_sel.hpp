// The sensor and event-log verbs: sensor, sensordata, the threshold and
// hysteresis verbs, the sensor event enable verbs and sel's three pages.
//
// All of them share one shape: a template for the pti_sym form (set 1,
// chosen when req_type reads as 1) and one for the address form (set 0),
// each filled from its own fields, some of which stand only when a gate
// field is present too; some verbs add a verbose note or a validation rule.
// Each verb is therefore data (a shaped_verb) planned by one function.
#pragma once

#include "page/verb_page.hpp"

plan_function plan_sensor, plan_sensordata, plan_getthreshold, plan_gethysteresis;
plan_function plan_setthreshold, plan_sethysteresis;
plan_function plan_getsensoreventenable, plan_setsensoreventenable;

// sel: the exact text of req_type_sel picks the page ("0" SEL Information,
// "1" SEL Clear, anything else or nothing SEL Info).
plan_function plan_sel;
