#include "verbs/command_shape.hpp"

namespace {

// True when some parameter of the set is present (or, for `present` false, absent).
bool any_is(const form_input& form, param_set set, bool present) {
    for (std::uint32_t id = 0; id < param_count; ++id) {
        if (set.has(id) && form.param(static_cast<param::id>(id)).present() == present) return true;
    }
    return false;
}

}  // namespace

bool all_present(const form_input& form, param_set set) { return !any_is(form, set, false); }

bool none_present(const form_input& form, param_set set) { return !any_is(form, set, true); }

bool any_form_complete(const form_input& form, std::span<const command_form> forms) {
    for (const command_form& candidate : forms) {
        if (all_present(form, candidate.shape.complete)) return true;
    }
    return false;
}

const command_form& pick_form(const form_input& form, std::span<const command_form> forms,
                              param::id selector_field) {
    std::uint32_t selector = form.param(selector_field).number();
    for (const command_form& candidate : forms) {
        if (!candidate.selector || *candidate.selector == selector) return candidate;
    }
    return forms.back();
}

bool may_run(const form_input& form, std::span<const command_form> forms, const command_form& chosen) {
    if (all_present(form, chosen.shape.complete)) return true;
    if (!chosen.names_one_unit) return false;
    for (const command_form& candidate : forms) {
        if (candidate.names_one_unit && all_present(form, candidate.shape.complete)) return true;
    }
    return false;
}

namespace {

bool holds(const form_input& form, const std::uint8_t (&ids)[2], bool present) {
    for (std::uint8_t id : ids) {
        if (id != no_param && form.param(static_cast<param::id>(id)).present() != present) return false;
    }
    return true;
}

std::string_view place_text(const form_input& form, const template_place& place, std::string_view given) {
    if (!holds(form, place.needs, true) || !holds(form, place.unless, false)) return place.fallback;
    if (place.given) return given;
    if (place.field == no_param) return place.word;
    field value = form.param(static_cast<param::id>(place.field));
    return value.present() ? value.or_empty() : place.fallback;
}

}  // namespace

void append_shape(const form_input& form, const command_shape& shape, command_text& command,
                  std::string_view given) {
    const auto& s = shape.places;
    auto text = [&](const template_place& place) { return place_text(form, place, given); };
    append_filled(command, shape.tmpl,
                  {text(s[0]), text(s[1]), text(s[2]), text(s[3]), text(s[4]), text(s[5]), text(s[6])});
}

void note_verbose(field verbose, verb_plan& plan) {
    if (verbose.present()) plan.notes.append(verbose_note);
}
