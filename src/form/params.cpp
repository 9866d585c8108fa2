#include "form/params.hpp"

#include <cstring>

// Table order is the form pages' order; req_type_sel and the raw/value pair
// stand out of id order, which lookups by key do not notice.
constexpr param_entry param_table[param_count] = {
    {param::command, "command"}, {param::verbose, "verbose"}, {param::dump, "dump"},
    {param::req_type, "req_type"}, {param::offset, "offset"}, {param::to_write, "to_write"},
    {param::addr1_0, "addr1_0"}, {param::addr1_1, "addr1_1"}, {param::addr1_2, "addr1_2"},
    {param::addr1_3, "addr1_3"}, {param::id2_0, "id2_0"}, {param::id2_1, "id2_1"},
    {param::id2_2, "id2_2"}, {param::id2_3, "id2_3"}, {param::id3_0, "id3_0"},
    {param::site_type1_0, "site_type1_0"}, {param::site_type1_1, "site_type1_1"},
    {param::site_type1_2, "site_type1_2"}, {param::site_type1_3, "site_type1_3"},
    {param::pti_sym1_0, "pti_sym1_0"}, {param::pti_sym1_1, "pti_sym1_1"},
    {param::pti_sym1_2, "pti_sym1_2"}, {param::pti_sym1_3, "pti_sym1_3"},
    {param::req_type_activation, "req_type_activation"},
    {param::addr_activation, "addr_activation"},
    {param::pti_sym_activation, "pti_sym_activation"},
    {param::slot_activation, "slot_activation"}, {param::id1_activation, "id1_activation"},
    {param::id2_activation, "id2_activation"}, {param::value_activation, "value_activation"},
    {param::req_type_sel, "req_type_sel"},
    {param::req_type_deactivation, "req_type_deactivation"},
    {param::addr_deactivation, "addr_deactivation"},
    {param::pti_sym_deactivation, "pti_sym_deactivation"},
    {param::slot_deactivation, "slot_deactivation"},
    {param::id1_deactivation, "id1_deactivation"},
    {param::id2_deactivation, "id2_deactivation"},
    {param::value_deactivation, "value_deactivation"},
    {param::req_type_pwrcapability, "req_type_pwrcapability"},
    {param::pti_sym_pwrcapability, "pti_sym_pwrcapability"},
    {param::addr_pwrcapability, "addr_pwrcapability"},
    {param::id1_pwrcapability, "id1_pwrcapability"},
    {param::value1_pwrcapability, "value1_pwrcapability"},
    {param::id2_pwrcapability, "id2_pwrcapability"},
    {param::value2_pwrcapability, "value2_pwrcapability"},
    {param::slot_bdselgrounded, "slot_bdselgrounded"},
    {param::value_bdselgrounded, "value_bdselgrounded"},
    {param::req_type_pwrdelay, "req_type_pwrdelay"},
    {param::pti_sym_pwrdelay, "pti_sym_pwrdelay"}, {param::addr_pwrdelay, "addr_pwrdelay"},
    {param::id1_pwrdelay, "id1_pwrdelay"}, {param::value1_pwrdelay, "value1_pwrdelay"},
    {param::id2_pwrdelay, "id2_pwrdelay"}, {param::value2_pwrdelay, "value2_pwrdelay"},
    {param::value_allowance, "value_allowance"},
    {param::req_type1_pwrreorder, "req_type1_pwrreorder"},
    {param::pti_sym1_pwrreorder, "pti_sym1_pwrreorder"},
    {param::addr1_pwrreorder, "addr1_pwrreorder"}, {param::id11_pwrreorder, "id11_pwrreorder"},
    {param::id12_pwrreorder, "id12_pwrreorder"}, {param::op_pwrreorder, "op_pwrreorder"},
    {param::req_type2_pwrreorder, "req_type2_pwrreorder"},
    {param::pti_sym2_pwrreorder, "pti_sym2_pwrreorder"},
    {param::addr2_pwrreorder, "addr2_pwrreorder"}, {param::id21_pwrreorder, "id21_pwrreorder"},
    {param::id22_pwrreorder, "id22_pwrreorder"}, {param::feed0, "feed0"},
    {param::current, "current"}, {param::voltage, "voltage"}, {param::tr, "tr"},
    {param::raw, "raw"}, {param::value, "value"},
};

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
