#include "verbs/command_shape.hpp"

bool all_present(const form_input& form, param_set set) {
    for (std::uint32_t id = 0; id < 64; ++id) {
        if ((set >> id & 1) != 0 && !form.param(static_cast<param::id>(id)).present()) return false;
    }
    return true;
}

const command_shape& pick_shape(const form_input& form, std::span<const command_form> forms) {
    std::uint32_t selector = form.param(param::req_type).number();
    for (const command_form& candidate : forms) {
        if (!candidate.selector || *candidate.selector == selector) return candidate.shape;
    }
    return forms.back().shape;
}

namespace {

std::string_view slot_text(const form_input& form, const slot& place) {
    if (!all_present(form, place.needs)) return place.fallback;
    if (!place.field) return place.word;
    field value = form.param(*place.field);
    return value.present() ? value.or_empty() : place.fallback;
}

}  // namespace

void append_shape(const form_input& form, const command_shape& shape, command_text& command) {
    const auto& s = shape.slots;
    append_filled(command, shape.tmpl,
                  {slot_text(form, s[0]), slot_text(form, s[1]), slot_text(form, s[2]), slot_text(form, s[3]),
                   slot_text(form, s[4])});
}

void note_verbose(field verbose, verb_plan& plan) {
    if (verbose.present()) plan.notes.append(verbose_note);
}
