// The decoder base: items, strings, and the renderings that decoders share.
#include "Sources/SMBIOSType.h"

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <new>
#include <utility>

#include "Packages/FERROXExternal/StructureStore/ParsedRecords.h"
#include "Sources/PackageTrace.h"

#define TRACE(function, level, ...) PACKAGE_TRACE("Sources\\SMBIOSType", "ClSMBIOSType::" function, level, __VA_ARGS__)

namespace {

constexpr CodeText_t kErrorGranularities[] = {
    {1, "Other"                 },
    {2, "Unknown"               },
    {3, "Device level"          },
    {4, "Memory partition level"},
};
static_assert(IsRising(kErrorGranularities));

constexpr CodeText_t kErrorOperations[] = {
    {1, "Other"        },
    {2, "Unknown"      },
    {3, "Read"         },
    {4, "Write"        },
    {5, "Partial write"},
};
static_assert(IsRising(kErrorOperations));

constexpr CodeText_t kErrorTypes[] = {
    {1,  "Other"                     },
    {2,  "Unknown"                   },
    {3,  "OK"                        },
    {4,  "Bad read"                  },
    {5,  "Parity error"              },
    {6,  "Single-bit error"          },
    {7,  "Double-bit error"          },
    {8,  "Multi-bit error"           },
    {9,  "Nibble error"              },
    {10, "Checksum error"            },
    {11, "CRC error"                 },
    {12, "Corrected single-bit error"},
    {13, "Corrected error"           },
    {14, "Uncorrectable error"       },
};
static_assert(IsRising(kErrorTypes));

constexpr CodeText_t kOnboardDeviceTypes[] = {
    {1,  "Other"          },
    {2,  "Unknown"        },
    {3,  "Video"          },
    {4,  "SCSI Controller"},
    {5,  "Ethernet"       },
    {6,  "Token Ring"     },
    {7,  "Sound"          },
    {8,  "PATA Controller"},
    {9,  "SATA Controller"},
    {10, "SAS Controller" },
};
static_assert(IsRising(kOnboardDeviceTypes));

const char* StringArea(const uint8_t* pData) {
    const size_t offset = ParsedBytes(pData[0]) == 0 ? pData[1] : ParsedAreaOffset(pData[0]);
    return reinterpret_cast<const char*>(pData + offset);
}

constexpr char kNoSuchString[] = "(no such string)";

// The text of an area without strings.
const char* NullString() {
    TRACE("GetString", kError, "\nNULL string: strPtr");
    return "(null string)";
}

// The end of the record that begins at `pData`: behind the double NUL of its string area.
const uint8_t* RecordEnd(const uint8_t* pData) {
    const auto* byte = reinterpret_cast<const uint8_t*>(StringArea(pData));
    while (byte[0] != 0 || byte[1] != 0) byte++;
    return byte + 2;
}

std::string HexDigits(uint64_t value, uint32_t digits, const char* alphabet) {
    char text[16];
    uint32_t count = 0;
    do text[15 - count++] = alphabet[value & 15];
    while ((value >>= 4) != 0);
    std::string result(digits > count ? digits - count : 0, '0');
    return result.append(text + 16 - count, count);
}

// A decoder's own trace line; its source and function are named by the number in the title's type mark.
void TraceNullData(std::string_view title, const char* message) {
    if (!DebugIsOn(packageTraceHandle, kError)) return;
    const size_t mark = title.rfind(' ');
    const int type = mark == title.npos ? 0 : static_cast<int>(std::strtol(title.data() + mark + 1, nullptr, 10));
    char source[32], function[48];
    std::snprintf(source, sizeof source, "Sources\\SMBIOSType%03d", type);
    std::snprintf(function, sizeof function, "ClSMBIOSType%d::PrintStructure", type);
    PACKAGE_TRACE(source, function, kError, "%s", message);
}

// Without memory an item is dropped, and those behind it go on.
template <class Work>
void OrDrop(Work addItem) {
    try {
        addItem();
    } catch (const std::bad_alloc&) {
        TRACE("Fill_String_Data", kError, "\nNULL Pointer: pData");
    }
}

}  // namespace

