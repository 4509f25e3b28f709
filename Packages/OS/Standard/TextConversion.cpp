// Replaces invalid bytes exactly as Windows does, so that a table reads the same on every system.
#include "Packages/OS/TextConversion.h"

#include "Packages/Format/Utf8.h"

static constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

bool os_RevalidateUtf8(std::string_view text, std::string* valid) {
    std::string result;
    while (!text.empty()) {
        bool isValid;
        const size_t size = Utf8Sequence(text, &isValid);
        result += isValid ? text.substr(0, size) : kReplacement;
        text.remove_prefix(size);
    }
    *valid = std::move(result);
    return true;
}
