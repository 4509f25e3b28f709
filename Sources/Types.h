// The table of structure types: what is known of each type before a structure is read. The rows are in Types.def.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

class ClSMBIOSType;

enum class Sweep_t : uint8_t {
    kSwept,
    kOnDemand,    // has a decoder, but a sweep leaves it out
    kNotDecoded,  // has no decoder
};
enum class View_t : uint8_t { kWholeRecord, kFormattedArea };
enum class Head_t : uint8_t { kNone, kFirstTitle, kTitle, kHeader };

struct TypeRow_t {
    uint8_t type;
    Sweep_t sweep;
    View_t view;
    Head_t head;
    uint8_t titleSize, nameSize;
    // Characters in place of pointers, each of which would cost a relocation at start-up.
    char title[50];  // "TEXT {Type N}"
    char name[38];   // the standard's

    std::string_view Title() const { return {title, titleSize}; }
    std::string_view Name() const { return {name, nameSize}; }
};

// All rows, in rising order of their types.
std::span<const TypeRow_t> TypeRows();
// Returns the row of a type, or null for a type without one.
const TypeRow_t* FindType(uint8_t type);
// The standard's name of a type, or what the standard says of types that it doesn't define.
std::string_view NameOfType(uint8_t type);

// What some decoders depend on besides their structures.
struct DecoderInput_t {
    uint32_t processorSignature = 0;
    uint8_t smbiosMajor = 0, smbiosMinor = 0;  // version of the table
};

// Returns a new decoder, which belongs to the caller. Null for a type without a decoder, and if memory runs out.
ClSMBIOSType* NewDecoder(uint8_t type, const DecoderInput_t& input);
