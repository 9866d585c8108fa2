#include "form/params.hpp"

#define VERBGW_PARAM_ENTRY(name, number) {param::name, #name},
constexpr param_entry param_table[param_count] = {VERBGW_PARAMS(VERBGW_PARAM_ENTRY)};
#undef VERBGW_PARAM_ENTRY

// Every id indexes the registry: below the count, and each one once.
constexpr bool ids_index_the_registry() {
    bool seen[param_count] = {};
    for (const param_entry& entry : param_table) {
        if (entry.id >= param_count || seen[entry.id]) return false;
        seen[entry.id] = true;
    }
    return true;
}
static_assert(ids_index_the_registry());

void bind_params(param_registry& registry, char* const* items) {
    if (items == nullptr) return;
    for (char* const* pair = items; pair[0] != nullptr; pair += 2) {
        const char* value = pair[1];
        if (*value == '\0') continue;
        std::string_view name = pair[0];
        for (const param_entry& entry : param_table) {
            if (entry.name == name) {
                registry.values[entry.id] = value;
                break;
            }
        }
    }
}

std::string_view param_name(std::uint32_t id) {
    for (const param_entry& entry : param_table) {
        if (entry.id == id) return entry.name;
    }
    return {};
}

const char* param_value(const param_registry& registry, std::uint32_t id) {
    return id < param_count ? registry.values[id] : nullptr;
}
