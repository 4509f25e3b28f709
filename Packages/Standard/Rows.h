// How the files of the structure types write the standard's tables, and what packs the rows at compile time. Only those
// files include this header. The rows themselves aren't in the library.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "Packages/Standard/Key.h"
#include "Packages/Standard/Standard.h"

// Turns "2.3.1" into 231h and "3.9" into 390h. "<=2.3.1" is in the oldest text at hand, so it may be older.
constexpr StandardVersion_t VersionOf(std::string_view text) {
    StandardVersion_t version = 0;
    int digits = 0;
    for (const char c : text)
        if (c >= '0' && c <= '9') version = static_cast<StandardVersion_t>(version << 4 | (c - '0')), digits++;
    for (; digits != 0 && digits < 3; digits++) version = static_cast<StandardVersion_t>(version << 4);
    return version;
}

// A row of an enumeration: a code or a range of codes, and its word. Words such as "Unknown" and "Reserved" set the
// state.
struct CodeRow_t {
    uint16_t first;
    uint16_t last;
    std::string_view word;
    StandardVersion_t since;

    constexpr CodeRow_t(uint16_t code, std::string_view text, std::string_view version)
        : CodeRow_t(code, code, text, version) {}
    constexpr CodeRow_t(uint16_t from, uint16_t to, std::string_view text, std::string_view version)
        : first(from), last(to), word(text), since(VersionOf(version)) {}

    constexpr FactState_t State() const {
        if (word == "Unknown" || word == "Unspecified" || word == "Characteristics unknown")
            return FactState_t::kUnknown;
        if (word.starts_with("Reserved") || word.starts_with("reserved")) return FactState_t::kReserved;
        if (word.starts_with("Indicator to obtain") || word.starts_with("Invalid (see")) return FactState_t::kNone;
        if (word.ends_with("are not supported")) return FactState_t::kNone;
        return FactState_t::kValue;
    }
};

// A row of a bit list has the bit's number as its code.
using BitRow_t = CodeRow_t;

struct SpecialRow_t {
    uint64_t first = 0;
    uint64_t last = 0;
    FactState_t state = FactState_t::kValue;
    std::string_view word = "";
    bool isReference = false;
};

constexpr SpecialRow_t Unknown(uint64_t number, std::string_view word = "unknown") {
    return {number, number, FactState_t::kUnknown, word};
}
constexpr SpecialRow_t None(uint64_t number, std::string_view word) {
    return {number, number, FactState_t::kNone, word};
}
// The number says that another field has the value.
constexpr SpecialRow_t See(uint64_t number, std::string_view field) {
    return {number, number, FactState_t::kNone, field, true};
}
constexpr SpecialRow_t NoneFrom(uint64_t first, uint64_t last, std::string_view word) {
    return {first, last, FactState_t::kNone, word};
}
constexpr SpecialRow_t Reserved(uint64_t number) { return {number, number, FactState_t::kReserved, "reserved"}; }

struct FieldRow_t;

// A column of rows, as arrays of different lengths can't be passed on at compile time otherwise.
template <class Row_t>
struct Rows_t {
    const Row_t* rows = nullptr;
    size_t count = 0;

    constexpr const Row_t* begin() const { return rows; }
    constexpr const Row_t* end() const { return rows + count; }
};

// Where a field is: its place and width in the structure or record, bits of the field above, or fields to derive it
// from.
struct Where_t {
    uint16_t offset = 0;
    uint8_t width = 0;
    uint8_t low = 0;
    uint8_t bits = 0;
    std::string_view from[4] = {"", "", "", ""};
};

constexpr Where_t Byte(uint16_t offset) { return {.offset = offset, .width = 1}; }
constexpr Where_t Word(uint16_t offset) { return {.offset = offset, .width = 2}; }
constexpr Where_t Dword(uint16_t offset) { return {.offset = offset, .width = 4}; }
constexpr Where_t Qword(uint16_t offset) { return {.offset = offset, .width = 8}; }
constexpr Where_t Bytes(uint16_t offset, uint8_t width) { return {.offset = offset, .width = width}; }
constexpr Where_t Counted(uint16_t offset) { return {.offset = offset, .width = kCountedWidth}; }
constexpr Where_t Rest(uint16_t offset) { return {.offset = offset, .width = kRestOfRecord}; }
constexpr Where_t List(uint16_t offset) { return {.offset = offset}; }
constexpr Where_t Bits(uint8_t high, uint8_t low) { return {.low = low, .bits = static_cast<uint8_t>(high - low + 1)}; }
constexpr Where_t Bit(uint8_t bit) { return Bits(bit, bit); }
constexpr Where_t From(std::string_view first, std::string_view second = "", std::string_view third = "",
                       std::string_view fourth = "") {
    return {.from = {first, second, third, fourth}};
}

