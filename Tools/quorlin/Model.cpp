#include "Tools/quorlin/Model.h"

#include <charconv>

#include "Packages/FERROXExternal/StructureStore/StructureStore.h"
#include "Packages/OS/OS.h"

namespace {

constexpr std::string_view kTypeMark = " {Type ";
constexpr size_t kHandleInRecord = sizeof(uint32_t) + 2;  // behind the type word, in the structure's header

// The records of one type.
class ClRecords {
  public:
    explicit ClRecords(uint8_t type) { GetSMBIOSStrutureFrom(type, 0, &m_records, &m_count); }
    ~ClRecords() { os_free(m_records); }
    ClRecords(const ClRecords&) = delete;
    ClRecords& operator=(const ClRecords&) = delete;

    uint32_t Count() const { return m_count; }
    // Of the instance, which counts from 1.
    uint16_t Handle(uint32_t instance) const {
        if (instance == 0 || instance > m_count) return 0xFFFF;
        const uint8_t* bytes = m_records[instance - 1] + kHandleInRecord;
        return static_cast<uint16_t>(bytes[0] | bytes[1] << 8);
    }

  private:
    uint8_t** m_records = nullptr;
    uint32_t m_count = 0;
};

// A title is "TEXT {Type N}", and from the second structure of the type on "TEXT {Type N}_I".
uint32_t InstanceOf(std::string_view title) {
    const size_t underscore = title.rfind("}_");
    uint32_t instance = 1;
    if (underscore != title.npos) std::from_chars(title.data() + underscore + 2, title.data() + title.size(), instance);
    return instance;
}

}  // namespace

ClModel::ClModel(Quorlin& package, std::span<const uint8_t> types) : m_package(package) {
    for (const uint8_t type : types) AddType(type);
}

void ClModel::AddType(uint8_t type) {
    const ClRecords records(type);
    if (records.Count() == 0) return;
    const uint32_t begin = m_package.GetItemCount();
    m_package.GetTypes(type);
    const uint32_t end = m_package.GetItemCount();
    m_structures.reserve(m_structures.size() + records.Count());
    for (uint32_t index = begin; index < end; index++) {
        const Item_t item = Item(index);
        const size_t mark = item.opensGroup ? item.key.find(kTypeMark) : item.key.npos;
        if (mark != item.key.npos) {
            const uint32_t instance = InstanceOf(item.key.substr(mark));
            m_structures.push_back(
                {type, records.Handle(instance), instance, item.key, item.key.substr(0, mark), index + 1, index + 1});
        } else if (index == begin) {
            m_structures.push_back({type, records.Handle(1), 1, {}, {}, index, index});
        }
        m_structures.back().endItem = index + 1;
    }
}

Item_t ClModel::Item(uint32_t index) const {
    const ItemPair& pair = m_package.Item(index);
    Item_t item{pair.key.View(), pair.value.View(), false};
    if (item.key.ends_with(kGroupMark)) {
        item.key.remove_suffix(kGroupMark.size());
        // A group item of a setting carries a value and reads as an item.
        item.opensGroup = item.value.empty();
    }
    if (item.value == " ") item.value = {};
    return item;
}

bool ChooseTypes(const Usage_t& usage, std::span<const std::string> names, std::vector<uint8_t>* types, int* exitCode) {
    for (const std::string& name : names) {
        uint64_t type;
        if (!ParseNumber(name, 254, &type))
            return SayBadUsage(usage, "--type: '" + name + "' is not within 0 to 254", exitCode);
        types->push_back(static_cast<uint8_t>(type));
    }
    return true;
}

std::vector<uint8_t> SweptTypes() {
    std::vector<uint8_t> types;
    for (unsigned type = 0; type < Quorlin::kSweep; type++)
        if (Quorlin::IsSwept(static_cast<uint8_t>(type))) types.push_back(static_cast<uint8_t>(type));
    return types;
}

std::vector<uint8_t> AllTypes() {
    std::vector<uint8_t> types;
    for (unsigned type = 0; type < Quorlin::kSweep; type++) types.push_back(static_cast<uint8_t>(type));
    return types;
}
