#include "Tools/quorlin/Summary.h"

#include <algorithm>
#include <forward_list>
#include <map>
#include <set>
#include <utility>

#include "Packages/Format/Structures.h"

namespace {

constexpr uint64_t kSystemMemory = 3;
constexpr uint64_t kCentralProcessor = 3;
constexpr uint64_t kMotherboard = 0x0A;

// The facts of one structure, outside its lists.
class ClValues {
  public:
    ClValues(const TableStructure_t& structure, const FactOptions_t& options) {
        m_values.reserve(64);
        ClFacts facts(structure, options);
        while (facts.Next())
            if (facts->record < 0) m_values.push_back({facts->Key(), facts->state, facts->number, Kept(*facts)});
    }

    bool Has(std::string_view key, FactState_t state) const {
        const Value_t* value = Find(key);
        return value != nullptr && value->state == state;
    }
    Known_t Number(std::string_view key) const {
        const Value_t* value = Find(key);
        return value == nullptr || value->state != FactState_t::kValue ? Known_t() : value->number;
    }
    // As Number, where 0 says nothing.
    Known_t Positive(std::string_view key) const {
        const Known_t number = Number(key);
        return number == 0u ? Known_t() : number;
    }
    FactState_t State(std::string_view key) const {
        const Value_t* value = Find(key);
        return value == nullptr ? FactState_t::kAbsent : value->state;
    }
    // A text as it is, or the word of a code. Made texts are gone with these values.
    std::string_view View(std::string_view key) const {
        const Value_t* value = Find(key);
        const bool isKnown = value != nullptr && value->state == FactState_t::kValue && value->text != "Other";
        return isKnown ? value->text : std::string_view();
    }
    // No text of a machine is as long as those that are cut.
    std::string Text(std::string_view key) const {
        constexpr size_t kMost = 16u << 10;
        const std::string_view text = View(key);
        return text.size() <= kMost ? WithSingleBlanks(text) : WithSingleBlanks(text.substr(0, kMost)) + "...";
    }
    bool HasBit(std::string_view key, unsigned bit) const { return Number(key).value_or(0) >> bit & 1; }

  private:
    struct Value_t {
        std::string_view key;
        FactState_t state;
        uint64_t number;
        std::string_view text;
    };
    // The text, which must outlive the walk. Some texts are made for the fact at hand.
    std::string_view Kept(const Fact_t& fact) {
        const bool isMade = fact.kind == FactKind_t::kUuid || fact.kind == FactKind_t::kDate ||
                            fact.kind == FactKind_t::kVersion || (fact.kind == FactKind_t::kText && fact.isDerived);
        return isMade ? m_made.emplace_front(fact.text) : fact.text;
    }
    const Value_t* Find(std::string_view key) const {
        const auto place = std::ranges::find(m_values, key, &Value_t::key);
        return place == m_values.end() ? nullptr : &*place;
    }

    std::vector<Value_t> m_values;
    std::forward_list<std::string> m_made;
};

// Counts equal things, in the order in which they come.
template <class Kind>
class ClGroups {
  public:
    Group_t<Kind>& Count(const Kind& kind) { return m_groups[NumberOf(kind)]; }
    // The same, for what is in a place.
    void CountIn(Place_t& place, const Kind& kind) { place.group = NumberOf(kind); }
    Groups_t<Kind> Take() { return std::move(m_groups); }

  private:
    struct IsLess_t {
        bool operator()(const Kind* a, const Kind* b) const { return *a < *b; }
    };

    // The number of the kind's group, in which one more is counted.
    uint32_t NumberOf(const Kind& kind) {
        auto place = m_numbers.find(&kind);
        if (place == m_numbers.end()) {
            m_groups.push_back({kind});
            place = m_numbers.emplace(&m_groups.back().kind, static_cast<uint32_t>(m_groups.size() - 1)).first;
        }
        m_groups[place->second].count++;
        return place->second;
    }

