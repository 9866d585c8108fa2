#include "verbs/fans.hpp"

#include <span>

#include "verbs/command_shape.hpp"

using namespace param;

const verb_page fans_page = {
    .header = "Content-type: text/html\n\n<HTML><HEAD>  <TITLE> Corvane&#8482; Shelf Manager, "
              "Fan Information </TITLE></HEAD><BODY>",
    .heading = "<H2> Fan Information </H2>",
    .back_link = "<A HREF=\"/verbs/fans.html\"> Back to the previous page </A>",
};

const verb_page getfanlevel_page = {
    .header = "Content-type: text/html\n\n<HTML><HEAD>  <TITLE> Corvane&#8482; Shelf Manager, "
              "Fan Level </TITLE></HEAD><BODY>",
    .heading = "<H2> Get Fan Level </H2>",
    .back_link = "<A HREF=\"/verbs/getfanlevel.html\"> Back to the previous page </A>",
};

// This title has no trademark sign.
const verb_page setfanlevel_page = {
    .header = "Content-type: text/html\n\n<HTML><HEAD>  <TITLE> Corvane Shelf Manager, "
              "Set Fan Level </TITLE></HEAD><BODY>",
    .heading = "<H2> Set Fan Level </H2>",
    .back_link = "<A HREF=\"/verbs/setfanlevel.html\"> Back to the previous page </A>",
};

namespace {

// What lets a fan named by address or by pti_sym run, whichever form was picked.
constexpr param_set by_address = params_of({addr1_0, id2_0});
constexpr param_set by_pti_sym = params_of({pti_sym1_1, id2_1});
constexpr param_set by_address_with_value = params_of({addr1_0, id2_0, value});
constexpr param_set by_pti_sym_with_value = params_of({pti_sym1_1, id2_1, value});

// fans has no required fields and takes the pti_sym form for any non-zero selector.
constexpr command_form fans_forms[] = {
    {0, {"fans %s %s", {take(addr1_0), take(id2_0)}}},
    {std::nullopt, {"fans %s %s", {take(pti_sym1_1), take(id2_1)}}},
};

constexpr command_form getfanlevel_forms[] = {
    {1, {"getfanlevel %s %s %s", {take(verbose), take(pti_sym1_1), take(id2_1)}, by_pti_sym}},
    {std::nullopt, {"getfanlevel %s %s %s", {take(verbose), take(addr1_0), take(id2_0)}, by_address}},
};
constexpr param_set getfanlevel_units[] = {by_pti_sym, by_address};

constexpr command_form setfanlevel_forms[] = {
    {1, {"setfanlevel %s %s %s %s", {take(verbose), take(pti_sym1_1), take(id2_1), take(value)}, by_pti_sym_with_value}},
    {2, {"setfanlevel %s all %s", {take(verbose), take(value)}, params_of({value})}},
    {std::nullopt,
     {"setfanlevel %s %s %s %s", {take(verbose), take(addr1_0), take(id2_0), take(value)}, by_address_with_value}},
};
constexpr param_set setfanlevel_units[] = {by_pti_sym_with_value, by_address_with_value};

// A form whose requirement is one of `units` runs when any unit is complete;
// any other form runs only when its own requirement is met.
bool ready(const form_input& form, const command_shape& shape, std::span<const param_set> units) {
    if (all_present(form, shape.complete)) return true;
    bool unit_form = false;
    bool any_unit = false;
    for (const param_set& unit : units) {
        unit_form |= unit == shape.complete;
        any_unit |= all_present(form, unit);
    }
    return unit_form && any_unit;
}

void plan_fan_verb(const form_input& form, std::span<const command_form> forms, std::span<const param_set> units,
                   verb_plan& plan) {
    const command_shape& shape = pick_shape(form, forms);
    append_shape(form, shape, plan.command);
    if (!ready(form, shape, units)) plan.refusal = "It is necessary to specify all parameters<BR>";
}

}  // namespace

void plan_fans(const form_input& form, verb_plan& plan) { plan_fan_verb(form, fans_forms, {}, plan); }

void plan_getfanlevel(const form_input& form, verb_plan& plan) {
    plan_fan_verb(form, getfanlevel_forms, getfanlevel_units, plan);
}

void plan_setfanlevel(const form_input& form, verb_plan& plan) {
    plan_fan_verb(form, setfanlevel_forms, setfanlevel_units, plan);
}
