#include "verbs/sensor_sel.hpp"

#include "verbs/command_shape.hpp"

namespace {

using namespace param;

constexpr std::string_view the_parameters_message = "It is necessary to specify the parameters<BR>";
constexpr std::string_view mask_pair_message = "Deasserted mask must be specified along with the asserted mask<BR>";

// sel's two pages besides its own (SEL Info, in the verb table); the
// tool's answer to a clear stands between the rules, with no PRE block.
constexpr verb_page sel_information_page = {
    .title = "<TITLE> Corvane&#8482; Shelf Manager, SEL Information </TITLE>",
    .heading = "<H2> SEL Information </H2>",
};
constexpr verb_page sel_clear_page = {
    .title = "<TITLE> Corvane&#8482; Shelf Manager, SEL Clear </TITLE>",
    .heading = "<H2> SEL Clear </H2>",
    .output_opener = "</P><HR>",
    .output_closer = "<HR>",
};

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
std::string_view refuse_unless_a_set_is_complete(const shaped_verb& verb, const form_input& form) {
    if (any_form_complete(form, verb.sets)) return {};
    return all_parameters_message;
}

// req_type must read as 0 or 1, the set it chooses must be complete, and
// the two masks (id2_2, id2_3) come together or not at all; the first
// failing check gives the message.
std::string_view refuse_event_enable(const shaped_verb& verb, const form_input& form) {
    std::uint32_t selector = form.param(req_type).number();
    if (selector > 1) return the_parameters_message;
    if (!all_present(form, pick_shape(form, verb.sets).complete)) return the_parameters_message;
    if (form.param(id2_2).present() != form.param(id2_3).present()) return mask_pair_message;
    return {};
}

// sensor, sensordata, getthreshold and gethysteresis differ only in their
// literals: the verbose note, and id3_0 stands only after the field before it.
constexpr shaped_verb reading_verb(std::string_view tmpl1, std::string_view tmpl0) {
    return {.sets = {set1({tmpl1, {take(verbose), take(pti_sym1_1), take(id2_1), take(id3_0).when({id2_1})}}),
                     set0({tmpl0, {take(verbose), take(addr1_0), take(id3_0).when({addr1_0})}})},
            .verbose_note = true};
}

constexpr shaped_verb sensor_verb = reading_verb("sensor %s %s %s %s", "sensor %s %s %s");
constexpr shaped_verb sensordata_verb = reading_verb("sensordata %s %s %s %s", "sensordata %s %s %s");
constexpr shaped_verb getthreshold_verb = reading_verb("getthreshold %s %s %s %s", "getthreshold %s %s %s");
constexpr shaped_verb gethysteresis_verb = reading_verb("gethysteresis %s %s %s %s", "gethysteresis %s %s %s");

// No verbose note, and `raw` is never required.
constexpr shaped_verb setthreshold_verb = {
    .sets = {set1({"setthreshold %s %s %s %s %s %s %s",
                   {take(verbose), take(pti_sym1_1), take(id2_1), take(id3_0), take(tr), take(raw), take(value)},
                   params_of({pti_sym1_1, id2_1, id3_0, tr, value})}),
             set0({"setthreshold %s %s %s %s %s %s",
                   {take(verbose), take(addr1_0), take(id3_0), take(tr), take(raw), take(value)},
                   params_of({addr1_0, id3_0, tr, value})})},
    .refusal = refuse_unless_a_set_is_complete,
};

constexpr shaped_verb sethysteresis_verb = {
    .sets = {set1({"sethysteresis %s %s %s %s %s %s",
                   {take(verbose), take(pti_sym1_1), take(id2_1), take(id3_0), take(tr), take(value)},
                   params_of({pti_sym1_1, id2_1, id3_0, tr, value})}),
             set0({"sethysteresis %s %s %s %s %s",
                   {take(verbose), take(addr1_0), take(id3_0), take(tr), take(value)},
                   params_of({addr1_0, id3_0, tr, value})})},
    .refusal = refuse_unless_a_set_is_complete,
};

// Neither verb reads `verbose`.
constexpr shaped_verb getsensoreventenable_verb = {
    .sets = {set1({"getsensoreventenable %s %s %s", {take(pti_sym1_1), take(id2_1), take(id3_0).when({id2_1})}}),
             set0({"getsensoreventenable %s %s", {take(addr1_0), take(id3_0).when({addr1_0})}})},
};

// Set 1 takes id2_0 second; id2_1 follows id3_0 in both sets.
constexpr shaped_verb setsensoreventenable_verb = {
    .sets = {set1({"setsensoreventenable %s %s %s %s %s %s",
                   {take(pti_sym1_1), take(id2_0), take(id3_0), take(id2_1), take(id2_2), take(id2_3)},
                   params_of({pti_sym1_1, id2_0, id3_0, id2_1})}),
             set0({"setsensoreventenable %s %s %s %s %s",
                   {take(addr1_0), take(id3_0), take(id2_1), take(id2_2), take(id2_3)},
                   params_of({addr1_0, id3_0, id2_1})})},
    .refusal = refuse_event_enable,
};

constexpr shaped_verb sel_information_verb = {
    .page = &sel_information_page,
    .sets = {set1({"sel %s %s %s %s", {take(verbose), take(pti_sym1_1), take(id2_1), take(value).when({id2_1})}}),
             set0({"sel %s %s %s", {take(verbose), take(addr1_0), take(value).when({addr1_0})}})},
};

constexpr shaped_verb sel_clear_verb = {
    .page = &sel_clear_page,
    .sets = {set1({"sel clear %s %s", {take(pti_sym1_1), take(id2_1)}}), set0({"sel clear %s ", {take(addr1_0)}})},
};

constexpr shaped_verb sel_info_verb = {
    .sets = {set1({"sel info %s %s %s", {take(verbose), take(pti_sym1_1), take(id2_1)}}),
             set0({"sel info %s %s ", {take(verbose), take(addr1_0)}})},
};

// Points the plan at the verb's own page if it has one, fills the chosen
// set's template and applies the verb's note and rule.
void plan_shaped_verb(const shaped_verb& verb, const form_input& form, verb_plan& plan) {
    if (verb.page != nullptr) plan.page = verb.page;
    append_shape(form, pick_shape(form, verb.sets), plan.command);
    if (verb.verbose_note) note_verbose(form.param(verbose), plan);
    if (verb.refusal != nullptr) plan.refusal = verb.refusal(verb, form);
}

}  // namespace

