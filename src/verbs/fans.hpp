// The fan verbs: fans, getfanlevel, setfanlevel.
#pragma once

#include "page/verb_page.hpp"

plan_function plan_fans, plan_getfanlevel, plan_setfanlevel;
