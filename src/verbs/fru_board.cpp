#include "verbs/fru_board.hpp"

#include "verbs/command_shape.hpp"

using namespace param;

namespace {

// The unit as activate, frudata and fruinfo name it: by symbol and id for
// `req_type` 1, else by address and id; each word taken on its own.
constexpr command_form unit_pairs[] = {
    {1, {" %s %s", {take(pti_sym1_1), take(id2_1)}, params_of({pti_sym1_1, id2_1})}},
    {std::nullopt, {" %s %s", {take(addr1_0), take(id2_0)}, params_of({addr1_0, id2_0})}},
};

void append_unit_pair(const form_input& form, command_text& command) {
    append_shape(form, pick_shape(form, unit_pairs), command);
}

bool same_ignoring_case(std::string_view a, std::string_view b) {
    auto fold = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (fold(a[i]) != fold(b[i])) return false;
    }
    return true;
}

// The lock actions become the tool's "setlocked" with a trailing flag.
struct lock_action {
    std::string_view name;
    int flag;
};
constexpr lock_action lock_actions[] = {{"setlocked", 1}, {"clearlocked", 0}};

// The four ways fru names a unit, tested in this order.
constexpr command_form fru_forms[] = {
    {2, {"fru %s %s", {take(pti_sym1_2), take(id2_2).when({pti_sym1_2})}}},
    {3,
     {"fru %s %s%s %s%s",
      {take(verbose), put("type=").when({site_type1_3}), take(site_type1_3),
       put(" /").when({site_type1_3, id2_3}), take(id2_3).when({site_type1_3})}}},
    {1,
     {"fru %s %s %s%s",
      {take(verbose), take(addr1_1), put("type=").when({addr1_1, id2_1}), take(id2_1).when({addr1_1})}}},
    {std::nullopt, {"fru %s %s %s", {take(verbose), take(addr1_0), take(id2_0).when({addr1_0})}}},
};

constexpr command_form ipmc_forms[] = {
    {1, {"ipmc %s %s %s", {take(verbose), take(pti_sym1_1), take(id2_1)}}},
    {std::nullopt, {"ipmc %s %s", {take(verbose), take(addr1_0)}}},
};

// board and reset: what differs between the two verbs that take a slot.
struct slot_verb {
    std::string_view word;
    std::int32_t without_number;  // the slot number that sends the verbose text instead
    bool verbose_with_number;     // whether the verbose text also precedes a number
    std::string_view note;        // put before the number
};
constexpr slot_verb board_verb = {"board", 0, true, "Board # "};
constexpr slot_verb reset_verb = {"boardreset", -1, false, "Resetting board # "};

void plan_slot_verb(const form_input& form, const slot_verb& verb, verb_plan& plan) {
    field verbose = form.post_var("verbose");
    field slot_field = form.post_var("slot");
    std::int32_t number = slot_field.present() ? read_long32(slot_field.text) : -1;
    note_verbose(verbose, plan);
    plan.command.append(verb.word);
    if (number == verb.without_number || verb.verbose_with_number) {
        append_filled(plan.command, " %s", {verbose.or_empty()});
    }
    if (number != verb.without_number) {
        plan.command.appendf(" %d", number);
        plan.notes.append(verb.note);
        plan.notes.append_number(number);
        plan.notes.append("<BR>");
    }
}

}  // namespace

void plan_activate(const form_input& form, verb_plan& plan) {
    field action = form.param(command);
    const lock_action* lock = nullptr;
    for (const lock_action& candidate : lock_actions) {
        if (action.present() && same_ignoring_case(action.or_empty(), candidate.name)) lock = &candidate;
    }
    plan.command.append(lock != nullptr ? "setlocked" : action.or_empty());
    append_unit_pair(form, plan.command);
    if (lock != nullptr) plan.command.appendf(" %d", lock->flag);
}

void plan_fru(const form_input& form, verb_plan& plan) {
    note_verbose(form.param(verbose), plan);
    append_shape(form, pick_shape(form, fru_forms), plan.command);
}

void plan_frudata(const form_input& form, verb_plan& plan) {
    plan.command.append("frudata");
    append_unit_pair(form, plan.command);
    append_filled(plan.command, " %s %s", {form.param(offset).or_empty(), form.param(to_write).or_empty()});
}

void plan_fruinfo(const form_input& form, verb_plan& plan) {
    append_filled(plan.command, "fruinfo %s %s", {form.param(verbose).or_empty(), form.param(dump).or_empty()});
    append_unit_pair(form, plan.command);
    if (!any_form_complete(form, unit_pairs)) plan.refusal = all_parameters_message;
}

void plan_board(const form_input& form, verb_plan& plan) { plan_slot_verb(form, board_verb, plan); }

void plan_reset(const form_input& form, verb_plan& plan) { plan_slot_verb(form, reset_verb, plan); }

void plan_ipmc(const form_input& form, verb_plan& plan) {
    note_verbose(form.param(verbose), plan);
    append_shape(form, pick_shape(form, ipmc_forms), plan.command);
}