void plan_sensor(const form_input& form, verb_plan& plan) { plan_shaped_verb(sensor_verb, form, plan); }
void plan_sensordata(const form_input& form, verb_plan& plan) { plan_shaped_verb(sensordata_verb, form, plan); }
void plan_getthreshold(const form_input& form, verb_plan& plan) { plan_shaped_verb(getthreshold_verb, form, plan); }
void plan_gethysteresis(const form_input& form, verb_plan& plan) { plan_shaped_verb(gethysteresis_verb, form, plan); }
void plan_setthreshold(const form_input& form, verb_plan& plan) { plan_shaped_verb(setthreshold_verb, form, plan); }
void plan_sethysteresis(const form_input& form, verb_plan& plan) { plan_shaped_verb(sethysteresis_verb, form, plan); }
void plan_getsensoreventenable(const form_input& form, verb_plan& plan) {
    plan_shaped_verb(getsensoreventenable_verb, form, plan);
}
void plan_setsensoreventenable(const form_input& form, verb_plan& plan) {
    plan_shaped_verb(setsensoreventenable_verb, form, plan);
}

void plan_sel(const form_input& form, verb_plan& plan) {
    std::string_view choice = form.param(req_type_sel).or_empty();
    plan_shaped_verb(choice == "0" ? sel_information_verb : choice == "1" ? sel_clear_verb : sel_info_verb, form, plan);
}
