// UTF-8 that may be invalid.
#pragma once

#include <cstddef>
#include <string_view>

// Returns the size of the sequence that `text` begins with, and whether it is valid. An invalid sequence is a lone
// byte, a sequence that the end of the text cuts off, or one up to the byte that spoils it. That byte begins the next
// sequence, unless it is a following byte out of range. Expects a text that isn't empty.
size_t Utf8Sequence(std::string_view text, bool* isValid);