ClText ClText::Joined(std::initializer_list<std::string_view> pieces) {
    size_t size = 0;
    for (const std::string_view piece : pieces) size += piece.size();
    ClText text;
    char* place = text.Own(size);
    for (const std::string_view piece : pieces) place = std::copy_n(piece.data(), piece.size(), place);
    return text;
}

void Item_t::AppendKey(std::string& text) const {
    text += key.View();
    if (facts.kind == ItemKind_t::kTitle && facts.instance > 1) text.append("_").append(std::to_string(facts.instance));
    if (facts.kind != ItemKind_t::kItem) text += kGroupMark;
}

std::string Item_t::Title() const {
    std::string text;
    AppendKey(text);
    text.resize(text.size() - kGroupMark.size());
    return text;
}

void ClItemList::Add(ClText&& key, ClText&& value, ItemFacts_t facts) {
    if (m_keepsTexts) {
        key.Keep();
        value.Keep();
    }
    if (m_size % kBlockItems == 0 && m_size / kBlockItems == m_blocks.size())
        m_blocks.push_back(std::unique_ptr<Block_t>(new Block_t));  // its room stays as it is until an item takes it
    new (Place(m_size)) Item_t{std::move(key), std::move(value), facts};
    m_size++;
}

void ClItemList::Truncate(size_t size) {
    for (size_t index = size; index < m_size; index++) std::destroy_at(Place(index));
    // The first block stays for who fills the list again and again.
    const size_t blocks = std::max<size_t>((size + kBlockItems - 1) / kBlockItems, 1);
    if (m_blocks.size() > blocks) m_blocks.resize(blocks);
    m_size = size;
}

ClStructure ClStructure::WholeRecord(const uint8_t* pData) {
    const uint8_t parsedBytes = ParsedBytes(pData[0]);
    return parsedBytes == 0 ? ClStructure(pData, pData[1], true) : FixedBytes(pData, parsedBytes);
}

size_t ClStructure::ReadableBytes() const {
    if (!m_readsOn) return m_held;
    if (m_recordBytes == 0) m_recordBytes = static_cast<size_t>(RecordEnd(m_data) - m_data);
    return m_recordBytes;
}

void ClStructure::ReadOn(size_t offset, void* number, size_t size) const {
    const size_t readable = ReadableBytes();
    if (offset < readable) std::memcpy(number, m_data + offset, std::min(size, readable - offset));
}

ClStringWalk::ClStringWalk(const uint8_t* pData) : m_next(StringArea(pData)), m_isEmpty(*m_next == '\0') {}

const char* ClStringWalk::Next() {
    if (m_isEmpty) return NullString();
    if (*m_next == '\0') return nullptr;
    const char* text = m_next;
    m_next += std::strlen(text) + 1;
    return text;
}

const char* ClStringWalk::NextText() {
    const char* text = Next();
    return text == nullptr ? kNoSuchString : text;
}

std::string PlainHex(uint64_t value) { return HexDigits(value, 1, "0123456789abcdef"); }

std::string PlainUpperHex(uint64_t value) { return HexDigits(value, 1, "0123456789ABCDEF"); }

std::string BitsText(std::span<const CodeText_t> table, uint32_t value, uint32_t count) {
    std::string text;
    for (uint32_t bit = 0; bit < count; bit++) {
        if ((value >> bit & 1) == 0) continue;
        if (!text.empty()) text += ", ";
        text += TextOf(table, bit, {});
    }
    return text;
}

static ClText HexText(const Field_t& field, uint64_t value) {
    return ClSMBIOSType::GetHexString(value, field.row.rendering.number);
}

