#include "Packages/Standard/Facts.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace {

[[gnu::always_inline]] inline uint64_t LittleEndian(const uint8_t* bytes, uint32_t size) {
    const auto four = [=](uint32_t at) {
        return static_cast<uint64_t>(bytes[at]) | static_cast<uint64_t>(bytes[at + 1]) << 8 |
               static_cast<uint64_t>(bytes[at + 2]) << 16 | static_cast<uint64_t>(bytes[at + 3]) << 24;
    };
    if (size == 1) return bytes[0];
    if (size == 2) return static_cast<uint64_t>(bytes[0] | bytes[1] << 8);
    if (size == 4) return four(0);
    if (size == 8) return four(0) | four(4) << 32;
    uint64_t number = 0;
    for (uint32_t i = 0; i < size && i < 8; i++) number |= static_cast<uint64_t>(bytes[i]) << 8 * i;
    return number;
}

// std::has_single_bit calls a function on processors for which no instruction can be assumed.
bool HasSingleBit(uint64_t number) { return number != 0 && (number & (number - 1)) == 0; }

// The bits of a part, or the whole number.
[[gnu::always_inline]] inline uint64_t PartOf(const StandardField_t& field, uint64_t number) {
    return field.IsPart() ? number >> field.low & ((1ull << field.bits) - 1) : number;
}

uint32_t FormattedEnd(const TableStructure_t& structure) {
    return std::min<uint32_t>(structure.Length(), structure.size);
}

// Whether the lengths in a structure of type 42 add up by the layout of 3.2.
bool HasHostInterfaceLengths(const TableStructure_t& structure) {
    const uint32_t end = FormattedEnd(structure);
    if (end < 6) return false;
    uint32_t place = 6u + structure.data[5];
    if (place >= end) return false;
    const uint32_t records = structure.data[place++];
    for (uint32_t i = 0; i < records; i++) {
        if (place + 2 > end) return false;
        place += 2u + structure.data[place + 1];
    }
    return place <= end;
}

StandardType_t TableFor(const TableStructure_t& structure, StandardVersion_t version) {
    if (structure.Type() == 42 && version < 0x0302 && !HasHostInterfaceLengths(structure)) return OldHostInterface();
    return FindStandardType(structure.Type());
}

constexpr char kHexDigits[] = "0123456789abcdef";

}  // namespace

ClHandles::ClHandles(std::span<const uint8_t> table) {
    for (const TableStructure_t& structure : ClWalk(table))
        m_handles.push_back(static_cast<uint32_t>(structure.Handle()) << 8 | structure.Type());
    std::ranges::sort(m_handles);
    // Of many structures with one handle and type one is enough, and a search takes no longer for them.
    m_handles.erase(std::unique(m_handles.begin(), m_handles.end()), m_handles.end());
}

bool ClHandles::Has(uint16_t handle, std::span<const StandardCode_t> types) const {
    const uint32_t first = static_cast<uint32_t>(handle) << 8;
    for (auto row = std::ranges::lower_bound(m_handles, first); row != m_handles.end() && *row >> 8 == handle; ++row)
        if (types.empty() || std::ranges::find(types, *row & 0xFF, &StandardCode_t::first) != types.end()) return true;
    return false;
}

void ClStrings::Find(const TableStructure_t& structure) {
    m_begin = reinterpret_cast<const char*>(structure.data);
    m_count = 0;
    uint32_t place = structure.Length();
    m_starts[0] = place;
    while (place < structure.size && m_begin[place] != '\0' && m_count < 255) {
        const void* end = memchr(m_begin + place, '\0', structure.size - place);
        if (end == nullptr) return;  // the table ends within the string
        place = static_cast<uint32_t>(static_cast<const char*>(end) - m_begin) + 1;
        m_starts[++m_count] = place;
    }
}

std::string_view ClStrings::Get(uint32_t number) const {
    return {m_begin + m_starts[number - 1], m_starts[number] - m_starts[number - 1] - 1};
}

