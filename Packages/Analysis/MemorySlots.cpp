#include "Packages/Analysis/MemorySlots.h"

#include <algorithm>
#include <map>
#include <set>
#include <tuple>

#include "Packages/Analysis/Values.h"
#include "Packages/Format/Ascii.h"

namespace {

constexpr uint64_t kErrorUnknown = 2, kErrorNone = 3;  // codes of the standard's table
constexpr uint16_t kNoArray = 0xFFFF;
constexpr size_t kMostLocator = 256;  // what comes after so many bytes names no place

bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsUpper(char c) { return c >= 'A' && c <= 'Z'; }
bool IsLower(char c) { return c >= 'a' && c <= 'z'; }
bool IsLetter(char c) { return IsUpper(c) || IsLower(c); }

// A run of letters or of digits in a locator.
struct Word_t {
    std::string_view text;
    std::string lower;
    bool IsNumber() const { return IsDigit(text[0]); }
    bool IsOneLetter() const { return text.size() == 1 && IsLetter(text[0]); }
};

// "DIMMA" is "DIMM" and "A".
void AddWord(std::string_view text, std::vector<Word_t>& words) {
    const std::string lower = LowerCaseText(text);
    size_t end = text.size();
    for (const std::string_view prefix : {"dimm", "channel"})
        if (end == prefix.size() + 1 && lower.starts_with(prefix)) end = prefix.size();
    words.push_back({text.substr(0, end), lower.substr(0, end)});
    if (end != text.size()) words.push_back({text.substr(end), lower.substr(end)});
}

// Splits at everything else, between letters and digits, and where "Controller0ChannelADimm0" begins another word.
std::vector<Word_t> WordsOf(std::string_view locator) {
    std::vector<Word_t> words;
    for (size_t at = 0; at < locator.size();) {
        const size_t begin = at++;
        const char first = locator[begin];
        if (IsDigit(first)) {
            while (at < locator.size() && IsDigit(locator[at])) at++;
        } else if (IsLetter(first)) {
            while (at < locator.size() && IsLetter(locator[at])) {
                const bool afterLower = IsLower(locator[at - 1]);
                const bool beforeLower = at + 1 < locator.size() && IsLower(locator[at + 1]);
                if (IsUpper(locator[at]) && (afterLower || beforeLower)) break;
                at++;
            }
        } else {
            continue;
        }
        AddWord(locator.substr(begin, at - begin), words);
    }
    return words;
}

bool IsOwner(std::string_view word) {
    constexpr char kOwners[][11] = {"cpu",        "proc", "processor", "p",    "socket",
                                    "controller", "node", "board",     "card", "riser"};
    return std::ranges::find(kOwners, word, [](const auto& owner) { return std::string_view(owner); }) !=
           std::end(kOwners);
}

// "CPU0" of "CPU0_DIMM_A1".
std::string OwnerOf(const std::vector<Word_t>& words) {
    std::string owner;
    for (size_t i = 0; i + 1 < words.size(); i++) {
        if (!IsOwner(words[i].lower) || !words[i + 1].IsNumber()) continue;
        const char* const end = words[i + 1].text.data() + words[i + 1].text.size();
        const char* const begin = words[i].text.data();
        owner.append(owner.empty() ? "" : ", ").append(begin, end);
    }
    return owner;
}

// "A" of "ChannelA-DIMM0", "DIMM_A1" and "DDR5-A1".
std::string ChannelOf(const std::vector<Word_t>& words) {
    for (size_t i = 0; i + 1 < words.size(); i++) {
        const std::string_view word = words[i].lower;
        if ((word == "channel" || word == "chan" || word == "ch") &&
            (words[i + 1].IsNumber() || words[i + 1].IsOneLetter()))
            return std::string(words[i + 1].text);
    }
    for (size_t i = 0; i + 2 < words.size(); i++) {
        const size_t letter = words[i].lower == "ddr" && words[i + 1].IsNumber() ? i + 2 : i + 1;
        if ((words[i].lower == "dimm" || letter == i + 2) && letter + 1 < words.size() && words[letter].IsOneLetter() &&
            words[letter + 1].IsNumber())
            return std::string(words[letter].text);
    }
    return {};
}

std::string TextOf(const ClValues& values, std::string_view key) {
    const Value_t* value = values.Find(key);
    if (value == nullptr || value->state != FactState_t::kValue) return {};
    return std::string(WithoutBlanks(value->word.empty() ? value->string : value->word));
}

bool Is(const Value_t* value, FactState_t state) { return value != nullptr && value->state == state; }

// The value that most slots with a part have; of several, the first one.
template <class Value, class Get>
Value MostCommon(const std::vector<MemorySlot_t>& slots, Get get) {
    std::map<Value, size_t> counts;
    for (const MemorySlot_t& slot : slots)
        if (slot.size) counts[get(slot)]++;
    Value most = {};
    size_t count = 0;
    for (const MemorySlot_t& slot : slots) {
        if (!slot.size || counts[get(slot)] <= count) continue;
        most = get(slot);
        count = counts[most];
    }
    return most;
}

// An array's slots, after all of them are known.
void Compare(std::vector<MemorySlot_t>& slots) {
    using Kind_t = std::tuple<std::optional<uint64_t>, std::string, std::optional<uint64_t>, std::string>;
    const auto kind = [](const MemorySlot_t& slot) { return Kind_t{slot.size, slot.type, slot.speed, slot.part}; };
    const Kind_t most = MostCommon<Kind_t>(slots, kind);
    for (MemorySlot_t& slot : slots) {
        if (slot.state != MemorySlotState_t::kInstalled) continue;
        const Kind_t own = kind(slot);
        slot.otherSize = std::get<0>(own) != std::get<0>(most);
        slot.otherType = std::get<1>(own) != std::get<1>(most);
        slot.otherSpeed = std::get<2>(own) != std::get<2>(most);
        slot.otherPart = std::get<3>(own) != std::get<3>(most);
        if (own != most) slot.state = MemorySlotState_t::kMismatched;
    }
    std::map<std::string_view, size_t> banks;
    for (const MemorySlot_t& slot : slots) banks[slot.bank]++;
    for (MemorySlot_t& slot : slots) slot.sharesBank = banks[slot.bank] > 1 && banks[slot.bank] < slots.size();
}

class ClSlots {
  public:
    std::vector<MemoryArray_t> Collect(std::span<const uint8_t> table, const FactOptions_t& options) {
        for (const TableStructure_t& structure : ClWalk(table)) {
            const uint8_t type = structure.Type();
            if (type < 16 || (type > 18 && type != 33)) continue;
            const ClValues values(structure, options);
            if (type == 16) AddArray(structure, values);
            if (type == 17) AddSlot(structure, values);
            if (type == 18 || type == 33) AddError(structure, values);
        }
        for (Found_t& found : m_found) Judge(found);
        for (MemoryArray_t& array : m_arrays) Compare(array.slots);
        return std::move(m_arrays);
    }

