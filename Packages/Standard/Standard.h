// The SMBIOS standard, level 3.9, as tables: structure types with their fields, enumerations, bit lists, and lists
// inside structures.
//
// Each type has a file of its own, TypeNNN.cpp, whose rows read like the standard's table. The rows are packed at
// compile time into what is declared here. Packed tables refer to texts by offsets and have no pointers, so that
// loading the library doesn't relocate them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

// What a fact is. Sizes, counts, speeds and the like are numbers with a unit.
enum class FactKind_t : uint8_t {
    kNumber,
    kText,
    kCode,  // of an enumeration
    kBits,  // a list of words, one for each set bit
    kHandle,
    kUuid,
    kDate,     // as in 2023-05-12
    kVersion,  // as in 5.17
    kBytes,
    kList,  // of records, each with facts of its own
};

// What a fact's value is worth.
enum class FactState_t : uint8_t {
    kValue,
    kUnknown,   // the standard's code for an unknown value
    kNone,      // the field says that there is nothing, or that another field has it: string number 0, "not provided"
    kAbsent,    // Length doesn't reach the field's end
    kReserved,  // a code that the standard doesn't assign
    kFiller,    // a text that firmware was delivered with, or a UUID of all 00h or FFh
    kBroken,    // a string, list or handle that isn't there
};

// Units of numbers. Numbers are converted to these when they are read, so a size in the structure's KB is in bytes.
enum class Unit_t : uint8_t {
    kNone,
    kByte,
    kBit,
    kMHz,
    kMTs,  // million transfers a second
    kMillivolt,
    kMicrovolt,
    kMilliampere,
    kMicroampere,
    kWatt,
    kMilliwattHour,
    kNanosecond,
    kMinute,
    kPercent,
    kPpm,           // parts per million
    kMillicelsius,  // thousandths of a degree Celsius
    kRpm,
    kMicrometer,
    kRackUnit,
};

// A version of the standard as 231h for 2.3.1, or 390h for 3.9.
using StandardVersion_t = uint16_t;

// How the bytes of a field are read.
enum class Form_t : uint8_t {
    kText,    // a string number
    kNumber,  // little-endian
    kHex,     // a number that people read as hexadecimal
    kSigned,
    kCount,  // how many records or bytes follow: of the next list, or of the next field with a counted width
    kStep,   // the size of a record of the next list
    kBcd,
    kCode,
    kBits,
    kHandle,
    kUuid,
    kAscii,
    kBytes,
    kReserved,
    kRecords,  // a list of records
    kStrings,  // a list of the structure's strings, the counted ones or all
    kDerived,  // of other fields
    // Numbers with a unit inside.
    kRomSize,          // (n + 1) * 64 KB
    kExtendedRomSize,  // bits 13:0 in MB or GB
    kPowerOfTwoMB,     // 2^n MB
    kMemorySize,       // bits 14:0 in MB or KB
    kCacheSize,        // all bits but the highest in KB or 64 KB
    kWithoutHighBit,   // the highest bit is reserved
    kTenthsOfVolt,     // bits 6:0 in 0.1 V if bit 7 is set
    kSbdsDate,         // year, month and day packed into a word
    kNibbleVersion,    // major in the high digit, minor in the low one
    kPlusOne,          // a part that counts from 0 though people count from 1
};

// What a derived fact is made from. Its row names the fields.
enum class Derivation_t : uint8_t {
    kNotDerived,
    kIsoDate,
    kRelease,
    kRealModeAddress,
    kRealModeSize,
    kFirstUsable,  // the first field unless it refers to the second one
    kProcessorSignature,
    kProcessorFeatures,
    kProcessorVoltage,
    kPciAddress,
    kRangeEnd,
    kRangeSize,
    kBatteryCapacity,
    kIpmiAddress,
    kTpmFirmwareVersion,
};

// How a walk reads a field. All but the first are for fields at a fixed place, whose number no list needs.
enum class Path_t : uint8_t {
    kGeneral,
    kOther,
    kText,
    kHandle,
    kConverted,  // a number with a unit inside, or some bits of a field
    kByte,       // numbers that are read as they are, or scaled
    kWord,
    kNumber,
    kCode,
    kBits,
};

// One code of an enumeration, or a range of codes; the word of one bit of a bit list, with its number as code; or a
// type that a handle may refer to.
struct StandardCode_t {
    uint16_t first;
    uint16_t last;
    uint16_t word;
    StandardVersion_t since;
    FactState_t state;
};

// A value of a number that isn't a number: unknown, none, or reserved.
struct StandardSpecial_t {
    uint64_t first;
    uint64_t last;
    uint16_t word;  // for references, the name of the field that has the value
    FactState_t state;
    bool isReference;
};

inline constexpr uint8_t kCountedWidth = 0xFD;  // of as many bytes as the count before it says
inline constexpr uint8_t kRestOfRecord = 0xFE;  // up to the end of the record, or of the structure
inline constexpr uint16_t kAfterList = 0x8000;  // of offsets that count from the end of the last list or counted bytes

