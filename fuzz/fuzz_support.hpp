// What both harnesses share: the stop on a broken invariant, and reading a
// fuzz input as the POST body the gateway would decode.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "form/form_vars.hpp"

// Ends the run; libFuzzer keeps the input that got here as a crash artifact.
inline void fuzz_check(bool holds, const char* invariant, std::string_view context = {}) {
    if (holds) return;
    std::fprintf(stderr, "broken invariant: %s [%.*s]\n", invariant, static_cast<int>(context.size()),
                 context.data());
    std::abort();
}

// The body text a request with this content would hand the decoder: the
// bytes up to the first zero byte, as the text the body reader terminates.
inline std::string_view body_text(const std::uint8_t* data, std::size_t size) {
    std::string_view bytes(reinterpret_cast<const char*>(data), size);
    return bytes.substr(0, bytes.find('\0'));
}

// Decodes a copy of the body into `vars`, which then owns it.
inline void decode_body_copy(std::string_view body, form_vars& vars) {
    char* copy = static_cast<char*>(std::malloc(body.size() + 1));
    fuzz_check(copy != nullptr, "memory for the body copy");
    std::memcpy(copy, body.data(), body.size());
    copy[body.size()] = '\0';
    fuzz_check(decode_form_body(copy, vars), "decode_form_body succeeds");
}
