// What the items of one structure read.
#pragma once

#include <span>
#include <string>

#include "Tests/Support/Structures.h"

// Expects the structure's title, its head items "Type", "Length" and "Handle", and then these lines.
void ExpectItems(const ClStructureBuilder& structure, const std::string& title, const std::string& lines);

struct KeyText_t {
    const char *key, *text;
};
// Expects the first item of each key to read so.
void ExpectTexts(const ClItems& items, std::span<const KeyText_t> texts);
