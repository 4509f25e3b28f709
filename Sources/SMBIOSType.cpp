#include "Sources/SMBIOSType.h"

#include <cstdio>
#include <new>
#include <utility>

#include "Sources/PackageTrace.h"
#include "Sources/SharedWords.h"

#define TRACE(function, level, ...) PACKAGE_TRACE("Sources\\SMBIOSType", "ClSMBIOSType::" function, level, __VA_ARGS__)

namespace {

// Traces in the name of the type's decoder.
void TraceNullData(int type, const char* message) {
    if (!DebugIsOn(packageTraceHandle, kError)) return;
    char source[32], function[48];
    std::snprintf(source, sizeof source, "Sources\\SMBIOSType%03d", type);
    std::snprintf(function, sizeof function, "ClSMBIOSType%d::PrintStructure", type);
    PACKAGE_TRACE(source, function, kError, "%s", message);
}

constexpr ItemRow_t kHeaderRows[] = {
    {"Type",   0x00, Dec8 },
    {"Length", 0x01, Dec8 },
    {"Handle", 0x02, Dec16},
};

}  // namespace

void ClSMBIOSType::TraceDrop() { TRACE("Fill_String_Data", kError, "\nNULL Pointer: pData"); }

void ClSMBIOSType::Fill_String_Data(ClText key, ClText value, uint8_t group) {
    const ItemKind_t kind = group == 0             ? ItemKind_t::kItem
                            : value.View().empty() ? ItemKind_t::kGroup
                                                   : ItemKind_t::kMarkedItem;
    OrDrop([&] { m_items->Add(key, value, m_structure.As(kind)); });
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
    *output = {std::move(key), std::string(item.value)};
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

std::string ClSMBIOSType::GetHexString(uint64_t value, uint32_t width) { return HexText(value, width); }

const char* ClSMBIOSType::GetString(uint32_t strNum, const uint8_t* pData) { return RecordString(strNum, pData); }

std::string_view ClSMBIOSType::GetErrorGranularityString(uint8_t code) { return WordOf(ErrorGranularity, code); }
std::string_view ClSMBIOSType::GetErrorOperationString(uint8_t code) { return WordOf(ErrorOperation, code); }
std::string_view ClSMBIOSType::GetErrorTypeString(uint8_t code) { return WordOf(ErrorType, code); }
std::string_view ClSMBIOSType::GetOnboardDeviceTypeString(uint8_t code) {
    return WordOf(OnboardDeviceType, code & 0x7F);
}

void ClSMBIOSType::BeginStructure(const uint8_t* pData) {
    m_instanceCounter++;
    m_structure = {static_cast<uint32_t>(m_instanceCounter)};
    if (pData == nullptr) return;
    m_structure.handle = static_cast<uint16_t>(pData[2] | pData[3] << 8);
    m_structure.type = pData[0];
}

bool ClSMBIOSType::PrintHead(const uint8_t* pData, const char* nullTrace) {
    BeginStructure(pData);
    if (m_row.head != Head_t::kFirstTitle || m_instanceCounter == 1)
        OrDrop([&] { m_items->Add(m_row.Title(), {}, m_structure.As(ItemKind_t::kTitle)); });
    if (pData == nullptr) {
        TraceNullData(m_row.type, nullTrace);
        return false;
    }
    if (m_row.head == Head_t::kHeader) PrintItems(RowsOf<kHeaderRows>(), ClStructure::FixedBytes(pData, 4));
    return true;
}

ClStructure ClSMBIOSType::View(const uint8_t* pData) const {
    return m_row.view == View_t::kWholeRecord ? ClStructure::WholeRecord(pData) : ClStructure::FormattedArea(pData);
}

void ClSMBIOSType::PrintRows(const Rows_t& rows, const uint8_t* pData) {
    if (PrintHead(pData)) PrintItems(rows, View(pData));
}

void ClSMBIOSType::PrintItems(const Rows_t& rows, const ClStructure& structure, size_t shift) {
    for (const PackedRow_t& row : rows.rows) {
        OrDrop([&] {
            if (row.render == kGroupPlace)
                m_items->AddLasting(rows.Text(row.key), {}, m_structure.As(ItemKind_t::kGroup));
            else
                m_items->AddLasting(rows.Text(row.key),
                                    RenderOf(rows, row)({structure, rows, row, *this, row.offset + shift}),
                                    m_structure);
        });
    }
}

void ClSMBIOSType::PrintStrings(std::string_view key, uint8_t count, const ClStructure& structure) {
    ClStringWalk strings(structure.Data());
    for (uint8_t left = count; left > 0; left--) Fill_String_Data(key, strings.NextText(), 0);
}
