// What the SMBIOS standard says of a type's structures, as far as checks need it. Sources/Types.h has the names.
#pragma once

#include <cstdint>
#include <span>

#include "Sources/Types.h"

// A list of entries of one size in the formatted area, with its count in a byte before it.
struct EntryList_t {
    uint8_t countOffset;  // 0: the list fills the formatted area
    uint8_t sizeOffset;   // of the byte that states an entry's size; 0: entrySize
    uint8_t listOffset;
    uint8_t entrySize;
    uint8_t handleAt;  // in an entry; kNoHandle for entries without one
};
inline constexpr uint8_t kNoHandle = 255;

struct TypeFacts_t {
    uint8_t type;
    uint8_t minimumLength;  // of the oldest version that has the type
    // Characters in place of pointers, each of which would cost a relocation at start-up.
    char strings[9];   // offsets of string numbers
    char handles[5];   // offsets of handles of other structures
    EntryList_t list;  // all 0 where there is none
};

// Null for a type that the standard doesn't define.
const TypeFacts_t* FactsOf(uint8_t type);
// The least Length of a structure of this type, a header's for an unknown one.
uint8_t MinimumLength(uint8_t type);