    Groups_t<Kind> m_groups;
    std::map<const Kind*, uint32_t, IsLess_t> m_numbers;
};

class ClCollector {
  public:
    Summary_t Collect(std::span<const uint8_t> table, const FactOptions_t& options) {
        for (const TableStructure_t& structure : ClWalk(table)) Take(structure, options);
        // Only now is it known which sockets and arrays these belong to.
        for (const TableStructure_t& structure : ClWalk(table)) {
            if (structure.Type() == 7) TakeCache(structure.Handle(), {structure, options});
            if (structure.Type() == 17) TakeDevice(structure.Handle(), {structure, options});
        }
        m_summary.processors = m_processors.Take();
        m_summary.caches = m_caches.Take();
        m_summary.slots = m_slots.Take();
        FinishMemory();
        return std::move(m_summary);
    }

  private:
    void Take(const TableStructure_t& structure, const FactOptions_t& options) {
        const uint8_t type = structure.Type();
        if (type > 16 || type == 7) return;
        const bool isFirst = !m_hasType[type];
        m_hasType[type] = true;
        const ClValues values(structure, options);
        switch (type) {
            case 0:
                if (isFirst) TakeFirmware(values);
                break;
            case 1:
                if (isFirst) TakeSystem(values);
                break;
            case 2: TakeBoard(values, isFirst); break;
            case 3:
                if (isFirst) TakeChassis(values);
                break;
            case 4: TakeProcessor(structure.Handle(), values); break;
            case 6: TakeOldModule(structure.Handle(), values); break;
            case 9: TakeSlot(values); break;
            case 16: TakeArray(structure.Handle(), values); break;
            default: break;
        }
    }

    static Product_t ProductOf(const ClValues& values) {
        return {values.Text("manufacturer"),  values.Text("product_name"), values.Text("version"),
                values.Text("serial_number"), values.Text("asset_tag"),    values.State("serial_number")};
    }

    void TakeFirmware(const ClValues& values) {
        const std::string date = values.Text("release_date_iso");
        m_summary.firmware = {
            .vendor = values.Text("vendor"),
            .version = values.Text("firmware_version"),
            .date = date.empty() ? values.Text("firmware_release_date") : date,
            .release = values.Text("platform_firmware_release"),
            .romSize = values.Number("rom_size"),
            .isUefi = values.HasBit("firmware_characteristics_extension_byte_2", 3),
            .isVirtualMachine = values.HasBit("firmware_characteristics_extension_byte_2", 4),
        };
    }

    void TakeSystem(const ClValues& values) {
        m_summary.system = {ProductOf(values), values.Text("uuid"), values.Text("sku_number"), values.Text("family"),
                            values.State("uuid")};
    }

    // The motherboard, wherever it is among the boards, or else the first board.
    void TakeBoard(const ClValues& values, bool isFirst) {
        const bool isMotherboard = values.Number("board_type") == kMotherboard;
        if (!isFirst && (m_hasMotherboard || !isMotherboard)) return;
        m_hasMotherboard = isMotherboard;
        m_summary.board = ProductOf(values);
        m_summary.board.name = values.Text("product");
    }

    void TakeChassis(const ClValues& values) {
        m_summary.chassis = {ProductOf(values), values.Text("chassis_type"), values.Number("chassis_height")};
        m_summary.chassis.product.assetTag = values.Text("asset_tag_number");
    }

    void TakeProcessor(uint16_t handle, const ClValues& values) {
        if (values.Number("processor_type").value_or(kCentralProcessor) != kCentralProcessor) return;
        m_summary.sockets.push_back({.handle = handle, .name = values.View("socket_designation"), .bank = {}});
        const bool isThere = values.HasBit("status", 6);
        for (const char* key : {"l1_cache_handle", "l2_cache_handle", "l3_cache_handle"})
            if (const Known_t cache = values.Number(key); cache)
                (isThere ? m_cachesInUse : m_cachesOfEmptySockets).insert(*cache);
        if (!isThere) return;
        Processor_t processor = {
            .name = values.Text("processor_version"),
            .manufacturer = values.Text("processor_manufacturer"),
            .family = values.Text("family"),
            .cores = values.Positive("cores"),
            .coresEnabled = values.Positive("cores_enabled"),
            .threads = values.Positive("threads"),
            .speed = values.Number("current_speed"),
            .maximumSpeed = values.Number("max_speed"),
        };
        // Counts that contradict each other are none.
        if (processor.coresEnabled > processor.cores) processor.coresEnabled.reset();
        if (processor.threads < processor.cores) processor.threads.reset();
        m_processors.CountIn(m_summary.sockets.back(), processor);
    }

