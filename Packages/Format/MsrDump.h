// Model-specific registers as text: a line for each, with its number, its processor's number, and the value as
// rdmsr -0 writes it. Works on bytes.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

struct RecordedMsr_t {
    uint32_t number, processor;
    std::optional<uint64_t> value;  // none: the machine refused to read it
    bool operator==(const RecordedMsr_t&) const = default;
};

// Registers must be in rising order of their numbers, then of their processors.
std::string WriteMsrDump(std::span<const RecordedMsr_t> registers);
// Returns what is wrong, with the line's number, or an empty text. Throws std::bad_alloc.
std::string ParseMsrDump(std::string_view text, std::vector<RecordedMsr_t>* registers);
