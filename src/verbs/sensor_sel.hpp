// The sensor and event-log verbs: sensor, sensordata, the threshold and
// hysteresis verbs, the sensor event enable verbs and sel's three pages.
//
// All of them share one shape: a template for the pti_sym form (set 1,
// chosen when req_type reads as 1) and one for the address form (set 0),
// each filled from its own fields, some of which stand only when a gate
// field is present too; some verbs add a verbose note or a validation rule.
// Each verb is therefore data (a shaped_verb) planned by one function.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <string_view>

#include "page/verb_page.hpp"
#include "verbs/command_shape.hpp"

struct shaped_verb;
// Why the form may not run the command, or empty when it may.
using refusal_rule = std::string_view (*)(const shaped_verb& verb, const form_input& form);

// Set 1 (req_type reads as 1) first, then set 0 (any other req_type, or
// none); each shape's `complete` holds the fields a validating verb needs.
struct shaped_verb {
    const verb_page* page = nullptr;  // a page of its own; null: its verb's
    command_form sets[2];
    bool verbose_note = false;       // the verbose note follows the heading when `verbose` is present
    refusal_rule refusal = nullptr;  // null: the command always runs
};

constexpr command_form set1(command_shape shape) { return {1, shape}; }
constexpr command_form set0(command_shape shape) { return {std::nullopt, shape}; }

// The command runs when either set is complete, whichever req_type chose.
std::string_view refuse_unless_a_set_is_complete(const shaped_verb& verb, const form_input& form);
// req_type must read as 0 or 1, the set it chooses must be complete, and
// the two masks (id2_2, id2_3) come together or not at all; the first
// failing check gives the message.
std::string_view refuse_event_enable(const shaped_verb& verb, const form_input& form);

// Points the plan at the verb's own page if it has one, fills the chosen set's template and
// applies the verb's note and rule.
void plan_shaped_verb(const shaped_verb& verb, const form_input& form, verb_plan& plan);

template <const shaped_verb& Verb>
void plan_shaped(const form_input& form, verb_plan& plan) {
    plan_shaped_verb(Verb, form, plan);
}

extern const shaped_verb sensor_verb;
extern const shaped_verb sensordata_verb;
extern const shaped_verb getthreshold_verb;
extern const shaped_verb gethysteresis_verb;
extern const shaped_verb setthreshold_verb;
extern const shaped_verb sethysteresis_verb;
extern const shaped_verb getsensoreventenable_verb;
extern const shaped_verb setsensoreventenable_verb;

// sel: the exact text of req_type_sel picks the page ("0" SEL Information,
// "1" SEL Clear, anything else or nothing SEL Info).
void plan_sel(const form_input& form, verb_plan& plan);
