// Group Associations (the SMBIOS standard, type 14). A group serves as a pointer to firmware version structures: what
// shows are the versions that its members hold, not the group itself.
#include <cstdio>
#include <cstring>
#include <new>

#include "Packages/FERROXExternal/StructureStore/StructureStore.h"
#include "Packages/OS/Memory.h"
#include "Packages/OS/OS.h"
#include "Sources/Decoders.h"
#include "Sources/PackageTrace.h"

#define TRACE(function, level, ...) \
    PACKAGE_TRACE("Sources\\SMBIOSType014", "ClSMBIOSType14::" function, level, __VA_ARGS__)

namespace {

constexpr size_t kGroupItems = 0x05, kGroupItemSize = 3;

// In front of a record's body stands its type.
constexpr size_t kTypeWordSize = sizeof(uint32_t);

// A blank, then three bytes and a word in lower-case hexadecimal of 2 and 4 digits, joined by points.
ClText VersionText(const VersionRecord_t& record) {
    char text[48];
    std::snprintf(text, sizeof text, " %02x.%02x.%02x.%04x", record.parts[0], record.parts[1], record.parts[2],
                  record.lastPart);
    return std::string(text);
}

}  // namespace

void ClSMBIOSType14::GetBiosVersionInfo(const uint8_t* pData) try {
    const ClStructure member = ClStructure::WholeRecord(pData);
    const uint8_t count = CountVersionRecords(member);
    ClStringWalk names(pData);
    for (uint8_t index = 0; index < count;) {
        const char* name = names.Next();
        if (name == nullptr) break;
        // This name is used up, and its record stays for the next one.
        if (std::strcmp(name, "Disabled") == 0) continue;
        m_versions.push_back({name, VersionRecordAt(member, index)});
        index++;
    }
} catch (const std::bad_alloc&) {
    TRACE("GetBiosVersionInfo", kError, "Memory allocation with new failed\n");
}

const ClSMBIOSType14::Members_t& ClSMBIOSType14::MembersOf(uint8_t type) {
    Members_t& members = m_members[type];
    if (members.isKnown) return members;
    members = {true, false, m_versions.size(), 0};
    uint8_t** records = nullptr;
    uint8_t count = 0;
    if (GetSMBIOSStruture(type, &records, &count) != kSuccess) {
        TRACE("GetComponentInfo", kError, "The structures of type %u aren't available", static_cast<unsigned>(type));
        return members;
    }
    for (uint8_t index = 0; index < count; index++) GetBiosVersionInfo(records[index] + kTypeWordSize);
    os_free(records);
    members.arePresent = count != 0;
    members.count = m_versions.size() - members.first;
    return members;
}

void ClSMBIOSType14::GetComponentInfo(const uint8_t* pData) {
    const ClStructure group = ClStructure::WholeRecord(pData);
    for (size_t item = kGroupItems; group.Holds(item, kGroupItemSize); item += kGroupItemSize) {
        const Members_t& members = MembersOf(group.Byte(item));
        if (!members.arePresent) continue;
        for (size_t place = members.first; place < members.first + members.count; place++)
            Fill_String_Data(m_versions[place].name, VersionText(m_versions[place].record), 0);
        return;
    }
}

void ClSMBIOSType14::PrintStructure(const uint8_t* pData) {
    // The first structure alone has a title: the members of all stand under it.
    if (m_instanceCounter == 0) {
        if (!PrintTitle("Group Associations {Type 14}", pData)) return;
    } else {
        BeginStructure(pData);
        if (pData == nullptr) {
            TRACE("PrintStructure", kError, "\npData is NULL");
            return;
        }
    }
    GetComponentInfo(pData);
}
