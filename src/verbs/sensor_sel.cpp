#include "verbs/sensor_sel.hpp"

namespace {

using namespace param;

constexpr std::string_view the_parameters_message = "It is necessary to specify the parameters<BR>";
constexpr std::string_view mask_pair_message = "Deasserted mask must be specified along with the asserted mask<BR>";

constexpr std::string_view sel_back_link = "<A HREF=\"/verbs/sel.html\"> Back to the previous page </A>";

// sensor, sensordata, getthreshold and gethysteresis differ only in their
// literals: the verbose note, and id3_0 stands only after the field before it.
constexpr shaped_verb reading_verb(verb_page page, std::string_view tmpl1, std::string_view tmpl0) {
    return {.page = page,
            .sets = {set1({tmpl1, {take(verbose), take(pti_sym1_1), take(id2_1), take(id3_0).when({id2_1})}}),
                     set0({tmpl0, {take(verbose), take(addr1_0), take(id3_0).when({addr1_0})}})},
            .verbose_note = true};
}

}  // namespace

const shaped_verb sensor_verb =
    reading_verb({.title = "<TITLE> Corvane&#8482; Shelf Manager, Sensor Information </TITLE>",
                  .heading = "<H2> Sensor Information </H2>",
                  .back_link = "<A HREF=\"/verbs/sensor.html\"> Back to the previous page </A>"},
                 "sensor %s %s %s %s", "sensor %s %s %s");

const shaped_verb sensordata_verb =
    reading_verb({.title = "<TITLE> Corvane&#8482; Shelf Manager, Sensor Data Information </TITLE>",
                  .heading = "<H2> Sensor Data Information </H2>",
                  .back_link = "<A HREF=\"/verbs/sensordata.html\"> Back to the previous page </A>"},
                 "sensordata %s %s %s %s", "sensordata %s %s %s");

const shaped_verb getthreshold_verb =
    reading_verb({.title = "<TITLE> Corvane&#8482; Shelf Manager, Get Sensor Threshold Information </TITLE>",
                  .heading = "<H2> Sensor Threshold Information </H2>",
                  .back_link = "<A HREF=\"/verbs/getthreshold.html\"> Back to the previous page </A>"},
                 "getthreshold %s %s %s %s", "getthreshold %s %s %s");

// The title lacks the blank after "<TITLE>".
const shaped_verb gethysteresis_verb =
    reading_verb({.title = "<TITLE>Corvane&#8482; Shelf Manager, Get Sensor Hysteresis Information </TITLE>",
                  .heading = "<H2> Sensor Hysteresis Information </H2>",
                  .back_link = "<A HREF=\"/verbs/gethysteresis.html\"> Back to the previous page </A>"},
                 "gethysteresis %s %s %s %s", "gethysteresis %s %s %s");

// The set headings lack the blank before "</H2>"; no verbose note, and
// `raw` is never required.
const shaped_verb setthreshold_verb = {
    .page = {.title = "<TITLE> Corvane&#8482; Shelf Manager, Set Sensor Threshold </TITLE>",
             .heading = "<H2> Set Sensor Threshold</H2>",
             .back_link = "<A HREF=\"/verbs/setthreshold.html\"> Back to the previous page </A>"},
    .sets = {set1({"setthreshold %s %s %s %s %s %s %s",
                   {take(verbose), take(pti_sym1_1), take(id2_1), take(id3_0), take(tr), take(raw), take(value)},
                   params_of({pti_sym1_1, id2_1, id3_0, tr, value})}),
             set0({"setthreshold %s %s %s %s %s %s",
                   {take(verbose), take(addr1_0), take(id3_0), take(tr), take(raw), take(value)},
                   params_of({addr1_0, id3_0, tr, value})})},
    .refusal = refuse_unless_a_set_is_complete,
};

const shaped_verb sethysteresis_verb = {
    .page = {.title = "<TITLE> Corvane&#8482; Shelf Manager, Set Sensor Hysteresis </TITLE>",
             .heading = "<H2> Set Sensor Hysteresis</H2>",
             .back_link = "<A HREF=\"/verbs/sethysteresis.html\"> Back to the previous page </A>"},
    .sets = {set1({"sethysteresis %s %s %s %s %s %s",
                   {take(verbose), take(pti_sym1_1), take(id2_1), take(id3_0), take(tr), take(value)},
                   params_of({pti_sym1_1, id2_1, id3_0, tr, value})}),
             set0({"sethysteresis %s %s %s %s %s",
                   {take(verbose), take(addr1_0), take(id3_0), take(tr), take(value)},
                   params_of({addr1_0, id3_0, tr, value})})},
    .refusal = refuse_unless_a_set_is_complete,
};