  private:
    struct Found_t {
        MemorySlot_t slot;
        std::optional<uint64_t> error;
        bool isUnconfigured;
    };

    void AddArray(const TableStructure_t& structure, const ClValues& values) {
        if (!m_places.try_emplace(structure.Handle(), m_arrays.size()).second) return;
        m_arrays.push_back(
            {structure, TextOf(values, "use"), TextOf(values, "location"), values.Number("capacity"), {}});
    }

    void AddSlot(const TableStructure_t& structure, const ClValues& values) {
        MemorySlot_t slot = {};
        slot.structure = structure;
        slot.array = static_cast<uint16_t>(values.Number("physical_memory_array_handle").value_or(kNoArray));
        slot.locator = TextOf(values, "device_locator");
        slot.bank = TextOf(values, "bank_locator");
        slot.place = PlaceOfSlot(slot.locator, slot.bank);
        slot.type = TextOf(values, "memory_type");
        slot.manufacturer = TextOf(values, "manufacturer");
        slot.part = TextOf(values, "part_number");
        slot.size = values.Number("memory_size");
        const auto configured = values.Number("configured_speed");
        slot.speed = configured ? configured : values.Number("memory_speed");
        const bool isNamed = !slot.part.empty() && !slot.type.empty();
        if (slot.size && *slot.size != 0)
            slot.state = MemorySlotState_t::kInstalled;
        else if (Is(values.Find("memory_size"), FactState_t::kUnknown))
            slot.state = MemorySlotState_t::kError;
        else
            slot.state = isNamed ? MemorySlotState_t::kDisabled : MemorySlotState_t::kEmpty;
        if (configured) m_configured.insert(slot.array);
        const bool isUnconfigured = Is(values.Find("configured_memory_speed"), FactState_t::kUnknown);
        m_found.push_back({std::move(slot), values.Number("memory_error_information_handle"), isUnconfigured});
    }

    void AddError(const TableStructure_t& structure, const ClValues& values) {
        const auto error = values.Number("error_type");
        if (error && *error != kErrorUnknown && *error != kErrorNone) m_errors.insert(structure.Handle());
    }

    // Firmware that configures no speed at all says nothing by it.
    void Judge(Found_t& found) {
        MemorySlot_t& slot = found.slot;
        if (slot.state == MemorySlotState_t::kInstalled && found.isUnconfigured && m_configured.contains(slot.array))
            slot.state = MemorySlotState_t::kDisabled;
        if (found.error && m_errors.contains(*found.error)) slot.state = MemorySlotState_t::kError;
        auto place = m_places.find(slot.array);
        if (place == m_places.end()) {
            place = m_places.find(kLost);
            if (place == m_places.end()) {
                place = m_places.emplace(kLost, m_arrays.size()).first;
                m_arrays.push_back({slot.structure, {}, {}, {}, {}});
            }
        }
        m_arrays[place->second].slots.push_back(std::move(slot));
    }

    static constexpr uint32_t kLost = 0x10000;  // no handle

    std::vector<MemoryArray_t> m_arrays;
    std::map<uint32_t, size_t> m_places;  // by handle
    std::vector<Found_t> m_found;
    std::set<uint64_t> m_errors, m_configured;
};

}  // namespace

SlotPlace_t PlaceOfSlot(std::string_view locator, std::string_view bank) {
    const std::vector<Word_t> own = WordsOf(locator.substr(0, kMostLocator)),
                              other = WordsOf(bank.substr(0, kMostLocator));
    SlotPlace_t place;
    // Both locators may name the processor in their own way; what comes with the channel counts.
    place.channel = ChannelOf(other);
    const bool isOther = !place.channel.empty();
    if (!isOther) place.channel = ChannelOf(own);
    place.owner = OwnerOf(isOther ? other : own);
    if (place.owner.empty()) place.owner = OwnerOf(isOther ? own : other);
    return place;
}

uint64_t MemoryArray_t::Installed() const {
    uint64_t sum = 0;
    for (const MemorySlot_t& slot : slots) sum += slot.size.value_or(0);
    return sum;
}

std::vector<MemoryArray_t> MemoryArraysOf(std::span<const uint8_t> table, const FactOptions_t& options) {
    return ClSlots().Collect(table, options);
}
