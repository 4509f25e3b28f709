// Group Associations (the SMBIOS standard, type 14). A group serves as a pointer to firmware version structures: what
// shows are the versions that its members hold, not the group itself.
#include <cstdio>

#include "Packages/FERROXExternal/StructureStore/StructureStore.h"
#include "Packages/OS/OS.h"
#include "Sources/Decoders.h"
#include "Sources/PackageTrace.h"

#define TRACE(function, level, ...) \
    PACKAGE_TRACE("Sources\\SMBIOSType014", "ClSMBIOSType14::" function, level, __VA_ARGS__)

namespace {

constexpr size_t kGroupItems = 0x05, kGroupItemSize = 3;

// A firmware version structure: the number of its entries, then the entries. An entry's version is three bytes from
// its offset 2 and a word.
constexpr size_t kEntryCount = 0x04, kEntries = 0x05, kEntrySize = 7, kVersionInEntry = 2;

// In front of a record's body stands its type.
constexpr size_t kTypeWordSize = sizeof(uint32_t);

// A blank, then three bytes and a word in lower-case hexadecimal, joined by points.
ClText ShowVersion(const Field_t& field) {
    const ClStructure& member = field.structure;
    const size_t offset = field.row.offset;
    char text[48];
    std::snprintf(text, sizeof text, " %02x.%02x.%02x.%04x", member.Byte(offset), member.Byte(offset + 1),
                  member.Byte(offset + 2), member.Word(offset + 3));
    return std::string(text);
}

constexpr Rendering_t Version{ShowVersion};

}  // namespace

void ClSMBIOSType14::GetBiosVersionInfo(const uint8_t* pData) {
    const ClStructure member = ClStructure::WholeRecord(pData);
    ClStringWalk names(pData);
    const uint8_t count = member.Byte(kEntryCount);
    for (size_t index = 0; index < count && member.Holds(kEntries + index * kEntrySize, kEntrySize);) {
        const char* name = names.Next();
        if (name == nullptr) break;
        // This name is used up, and its entry stays for the next one.
        if (std::strcmp(name, "Disabled") == 0) continue;
        const ItemRow_t item[] = {
            {name, kEntries + index * kEntrySize + kVersionInEntry, Version},
        };
        PrintItems(item, member);
        index++;
    }
}

void ClSMBIOSType14::GetComponentInfo(const uint8_t* pData) {
    const ClStructure group = ClStructure::WholeRecord(pData);
    for (size_t item = kGroupItems; group.Holds(item, kGroupItemSize); item += kGroupItemSize) {
        const uint8_t type = group.Byte(item);
        uint8_t** records = nullptr;
        uint8_t count = 0;
        if (GetSMBIOSStruture(type, &records, &count) != kSuccess) {
            TRACE("GetComponentInfo", kError, "The structures of type %u can't be had", static_cast<unsigned>(type));
            continue;
        }
        for (uint8_t index = 0; index < count; index++) GetBiosVersionInfo(records[index] + kTypeWordSize);
        os_free(records);
        if (count != 0) return;
    }
}

void ClSMBIOSType14::PrintStructure(const uint8_t* pData) {
    // The first structure alone has a title: the members of all stand under it.
    if (m_instanceCounter == 0) {
        if (!PrintTitle("Group Associations {Type 14}", pData)) return;
    } else {
        m_instanceCounter++;
        if (pData == nullptr) {
            TRACE("PrintStructure", kError, "\npData is NULL");
            return;
        }
    }
    GetComponentInfo(pData);
}
