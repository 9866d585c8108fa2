#include "verbs/fans.hpp"

#include <span>

#include "verbs/command_shape.hpp"

using namespace param;

const verb_page fans_page = {
    .title = "<TITLE> Corvane&#8482; Shelf Manager, Fan Information </TITLE>",
    .heading = "<H2> Fan Information </H2>",
    .back_link = "<A HREF=\"/verbs/fans.html\"> Back to the previous page </A>",
};

const verb_page getfanlevel_page = {
    .title = "<TITLE> Corvane&#8482; Shelf Manager, Fan Level </TITLE>",
    .heading = "<H2> Get Fan Level </H2>",
    .back_link = "<A HREF=\"/verbs/getfanlevel.html\"> Back to the previous page </A>",
};

// This title has no trademark sign.
const verb_page setfanlevel_page = {
    .title = "<TITLE> Corvane Shelf Manager, Set Fan Level </TITLE>",
    .heading = "<H2> Set Fan Level </H2>",
    .back_link = "<A HREF=\"/verbs/setfanlevel.html\"> Back to the previous page </A>",
};

namespace {

// fans has no required fields and takes the pti_sym form for any non-zero selector.
constexpr command_form fans_forms[] = {
    {0, {"fans %s %s", {take(addr1_0), take(id2_0)}}},
    {std::nullopt, {"fans %s %s", {take(pti_sym1_1), take(id2_1)}}},
};

// A fan named by pti_sym or by address: either complete pair lets the
// command run, whichever form was picked.
constexpr command_form getfanlevel_forms[] = {
    {1, {"getfanlevel %s %s %s", {take(verbose), take(pti_sym1_1), take(id2_1)}, params_of({pti_sym1_1, id2_1})}},
    {std::nullopt,
     {"getfanlevel %s %s %s", {take(verbose), take(addr1_0), take(id2_0)}, params_of({addr1_0, id2_0})}},
};

// Selector 2 sets every fan and needs only the level; the two forms after
// it name one fan as getfanlevel does.
constexpr command_form setfanlevel_forms[] = {
    {2, {"setfanlevel %s all %s", {take(verbose), take(value)}, params_of({value})}},
    {1,
     {"setfanlevel %s %s %s %s",
      {take(verbose), take(pti_sym1_1), take(id2_1), take(value)},
      params_of({pti_sym1_1, id2_1, value})}},
    {std::nullopt,
     {"setfanlevel %s %s %s %s",
      {take(verbose), take(addr1_0), take(id2_0), take(value)},
      params_of({addr1_0, id2_0, value})}},
};

// The chosen form runs when its own fields are complete, or, when it names
// one fan, when any form naming one fan (`unit_forms`) is.
void plan_fan_verb(const form_input& form, std::span<const command_form> forms,
                   std::span<const command_form> unit_forms, verb_plan& plan) {
    const command_shape& shape = pick_shape(form, forms);
    append_shape(form, shape, plan.command);
    bool names_a_fan = false;
    for (const command_form& unit : unit_forms) names_a_fan |= &unit.shape == &shape;
    if (!all_present(form, shape.complete) && !(names_a_fan && any_form_complete(form, unit_forms)))
        plan.refusal = all_parameters_message;
}

}  // namespace

void plan_fans(const form_input& form, verb_plan& plan) { plan_fan_verb(form, fans_forms, {}, plan); }

void plan_getfanlevel(const form_input& form, verb_plan& plan) {
    plan_fan_verb(form, getfanlevel_forms, getfanlevel_forms, plan);
}

void plan_setfanlevel(const form_input& form, verb_plan& plan) {
    plan_fan_verb(form, setfanlevel_forms, std::span(setfanlevel_forms).subspan(1), plan);
}
