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

// One "%s" place: the field's text (or the fixed word when there is no
// field, or the caller's text for a `given` place) when every parameter of
// `needs` is present, none of `unless` is, and the field is; otherwise the
// fallback.
struct slot {
    std::optional<param::id> field;
    std::string_view word;
    param_set needs = {};
    std::string_view fallback;
    param_set unless = {};
    bool given = false;

    constexpr slot when(std::initializer_list<param::id> ids) const {
        slot s = *this;
        s.needs = params_of(ids);
        return s;
    }
    constexpr slot except(std::initializer_list<param::id> ids) const {
        slot s = *this;
        s.unless = params_of(ids);
        return s;
    }
    constexpr slot or_else(std::string_view text) const {
        slot s = *this;
        s.fallback = text;
        return s;
    }
};

constexpr slot take(param::id field) { return {field, {}, {}, {}}; }
constexpr slot put(std::string_view word) { return {std::nullopt, word, {}, {}}; }
// Filled with the text the caller passes to append_shape.
constexpr slot given_text() { return {std::nullopt, {}, {}, {}, {}, true}; }

// A template and its places in order (unused places stay empty). `complete`
// is what a verb that checks its unit requires; it plays no part in filling.
struct command_shape {
    std::string_view tmpl;
    std::array<slot, 7> slots = {};
    param_set complete = {};
};

// The shape taken when the selector (`req_type` unless another is named)
// reads as `selector` (an absent one reads as 0); a form without a selector
// takes any value and ends the list.
struct command_form {
    std::optional<std::uint32_t> selector;
    command_shape shape;
};

const command_shape& pick_shape(const form_input& form, std::span<const command_form> forms,
                                param::id selector = param::req_type);

// True when none of the set's parameters is present.
bool none_present(const form_input& form, param_set set);

// Appends the shape's template with its places filled from the form, and
// its `given` places with `given`.
void append_shape(const form_input& form, const command_shape& shape, command_text& command,
                  std::string_view given = {});

// Adds the verbose note when `verbose` is present.
void note_verbose(field verbose, verb_plan& plan);
