// Command templates as data: each "%s" place names the registry field that
// fills it, or a fixed word, and what must be present for it to be filled.
// Verbs that name a unit in several ways keep one shape per way and pick one
// by `req_type`.
#pragma once

#include <array>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <span>
#include <string_view>

#include "page/verb_page.hpp"

// A set of registry parameters, one bit per param id, in two words so that
// all 72 ids fit. The tables are constant, so an id past the set fails to
// compile rather than wrap.
struct param_set {
    std::uint64_t words[2] = {};

    constexpr bool has(std::uint32_t id) const { return (words[id / 64] >> (id % 64) & 1) != 0; }
    constexpr void add(std::uint32_t id) { words[id / 64] |= std::uint64_t{1} << (id % 64); }
    friend constexpr bool operator==(const param_set&, const param_set&) = default;
};

constexpr param_set params_of(std::initializer_list<param::id> ids) {
    param_set set;
    for (param::id id : ids) set.add(id);
    return set;
}

// True when every parameter of the set is present.
bool all_present(const form_input& form, param_set set);

// Parameter ids fit a byte; this one stands for no parameter.
inline constexpr std::uint8_t no_param = 0xFF;

// One "%s" place: the field's text (or the fixed word when there is no
// field, or the caller's text for a `given` place) when the parameters of
// `needs` are present, those of `unless` absent, and the field present;
// otherwise the fallback. Kept small: the verbs' tables are many places.
struct template_place {
    std::uint8_t field = no_param;
    std::uint8_t needs[2] = {no_param, no_param};
    std::uint8_t unless[2] = {no_param, no_param};
    bool given = false;
    const char* word = "";
    const char* fallback = "";

    constexpr template_place when(std::initializer_list<param::id> ids) const {
        template_place s = *this;
        list_into(s.needs, ids);
        return s;
    }
    constexpr template_place except(std::initializer_list<param::id> ids) const {
        template_place s = *this;
        list_into(s.unless, ids);
        return s;
    }
    constexpr template_place or_else(const char* text) const {
        template_place s = *this;
        s.fallback = text;
        return s;
    }

private:
    // At most two conditions a place; a third fails to compile in a table.
    static constexpr void list_into(std::uint8_t (&to)[2], std::initializer_list<param::id> ids) {
        std::size_t i = 0;
        for (param::id id : ids) to[i++] = static_cast<std::uint8_t>(id);
    }
};

constexpr template_place take(param::id field) {
    template_place s;
    s.field = static_cast<std::uint8_t>(field);
    return s;
}
constexpr template_place put(const char* word) {
    template_place s;
    s.word = word;
    return s;
}
// Filled with the text the caller passes to append_shape.
constexpr template_place given_text() {
    template_place s;
    s.given = true;
    return s;
}

// A template and its places in order (unused places stay empty). `complete`
// is what a verb that checks its unit requires; it plays no part in filling.
struct command_shape {
    std::string_view tmpl;
    std::array<template_place, 7> places = {};
    param_set complete = {};
};

// The shape taken when the selector (`req_type` unless another is named)
// reads as `selector` (an absent one reads as 0); a form without a selector
// takes any value and ends the list. A form that names one unit (one fan,
// say) may also run on another such form's fields: see may_run.
struct command_form {
    std::optional<std::uint32_t> selector;
    command_shape shape;
    bool names_one_unit = false;
};

// A form that names one unit.
constexpr command_form one_unit(std::optional<std::uint32_t> selector, command_shape shape) {
    return {selector, shape, true};
}

const command_form& pick_form(const form_input& form, std::span<const command_form> forms,
                              param::id selector = param::req_type);

inline const command_shape& pick_shape(const form_input& form, std::span<const command_form> forms,
                                       param::id selector = param::req_type) {
    return pick_form(form, forms, selector).shape;
}

// True when the chosen form's `complete` set is all present, or when it
// names one unit and some form of `forms` that names one unit is complete.
bool may_run(const form_input& form, std::span<const command_form> forms, const command_form& chosen);

// True when some form's `complete` set is all present, whichever form the
// selector chose: the run rule of the verbs that name a unit in two ways.
bool any_form_complete(const form_input& form, std::span<const command_form> forms);

// What those verbs write when no unit is complete.
inline constexpr std::string_view all_parameters_message = "It is necessary to specify all parameters<BR>";

// True when none of the set's parameters is present.
bool none_present(const form_input& form, param_set set);

// Appends the shape's template with its places filled from the form, and
// its `given` places with `given`.
void append_shape(const form_input& form, const command_shape& shape, command_text& command,
                  std::string_view given = {});

// Adds the verbose note when `verbose` is present.
void note_verbose(field verbose, verb_plan& plan);
