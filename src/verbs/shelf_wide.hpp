// The shelf-wide verbs for LAN and PEF configuration, alarms, health and
// IPMB state: getlanconfig, setlanconfig, getpef, setpef, alarm,
// showunhealthy, getipmbstate, setipmbstate.
#pragma once

#include "page/verb_page.hpp"

// The LAN/PEF verbs and showunhealthy read their fields straight from the
// POST pairs; the registry is never bound for them.
void plan_getlanconfig(const form_input& form, verb_plan& plan);
void plan_setlanconfig(const form_input& form, verb_plan& plan);
void plan_getpef(const form_input& form, verb_plan& plan);
void plan_setpef(const form_input& form, verb_plan& plan);
void plan_showunhealthy(const form_input& form, verb_plan& plan);

void plan_alarm(const form_input& form, verb_plan& plan);
void plan_getipmbstate(const form_input& form, verb_plan& plan);
void plan_setipmbstate(const form_input& form, verb_plan& plan);
