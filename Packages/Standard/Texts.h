// Facts as people read them, and the texts of their parts.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "Packages/Standard/Facts.h"

// The value as decoded, in its unit: a number, text, word, or words with ", " between them.
std::string PlainValue(const ClFacts& facts, const Fact_t& fact);
// The value for people: with its unit, sizes in the largest unit that fits; or why there is none.
std::string ShownValue(const ClFacts& facts, const Fact_t& fact);
// Hexadecimal digits of the bytes that a fact comes from: of a text, the string's number and the string.
std::string RawDigits(const ClFacts& facts, const Fact_t& fact);

// A size in the largest unit that it is a whole number of: 16 GiB.
std::string SizeText(uint64_t bytes);
// A code or number as hexadecimal: 0x26.
std::string CodeText(uint64_t code);
// A handle as the standard writes it: 0011h.
std::string HandleText(uint16_t handle);
// Hexadecimal digits without blanks.
std::string HexDigits(std::span<const uint8_t> bytes);
