// Enumerations, checked value by value against a listing that a test types by hand.
#pragma once

#include <functional>
#include <initializer_list>
#include <string>
#include <vector>

#include "Tests/Support/Structures.h"

struct ListedText_t {
    uint8_t value;
    const char* text;
};

// Expects the byte at `offset` of this structure to read, under `key`, as the listing has it for every value listed,
// and as `otherwise` for every other value from 0 to 255.
void ExpectEnumeration(ClStructureBuilder structure, size_t offset, const std::string& key,
                       std::initializer_list<ListedText_t> listing, const std::string& otherwise);
// The same for a byte whose unlisted values show themselves.
void ExpectEnumeration(ClStructureBuilder structure, size_t offset, const std::string& key,
                       std::initializer_list<ListedText_t> listing,
                       const std::function<std::string(uint8_t)>& otherwise);

// A long listing: a run for each stretch of consecutive values.
struct Run_t {
    uint32_t first;  // the value of the first text; the others follow without a gap
    std::vector<const char*> texts;
};

// The text of each value below `count`: as listed, or `otherwise`.
std::vector<std::string> TextsOfRuns(const std::vector<Run_t>& runs, size_t count, const std::string& otherwise);

// Expects the byte at `offset` of this structure to read, under `key`, as the runs have it for every value that they
// list, and as `otherwise` for every other value from 0 to 255.
void ExpectRuns(ClStructureBuilder structure, size_t offset, const std::string& key, const std::string& otherwise,
                const std::vector<Run_t>& runs);