void ClFacts::Begin(const TableStructure_t& structure, const FactOptions_t& options) {
    m_data = structure.data;
    if (m_type.fields.empty() || structure.Type() != m_type.type || structure.Type() == 42)
        m_type = TableFor(structure, options.version);
    m_options = options;
    m_strings.Find(structure);
    m_fact.field = nullptr;
    m_list = nullptr;
    m_afterList = 0;
    m_step = 0;
    m_structure.SetFields(m_type.TopFields());
    m_structure.begin = 0;
    m_structure.end = FormattedEnd(structure);
    m_structure.count = 0;
    m_structure.hasCount = false;
}

// Next for all fields.
const Fact_t* ClFacts::NextOfAny() {
    for (;;) {
        if (m_list != nullptr) {
            if (m_record.next != m_record.last) {
                if (ReadField(m_record, m_recordNumber)) return &m_fact;
            } else if (!StartRecord()) {
                m_list = nullptr;
                m_structure.stop = m_structure.last;
            }
        } else if (m_structure.next != m_structure.last) {
            if (ReadField(m_structure, -1)) return &m_fact;
        } else {
            m_fact.field = nullptr;
            return nullptr;
        }
    }
}

std::string_view ClFacts::SourceKey(const Fact_t& fact, uint32_t source) const {
    const StandardField_t* const fields = fact.record < 0 ? m_structure.fields : m_record.fields;
    return m_type.Text(fields[fact.field->from[source]].key);
}

uint32_t ClFacts::PlaceOf(const StandardField_t& field, const Area_t& area) const {
    return field.offset < kAfterList ? area.begin + field.offset : m_afterList + field.offset - kAfterList;
}

// Finds where a field is. Returns whether its bytes are there.
bool ClFacts::HasRoom(const StandardField_t& field, const Area_t& area, uint32_t& offset, uint32_t& size) const {
    offset = PlaceOf(field, area);
    if (field.width == kRestOfRecord) {
        size = offset < area.end ? area.end - offset : 0;
        return size != 0;
    }
    size = field.width == kCountedWidth ? area.count : field.width;
    return offset + size <= area.end && (field.width != kCountedWidth || area.hasCount);
}

// Whether a number is one of the field's values that aren't numbers. Sets state and text then.
bool ClFacts::SetSpecial(const StandardField_t& field, uint64_t number, Fact_t& fact) const {
    if (field.specials == 0) return false;
    for (const StandardSpecial_t& special : m_type.Specials(field)) {
        if (number < special.first || number > special.last) continue;
        fact.state = special.state;
        fact.text = m_type.Text(special.word);
        fact.isReference = special.isReference;
        return true;
    }
    return false;
}

// Begins a fact of which nothing is read yet.
void ClFacts::Start(const StandardField_t& field) {
    Fact_t& fact = m_fact;
    static_cast<FactHead_t&>(fact) = field;
    fact.field = &field;
    fact.key = m_type.Text(field.key).data();
    fact.name = m_type.Text(field.name).data();
    fact.number = 0;
    fact.text = "";
    fact.string = "";
}

// Ends a field that isn't a part.
const Fact_t* ClFacts::End(const StandardField_t& field, Area_t& area) const {
    if (field.hasParts) {
        area.wholeState = m_fact.state;
        area.wholeText = m_fact.text;
    }
    return &m_fact;
}

// Ends a field, or a part of one: a part of a field that isn't a value isn't one either.
const Fact_t* ClFacts::EndOrTakeOver(const StandardField_t& field, Area_t& area) {
    if (!field.IsPart()) return End(field, area);
    if (area.wholeState != FactState_t::kValue) {
        m_fact.state = area.wholeState;
        m_fact.text = area.wholeText;
        m_fact.number = 0;
    }
    return &m_fact;
}

const Fact_t* ClFacts::ReadText() {
    DecodeText(m_data[m_fact.offset], m_fact);
    return &m_fact;
}

const Fact_t* ClFacts::ReadHandle() {
    const StandardField_t& field = *m_fact.field;
    m_fact.number = LittleEndian(m_data + field.offset, field.width);
    if (!SetSpecial(field, m_fact.number, m_fact)) JudgeHandle(field, m_fact);
    return &m_fact;
}

void ClFacts::JudgeHandle(const StandardField_t& field, Fact_t& fact) const {
    if (m_options.handles != nullptr &&
        !m_options.handles->Has(static_cast<uint16_t>(fact.number), m_type.Codes(field)))
        fact.state = FactState_t::kBroken;
}

