// UTF-8 that may be invalid.
#pragma once

#include <cstddef>
#include <string_view>

struct Utf8Sequence_t {
    size_t size;
    bool isValid;
};

// Returns the sequence that `text` begins with. An invalid sequence is a lone byte, one that the end of the text cuts
// off, or one up to the byte that spoils it. That byte begins the next sequence, unless it is a following byte out of
// range. Expects a text that isn't empty.
Utf8Sequence_t NextUtf8Sequence(std::string_view text);
