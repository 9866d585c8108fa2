// The request's form as the verbs read it: fields through the parameter
// registry or straight from the POST pairs, each present or absent.
#pragma once

#include <cstdint>
#include <string_view>

#include "form/form_vars.hpp"
#include "form/number.hpp"
#include "form/params.hpp"

// One form field as a verb sees it: present with a non-empty text, or absent.
struct field {
    const char* text = nullptr;

    bool present() const { return text != nullptr; }
    std::string_view or_empty() const { return text != nullptr ? text : ""; }
    // Selectors read as the target's strtoul does; an absent one reads as 0.
    std::uint32_t number() const { return text != nullptr ? read_ulong32(text) : 0; }
    bool reads_as(std::uint32_t n) const { return present() && number() == n; }
};

// Told the name of every field a plan asks for, and whether it asked
// through the registry: the build lists each verb's fields this way and
// checks the verb's row against them. Requests run without one.
using field_watch = void (*)(std::string_view name, bool through_registry);

// The request's form as the verbs read it.
struct form_input {
    char* const* items = nullptr;  // POST pairs; null for any other request
    param_registry params;         // bound only for verbs that read the registry
    field_watch watch = nullptr;

    field param(param::id id) const {
        if (watch != nullptr) watch(param_name(id), true);
        return {param_value(params, id)};
    }
    field post_var(std::string_view name) const {
        if (watch != nullptr) watch(name, false);
        return {post_var_value(items, name)};
    }
};