// How a field reads.
struct Reading_t {
    Form_t form;
    FactKind_t kind;
    Unit_t unit = Unit_t::kNone;
    uint32_t scale = 1;
    Rows_t<CodeRow_t> codes = {};
    Rows_t<FieldRow_t> records = {};
    uint8_t counted = 0;
    uint8_t step = 0;
    uint8_t ownLengthAt = 0;
    uint8_t ownLengthPlus = 0;
    Derivation_t derivation = {};
    SpecialRow_t specials[3] = {SpecialRow_t(), SpecialRow_t(), SpecialRow_t()};
    uint16_t types[4] = {0, 0, 0, 0};
    size_t typeCount = 0;

    // With values that aren't numbers of the field.
    template <class... Specials>
    constexpr Reading_t With(Specials... rows) const {
        Reading_t reading = *this;
        size_t place = 0;
        ((reading.specials[place++] = rows), ...);
        return reading;
    }
};

struct FieldRow_t {
    Where_t where;
    std::string_view name;
    Reading_t reading;
    std::string_view since;
};

// Units as the standard gives them, with the factor to the unit of the fact.
struct Scale_t {
    Unit_t unit;
    uint32_t scale;
};
inline constexpr Scale_t kPlain = {Unit_t::kNone, 1};
inline constexpr Scale_t kByte = {Unit_t::kByte, 1};
inline constexpr Scale_t kKB = {Unit_t::kByte, 1 << 10};
inline constexpr Scale_t kMB = {Unit_t::kByte, 1 << 20};
inline constexpr Scale_t kBit = {Unit_t::kBit, 1};
inline constexpr Scale_t kMHz = {Unit_t::kMHz, 1};
inline constexpr Scale_t kMTs = {Unit_t::kMTs, 1};
inline constexpr Scale_t kMillivolt = {Unit_t::kMillivolt, 1};
inline constexpr Scale_t kTenthOfMillivolt = {Unit_t::kMicrovolt, 100};
inline constexpr Scale_t kMilliampere = {Unit_t::kMilliampere, 1};
inline constexpr Scale_t kTenthOfMilliampere = {Unit_t::kMicroampere, 100};
inline constexpr Scale_t kWatt = {Unit_t::kWatt, 1};
inline constexpr Scale_t kMilliwattHour = {Unit_t::kMilliwattHour, 1};
inline constexpr Scale_t kNanosecond = {Unit_t::kNanosecond, 1};
inline constexpr Scale_t kMinute = {Unit_t::kMinute, 1};
inline constexpr Scale_t kPercent = {Unit_t::kPercent, 1};
inline constexpr Scale_t kHundredthOfPercent = {Unit_t::kPpm, 100};
inline constexpr Scale_t kTenthOfDegree = {Unit_t::kMillicelsius, 100};
inline constexpr Scale_t kThousandthOfDegree = {Unit_t::kMillicelsius, 1};
inline constexpr Scale_t kRpm = {Unit_t::kRpm, 1};
inline constexpr Scale_t kHundredthOfMillimeter = {Unit_t::kMicrometer, 10};
inline constexpr Scale_t kRackUnit = {Unit_t::kRackUnit, 1};

template <class... Specials>
constexpr Reading_t NumberOf(Form_t form, Scale_t scale, Specials... specials) {
    return {
        .form = form, .kind = FactKind_t::kNumber, .unit = scale.unit, .scale = scale.scale, .specials = {specials...}};
}
template <class... Specials>
constexpr Reading_t Number(Scale_t scale, Specials... specials) {
    return NumberOf(Form_t::kNumber, scale, specials...);
}
template <class... Specials>
constexpr Reading_t Signed(Scale_t scale, Specials... specials) {
    return NumberOf(Form_t::kSigned, scale, specials...);
}
template <class... Specials>
constexpr Reading_t Hex(Specials... specials) {
    return NumberOf(Form_t::kHex, kPlain, specials...);
}
template <class... Specials>
constexpr Reading_t HexIn(Scale_t scale, Specials... specials) {
    return NumberOf(Form_t::kHex, scale, specials...);
}
template <class... Specials>
constexpr Reading_t Bcd(Specials... specials) {
    return NumberOf(Form_t::kBcd, kPlain, specials...);
}
// Sizes and the like, whose unit is in the bytes.
template <class... Specials>
constexpr Reading_t Size(Form_t form, Specials... specials) {
    return NumberOf(form, kByte, specials...);
}

