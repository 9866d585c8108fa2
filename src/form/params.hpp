// The fixed vocabulary of form fields most verbs read: 72 parameters,
// each present with a non-empty text or absent.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace param {
enum id : std::uint32_t {
    command = 0, verbose = 1, dump = 2, req_type = 3, offset = 4, to_write = 5,
    addr1_0 = 6, addr1_1 = 7, addr1_2 = 8, addr1_3 = 9,
    id2_0 = 10, id2_1 = 11, id2_2 = 12, id2_3 = 13, id3_0 = 14,
    site_type1_0 = 15, site_type1_1 = 16, site_type1_2 = 17, site_type1_3 = 18,
    pti_sym1_0 = 19, pti_sym1_1 = 20, pti_sym1_2 = 21, pti_sym1_3 = 22,
    req_type_activation = 23, addr_activation = 24, pti_sym_activation = 25,
    slot_activation = 26, id1_activation = 27, id2_activation = 28, value_activation = 29,
    req_type_deactivation = 30, addr_deactivation = 31, pti_sym_deactivation = 32,
    slot_deactivation = 33, id1_deactivation = 34, id2_deactivation = 35,
    value_deactivation = 36, req_type_sel = 37,
    req_type_pwrcapability = 38, pti_sym_pwrcapability = 39, addr_pwrcapability = 40,
    id1_pwrcapability = 41, value1_pwrcapability = 42, id2_pwrcapability = 43,
    value2_pwrcapability = 44, slot_bdselgrounded = 45, value_bdselgrounded = 46,
    req_type_pwrdelay = 47, pti_sym_pwrdelay = 48, addr_pwrdelay = 49, id1_pwrdelay = 50,
    value1_pwrdelay = 51, id2_pwrdelay = 52, value2_pwrdelay = 53, value_allowance = 54,
    req_type1_pwrreorder = 55, pti_sym1_pwrreorder = 56, addr1_pwrreorder = 57,
    id11_pwrreorder = 58, id12_pwrreorder = 59, op_pwrreorder = 60,
    req_type2_pwrreorder = 61, pti_sym2_pwrreorder = 62, addr2_pwrreorder = 63,
    id21_pwrreorder = 64, id22_pwrreorder = 65, feed0 = 66, current = 67, voltage = 68,
    tr = 69, value = 70, raw = 71,
};
}  // namespace param

struct param_entry {
    param::id id;
    std::string_view name;
};

inline constexpr std::size_t param_count = 72;
extern const param_entry param_table[param_count];

// The values bound for one request, by parameter id; each points into the
// form variable list, which must outlive every read.
struct param_registry {
    const char* values[param_count] = {};
};

// Binds name/value pairs (null-terminated, alternating); unknown names and
// empty values change nothing, and the last non-empty value of a name wins.
void bind_params(param_registry& registry, char* const* items);

// The form name of a parameter id; empty when not in the table.
std::string_view param_name(std::uint32_t id);

// The bound text of a parameter, or null when absent or not in the table.
const char* param_value(const param_registry& registry, std::uint32_t id);
