// What CPUID says on each processor as text, in the form that cpuid -r writes and cpuid -f reads. Works on bytes.
#pragma once

#include <compare>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

struct CpuidLeaf_t {
    uint32_t leaf, subleaf;
    uint32_t eax, ebx, ecx, edx;
    auto operator<=>(const CpuidLeaf_t&) const = default;
};
// Of one processor, in rising order of leaf and sub-leaf. A processor's number is its place in a list of these.
using CpuidLeaves_t = std::vector<CpuidLeaf_t>;

std::string WriteCpuidDump(std::span<const CpuidLeaves_t> processors);
// Returns what is wrong, with the line's number, or an empty text. Throws std::bad_alloc.
std::string ParseCpuidDump(std::string_view text, std::vector<CpuidLeaves_t>* processors);