inline constexpr Reading_t Text = {.form = Form_t::kText, .kind = FactKind_t::kText};
inline constexpr Reading_t Count = {.form = Form_t::kCount, .kind = FactKind_t::kNumber};
inline constexpr Reading_t Step = {.form = Form_t::kStep, .kind = FactKind_t::kNumber, .unit = Unit_t::kByte};
inline constexpr Reading_t Uuid = {.form = Form_t::kUuid, .kind = FactKind_t::kUuid};
inline constexpr Reading_t Ascii = {.form = Form_t::kAscii, .kind = FactKind_t::kText};
inline constexpr Reading_t Raw = {.form = Form_t::kBytes, .kind = FactKind_t::kBytes};
inline constexpr Reading_t ReservedBytes = {.form = Form_t::kReserved, .kind = FactKind_t::kBytes};
inline constexpr Reading_t SbdsDate = {.form = Form_t::kSbdsDate, .kind = FactKind_t::kDate};
inline constexpr Reading_t NibbleVersion = {.form = Form_t::kNibbleVersion, .kind = FactKind_t::kVersion};

template <size_t kCount, class... Specials>
constexpr Reading_t Code(const CodeRow_t (&codes)[kCount], Specials... specials) {
    return Reading_t{.form = Form_t::kCode, .kind = FactKind_t::kCode, .codes = {codes, kCount}}.With(specials...);
}
template <size_t kCount>
constexpr Reading_t Flags(const BitRow_t (&bits)[kCount]) {
    return {.form = Form_t::kBits, .kind = FactKind_t::kBits, .codes = {bits, kCount}};
}
// `types` are what the handle may refer to; none for any.
template <class... Types>
constexpr Reading_t HandleOf(Types... types) {
    Reading_t reading = {.form = Form_t::kHandle, .kind = FactKind_t::kHandle, .typeCount = sizeof...(types)};
    [[maybe_unused]] size_t place = 0;
    ((reading.types[place++] = static_cast<uint16_t>(types)), ...);
    return reading;
}

enum class Counted_t : uint8_t { kByField, kOne, kToEnd };

inline constexpr uint8_t kStepByField = 0;
inline constexpr uint8_t kWholeRest = 0;  // one record up to the structure's end

template <size_t kCount>
constexpr Reading_t Records(const FieldRow_t (&fields)[kCount], uint8_t step, Counted_t counted = Counted_t::kByField) {
    return {.form = Form_t::kRecords,
            .kind = FactKind_t::kList,
            .records = {fields, kCount},
            .counted = static_cast<uint8_t>(counted),
            .step = step};
}
// Records whose byte at `lengthAt` is their length, less `plus`.
template <size_t kCount>
constexpr Reading_t RecordsWithLength(const FieldRow_t (&fields)[kCount], uint8_t lengthAt, uint8_t plus,
                                      Counted_t counted = Counted_t::kByField) {
    Reading_t reading = Records(fields, 0, counted);
    reading.ownLengthAt = static_cast<uint8_t>(lengthAt + 1);
    reading.ownLengthPlus = plus;
    return reading;
}
template <size_t kCount>
constexpr Reading_t Strings(const FieldRow_t (&fields)[kCount], Counted_t counted) {
    Reading_t reading = Records(fields, 0, counted);
    reading.form = Form_t::kStrings;
    return reading;
}

// Derived facts: what they are, and how they are made.
using enum Derivation_t;

constexpr Reading_t AsNumber(Derivation_t derivation, Scale_t scale = kPlain) {
    return {.form = Form_t::kDerived, .kind = FactKind_t::kNumber, .unit = scale.unit, .derivation = derivation};
}
constexpr Reading_t AsText(Derivation_t derivation) {
    return {.form = Form_t::kDerived, .kind = FactKind_t::kText, .derivation = derivation};
}
constexpr Reading_t AsDate(Derivation_t derivation) {
    return {.form = Form_t::kDerived, .kind = FactKind_t::kDate, .derivation = derivation};
}
constexpr Reading_t AsVersion(Derivation_t derivation) {
    return {.form = Form_t::kDerived, .kind = FactKind_t::kVersion, .derivation = derivation};
}
template <size_t kCount>
constexpr Reading_t AsCode(Derivation_t derivation, const CodeRow_t (&codes)[kCount]) {
    return {.form = Form_t::kDerived, .kind = FactKind_t::kCode, .codes = {codes, kCount}, .derivation = derivation};
}
template <size_t kCount>
constexpr Reading_t AsBits(Derivation_t derivation, const BitRow_t (&bits)[kCount]) {
    return {.form = Form_t::kDerived, .kind = FactKind_t::kBits, .codes = {bits, kCount}, .derivation = derivation};
}

