#include "verbs/fans.hpp"

#include <span>

#include "verbs/command_shape.hpp"

using namespace param;

namespace {

// fans has no required fields and takes the pti_sym form for any non-zero selector.
constexpr command_form fans_forms[] = {
    {0, {"fans %s %s", {take(addr1_0), take(id2_0)}}},
    {std::nullopt, {"fans %s %s", {take(pti_sym1_1), take(id2_1)}}},
};

// A fan named by pti_sym or by address: either complete pair lets the
// command run, whichever form was picked.
constexpr command_form getfanlevel_forms[] = {
    one_unit(1, {"getfanlevel %s %s %s", {take(verbose), take(pti_sym1_1), take(id2_1)}, params_of({pti_sym1_1, id2_1})}),
    one_unit(std::nullopt,
             {"getfanlevel %s %s %s", {take(verbose), take(addr1_0), take(id2_0)}, params_of({addr1_0, id2_0})}),
};

// Selector 2 sets every fan and needs only the level; the two forms after
// it name one fan as getfanlevel does.
constexpr command_form setfanlevel_forms[] = {
    {2, {"setfanlevel %s all %s", {take(verbose), take(value)}, params_of({value})}},
    one_unit(1, {"setfanlevel %s %s %s %s",
                 {take(verbose), take(pti_sym1_1), take(id2_1), take(value)},
                 params_of({pti_sym1_1, id2_1, value})}),
    one_unit(std::nullopt, {"setfanlevel %s %s %s %s",
                            {take(verbose), take(addr1_0), take(id2_0), take(value)},
                            params_of({addr1_0, id2_0, value})}),
};

void plan_fan_verb(const form_input& form, std::span<const command_form> forms, verb_plan& plan) {
    const command_form& chosen = pick_form(form, forms);
    append_shape(form, chosen.shape, plan.command);
    if (!may_run(form, forms, chosen)) plan.refusal = all_parameters_message;
}

}  // namespace

void plan_fans(const form_input& form, verb_plan& plan) { plan_fan_verb(form, fans_forms, plan); }

void plan_getfanlevel(const form_input& form, verb_plan& plan) { plan_fan_verb(form, getfanlevel_forms, plan); }

void plan_setfanlevel(const form_input& form, verb_plan& plan) { plan_fan_verb(form, setfanlevel_forms, plan); }
