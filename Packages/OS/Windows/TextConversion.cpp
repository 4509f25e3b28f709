#include "Packages/OS/TextConversion.h"

#include <limits>

#include "Packages/OS/Windows/Windows.h"

bool os_RevalidateUtf8(std::string_view text, std::string* valid) {
    if (text.empty() || text.size() > std::numeric_limits<int>::max() / 3) return false;
    // A byte becomes at most one wide character, and a wide character at most three bytes.
    std::wstring wide(text.size(), L'\0');
    const int wideCount = MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), wide.data(),
                                              static_cast<int>(wide.size()));
    std::string result(static_cast<size_t>(wideCount) * 3, '\0');
    const int count = WideCharToMultiByte(CP_UTF8, 0, wide.data(), wideCount, result.data(),
                                          static_cast<int>(result.size()), nullptr, nullptr);
    if (wideCount == 0 || count == 0) return false;
    result.resize(static_cast<size_t>(count));
    *valid = std::move(result);
    return true;
}
