// The fixed vocabulary of form fields most verbs read: 72 parameters,
// each present with a non-empty text or absent.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

// Each parameter once, as its form name and its fixed id, in table order:
// the form pages' order, in which req_type_sel and the raw/value pair
// stand out of id order (lookups go by name or by id, never by position).
#define VERBGW_PARAMS(X) \
    X(command, 0) X(verbose, 1) X(dump, 2) X(req_type, 3) X(offset, 4) X(to_write, 5) X(addr1_0, 6) \
    X(addr1_1, 7) X(addr1_2, 8) X(addr1_3, 9) X(id2_0, 10) X(id2_1, 11) X(id2_2, 12) X(id2_3, 13) \
    X(id3_0, 14) X(site_type1_0, 15) X(site_type1_1, 16) X(site_type1_2, 17) X(site_type1_3, 18) \
    X(pti_sym1_0, 19) X(pti_sym1_1, 20) X(pti_sym1_2, 21) X(pti_sym1_3, 22) X(req_type_activation, 23) \
    X(addr_activation, 24) X(pti_sym_activation, 25) X(slot_activation, 26) X(id1_activation, 27) \
    X(id2_activation, 28) X(value_activation, 29) X(req_type_sel, 37) X(req_type_deactivation, 30) \
    X(addr_deactivation, 31) X(pti_sym_deactivation, 32) X(slot_deactivation, 33) \
    X(id1_deactivation, 34) X(id2_deactivation, 35) X(value_deactivation, 36) \
    X(req_type_pwrcapability, 38) X(pti_sym_pwrcapability, 39) X(addr_pwrcapability, 40) \
    X(id1_pwrcapability, 41) X(value1_pwrcapability, 42) X(id2_pwrcapability, 43) \
    X(value2_pwrcapability, 44) X(slot_bdselgrounded, 45) X(value_bdselgrounded, 46) \
    X(req_type_pwrdelay, 47) X(pti_sym_pwrdelay, 48) X(addr_pwrdelay, 49) X(id1_pwrdelay, 50) \
    X(value1_pwrdelay, 51) X(id2_pwrdelay, 52) X(value2_pwrdelay, 53) X(value_allowance, 54) \
    X(req_type1_pwrreorder, 55) X(pti_sym1_pwrreorder, 56) X(addr1_pwrreorder, 57) \
    X(id11_pwrreorder, 58) X(id12_pwrreorder, 59) X(op_pwrreorder, 60) X(req_type2_pwrreorder, 61) \
    X(pti_sym2_pwrreorder, 62) X(addr2_pwrreorder, 63) X(id21_pwrreorder, 64) X(id22_pwrreorder, 65) \
    X(feed0, 66) X(current, 67) X(voltage, 68) X(tr, 69) X(raw, 71) X(value, 70)

namespace param {
#define VERBGW_PARAM_ID(name, number) name = number,
enum id : std::uint32_t { VERBGW_PARAMS(VERBGW_PARAM_ID) };
#undef VERBGW_PARAM_ID
}  // namespace param

struct param_entry {
    param::id id;
    std::string_view name;
};

#define VERBGW_PARAM_ONE(name, number) +1
inline constexpr std::size_t param_count = 0 VERBGW_PARAMS(VERBGW_PARAM_ONE);
#undef VERBGW_PARAM_ONE
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
