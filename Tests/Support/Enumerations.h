// Enumerations, checked value by value against a listing that a test types by hand.
#pragma once

#include <functional>
#include <initializer_list>
#include <string>

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
