#include "verbs/command_shape.hpp"
#include "verbs/fru_board.hpp"

using namespace param;

namespace {

// getfruledstate: each id only follows the words before it.
constexpr command_form get_led_forms[] = {
    {1,
     {"getfruledstate %s %s %s %s",
      {take(verbose), take(pti_sym1_1), take(id2_1), take(id2_3).when({id2_1})}}},
    {std::nullopt,
     {"getfruledstate %s %s %s %s",
      {take(verbose), take(addr1_0), take(id2_2).when({addr1_0}), take(id2_3).when({addr1_0, id2_2})}}},
};

// setfruledstate: the unit and its LED ("ALL" when none is named), and what
// the unit must hold before an operation may follow.
constexpr template_place address_unit_id = take(id3_0).when({addr1_0});
constexpr template_place address_unit_led = take(addr1_3).when({addr1_0, id3_0}).or_else("ALL");
constexpr command_form set_led_units[] = {
    {1,
     {"setfruledstate %s %s %s", {take(pti_sym1_1), take(id2_1), take(addr1_3).or_else("ALL")},
      params_of({id2_1})}},
    {std::nullopt,
     {"setfruledstate %s %s %s", {take(addr1_0), address_unit_id, address_unit_led},
      params_of({addr1_0, id3_0})}},
};

// Only the two ways of naming a unit (selector 0 or 1) are checked for a
// complete unit; any other selector sends the address form as it stands.
bool unit_is_ready(const form_input& form, const command_shape& unit) {
    return form.param(req_type).number() > 1 || all_present(form, unit.complete);
}

// An operation, chosen by the keyword `addr1_1` begins with; its shape's
// `complete` lists the arguments it cannot go without.
struct led_operation {
    std::string_view keyword;
    command_shape shape;
};

constexpr led_operation led_operations[] = {
    {"ON", {" ON %s", {take(addr1_2)}}},
    {"OFF", {" OFF"}},
    {"LOCAL", {" LOCAL"}},
    {"BLINK", {" BLINK %s %s %s", {take(id2_2), take(id2_3), take(addr1_2)}, params_of({id2_2, id2_3})}},
    {"TEST", {" TEST %s", {take(id2_2)}, params_of({id2_2})}},
};

const led_operation* operation_for(field keyword) {
    for (const led_operation& operation : led_operations) {
        if (keyword.present() && keyword.or_empty().starts_with(operation.keyword)) return &operation;
    }
    return nullptr;
}

}  // namespace

void plan_getfruledstate(const form_input& form, verb_plan& plan) {
    note_verbose(form.param(verbose), plan);
    append_shape(form, pick_shape(form, get_led_forms), plan.command);
}

void plan_setfruledstate(const form_input& form, verb_plan& plan) {
    const command_shape& unit = pick_shape(form, set_led_units);
    append_shape(form, unit, plan.command);
    // The tool runs only for a ready unit and a known, complete operation.
    bool unit_ready = unit_is_ready(form, unit);
    const led_operation* operation = operation_for(form.param(addr1_1));
    if (unit_ready && operation != nullptr && all_present(form, operation->shape.complete)) {
        append_shape(form, operation->shape, plan.command);
    } else {
        plan.refusal = "It is necessary to set parameters!<BR>";
    }
}
