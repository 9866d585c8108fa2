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

// A set of registry parameters, one bit per param id. The tables are
// constant, so an id of 64 or more fails to compile rather than wrap.
using param_set = std::uint64_t;

constexpr param_set params_of(std::initializer_list<param::id> ids) {
    param_set set = 0;
    for (param::id id : ids) set |= param_set{1} << id;
    return set;
}

// True when every parameter of the set is present.
bool all_present(const form_input& form, param_set set);

// One "%s" place: the field's text (or the fixed word when there is no
// field) when every parameter of `needs` is present and the field is;
// otherwise the fallback.
struct slot {
    std::optional<param::id> field;
    std::string_view word;
    param_set needs = 0;
    std::string_view fallback;

    constexpr slot when(std::initializer_list<param::id> ids) const {
        slot s = *this;
        s.needs = params_of(ids);
        return s;
    }
    constexpr slot or_else(std::string_view text) const {
        slot s = *this;
        s.fallback = text;
        return s;
    }
};

constexpr slot take(param::id field) { return {field, {}, 0, {}}; }
constexpr slot put(std::string_view word) { return {std::nullopt, word, 0, {}}; }

// A template and its places in order (unused places stay empty). `complete`
// is what a verb that checks its unit requires; it plays no part in filling.
struct command_shape {
    std::string_view tmpl;
    std::array<slot, 5> slots = {};
    param_set complete = 0;
};

// The shape taken when `req_type` reads as `selector` (an absent one reads
// as 0); a form without a selector takes any value and ends the list.
struct command_form {
    std::optional<std::uint32_t> selector;
    command_shape shape;
};

const command_shape& pick_shape(const form_input& form, std::span<const command_form> forms);

// Appends the shape's template with its places filled from the form.
void append_shape(const form_input& form, const command_shape& shape, command_text& command);

// Adds the verbose note when `verbose` is present.
void note_verbose(field verbose, verb_plan& plan);