const Fact_t* ClFacts::ReadOther() {
    Decode(*m_fact.field, m_fact.offset, m_fact.size, m_fact);
    return EndOrTakeOver(*m_fact.field, m_structure);
}

void ClFacts::SetCode(const StandardField_t& field, uint64_t number, Fact_t& fact) const {
    const StandardCode_t* code = m_type.FindCode(field, number);
    fact.state = code == nullptr ? FactState_t::kReserved : code->state;
    if (code != nullptr) fact.text = m_type.Text(code->word);
}

// A list with a single word such as "Unknown" says just that.
void ClFacts::SetBits(const StandardField_t& field, uint64_t number, Fact_t& fact) const {
    if (!HasSingleBit(number)) return;
    const StandardCode_t* bit = m_type.FindCode(field, static_cast<uint64_t>(std::countr_zero(number)));
    if (bit != nullptr) fact.state = bit->state;
}

const Fact_t* ClFacts::ReadNumber() {
    const StandardField_t& field = *m_fact.field;
    DecodeNumber(field, PartOf(field, LittleEndian(m_data + field.offset, field.width)), m_fact);
    return EndOrTakeOver(field, m_structure);
}

const Fact_t* ClFacts::ReadCode() {
    const StandardField_t& field = *m_fact.field;
    const uint64_t number = LittleEndian(m_data + field.offset, field.width);
    m_fact.number = number;
    if (!SetSpecial(field, number, m_fact)) SetCode(field, number, m_fact);
    return End(field, m_structure);
}

const Fact_t* ClFacts::ReadBits() {
    const StandardField_t& field = *m_fact.field;
    m_fact.number = LittleEndian(m_data + field.offset, field.width);
    SetBits(field, m_fact.number, m_fact);
    return End(field, m_structure);
}

const Fact_t* ClFacts::EndNumber(const StandardField_t& field, uint64_t number) {
    m_fact.number = number;
    if (!SetSpecial(field, number, m_fact)) m_fact.number = number * field.scale;
    return End(field, m_structure);
}

// Reads a derived fact that is the first of its sources, unless it turns out to be another one.
const Fact_t* ClFacts::ReadFirstUsable() {
    Area_t& area = m_structure;
    const StandardField_t& field = *area.next;
    const StandardField_t& from = area.fields[field.from[0]];
    if (from.path < Path_t::kConverted) return NextOfAny();
    Start(field);
    DecodeNumber(from, PartOf(from, LittleEndian(m_data + from.offset, from.width)), m_fact);
    if (m_fact.isReference) return NextOfAny();
    if (m_fact.state != FactState_t::kValue && field.kind != FactKind_t::kCode) m_fact.number = 0;
    area.next++;
    return &m_fact;
}

// Reads the commonest fields, those of the structure with a fixed place and a number or a text. It calls nothing but in
// its last statements, so that it needs no registers to be saved: half the time of a walk is here.
const Fact_t* ClFacts::NextFact() {
    Area_t& area = m_structure;
    for (;;) {
        if (area.next == area.stop) {
            if (m_list != nullptr) return NextOfAny();
            m_fact.field = nullptr;
            return nullptr;
        }
        const StandardField_t& field = *area.next;
        if (field.end > area.end) {
            if (m_options.listsAbsent) return NextOfAny();
            area.next = area.fields + field.nextShorter;
            continue;
        }
        if (field.path == Path_t::kGeneral)
            return field.derivation == Derivation_t::kFirstUsable ? ReadFirstUsable() : NextOfAny();
        area.next++;
        Start(field);
        const uint8_t* const bytes = m_data + field.offset;
        switch (field.path) {
            case Path_t::kText: return ReadText();
            case Path_t::kByte: return EndNumber(field, bytes[0]);
            case Path_t::kWord: return EndNumber(field, LittleEndian(bytes, 2));
            case Path_t::kCode: return ReadCode();
            case Path_t::kBits: return ReadBits();
            case Path_t::kHandle: return ReadHandle();
            case Path_t::kConverted: return ReadNumber();
            case Path_t::kNumber: return EndNumber(field, LittleEndian(bytes, field.width));
            case Path_t::kOther: return ReadOther();
            case Path_t::kGeneral: __builtin_unreachable();
        }
    }
}