// Titles and headings lack the blank before "</TITLE>" and "</H2>"; neither
// verb reads `verbose`.
const shaped_verb getsensoreventenable_verb = {
    .page = {.title = "<TITLE> Corvane&#8482; Shelf Manager, Get Sensor Event Enable Mask</TITLE>",
             .heading = "<H2> Get Sensor Event Enable Mask</H2>",
             .back_link = "<A HREF=\"/verbs/getsensoreventenable.html\"> Back to the previous page </A>"},
    .sets = {set1({"getsensoreventenable %s %s %s", {take(pti_sym1_1), take(id2_1), take(id3_0).when({id2_1})}}),
             set0({"getsensoreventenable %s %s", {take(addr1_0), take(id3_0).when({addr1_0})}})},
};

// Set 1 takes id2_0 second; id2_1 follows id3_0 in both sets.
const shaped_verb setsensoreventenable_verb = {
    .page = {.title = "<TITLE> Corvane&#8482; Shelf Manager, Set Sensor Event Enable Mask</TITLE>",
             .heading = "<H2> Set Sensor Event Enable Mask</H2>",
             .back_link = "<A HREF=\"/verbs/setsensoreventenable.html\"> Back to the previous page </A>"},
    .sets = {set1({"setsensoreventenable %s %s %s %s %s %s",
                   {take(pti_sym1_1), take(id2_0), take(id3_0), take(id2_1), take(id2_2), take(id2_3)},
                   params_of({pti_sym1_1, id2_0, id3_0, id2_1})}),
             set0({"setsensoreventenable %s %s %s %s %s",
                   {take(addr1_0), take(id3_0), take(id2_1), take(id2_2), take(id2_3)},
                   params_of({addr1_0, id3_0, id2_1})})},
    .refusal = refuse_event_enable,
};

const shaped_verb sel_information_verb = {
    .page = {.title = "<TITLE> Corvane&#8482; Shelf Manager, SEL Information </TITLE>",
             .heading = "<H2> SEL Information </H2>",
             .back_link = sel_back_link},
    .sets = {set1({"sel %s %s %s %s", {take(verbose), take(pti_sym1_1), take(id2_1), take(value).when({id2_1})}}),
             set0({"sel %s %s %s", {take(verbose), take(addr1_0), take(value).when({addr1_0})}})},
};

// The tool's answer stands between the rules, with no PRE block.
const shaped_verb sel_clear_verb = {
    .page = {.title = "<TITLE> Corvane&#8482; Shelf Manager, SEL Clear </TITLE>",
             .heading = "<H2> SEL Clear </H2>",
             .back_link = sel_back_link,
             .output_opener = "</P><HR>",
             .output_closer = "<HR>"},
    .sets = {set1({"sel clear %s %s", {take(pti_sym1_1), take(id2_1)}}), set0({"sel clear %s ", {take(addr1_0)}})},
};

const shaped_verb sel_info_verb = {
    .page = {.title = "<TITLE> Corvane&#8482; Shelf Manager, SEL Info </TITLE>",
             .heading = "<H2> SEL Info </H2>",
             .back_link = sel_back_link},
    .sets = {set1({"sel info %s %s %s", {take(verbose), take(pti_sym1_1), take(id2_1)}}),
             set0({"sel info %s %s ", {take(verbose), take(addr1_0)}})},
};

std::string_view refuse_unless_a_set_is_complete(const shaped_verb& verb, const form_input& form) {
    if (any_form_complete(form, verb.sets)) return {};
    return all_parameters_message;
}

std::string_view refuse_event_enable(const shaped_verb& verb, const form_input& form) {
    std::uint32_t selector = form.param(req_type).number();
    if (selector > 1) return the_parameters_message;
    if (!all_present(form, pick_shape(form, verb.sets).complete)) return the_parameters_message;
    if (form.param(id2_2).present() != form.param(id2_3).present()) return mask_pair_message;
    return {};
}

void plan_shaped_verb(const shaped_verb& verb, const form_input& form, verb_plan& plan) {
    plan.page = &verb.page;
    append_shape(form, pick_shape(form, verb.sets), plan.command);
    if (verb.verbose_note) note_verbose(form.param(verbose), plan);
    if (verb.refusal != nullptr) plan.refusal = verb.refusal(verb, form);
}

void sel_information_page(const form_input& form, verb_plan& plan) {
    plan_shaped_verb(sel_information_verb, form, plan);
}

void sel_clear_page(const form_input& form, verb_plan& plan) { plan_shaped_verb(sel_clear_verb, form, plan); }

void sel_info_page(const form_input& form, verb_plan& plan) { plan_shaped_verb(sel_info_verb, form, plan); }

void plan_sel(const form_input& form, verb_plan& plan) {
    std::string_view choice = form.param(req_type_sel).or_empty();
    if (choice == "0") {
        sel_information_page(form, plan);
    } else if (choice == "1") {
        sel_clear_page(form, plan);
    } else {
        sel_info_page(form, plan);
    }
}
