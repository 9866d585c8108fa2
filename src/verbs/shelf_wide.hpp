// The shelf-wide verbs for LAN and PEF configuration, alarms, health and
// IPMB state: getlanconfig, setlanconfig, getpef, setpef, alarm,
// showunhealthy, getipmbstate, setipmbstate.
#pragma once

#include "page/verb_page.hpp"

// The LAN/PEF verbs and showunhealthy read their fields straight from the
// POST pairs; the registry is never bound for them.
plan_function plan_getlanconfig, plan_setlanconfig, plan_getpef, plan_setpef, plan_showunhealthy;

plan_function plan_alarm, plan_getipmbstate, plan_setipmbstate;
