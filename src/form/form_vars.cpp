#include "form/form_vars.hpp"

#include "form/number.hpp"

#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string_view>

const char* environment_value(char* const* env, std::string_view name) {
    if (env == nullptr) return nullptr;
    for (char* const* entry = env; *entry != nullptr; ++entry) {
        const char* text = *entry;
        std::size_t i = 0;
        while (i < name.size() && text[i] == name[i]) ++i;
        if (i == name.size() && text[i] == '=') return text + i + 1;
    }
    return nullptr;
}

bool posts_a_body(const char* request_method) {
    return request_method != nullptr && std::string_view(request_method) == "POST";
}

std::size_t parse_content_length(const char* text) {
    if (text == nullptr) return 0;
    const char* p = text;
    while (is_c_space(*p)) ++p;
    bool negative = false;
    if (*p == '+' || *p == '-') negative = *p++ == '-';
    // The body plus its terminating zero must stay addressable; a larger
    // announcement can never be read and must not wrap to a small number.
    constexpr std::uint64_t limit = PTRDIFF_MAX - 1;
    std::uint64_t length = 0;
    for (; *p >= '0' && *p <= '9'; ++p) {
        std::uint64_t digit = static_cast<std::uint64_t>(*p - '0');
        if (length > (limit - digit) / 10) return 0;  // checked before it could wrap
        length = length * 10 + digit;
    }
    if (negative) return 0;
    return static_cast<std::size_t>(length);
}

unsigned char hex_pair_value(unsigned char high, unsigned char low) {
    auto digit = [](unsigned char c) -> unsigned {
        return c >= 0x41 && c <= 0x7F ? static_cast<unsigned>(c & ~0x20u) - 55u : c - 48u;
    };
    return static_cast<unsigned char>((16u * digit(high) + digit(low)) & 0xFFu);
}

void decode_percent_escapes(char* text) {
    char* out = text;
    const char* in = text;
    while (*in != '\0') {
        if (in[0] == '%' && in[1] != '\0' && in[2] != '\0') {
            *out++ = static_cast<char>(hex_pair_value(static_cast<unsigned char>(in[1]),
                                                      static_cast<unsigned char>(in[2])));
            in += 3;
        } else {
            *out++ = *in++;
        }
    }
    *out = '\0';
}

std::uint64_t form_list_bytes(std::uint64_t segments, std::uint64_t entry_size, std::uint64_t size_limit) {
    // Checked by division first: on a 32-bit target 2^29 segments of
    // 4-byte entries would wrap to a tiny allocation.
    std::uint64_t max_entries = size_limit / entry_size;
    if (max_entries == 0 || segments > (max_entries - 1) / 2) return 0;
    return (2 * segments + 1) * entry_size;
}

namespace {

// The first `c` in the text, or its terminating zero.
char* find_or_end(char* text, char c) {
    while (*text != '\0' && *text != c) ++text;
    return text;
}

}  // namespace

bool decode_form_body(char* body, form_vars& vars, form_room* room) {
    std::size_t segments = 1;
    for (char* p = body; *p != '\0'; ++p) {
        if (*p == '+') *p = ' ';
        if (*p == '&') ++segments;
    }
    std::uint64_t bytes = form_list_bytes(segments, sizeof(char*), SIZE_MAX);
    if (bytes == 0) return false;
    bool in_room = room != nullptr && bytes <= sizeof room->items;
    char** items = in_room ? room->items : static_cast<char**>(std::malloc(static_cast<std::size_t>(bytes)));
    if (items == nullptr) return false;

    std::size_t count = 0;
    char* segment = body;
    while (segment != nullptr) {
        char* amp = find_or_end(segment, '&');
        bool last = *amp == '\0';
        *amp = '\0';
        if (*segment != '\0') {
            char* value = find_or_end(segment, '=');
            // Without "=", the value is the empty text at the segment's end.
            if (*value == '=') *value++ = '\0';
            decode_percent_escapes(segment);
            decode_percent_escapes(value);
            items[count++] = segment;
            items[count++] = value;
        }
        segment = last ? nullptr : amp + 1;
    }
    items[count] = nullptr;
    vars.body = body;
    vars.items = items;
    vars.body_allocated = room == nullptr || body != room->body;
    vars.items_allocated = !in_room;
    return true;
}

namespace {

[[noreturn]] void refuse_body() { std::exit(1); }

// Reads exactly `length` bytes into the room when they fit, else into a
// buffer that grows as data arrives, so an announced length far beyond the
// real body costs no large allocation.
char* read_exact_body(std::size_t length, form_room* room) {
    bool in_room = room != nullptr && length < sizeof room->body;
    std::size_t capacity = in_room ? length : length < 65536 ? length : 65536;
    char* body = in_room ? room->body : static_cast<char*>(std::malloc(capacity + 1));
    if (body == nullptr) return nullptr;
    std::size_t have = 0;
    while (have < length) {
        if (have == capacity) {
            std::size_t grown = capacity <= length / 2 ? capacity * 2 : length;
            char* bigger = static_cast<char*>(std::realloc(body, grown + 1));
            if (bigger == nullptr) break;
            body = bigger;
            capacity = grown;
        }
        ssize_t got = read(STDIN_FILENO, body + have, capacity - have);
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) break;
        have += static_cast<std::size_t>(got);
    }
    if (have < length) {
        if (!in_room) std::free(body);
        return nullptr;
    }
    body[length] = '\0';
    return body;
}

}  // namespace

form_vars read_post_vars(const char* content_length, form_room* room) {
    std::size_t length = parse_content_length(content_length);
    if (length == 0) refuse_body();
    char* body = read_exact_body(length, room);
    if (body == nullptr) refuse_body();
    form_vars vars;
    if (!decode_form_body(body, vars, room)) refuse_body();
    return vars;
}

const char* post_var_value(char* const* items, std::string_view name) {
    const char* found = nullptr;
    if (items == nullptr) return found;
    for (char* const* pair = items; pair[0] != nullptr; pair += 2) {
        if (pair[1][0] != '\0' && name == pair[0]) found = pair[1];
    }
    return found;
}

void release_form_vars(form_vars& vars) {
    if (vars.items_allocated) std::free(vars.items);
    if (vars.body_allocated) std::free(vars.body);
    vars = form_vars{};
}