bool ClFacts::ReadField(Area_t& area, int record) {
    const StandardField_t& field = *area.next;
    if (!m_options.listsAbsent && area.begin + field.end > area.end) {
        area.next = area.fields + field.nextShorter;
        return false;
    }
    area.next++;
    Start(field);
    Fact_t& fact = m_fact;
    fact.offset = fact.size = 0;
    fact.record = record;
    switch (field.form) {
        case Form_t::kDerived: Derive(area, field, fact); break;
        case Form_t::kRecords: ReadList(field, area, fact); break;
        case Form_t::kStrings: ReadStrings(field, area, fact); break;
        default: {
            uint32_t offset = 0;
            uint32_t size = 0;
            const bool hasRoom = HasRoom(field, area, offset, size);
            if (m_list != nullptr && m_list->form == Form_t::kStrings) {
                DecodeText(static_cast<uint32_t>(m_recordNumber) + 1, fact);
            } else if (hasRoom) {
                Decode(field, offset, size, fact);
            } else if (field.width == kCountedWidth && area.hasCount && offset <= area.end) {
                fact.state = FactState_t::kBroken;
                fact.offset = static_cast<uint16_t>(offset);
                fact.size = static_cast<uint16_t>(area.end - offset);
                m_afterList = area.end + 1;
            } else {
                fact.state = FactState_t::kAbsent;
            }
            if (field.form == Form_t::kCount || field.form == Form_t::kStep) {
                if (field.form == Form_t::kStep) m_step = static_cast<uint32_t>(fact.number);
                if (field.form == Form_t::kCount)
                    area.count = static_cast<uint32_t>(fact.number), area.hasCount = hasRoom;
            } else if (field.width == kCountedWidth && hasRoom && record < 0) {
                m_afterList = offset + size;
            }
            break;
        }
    }
    EndOrTakeOver(field, area);
    return fact.state != FactState_t::kAbsent || m_options.listsAbsent;
}

void ClFacts::ReadList(const StandardField_t& field, const Area_t& area, Fact_t& fact) {
    const uint32_t begin = PlaceOf(field, area);
    uint32_t count = area.count;
    uint32_t step = field.step != 0 ? field.step : m_step;
    bool isThere = begin <= area.end && (field.counted != 0 || area.hasCount);
    if (field.counted == 1) {
        count = 1;
        isThere = begin < area.end;
        step = isThere ? area.end - begin : 0;
    } else if (field.counted == 2) {
        count = isThere ? (area.end - begin) / step : 0;
    }
    if (!isThere) {
        fact.state = FactState_t::kAbsent;
        m_afterList = area.end + 1;
        return;
    }
    uint64_t size = static_cast<uint64_t>(count) * step;
    bool isBroken = step == 0 && count != 0;
    if (field.ownLengthAt != 0) {
        size = 0;
        step = 0;
        isBroken = false;
        for (uint32_t i = 0; i < count && !isBroken; i++) {
            const uint64_t lengthAt = begin + size + field.ownLengthAt - 1;
            const uint32_t length = lengthAt < area.end ? m_data[lengthAt] + field.ownLengthPlus : 0u;
            isBroken = length < field.ownLengthAt;
            size += length;
        }
    }
    const bool fits = begin + size <= area.end && !(isBroken && field.ownLengthAt != 0);
    m_afterList = fits ? static_cast<uint32_t>(begin + size) : area.end + 1;
    fact.offset = static_cast<uint16_t>(begin);
    fact.size = static_cast<uint16_t>(fits ? size : area.end - begin);
    if (isBroken || !fits) {
        fact.state = FactState_t::kBroken;
        return;
    }
    fact.number = count;
    m_list = &field;
    m_structure.stop = m_structure.next;
    m_records = count;
    m_recordStep = step;
    m_recordNumber = -1;
    m_record.SetFields(m_type.RecordFields(field));
    m_record.next = m_record.last;
    m_record.end = begin;
}

