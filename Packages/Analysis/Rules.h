// The rules of check. Rules.inc has them.
#pragma once

#include <cstdint>
#include <string_view>

enum class Severity_t : uint8_t { kNote, kWarning, kError };

enum class RuleId_t : uint8_t {
#define RULE(symbol, ...) symbol,
#include "Packages/Analysis/Rules.inc"
#undef RULE
};
inline constexpr RuleId_t kRules[] = {
#define RULE(symbol, ...) RuleId_t::symbol,
#include "Packages/Analysis/Rules.inc"
#undef RULE
};

struct Rule_t {
    std::string_view id;  // stable, such as "QR0101"
    Severity_t severity;
    std::string_view what;  // is wrong
    std::string_view why;   // it matters
    std::string_view fix;   // what firmware should do
};

// It is made by a function, as a table of pointers would cost relocations at start-up.
Rule_t RuleOf(RuleId_t rule);

// "note", "warning" and "error".
std::string_view SeverityWord(Severity_t severity);
