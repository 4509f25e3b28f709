#include "Sources/SMBIOSType.h"

#include <cstdio>
#include <cstdlib>
#include <new>
#include <utility>

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

// Traces in the name of the decoder, whose number is in the title's type mark.
void TraceNullData(std::string_view title, const char* message) {
    if (!DebugIsOn(packageTraceHandle, kError)) return;
    const size_t mark = title.rfind(' ');
    const int type = mark == title.npos ? 0 : static_cast<int>(std::strtol(title.data() + mark + 1, nullptr, 10));
    char source[32], function[48];
    std::snprintf(source, sizeof source, "Sources\\SMBIOSType%03d", type);
    std::snprintf(function, sizeof function, "ClSMBIOSType%d::PrintStructure", type);
    PACKAGE_TRACE(source, function, kError, "%s", message);
}

// Drops the item if memory runs out; the items after it are still added.
template <class Work>
void OrDrop(Work addItem) {
    try {
        addItem();
    } catch (const std::bad_alloc&) {
        TRACE("Fill_String_Data", kError, "\nNULL Pointer: pData");
    }
}

}  // namespace

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
