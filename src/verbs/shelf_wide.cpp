#include "verbs/shelf_wide.hpp"

#include <array>

#include "verbs/command_shape.hpp"

using namespace param;

namespace {

// A POST field read by name, and the text that stands for it when the
// form has no non-empty value for it.
struct named_field {
    std::string_view name;
    std::string_view fallback;
};

// A LAN/PEF verb: its template, the fields that fill it in order, and a
// note filled with the first field's text (empty: no note).
struct config_verb {
    std::string_view tmpl;
    std::array<named_field, 4> fields;
    std::string_view note = {};
};

constexpr config_verb getlanconfig_verb = {
    "getlanconfig %s %s", {{{"channel", "1"}, {"parameter", "0"}}}, "Retrieving Information of channel: %s<BR>"};
constexpr config_verb setlanconfig_verb = {
    "setlanconfig %s %s %s %s", {{{"channel", ""}, {"parameter", ""}, {"sel", ""}, {"value", ""}}}};
constexpr config_verb getpef_verb = {"getpefconfig %s", {{{"parameter", "0"}}}};
constexpr config_verb setpef_verb = {"setpefconfig %s %s %s", {{{"parameter", ""}, {"sel", ""}, {"value", ""}}}};

void plan_config_verb(const form_input& form, const config_verb& verb, verb_plan& plan) {
    std::array<std::string_view, 4> values;
    for (std::size_t i = 0; i < values.size(); ++i) {
        const named_field& f = verb.fields[i];
        field posted = f.name.empty() ? field{} : form.post_var(f.name);
        values[i] = posted.present() ? posted.or_empty() : f.fallback;
    }
    append_filled(plan.command, verb.tmpl, {values[0], values[1], values[2], values[3]});
    if (!verb.note.empty()) append_filled(plan.notes, verb.note, {values[0]});
}

// A registry verb with one template; when `shape.complete` is not all
// present the tool does not run and `missing` stands in its place.
struct checked_verb {
    command_shape shape;
    std::string_view missing = {};
};

// "alarm" alone, or "alarm <command>".
constexpr checked_verb alarm_verb = {{"alarm%s%s", {put(" ").when({command}), take(command)}}};
// Two blanks after the verb word are what the tool has always been sent.
constexpr checked_verb getipmbstate_verb = {
    {"getipmbstate  %s %s", {take(addr1_0), take(addr1_1)}, params_of({addr1_0})},
    "It is necessary to specify IPMB address<BR>"};
// The optional addr1_3 stands before the action, addr1_2.
constexpr checked_verb setipmbstate_verb = {
    {"setipmbstate %s %s %s %s", {take(addr1_0), take(addr1_1), take(addr1_3), take(addr1_2)},
     params_of({addr1_0, addr1_1, addr1_2})},
    "It is necessary to specify IPMB address, bus, and action<BR>"};

void plan_checked_verb(const form_input& form, const checked_verb& verb, verb_plan& plan) {
    append_shape(form, verb.shape, plan.command);
    if (!all_present(form, verb.shape.complete)) plan.refusal = verb.missing;
}

}  // namespace

void plan_getlanconfig(const form_input& form, verb_plan& plan) { plan_config_verb(form, getlanconfig_verb, plan); }
void plan_setlanconfig(const form_input& form, verb_plan& plan) { plan_config_verb(form, setlanconfig_verb, plan); }
void plan_getpef(const form_input& form, verb_plan& plan) { plan_config_verb(form, getpef_verb, plan); }
void plan_setpef(const form_input& form, verb_plan& plan) { plan_config_verb(form, setpef_verb, plan); }

void plan_showunhealthy(const form_input& form, verb_plan& plan) {
    field verbose = form.post_var("verbose");
    note_verbose(verbose, plan);
    append_filled(plan.command, "showunhealthy %s", {verbose.or_empty()});
}

void plan_alarm(const form_input& form, verb_plan& plan) { plan_checked_verb(form, alarm_verb, plan); }
void plan_getipmbstate(const form_input& form, verb_plan& plan) { plan_checked_verb(form, getipmbstate_verb, plan); }
void plan_setipmbstate(const form_input& form, verb_plan& plan) { plan_checked_verb(form, setipmbstate_verb, plan); }
