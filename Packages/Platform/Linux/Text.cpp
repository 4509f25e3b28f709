// Text conversion between UTF-8 and UTF-16, code page 65001 alone. Text that isn't valid turns into U+FFFD, at the
// places and in the number that Windows gives.
#include <cstring>

#include "Packages/Platform/Linux/Handles.h"

namespace {

constexpr char32_t kReplacement = 0xFFFD;
constexpr char32_t kInvalid = 0xFFFFFFFF;

// The number of bytes that must follow `lead`; 0 for a byte that begins no sequence.
constexpr int FollowingBytes(uint8_t lead) {
    if (lead >= 0xC2 && lead <= 0xDF) return 1;
    if (lead >= 0xE0 && lead <= 0xEF) return 2;
    if (lead >= 0xF0 && lead <= 0xF4) return 3;
    return 0;
}

// The smallest code that needs that many following bytes.
constexpr char32_t kSmallest[] = {0, 0x80, 0x800, 0x10000};

constexpr bool IsSurrogate(char32_t code) { return code >= 0xD800 && code <= 0xDFFF; }

// Takes the next character off the text at `*at`. kInvalid stands for bytes that are none: a lone byte, a sequence that
// the text's end cuts off, or a sequence up to the byte that spoils it (which stays, unless it is itself a following
// byte out of range).
char32_t NextOfUtf8(const char** at, const char* end) {
    const auto lead = static_cast<uint8_t>(*(*at)++);
    if (lead < 0x80) return lead;
    const int following = FollowingBytes(lead);
    if (following == 0) return kInvalid;
    if (end - *at < following) {
        *at = end;
        return kInvalid;
    }
    char32_t code = lead & (0x3Fu >> following);
    for (int left = following; left > 0; --left) {
        const auto byte = static_cast<uint8_t>(**at);
        if ((byte & 0xC0) != 0x80) return kInvalid;
        ++*at;
        code = code << 6 | (byte & 0x3Fu);
        // With each further byte the range that `code` must end in is known as far as its high bits go.
        const int shift = 6 * (left - 1);
        const char32_t low = code << shift, high = low | ((1u << shift) - 1);
        if (high < kSmallest[following] || low > 0x10FFFF || (IsSurrogate(low) && IsSurrogate(high))) return kInvalid;
    }
    return code;
}

char32_t NextOfUtf16(const WCHAR** at, const WCHAR* end) {
    const char32_t unit = *(*at)++;
    if (!IsSurrogate(unit)) return unit;
    if (unit >= 0xDC00 || *at == end || **at < 0xDC00 || **at > 0xDFFF) return kInvalid;
    return 0x10000 + ((unit - 0xD800) << 10) + (static_cast<char32_t>(*(*at)++) - 0xDC00);
}

int PutUtf16(char32_t code, WCHAR* units) {
    if (code < 0x10000) {
        units[0] = static_cast<WCHAR>(code);
        return 1;
    }
    units[0] = static_cast<WCHAR>(0xD800 + ((code - 0x10000) >> 10));
    units[1] = static_cast<WCHAR>(0xDC00 + ((code - 0x10000) & 0x3FF));
    return 2;
}

int PutUtf8(char32_t code, char* bytes) {
    if (code < 0x80) {
        bytes[0] = static_cast<char>(code);
        return 1;
    }
    const int following = code < 0x800 ? 1 : code < 0x10000 ? 2 : 3;
    constexpr uint8_t kLead[] = {0, 0xC0, 0xE0, 0xF0};
    bytes[0] = static_cast<char>(kLead[following] | code >> (6 * following));
    for (int i = 1; i <= following; ++i) bytes[i] = static_cast<char>(0x80 | (code >> (6 * (following - i)) & 0x3F));
    return following + 1;
}

// Converts all of the input. The result is the number of output units; 0, with the last error set, on failure. With
// an output size of 0 nothing is written.
template <typename In, typename Out>
int Convert(const In* in, const In* end, Out* out, int outSize, bool refuseInvalid,
            char32_t (*next)(const In**, const In*), int (*put)(char32_t, Out*)) {
    int used = 0;
    while (in != end) {
        char32_t code = next(&in, end);
        if (code == kInvalid) {
            if (refuseInvalid) return Fail(ERROR_NO_UNICODE_TRANSLATION);
            code = kReplacement;
        }
        Out units[4];
        const int count = put(code, units);
        if (outSize != 0) {
            if (outSize - used < count) return Fail(ERROR_INSUFFICIENT_BUFFER);
            memcpy(out + used, units, static_cast<size_t>(count) * sizeof(Out));
        }
        used += count;
    }
    return used;
}

// The checks that both directions share. An output that isn't wanted has size 0.
bool ArgumentsAreRight(UINT codePage, const void* in, int inSize, const void* out, int outSize) {
    return codePage == CP_UTF8 && in != nullptr && inSize != 0 && outSize >= 0 && (out != nullptr || outSize == 0) &&
           (out == nullptr || out != in);
}

}  // namespace

int MultiByteToWideChar(UINT codePage, DWORD flags, LPCCH text, int size, LPWSTR wide, int wideSize) {
    if (!ArgumentsAreRight(codePage, text, size, wide, wideSize)) return Fail(ERROR_INVALID_PARAMETER);
    if ((flags & ~MB_ERR_INVALID_CHARS) != 0) return Fail(ERROR_INVALID_FLAGS);
    const char* end = text + (size < 0 ? strlen(text) + 1 : static_cast<size_t>(size));
    return Convert<char, WCHAR>(text, end, wide, wideSize, flags != 0, NextOfUtf8, PutUtf16);
}

int WideCharToMultiByte(UINT codePage, DWORD flags, LPCWCH wide, int wideSize, LPSTR text, int size,
                        LPCCH defaultCharacter, LPBOOL usedDefault) {
    if (!ArgumentsAreRight(codePage, wide, wideSize, text, size)) return Fail(ERROR_INVALID_PARAMETER);
    // This code page has a character for everything, so it takes no other in its place.
    if (defaultCharacter != nullptr || usedDefault != nullptr) return Fail(ERROR_INVALID_PARAMETER);
    if ((flags & ~WC_ERR_INVALID_CHARS) != 0) return Fail(ERROR_INVALID_FLAGS);
    const WCHAR* end = wide;
    if (wideSize < 0) {
        while (*end++ != 0) {
        }
    } else {
        end += wideSize;
    }
    return Convert<WCHAR, char>(wide, end, text, size, flags != 0, NextOfUtf16, PutUtf8);
}