void ClFacts::ReadStrings(const StandardField_t& field, const Area_t& area, Fact_t& fact) {
    uint32_t count = m_strings.Count();
    if (field.counted == 0) {
        if (!area.hasCount) {
            fact.state = FactState_t::kAbsent;
            return;
        }
        if (area.count > count) {
            fact.state = FactState_t::kBroken;
            return;
        }
        count = area.count;
    }
    fact.number = count;
    m_list = &field;
    m_structure.stop = m_structure.next;
    m_records = count;
    m_recordNumber = -1;
    m_record.SetFields(m_type.RecordFields(field));
    m_record.next = m_record.last;
    m_record.begin = 0;
    m_record.end = 1;  // a string is there, though it has no byte here
}

// Goes to the next record of the list. Returns false after the last one.
bool ClFacts::StartRecord() {
    if (++m_recordNumber >= static_cast<int>(m_records)) return false;
    m_record.next = m_record.fields;
    m_record.count = 0;
    m_record.hasCount = false;
    if (m_list->form == Form_t::kStrings) return true;
    m_record.begin = m_record.end;
    const uint32_t step = m_list->ownLengthAt == 0
                              ? m_recordStep
                              : m_data[m_record.begin + m_list->ownLengthAt - 1] + m_list->ownLengthPlus;
    m_record.end = m_record.begin + step;
    return true;
}

void ClFacts::Decode(const StandardField_t& field, uint32_t offset, uint32_t size, Fact_t& fact) {
    const uint8_t* const bytes = m_data + offset;
    fact.offset = static_cast<uint16_t>(offset);
    fact.size = static_cast<uint16_t>(size);
    switch (field.form) {
        case Form_t::kText: return DecodeText(bytes[0], fact);
        case Form_t::kUuid: return DecodeUuid(bytes, fact);
        case Form_t::kAscii: return DecodeAscii(fact);
        case Form_t::kSbdsDate: return DecodeDate(fact);
        case Form_t::kNibbleVersion: return DecodeVersion(fact);
        case Form_t::kBytes:
        case Form_t::kReserved: return;
        default: return DecodeNumber(field, PartOf(field, LittleEndian(bytes, size)), fact);
    }
}

void ClFacts::DecodeAscii(Fact_t& fact) const {
    const char* const text = reinterpret_cast<const char*>(m_data) + fact.offset;
    fact.text = {text, static_cast<size_t>(std::find(text, text + fact.size, '\0') - text)};
    if (fact.text.empty()) fact.state = FactState_t::kNone;
}

void ClFacts::DecodeDate(Fact_t& fact) {
    const auto number = static_cast<uint32_t>(LittleEndian(m_data + fact.offset, 2));
    fact.number = number;
    const uint32_t year = 1980 + (number >> 9), month = number >> 5 & 0xF, day = number & 0x1F;
    if (month == 0 || month > 12 || day == 0) {
        fact.state = number == 0 ? FactState_t::kNone : FactState_t::kReserved;
        return;
    }
    const auto digit = [](uint32_t part) { return static_cast<char>('0' + part % 10); };
    const char date[] = {
        digit(year / 1000), digit(year / 100), digit(year / 10), digit(year), '-', digit(month / 10), digit(month), '-',
        digit(day / 10),    digit(day)};
    SetText({date, sizeof date}, fact);
}

void ClFacts::DecodeVersion(Fact_t& fact) {
    const uint8_t number = m_data[fact.offset];
    fact.number = number;
    const char version[] = {kHexDigits[number >> 4], '.', kHexDigits[number & 0xF]};
    SetText({version, sizeof version}, fact);
}

