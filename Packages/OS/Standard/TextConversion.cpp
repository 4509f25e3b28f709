// Replaces invalid bytes exactly as Windows does, so that a table reads the same on every system.
#include "Packages/OS/TextConversion.h"

#include "Packages/Format/Utf8.h"

static constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

bool os_RevalidateUtf8(std::string_view text, std::string* valid) {
    std::string result;
    while (!text.empty()) {
        const Utf8Sequence_t next = NextUtf8Sequence(text);
        result += next.isValid ? text.substr(0, next.size) : kReplacement;
        text.remove_prefix(next.size);
    }
    *valid = std::move(result);
    return true;
}
