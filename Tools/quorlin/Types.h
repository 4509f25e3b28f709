// Structure types as users name them.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "Tools/quorlin/CommandLine.h"

// The --type option; it fills `names`.
Option_t TypeOption(std::vector<std::string>* names);
// The words for types, which an option may offer.
Choices_t TypeWords();
// The types that `names` stand for, each once, in their order. Throws BadUsage_t.
std::vector<uint8_t> TypesByName(std::span<const std::string> names);

// The types that a sweep takes, in its order.
std::vector<uint8_t> SweptTypes();
// All types, in rising order; without those that are decoded only when asked for, unless `onDemand`.
std::vector<uint8_t> AllTypes(bool onDemand);
