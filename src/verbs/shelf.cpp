#include "verbs/shelf.hpp"

#include <algorithm>
#include <array>
#include <optional>
#include <span>

#include "verbs/command_shape.hpp"

using namespace param;

namespace {

// The sub-command name fills the first place of every shape but the bare
// command, which an unknown case number or selector gives.
constexpr command_shape bare = {"shelf"};

constexpr command_form name_only[] = {{std::nullopt, {"shelf %s", {given_text()}}}};
constexpr command_form feed_current[] = {
    {std::nullopt, {"shelf %s %s %s", {given_text(), take(feed0), take(current)}}}};
constexpr command_form feed_voltage[] = {
    {std::nullopt, {"shelf %s %s %s", {given_text(), take(feed0), take(voltage)}}}};
constexpr command_form bdselgrounded[] = {
    {std::nullopt, {"shelf %s board %s %s", {given_text(), take(slot_bdselgrounded), take(value_bdselgrounded)}}}};
constexpr command_form allowance[] = {{std::nullopt, {"shelf %s %s", {given_text(), take(value_allowance)}}}};

// The fields of a family named by address, by pti_sym or by slot.
struct family_fields {
    id addr, id1, pti_sym, id2, slot, value;
};

// Address, pti_sym and slot forms; any other selector gives the bare command.
constexpr std::array<command_form, 4> three_forms(family_fields f) {
    return {{
        {0, {"shelf %s %s %s %s", {given_text(), take(f.addr), take(f.id1), take(f.value)}}},
        {1, {"shelf %s %s %s %s", {given_text(), take(f.pti_sym), take(f.id2), take(f.value)}}},
        {2, {"shelf %s slot%s %s", {given_text(), take(f.slot), take(f.value)}}},
        {std::nullopt, bare},
    }};
}

// Address and pti_sym forms, each with its own value field (the pti_sym
// form falls back to the address form's value when its own is absent).
constexpr std::array<command_form, 3> two_forms(id addr, id id1, id value1, id pti_sym, id id2, id value2) {
    return {{
        {0, {"shelf %s %s %s %s", {given_text(), take(addr), take(id1), take(value1)}}},
        {1, {"shelf %s %s %s %s%s", {given_text(), take(pti_sym), take(id2), take(value2), take(value1).except({value2})}}},
        {std::nullopt, bare},
    }};
}

constexpr auto activation = three_forms(
    {addr_activation, id1_activation, pti_sym_activation, id2_activation, slot_activation, value_activation});
constexpr auto deactivation = three_forms({addr_deactivation, id1_deactivation, pti_sym_deactivation,
                                           id2_deactivation, slot_deactivation, value_deactivation});
constexpr auto pwrcapability = two_forms(addr_pwrcapability, id1_pwrcapability, value1_pwrcapability,
                                         pti_sym_pwrcapability, id2_pwrcapability, value2_pwrcapability);
constexpr auto pwrdelay = two_forms(addr_pwrdelay, id1_pwrdelay, value1_pwrdelay, pti_sym_pwrdelay, id2_pwrdelay,
                                    value2_pwrdelay);

// A pwrreorder reference: pti_sym pair for a selector of 1, else the address pair.
constexpr command_form first_reference[] = {
    {1, {" %s %s", {take(pti_sym1_pwrreorder), take(id12_pwrreorder)}}},
    {std::nullopt, {" %s %s", {take(addr1_pwrreorder), take(id11_pwrreorder)}}},
};
constexpr command_form second_reference[] = {
    {1, {" %s %s", {take(pti_sym2_pwrreorder), take(id22_pwrreorder)}}},
    {std::nullopt, {" %s %s", {take(addr2_pwrreorder), take(id21_pwrreorder)}}},
};

// What a case number selects: its forms and the selector that picks one.
struct shelf_case {
    std::span<const command_form> forms;
    id selector = req_type;  // read only when there is more than one form
};

constexpr std::uint32_t pwrreorder_case = 16;

constexpr shelf_case cases[] = {
    {name_only}, {name_only}, {name_only}, {name_only}, {name_only}, {name_only}, {name_only}, {name_only},
    {feed_current},
    {feed_voltage},
    {activation, req_type_activation},
    {deactivation, req_type_deactivation},
    {pwrcapability, req_type_pwrcapability},
    {bdselgrounded},
    {pwrdelay, req_type_pwrdelay},
    {allowance},
};

void append_pwrreorder(const form_input& form, std::string_view name, command_text& command) {
    const command_shape& first = pick_shape(form, first_reference, req_type1_pwrreorder);
    const command_shape& second = pick_shape(form, second_reference, req_type2_pwrreorder);
    append_filled(command, "shelf %s", {name});
    append_shape(form, first, command);
    append_filled(command, " %s", {form.param(op_pwrreorder).or_empty()});
    append_shape(form, second, command);
}

}  // namespace

void plan_shelf(const form_input& form, verb_plan& plan) {
    field value = form.param(command);
    std::string_view text = value.or_empty();
    // The case number fills the first two characters; the name follows.
    std::string_view name = text;
    name.remove_prefix(std::min<std::size_t>(2, name.size()));
    if (value.present()) {
        fixed_text<1024> display;
        for (char c : name) {
            if (!display.append(c == '_' ? std::string_view{" "} : std::string_view{&c, 1})) break;
        }
        append_filled(plan.heading, "<H2> Shelf Information: %s </H2>", {display.view()});
    }
    std::uint32_t number = value.number();
    if (number == pwrreorder_case) {
        append_pwrreorder(form, name, plan.command);
    } else if (number < std::size(cases)) {
        const shelf_case& selected = cases[number];
        const command_shape& shape =
            selected.forms.size() == 1 ? selected.forms.front().shape : pick_shape(form, selected.forms, selected.selector);
        append_shape(form, shape, plan.command, name);
    } else {
        append_shape(form, bare, plan.command);
    }
}
