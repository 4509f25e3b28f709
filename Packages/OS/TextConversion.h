// Conversion of text.
#pragma once

#include <string>
#include <string_view>

// Makes valid UTF-8: converts `text` to wide characters and back, which puts U+FFFD in place of what isn't valid.
// False, with `valid` as it was, when the system can't convert the text.
bool os_RevalidateUtf8(std::string_view text, std::string* valid);
