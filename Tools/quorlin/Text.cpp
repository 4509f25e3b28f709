#include "Tools/quorlin/Text.h"

#include <algorithm>

namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";  // U+FFFD

char Lower(char character) {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
}

bool SameLetter(char first, char second) { return Lower(first) == Lower(second); }

}  // namespace

size_t SequenceLength(std::string_view text) {
    const auto byte = [text](size_t place) { return static_cast<unsigned char>(text[place]); };
    if (text.empty()) return 0;
    const unsigned lead = byte(0);
    if (lead < 0x80) return 1;
    const size_t length = lead >= 0xC2 && lead <= 0xDF   ? 2
                          : (lead & 0xF0) == 0xE0        ? 3
                          : lead >= 0xF0 && lead <= 0xF4 ? 4
                                                         : 0;
    if (length == 0 || text.size() < length) return 0;
    for (size_t place = 1; place < length; place++)
        if ((byte(place) & 0xC0) != 0x80) return 0;
    // No longer than needed, no surrogates, nothing above U+10FFFF.
    const unsigned second = byte(1);
    if ((lead == 0xE0 && second < 0xA0) || (lead == 0xED && second > 0x9F) || (lead == 0xF0 && second < 0x90) ||
        (lead == 0xF4 && second > 0x8F))
        return 0;
    return length;
}

std::string_view Trimmed(std::string_view text) {
    while (text.ends_with(' ')) text.remove_suffix(1);
    return text;
}

bool IsPlain(std::string_view text) {
    for (const char character : text)
        if (character < 0x20 || character == 0x7F) return false;
    return true;
}

void AppendPrintable(std::string& out, std::string_view text) {
    const size_t begin = out.size();
    if (IsPlain(text)) {
        out += text;
    } else {
        while (!text.empty()) {
            const size_t length = SequenceLength(text);
            const auto lead = static_cast<unsigned char>(text[0]);
            // The control characters: U+0000 to U+001F, U+007F, and U+0080 to U+009F.
            const bool isControl =
                length == 1 ? lead < 0x20 || lead == 0x7F : lead == 0xC2 && static_cast<unsigned char>(text[1]) < 0xA0;
            out += length == 0 ? kReplacement : isControl ? " " : text.substr(0, length);
            text.remove_prefix(std::max<size_t>(length, 1));
        }
    }
    while (out.size() > begin && out.back() == ' ') out.pop_back();
}

std::string Printable(std::string_view text) {
    std::string out;
    AppendPrintable(out, text);
    return out;
}

bool AppendUtf8(std::string& out, std::string_view text) {
    bool isReplaced = false;
    while (!text.empty()) {
        const size_t length = SequenceLength(text);
        out += length == 0 ? kReplacement : text.substr(0, length);
        isReplaced |= length == 0;
        text.remove_prefix(std::max<size_t>(length, 1));
    }
    return isReplaced;
}

bool EqualsIgnoringCase(std::string_view first, std::string_view second) {
    return std::ranges::equal(first, second, SameLetter);
}

bool ContainsIgnoringCase(std::string_view text, std::string_view part) {
    return std::search(text.begin(), text.end(), part.begin(), part.end(), SameLetter) != text.end() || part.empty();
}

std::string HandleText(uint16_t handle) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    return {kDigits[handle >> 12], kDigits[handle >> 8 & 15], kDigits[handle >> 4 & 15], kDigits[handle & 15], 'h'};
}
