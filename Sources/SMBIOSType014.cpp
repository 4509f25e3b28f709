// Group Associations (the SMBIOS standard, type 14). A group only points to firmware version structures: its items are
// the versions that its members have.
#include <cstring>
#include <new>
#include <vector>

#include "Packages/FERROXExternal/StructureStore/StructureStore.h"
#include "Packages/OS/Memory.h"
#include "Packages/OS/OS.h"
#include "Sources/Decoders.h"
#include "Sources/PackageTrace.h"
#include "Sources/VersionRecords.h"

#define TRACE(function, level, ...) \
    PACKAGE_TRACE("Sources\\SMBIOSType014", "ClSMBIOSType14::" function, level, __VA_ARGS__)

namespace {

constexpr size_t kGroupItems = 0x05, kGroupItemSize = 3;

// The type word before a record's body.
constexpr size_t kTypeWordSize = sizeof(uint32_t);

ClText VersionText(const VersionRecord_t& record) {
    std::string text = " ";
    for (const uint8_t part : record.parts) text.append(PlainHex(part, 2)).append(".");
    return text.append(PlainHex(record.lastPart, 4));
}

class ClSMBIOSType14 final : public ClSMBIOSType {
  public:
    ClSMBIOSType14() : ClSMBIOSType(14) {}
    void PrintStructure(const uint8_t* pData) override;

  private:
    // Adds the items of the group's members: every structure of the first of its types that the table has.
    void GetComponentInfo(const uint8_t* pData);

    // The versions of all structures of one type. They are kept, because thousands of groups may name the same type.
    struct Members_t {
        bool isKnown, arePresent;
        size_t first, count;  // among m_versions
    };
    struct NamedVersion_t {
        const char* name;
        VersionRecord_t record;
    };

    const Members_t& MembersOf(uint8_t type);
    // Keeps the versions of one member: its record, of any type, is read as a firmware version structure.
    void GetBiosVersionInfo(const uint8_t* pData);

    Members_t m_members[256] = {};
    std::vector<NamedVersion_t> m_versions;
};

void ClSMBIOSType14::GetBiosVersionInfo(const uint8_t* pData) try {
    const ClStructure member = ClStructure::WholeRecord(pData);
    const uint8_t count = CountVersionRecords(member);
    ClStringWalk names(pData);
    for (uint8_t index = 0; index < count;) {
        const char* name = names.Next();
        if (name == nullptr) break;
        // The name is skipped, and the next name gets its record.
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
    if (PrintHead(pData)) GetComponentInfo(pData);
}

}  // namespace

ClSMBIOSType* NewType14(const DecoderInput_t&) { return new (std::nothrow) ClSMBIOSType14; }

void DescribeType14(ClDescription& description) {
    description.Item(
        "(strings of a member)", "07h, and on in steps of 7",
        "a blank, then three bytes and a word in lower-case hexadecimal of 2 and 4 digits, joined by points; a "
        "string `Disabled` is skipped");
}
