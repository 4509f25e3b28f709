// Conversion of text.
#pragma once

#include <string>
#include <string_view>

// Converts `text` to wide characters and back, which replaces what isn't valid UTF-8 with U+FFFD. Returns false, and
// leaves `valid` alone, if the system can't convert the text.
bool os_RevalidateUtf8(std::string_view text, std::string* valid);