// The rows of a structure type.
struct StandardRow_t {
    uint8_t type;
    std::string_view name;
    std::string_view since;
    Rows_t<FieldRow_t> fields;
};

// A packed table with just the room that its rows need.
template <size_t kTexts, size_t kFields, size_t kCodes, size_t kSpecials>
struct Packed_t {
    char texts[kTexts];
    StandardField_t fields[kFields + 1];  // one more, as an array of none isn't allowed
    StandardCode_t codes[kCodes + 1];
    StandardSpecial_t specials[kSpecials + 1];
    size_t textSize;
    size_t fieldCount;
    size_t codeCount;
    size_t specialCount;
};

// Packs the rows of one type into a table with room for any.
class ClPacker {
  public:
    constexpr explicit ClPacker(const StandardRow_t& type) {
        m_name = AddText(type.name);
        AddFields(type.fields);
    }

    uint16_t m_name = 0;
    Packed_t<16384, 128, 512, 96> m_packed = {};

  private:
    struct Known_t {
        const CodeRow_t* rows;
        uint16_t first;
    };

    constexpr void Put(char c) { m_packed.texts[m_packed.textSize++] = c; }

    constexpr uint16_t AddText(std::string_view text) {
        const auto offset = static_cast<uint16_t>(m_packed.textSize);
        Put(static_cast<char>(text.size()));
        for (const char c : text) Put(c);
        Put('\0');
        return offset;
    }

    // Adds the key of a name.
    constexpr uint16_t AddKey(std::string_view name) {
        const size_t offset = m_packed.textSize;
        Put(0);
        PutKey(name, [this](char c) { Put(c); });
        m_packed.texts[offset] = static_cast<char>(m_packed.textSize - offset - 1);
        Put('\0');
        return static_cast<uint16_t>(offset);
    }

    // Adds the codes of a row, or finds those of an earlier row with the same enumeration.
    constexpr uint16_t AddCodes(const Reading_t& reading) {
        for (size_t i = 0; i < m_knownCount; i++)
            if (m_known[i].rows == reading.codes.rows) return m_known[i].first;
        const auto first = static_cast<uint16_t>(m_packed.codeCount);
        for (const CodeRow_t& row : reading.codes)
            m_packed.codes[m_packed.codeCount++] = {row.first, row.last, AddText(row.word), row.since, row.State()};
        for (size_t i = 0; i < reading.typeCount; i++)
            m_packed.codes[m_packed.codeCount++] = {reading.types[i], reading.types[i], 0, 0, FactState_t::kValue};
        if (reading.codes.count != 0) m_known[m_knownCount++] = {reading.codes.rows, first};
        return first;
    }

    constexpr void AddSpecials(const Reading_t& reading, StandardField_t& field) {
        field.firstSpecial = static_cast<uint16_t>(m_packed.specialCount);
        for (const SpecialRow_t& row : reading.specials) {
            if (row.word.empty()) continue;
            m_packed.specials[m_packed.specialCount++] = {row.first, row.last, AddText(row.word), row.state,
                                                          row.isReference};
            field.specials++;
        }
    }