ClText ShowDec8(const Field_t& field) { return ClSMBIOSType::GetDecimalString(field.Byte()); }
ClText ShowDec16(const Field_t& field) { return ClSMBIOSType::GetDecimalString(field.Word()); }
ClText ShowDec32(const Field_t& field) { return ClSMBIOSType::GetDecimalString(field.Dword()); }
ClText ShowHex8(const Field_t& field) { return HexText(field, field.Byte()); }
ClText ShowHex16(const Field_t& field) { return HexText(field, field.Word()); }
ClText ShowHex32(const Field_t& field) { return HexText(field, field.Dword()); }
ClText ShowHex64(const Field_t& field) { return HexText(field, field.Qword()); }

ClText ShowString(const Field_t& field) { return ClSMBIOSType::GetString(field.Byte(), field.structure.Data()); }

ClText ShowStringOrNone(const Field_t& field) {
    const uint8_t number = field.Byte();
    return number == 0 ? "None" : ClSMBIOSType::GetString(number, field.structure.Data());
}

ClText ShowFoundText(const Field_t& field) { return field.row.rendering.text; }

ClText ShowParsedString(const Field_t& field) {
    if (field.Byte() == 0) return "None";
    const char* text = ParsedString(field.structure.Data(), field.row.offset);
    return text == nullptr ? "None" : text;
}

ClText ShowEnum8(const Field_t& field) {
    const Rendering_t& rendering = field.row.rendering;
    return TextOf(rendering.table, field.Byte(), rendering.text);
}

static ClText YesNo(const Field_t& field, uint32_t value) {
    return (value >> field.row.rendering.number & 1) != 0 ? "Yes" : "No";
}

ClText ShowYesNo8(const Field_t& field) { return YesNo(field, field.Byte()); }
ClText ShowYesNo16(const Field_t& field) { return YesNo(field, field.Word()); }
ClText ShowYesNo32(const Field_t& field) { return YesNo(field, field.Dword()); }

ClText ShowDec16WithUnit(const Field_t& field) {
    return ClSMBIOSType::GetDecimalString(field.Word()).append(field.row.rendering.text);
}

ClText ShowDec16AndHex(const Field_t& field) {
    const uint16_t value = field.Word();
    return ClSMBIOSType::GetDecimalString(value)
        .append(" (")
        .append(ClSMBIOSType::GetHexString(value, field.row.rendering.number))
        .append(")");
}

// Decimal, bits 3 to 7.
ClText ShowDeviceNumber(const Field_t& field) { return ClSMBIOSType::GetDecimalString(field.Byte() >> 3); }
// Decimal, bits 0 to 2.
ClText ShowFunctionNumber(const Field_t& field) { return ClSMBIOSType::GetDecimalString(field.Byte() & 7); }

static ClText BitText(const Field_t& field, uint32_t value) {
    const Rendering_t& rendering = field.row.rendering;
    return TextOf(rendering.table, value >> rendering.number & 1, {});
}

ClText ShowBit8(const Field_t& field) { return BitText(field, field.Byte()); }
ClText ShowBit32(const Field_t& field) { return BitText(field, field.Dword()); }

void ClSMBIOSType::Fill_String_Data(ClText key, ClText value, uint8_t group) {
    const ItemKind_t kind = group == 0             ? ItemKind_t::kItem
                            : value.View().empty() ? ItemKind_t::kGroup
                                                   : ItemKind_t::kMarkedItem;
    OrDrop([&] { m_items->Add(std::move(key), std::move(value), m_structure.As(kind)); });
}

status_t ClSMBIOSType::GetNextItem(ItemPair* output) {
    if (output == nullptr) {
        TRACE("GetNextItem", kError, "\nNULL Pointer: OutputData");
        return kBadValue;
    }
    if (m_readCursor >= m_items->Size()) {
        TRACE("GetNextItem", kInfo, "\nNo more items");
        return kFailure;
    }
    const Item_t& item = (*m_items)[m_readCursor];
    std::string key;
    item.AppendKey(key);
    *output = {item.facts.kind == ItemKind_t::kItem ? item.key : ClText(key), item.value};
    m_readCursor++;
    return kSuccess;
}

