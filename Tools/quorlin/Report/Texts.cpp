#include "Tools/quorlin/Report/Texts.h"

#include <iterator>

std::string_view TextOf(ReportText_t text) {
    switch (text) {
#define TEXT(symbol, words) \
    case kText##symbol:     \
        return words;
#include "Tools/quorlin/Report/Texts.inc"
#undef TEXT
    }
    return {};
}

std::string_view TextByName(std::string_view symbol) {
    constexpr char kNames[][20] = {
#define TEXT(symbol, words) #symbol,
#include "Tools/quorlin/Report/Texts.inc"
#undef TEXT
    };
    for (size_t i = 0; i < std::size(kNames); i++)
        if (symbol == kNames[i]) return TextOf(static_cast<ReportText_t>(i));
    return {};
}

std::string Filled(ReportText_t text, std::initializer_list<std::string_view> values) {
    std::string filled;
    std::string_view rest = TextOf(text);
    for (size_t at = rest.find('%'); at != rest.npos && at + 1 < rest.size(); at = rest.find('%')) {
        const auto number = static_cast<size_t>(rest[at + 1] - '1');
        filled.append(rest.substr(0, at));
        if (number < values.size()) filled.append(values.begin()[number]);
        rest.remove_prefix(at + 2);
    }
    return filled.append(rest);
}

std::string Filled(ReportText_t text, uint64_t first, uint64_t second) {
    return Filled(text, {std::to_string(first), std::to_string(second)});
}