    // Adds the fields of the structure or of a record. The fields of records go after all of the structure's.
    constexpr void AddFields(Rows_t<FieldRow_t> rows) {
        const size_t begin = m_packed.fieldCount;
        m_packed.fieldCount += rows.count;
        const Where_t* above = nullptr;
        size_t whole = begin;
        for (size_t i = 0; i < rows.count; i++) {
            const FieldRow_t& row = rows.rows[i];
            const Reading_t& reading = row.reading;
            if (row.where.bits == 0) above = &row.where;
            StandardField_t field = {};
            field.name = AddText(row.name);
            field.key = AddKey(row.name);
            field.nameSize = static_cast<uint8_t>(m_packed.texts[field.name]);
            field.keySize = static_cast<uint8_t>(m_packed.texts[field.key]);
            field.offset = above->offset;
            field.width = above->width;
            field.form = reading.form;
            field.unit = reading.unit;
            field.derivation = reading.derivation;
            field.scale = reading.scale;
            field.low = row.where.low;
            field.bits = row.where.bits;
            field.counted = reading.counted;
            field.ownLengthAt = reading.ownLengthAt;
            field.ownLengthPlus = reading.ownLengthPlus;
            field.kind = reading.kind;
            field.since = VersionOf(row.since);
            field.step = reading.step;
            field.isDerived = field.form == Form_t::kDerived;
            field.record = -1;
            if (field.width < kCountedWidth && field.offset < kAfterList) field.path = PathOf(field);
            if (field.HasFixedPlace()) {
                field.size = field.width;
                field.end = static_cast<uint16_t>(field.offset + field.width);
            }
            if (row.where.bits == 0)
                whole = begin + i;
            else
                m_packed.fields[whole].hasParts = true;
            for (const std::string_view name : row.where.from)
                if (!name.empty()) field.from[field.sources++] = PlaceOf(rows, name);
            AddSpecials(reading, field);
            if (reading.records.count != 0) {
                field.first = static_cast<uint16_t>(m_packed.fieldCount);
                field.count = static_cast<uint16_t>(reading.records.count);
                AddFields(reading.records);
            } else {
                field.first = AddCodes(reading);
                field.count = static_cast<uint16_t>(reading.codes.count + reading.typeCount);
            }
            m_packed.fields[begin + i] = field;
        }
        // What a derived fact comes from may be after it.
        for (size_t i = 0; i < rows.count; i++) {
            StandardField_t& field = m_packed.fields[begin + i];
            if (field.sources != 0 && field.derivation != Derivation_t::kTpmFirmwareVersion)
                field.end = m_packed.fields[begin + field.from[0]].end;
        }
        for (size_t i = 0; i < rows.count; i++) {
            size_t next = i + 1;
            while (next < rows.count && m_packed.fields[begin + next].end >= m_packed.fields[begin + i].end) next++;
            m_packed.fields[begin + i].nextShorter = static_cast<uint8_t>(next);
        }
    }

    static constexpr Path_t PathOf(const StandardField_t& field) {
        if (field.IsPart()) return Path_t::kConverted;
        switch (field.form) {
            case Form_t::kCount:
            case Form_t::kStep:
            case Form_t::kRecords:
            case Form_t::kStrings:
            case Form_t::kDerived: return Path_t::kGeneral;
            case Form_t::kText: return Path_t::kText;
            case Form_t::kHandle: return Path_t::kHandle;
            case Form_t::kNumber:
            case Form_t::kHex:
                return field.width == 1 ? Path_t::kByte : field.width == 2 ? Path_t::kWord : Path_t::kNumber;
            case Form_t::kCode: return Path_t::kCode;
            case Form_t::kBits: return Path_t::kBits;
            default: return field.kind == FactKind_t::kNumber ? Path_t::kConverted : Path_t::kOther;
        }
    }

    static constexpr uint8_t PlaceOf(Rows_t<FieldRow_t> rows, std::string_view name) {
        for (size_t i = 0; i < rows.count; i++)
            if (rows.rows[i].name == name) return static_cast<uint8_t>(i);
        throw "a derived fact names a field that isn't in its table";
    }

    Known_t m_known[32] = {};
    size_t m_knownCount = 0;
};

// The packed table of a type, first with room for any.
template <const StandardRow_t& kType>
inline constexpr ClPacker kPacker = ClPacker(kType);

template <const StandardRow_t& kType>
inline constexpr auto kPacked = [] {
    constexpr auto& full = kPacker<kType>.m_packed;
    Packed_t<full.textSize, full.fieldCount, full.codeCount, full.specialCount> packed = {};
    std::copy_n(full.texts, full.textSize, packed.texts);
    std::copy_n(full.fields, full.fieldCount, packed.fields);
    std::copy_n(full.codes, full.codeCount, packed.codes);
    std::copy_n(full.specials, full.specialCount, packed.specials);
    return packed;
}();

template <const StandardRow_t& kType>
StandardType_t ViewOf() {
    constexpr auto& packed = kPacked<kType>;
    return {kType.type,
            VersionOf(kType.since),
            kPacker<kType>.m_name,
            static_cast<uint16_t>(kType.fields.count),
            {packed.fields, std::size(packed.fields) - 1},
            {packed.codes, std::size(packed.codes) - 1},
            {packed.specials, std::size(packed.specials) - 1},
            packed.texts};
}

inline constexpr Rows_t<FieldRow_t> kNoFields = {};
template <size_t kCount>
constexpr Rows_t<FieldRow_t> RowsOf(const FieldRow_t (&fields)[kCount]) {
    return {fields, kCount};
}
constexpr Rows_t<FieldRow_t> RowsOf(Rows_t<FieldRow_t> fields) { return fields; }

// Ends the file of a structure type: defines the function that Standard.cpp lists.
#define STANDARD_TYPE(number, name, since, fields)                         \
    namespace {                                                            \
    constexpr StandardRow_t kType = {number, name, since, RowsOf(fields)}; \
    }                                                                      \
    StandardType_t StandardType##number() { return ViewOf<kType>(); }