void ClFacts::DecodeNumber(const StandardField_t& field, uint64_t number, Fact_t& fact) const {
    fact.number = number;
    if (SetSpecial(field, number, fact)) return;
    switch (field.form) {
        case Form_t::kNumber:
        case Form_t::kHex: fact.number = number * field.scale; break;
        case Form_t::kSigned:
            fact.number = static_cast<uint64_t>(static_cast<int64_t>(static_cast<int16_t>(number)) * field.scale);
            fact.isSigned = true;
            break;
        case Form_t::kBcd:
            fact.number = (number >> 4) * 10 + (number & 0xF);
            if ((number & 0xF) > 9 || number >> 4 > 9) fact.state = FactState_t::kReserved, fact.number = number;
            break;
        case Form_t::kCode: SetCode(field, number, fact); break;
        case Form_t::kBits: SetBits(field, number, fact); break;
        case Form_t::kHandle: JudgeHandle(field, fact); break;
        case Form_t::kRomSize: fact.number = (number + 1) << 16; break;
        case Form_t::kExtendedRomSize:
            fact.number = (number & 0x3FFF) << (number >> 14 == 0 ? 20 : 30);
            if (number >> 15 != 0) fact.state = FactState_t::kReserved, fact.number = number;
            break;
        case Form_t::kPowerOfTwoMB:
            if (number >= 44)
                fact.state = FactState_t::kReserved;
            else
                fact.number = 1ull << (number + 20);
            break;
        case Form_t::kMemorySize: fact.number = (number & 0x7FFF) << (number >> 15 != 0 ? 10 : 20); break;
        case Form_t::kCacheSize: {
            const uint32_t high = field.width == 2 ? 15 : 31;
            fact.number = (number & ((1ull << high) - 1)) << (number >> high != 0 ? 16 : 10);
            break;
        }
        case Form_t::kWithoutHighBit: fact.number = (number & 0x7FFFFFFF) * field.scale; break;
        case Form_t::kPlusOne: fact.number = number + 1; break;
        default: break;
    }
}

void ClFacts::DecodeText(uint32_t number, Fact_t& fact) const {
    fact.number = number;
    if (number == 0) {
        fact.state = FactState_t::kNone;
    } else if (number > m_strings.Count()) {
        fact.state = FactState_t::kBroken;
    } else {
        fact.text = fact.string = m_strings.Get(number);
        if (IsFiller(fact.text)) fact.state = FactState_t::kFiller;
    }
}

void ClFacts::DecodeUuid(const uint8_t* uuid, Fact_t& fact) {
    const auto isAll = [&](uint8_t byte) { return std::all_of(uuid, uuid + 16, [=](uint8_t b) { return b == byte; }); };
    // Firmware is delivered with the numbers from 2 to 9, too.
    static constexpr uint8_t kDelivered[] = {0, 2, 0, 3, 0, 4, 0, 5, 0, 6, 0, 7, 0, 8, 0, 9};
    if (isAll(0x00) || isAll(0xFF) || memcmp(uuid, kDelivered, sizeof kDelivered) == 0)
        fact.state = FactState_t::kFiller;
    // From 2.6 on, the first three parts are little-endian. Firmware of 2.3.1 wrote 2.31 or 2.33.
    const bool isLittle = LevelOf(m_options.version) >= 0x260;
    static constexpr uint8_t kLittle[] = {3, 2, 1, 0, 5, 4, 7, 6, 8, 9, 10, 11, 12, 13, 14, 15};
    char text[36];
    size_t place = 0;
    for (uint8_t i = 0; i < 16; i++) {
        const uint8_t byte = uuid[isLittle ? kLittle[i] : i];
        if (i == 4 || i == 6 || i == 8 || i == 10) text[place++] = '-';
        text[place++] = kHexDigits[byte >> 4];
        text[place++] = kHexDigits[byte & 0xF];
    }
    SetText({text, sizeof text}, fact);
}

// Keeps a text that is made for the fact.
void ClFacts::SetText(std::string_view text, Fact_t& fact) {
    memcpy(m_buffer, text.data(), text.size());
    fact.text = {m_buffer, text.size()};
}

// Reads the source of a derived fact.
Fact_t ClFacts::Source(const Area_t& area, const StandardField_t& field, uint32_t source) {
    Fact_t fact = {};
    fact.state = FactState_t::kAbsent;
    if (source >= field.sources) return fact;
    const StandardField_t& from = area.fields[field.from[source]];
    static_cast<FactHead_t&>(fact) = from;
    fact.field = &from;
    uint32_t offset = 0;
    uint32_t size = 0;
    if (HasRoom(from, area, offset, size))
        Decode(from, offset, size, fact);
    else
        fact.state = FactState_t::kAbsent;
    return fact;
}
