// The POST body decoded into the form variable list.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

// The value of `name` in an environment array ("NAME=value" entries ending
// with a null pointer), or null. The gateway reads its CGI variables from
// the array main is given, never through the C library.
const char* environment_value(char* const* env, std::string_view name);

// Whether the request's method brings a form body: only POST does. Any
// other method, or none, is answered as a request with no fields.
bool posts_a_body(const char* request_method);

// Name/value texts, alternating, ending with a null pointer; all point
// into one decoded copy of the body that the list owns.
struct form_vars {
    char* body = nullptr;
    char** items = nullptr;  // null when the request had no body
    bool body_allocated = false;
    bool items_allocated = false;
};

// Room for a form of the size the pages post, so that such a request needs
// no heap: the C library's allocator costs a process its set-up at first
// use. A larger body or list is allocated.
struct form_room {
    char body[4096 + 1];
    char* items[2 * 128 + 1];  // 128 pairs and the end marker
};

// The body length CONTENT_LENGTH announces, or 0 when it announces none
// that could ever be read (absent, non-numeric, zero, negative, or larger
// than any buffer); the same prefix reading as numbers elsewhere.
std::size_t parse_content_length(const char* text);

// The byte two escape characters stand for; letters in either case, and
// other characters yield what the digit rule computes.
unsigned char hex_pair_value(unsigned char high, unsigned char low);

// Decodes "%XY" escapes in place; a "%" without two characters after it
// keeps its tail unchanged. The result is never longer than the input.
void decode_percent_escapes(char* text);

// Bytes for the list of `segments` name/value pairs and its end marker,
// each entry `entry_size` bytes; 0 when that exceeds `size_limit`, the
// largest allocation the target can ask for (SIZE_MAX there).
std::uint64_t form_list_bytes(std::uint64_t segments, std::uint64_t entry_size, std::uint64_t size_limit);

// Splits and decodes a zero-terminated body in place (the text is taken
// over by the list: freed with it unless it lies in `room`); the list goes
// into `room` when one is given and it fits. False only when memory runs
// out.
bool decode_form_body(char* body, form_vars& vars, form_room* room = nullptr);

// Reads the body of a POST request from standard input, as long as
// `content_length` (CONTENT_LENGTH's value) announces; ends the process
// with status 1, writing nothing, when it cannot.
// A body and list that fit `room` stay there.
form_vars read_post_vars(const char* content_length, form_room* room = nullptr);

// The last non-empty value of the POST field `name`, or null; names are
// compared exactly and only names are compared.
const char* post_var_value(char* const* items, std::string_view name);

void release_form_vars(form_vars& vars);