// What a fact takes over from the row of its field, in one step.
struct FactHead_t {
    FactKind_t kind;
    Unit_t unit;
    uint16_t offset;  // in the structure, or of a row in its record; with `size`, the bytes that the fact comes from
    uint16_t size;    // 0 for derived facts and for strings of a list
    FactState_t state;
    bool isSigned;     // the number is a two's complement
    bool isReference;  // its state is kNone because another field, which the text names, has the value
    bool isDerived;    // made from other facts, which the row's `from` names
    uint8_t keySize;
    uint8_t nameSize;
    int32_t record;  // of a fact in a list, the number of its record, from 0; otherwise -1
};

struct StandardField_t : FactHead_t {
    uint16_t name;
    uint16_t key;
    uint8_t width;
    Form_t form;
    Derivation_t derivation;
    uint32_t scale;       // from the number in the bytes to the unit
    uint8_t low;          // for parts of a field, the lowest bit, and their number
    uint8_t bits;         // 0: the field as a whole
    uint8_t counted;      // lists: 0 as many as counted, 1 one record, 2 up to the structure's end
    uint8_t ownLengthAt;  // lists whose records have their own length: where it is, and what is to be added to it
    uint8_t ownLengthPlus;
    StandardVersion_t since;
    uint16_t first;  // of its codes, bit words, handle types, or of its records' fields; the table for derived facts
    uint16_t count;
    uint16_t firstSpecial;
    uint8_t specials;
    uint8_t step;     // of a list's records; 0: as the field before it says, or by their own length
    uint8_t from[4];  // derived facts: fields of the same table
    uint8_t sources;
    Path_t path;
    bool hasParts;        // its parts are the next fields
    uint16_t end;         // of a field at a fixed place, or of the first source of a derived fact; 0 if it isn't fixed
    uint8_t nextShorter;  // the place of the next field that may be there if this one is absent

    constexpr bool IsPart() const { return bits != 0; }
    constexpr bool HasFixedPlace() const { return path != Path_t::kGeneral; }
};

// The packed table of one structure type.
struct StandardType_t {
    uint8_t type;
    StandardVersion_t since;
    uint16_t name;
    uint16_t topFields;  // the first ones of `fields`; the others are those of records
    std::span<const StandardField_t> fields;
    std::span<const StandardCode_t> codes;
    std::span<const StandardSpecial_t> specials;
    const char* texts;

    // Returns a text, which a NUL follows.
    std::string_view Text(uint16_t offset) const {
        return {texts + offset + 1, static_cast<unsigned char>(texts[offset])};
    }
    // Returns the row of a code, or of a bit. Null if the standard doesn't assign it.
    const StandardCode_t* FindCode(const StandardField_t& field, uint64_t code) const {
        const StandardCode_t* const rows = codes.data() + field.first;
        if (field.count == 0 || code < rows->first) return nullptr;
        // Without gaps the row would be here; most enumerations have few.
        uint64_t place = code - rows->first;
        if (place >= field.count) place = field.count - 1u;
        while (rows[place].first > code) place--;
        return code <= rows[place].last ? &rows[place] : nullptr;
    }
    std::string_view Name() const { return Text(name); }
    std::span<const StandardField_t> TopFields() const { return fields.first(topFields); }
    std::span<const StandardField_t> RecordFields(const StandardField_t& list) const {
        return fields.subspan(list.first, list.count);
    }
    std::span<const StandardCode_t> Codes(const StandardField_t& field) const {
        return codes.subspan(field.first, field.count);
    }
    std::span<const StandardSpecial_t> Specials(const StandardField_t& field) const {
        return specials.subspan(field.firstSpecial, field.specials);
    }
};

// Returns the level that a table states: 0304h as 340h. Some firmware writes 2.3.1 and 2.3.3 as 2.31 and 2.33.
constexpr StandardVersion_t LevelOf(uint16_t version) {
    if (version == 0x021F) return 0x231;
    if (version == 0x0221) return 0x233;
    const int minor = version & 0xFF;
    return static_cast<StandardVersion_t>((version & 0xFF00) | (minor < 15 ? minor : 15) << 4);
}

// Returns the table of a structure type. For types that the standard doesn't have, it is one that has the structure's
// bytes and strings.
StandardType_t FindStandardType(uint8_t type);

// Returns the table for structures of type 42 from before 3.2, which have no length before their data.
StandardType_t OldHostInterface();

// Whether the standard has this type.
bool IsStandardType(uint8_t type);

// Whether a type has a fact with this key.
bool IsFactKey(std::string_view key);

inline constexpr char kStateNames[][9] = {"value", "unknown", "none", "absent", "reserved", "filler", "broken"};

// Returns the name of a state, such as "value".
inline const char* StateName(FactState_t state) { return kStateNames[static_cast<size_t>(state)]; }

inline constexpr char kUnitNames[][6] = {"",    "byte",     "bit", "MHz",     "MT/s", "mV",  "\u00B5V",
                                         "mA",  "\u00B5A",  "W",   "mWh",     "ns",   "min", "%",
                                         "ppm", "m\u00B0C", "rpm", "\u00B5m", "U"};

// Returns the name of a unit, such as "MT/s". Empty for kNone.
inline const char* UnitName(Unit_t unit) { return kUnitNames[static_cast<size_t>(unit)]; }
