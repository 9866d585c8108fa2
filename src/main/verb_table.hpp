// The verbs the gateway answers to, by invocation name.
#pragma once

#include <cstddef>
#include <span>
#include <string_view>

#include "page/serve.hpp"

extern const std::span<const verb_entry> verb_table;

// The verb a name selects, or null.
const verb_entry* find_verb(std::string_view name);

// The verb name within an invocation path: the last path component, cut
// before its first ".".
std::string_view verb_name_of(const char* invocation);
