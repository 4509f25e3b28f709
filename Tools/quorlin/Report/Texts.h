// The texts of the report.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

enum ReportText_t : uint8_t {
#define TEXT(symbol, text) kText##symbol,
#include "Tools/quorlin/Report/Texts.inc"
#undef TEXT
};

std::string_view TextOf(ReportText_t text);
// The text with this symbol. Empty if there is none.
std::string_view TextByName(std::string_view symbol);
// The text with its %1 and %2 replaced.
std::string Filled(ReportText_t text, std::initializer_list<std::string_view> values);
std::string Filled(ReportText_t text, uint64_t first, uint64_t second = 0);
