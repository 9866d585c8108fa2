// Fuzzes the POST body decoder and the parameter registry binding: the
// decoded pairs must be exactly those a plain reference splitter finds,
// survive re-encoding, stay inside the body, and bind the registry to the
// last non-empty value of each known name.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "form/form_vars.hpp"
#include "form/params.hpp"
#include "fuzz_support.hpp"

namespace {

using pair_list = std::vector<std::pair<std::string, std::string>>;

// One side of a pair as every later use reads it: unescaped, up to its
// first zero byte (a decoded '%00' ends it).
std::string unescaped(std::string_view raw) {
    std::string text(raw);
    decode_percent_escapes(text.data());
    return text.c_str();
}

// The pairs of a body found without the decoder's splitting: "+" read as a
// blank first, split at every "&", empty segments dropped, each segment
// split at its first "=" (none: the value is empty), then each side
// unescaped. Escapes are checked by the round trip below, not here.
pair_list reference_pairs(std::string_view body) {
    std::string text(body);
    for (char& c : text) {
        if (c == '+') c = ' ';
    }
    pair_list pairs;
    std::string_view rest = text;
    while (!rest.empty()) {
        std::size_t amp = rest.find('&');
        std::string_view segment = rest.substr(0, amp);
        rest = amp == std::string_view::npos ? std::string_view{} : rest.substr(amp + 1);
        if (segment.empty()) continue;
        std::size_t eq = segment.find('=');
        std::string_view value = eq == std::string_view::npos ? std::string_view{} : segment.substr(eq + 1);
        pairs.emplace_back(unescaped(segment.substr(0, eq)), unescaped(value));
    }
    return pairs;
}

pair_list pairs_of(const form_vars& vars) {
    pair_list pairs;
    for (char** p = vars.items; *p != nullptr; p += 2) pairs.emplace_back(p[0], p[1]);
    return pairs;
}

// Every byte that is not unreserved (letters, digits, "-", ".", "_", "~")
// written as "%XY"; every pair written with its "=".
std::string encoded(const pair_list& pairs) {
    auto put = [](std::string& out, const std::string& text) {
        static constexpr char hex[] = "0123456789ABCDEF";
        for (unsigned char c : text) {
            bool unreserved = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
                              c == '-' || c == '.' || c == '_' || c == '~';
            if (unreserved) {
                out += static_cast<char>(c);
            } else {
                out += '%';
                out += hex[c >> 4];
                out += hex[c & 0xF];
            }
        }
    };
    std::string body;
    for (const auto& [name, value] : pairs) {
        if (!body.empty()) body += '&';
        put(body, name);
        body += '=';
        put(body, value);
    }
    return body;
}

void check_list_stays_in_body(const form_vars& vars, std::size_t body_size) {
    for (char** p = vars.items; *p != nullptr; ++p) {
        std::size_t length = std::strlen(*p);
        fuzz_check(length <= body_size, "no name or value longer than the body", *p);
        fuzz_check(*p >= vars.body && *p + length <= vars.body + body_size, "texts point into the body copy", *p);
    }
}

void check_registry(char* const* items) {
    param_registry registry;
    bind_params(registry, items);
    for (std::size_t i = 0; i < param_count; ++i) {
        const char* last = nullptr;
        for (char* const* p = items; *p != nullptr; p += 2) {
            if (p[1][0] != '\0' && param_table[i].name == p[0]) last = p[1];
        }
        fuzz_check(param_value(registry, param_table[i].id) == last, "the registry holds the last non-empty value",
                   param_table[i].name);
    }
    fuzz_check(param_value(registry, param_count) == nullptr, "no value past the table");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string_view body = body_text(data, size);
    form_vars vars;
    decode_body_copy(body, vars);
    check_list_stays_in_body(vars, body.size());

    pair_list pairs = pairs_of(vars);
    fuzz_check(pairs == reference_pairs(body), "pairs are the body's, in order", body);
    check_registry(vars.items);
    release_form_vars(vars);

    std::string again = encoded(pairs);
    form_vars round_trip;
    decode_body_copy(again, round_trip);
    fuzz_check(pairs_of(round_trip) == pairs, "re-encoded pairs decode to the same list", again);
    release_form_vars(round_trip);
    return 0;
}
