#include "Packages/Analysis/Rules.h"

Rule_t RuleOf(RuleId_t rule) {
    switch (rule) {
#define RULE(symbol, id, severity, what, why, fix) \
    case RuleId_t::symbol:                         \
        return {id, Severity_t::severity, what, why, fix};
#include "Packages/Analysis/Rules.inc"
#undef RULE
    }
    return {};
}

std::string_view SeverityWord(Severity_t severity) {
    switch (severity) {
        case Severity_t::kNote: return "note";
        case Severity_t::kWarning: return "warning";
        default: return "error";
    }
}