void ClSMBIOSType::UseList(ClItemList* list) {
    m_items = list;
    m_readCursor = list->Size();
}

size_t ClSMBIOSType::PassItems() {
    const size_t passed = m_items->Size() - m_readCursor;
    m_readCursor = m_items->Size();
    TRACE("GetNextItem", kInfo, "\nNo more items");
    return passed;
}

std::string ClSMBIOSType::GetDecimalString(uint32_t value) { return std::to_string(value); }

std::string ClSMBIOSType::GetHexString(uint64_t value, uint32_t width) {
    return HexDigits(value, width, "0123456789ABCDEF") += 'h';
}

const char* ClSMBIOSType::GetString(uint32_t strNum, const uint8_t* pData) {
    const char* text = StringArea(pData);
    if (*text == '\0') return NullString();
    for (uint32_t current = 1; current < strNum; current++) {
        text += std::strlen(text) + 1;
        if (*text == '\0') return kNoSuchString;
    }
    return text;
}

Word_t ClSMBIOSType::GetErrorGranularityString(uint8_t code) {
    return TextOf(kErrorGranularities, code, "Error: Invalid Granularity");
}

Word_t ClSMBIOSType::GetErrorOperationString(uint8_t code) {
    return TextOf(kErrorOperations, code, "Error: Invalid Operation");
}

Word_t ClSMBIOSType::GetErrorTypeString(uint8_t code) { return TextOf(kErrorTypes, code, "Error: Invalid Type"); }

Word_t ClSMBIOSType::GetOnboardDeviceTypeString(uint8_t code) {
    return TextOf(kOnboardDeviceTypes, code & 0x7F, "Error: Invalid Type");
}

void ClSMBIOSType::BeginStructure(const uint8_t* pData) {
    m_instanceCounter++;
    m_structure = {static_cast<uint32_t>(m_instanceCounter)};
    if (pData == nullptr) return;
    m_structure.handle = static_cast<uint16_t>(pData[2] | pData[3] << 8);
    m_structure.type = pData[0];
}

bool ClSMBIOSType::PrintTitle(std::string_view title, const uint8_t* pData, const char* nullTrace) {
    BeginStructure(pData);
    OrDrop([&] { m_items->Add(title, {}, m_structure.As(ItemKind_t::kTitle)); });
    if (pData == nullptr) TraceNullData(title, nullTrace);
    return pData != nullptr;
}

bool ClSMBIOSType::PrintHead(std::string_view title, const uint8_t* pData) {
    static constexpr ItemRow_t kHead[] = {
        {"Type",   0x00, Dec8 },
        {"Length", 0x01, Dec8 },
        {"Handle", 0x02, Dec16},
    };
    if (!PrintTitle(title, pData)) return false;
    PrintItems(kHead, ClStructure::FixedBytes(pData, 4));
    return true;
}

void ClSMBIOSType::PrintItems(std::span<const ItemRow_t> rows, const ClStructure& structure) {
    for (const ItemRow_t& row : rows) {
        OrDrop([&] {
            if (row.rendering.render == nullptr)
                m_items->Add(row.key, {}, m_structure.As(ItemKind_t::kGroup));
            else
                m_items->Add(row.key, row.rendering.render({structure, row, *this}), m_structure);
        });
    }
}

void ClSMBIOSType::PrintStrings(std::string_view key, uint8_t count, const ClStructure& structure) {
    ClStringWalk strings(structure.Data());
    for (uint8_t left = count; left > 0; left--) {
        const ItemRow_t string[] = {
            {key, 0, FoundText(strings.NextText())},
        };
        PrintItems(string, structure);
    }
}