    void TakeCache(uint16_t handle, const ClValues& values) {
        if (m_cachesOfEmptySockets.contains(handle) && !m_cachesInUse.contains(handle)) return;
        const Known_t level = values.Number("cache_level"), size = values.Positive("cache_size");
        if (!level || !size) return;
        std::string kind = values.Text("system_cache_type");
        if (kind == "Unified") kind.clear();
        m_caches.Count({*level, kind, *size});
    }

    void TakeSlot(const ClValues& values) {
        std::string width = values.Text("slot_data_bus_width");
        // "8x or x8" says the same twice.
        if (const size_t place = width.find(" or "); place != width.npos) width.erase(0, place + 4);
        const std::string usage = values.Text("current_usage");
        Group_t<Slot_t>& group = m_slots.Count({values.Text("slot_type"), width});
        if (usage == "In use") group.used++;
        if (usage == "Available") group.free++;
    }

    void TakeArray(uint16_t handle, const ClValues& values) {
        const bool isSystemMemory = values.Number("use").value_or(kSystemMemory) == kSystemMemory;
        if (!isSystemMemory) {
            m_otherArrays.insert(handle);
            return;
        }
        const Known_t capacity = values.Positive("capacity");
        m_isMaximumKnown = m_isMaximumKnown && capacity && *capacity <= UINT64_MAX - m_maximum;
        m_maximum += capacity.value_or(0);
        const std::string correction = values.Text("memory_error_correction");
        if (m_summary.errorCorrection.empty() && correction != "None") m_summary.errorCorrection = correction;
    }

    void TakeDevice(uint16_t handle, const ClValues& values) {
        const Known_t array = values.Number("physical_memory_array_handle");
        const std::string type = values.Text("memory_type");
        if ((array && m_otherArrays.contains(*array)) || type == "FLASH" || type == "ROM") return;
        Places_t& slots = m_summary.memorySlots;
        slots.push_back({.handle = handle, .name = values.View("device_locator"), .bank = values.View("bank_locator")});
        if (values.Has("size", FactState_t::kNone) && !values.Number("memory_size")) return;
        const Module_t module = {
            .size = values.Positive("memory_size"),
            .type = type,
            .formFactor = values.Text("form_factor"),
            .manufacturer = values.Text("manufacturer"),
            .partNumber = values.Text("part_number"),
            .speed = values.Positive("memory_speed"),
            .configuredSpeed = values.Positive("configured_speed"),
        };
        m_modules.CountIn(slots.back(), module);
    }

    // Tables from before 2.1 have no other memory.
    void TakeOldModule(uint16_t handle, const ClValues& values) {
        m_oldSlots.push_back({.handle = handle, .name = values.View("socket_designation"), .bank = {}});
        Module_t module = {};
        module.size = values.Number("installed_module_size");
        if (module.size) m_oldModules.CountIn(m_oldSlots.back(), module);
    }

    void FinishMemory() {
        const bool isOld = m_summary.memorySlots.empty();
        if (isOld) m_summary.memorySlots = std::move(m_oldSlots);
        m_summary.modules = (isOld ? m_oldModules : m_modules).Take();
        m_summary.memoryInstalled = Total(m_summary.modules, &Module_t::size);
        if (m_isMaximumKnown && m_maximum != 0 && m_maximum >= m_summary.memoryInstalled.value_or(0))
            m_summary.memoryMaximum = m_maximum;
    }

    Summary_t m_summary;
    bool m_hasType[18] = {};
    bool m_hasMotherboard = false;
    std::set<uint64_t> m_cachesInUse, m_cachesOfEmptySockets, m_otherArrays;
    uint64_t m_maximum = 0;
    Places_t m_oldSlots;
    bool m_isMaximumKnown = true;
    ClGroups<Processor_t> m_processors;
    ClGroups<Cache_t> m_caches;
    ClGroups<Module_t> m_modules, m_oldModules;
    ClGroups<Slot_t> m_slots;
};

}  // namespace

std::string WithSingleBlanks(std::string_view text) {
    std::string single;
    for (const char c : text) {
        if (c != ' ')
            single += c;
        else if (!single.empty() && single.back() != ' ')
            single += ' ';
    }
    if (single.ends_with(' ')) single.pop_back();
    return single;
}

Summary_t SummaryOf(std::span<const uint8_t> table, const FactOptions_t& options) {
    return ClCollector().Collect(table, options);
}
