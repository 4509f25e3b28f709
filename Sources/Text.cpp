#include "Sources/Text.h"

#include <algorithm>

ClText ClText::Joined(std::initializer_list<std::string_view> pieces) {
    size_t size = 0;
    for (const std::string_view piece : pieces) size += piece.size();
    ClText text;
    char* place = text.Own(size);
    for (const std::string_view piece : pieces) place = std::copy_n(piece.data(), piece.size(), place);
    return text;
}
