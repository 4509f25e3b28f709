#include "Packages/Analysis/Redact.h"

#include <algorithm>
#include <bitset>
#include <cstring>
#include <set>

#include "Packages/Analysis/Seeker.h"
#include "Packages/Standard/Facts.h"

namespace {

constexpr uint8_t kInactive = 126, kFirmwareInventory = 45;
// Of host interfaces, as the standard and the ones that it refers to have them.
constexpr uint8_t kNetworkInterface = 0x40, kRedfish = 0x04, kOemDefined = 0xF0;
constexpr uint8_t kUsbDevice = 2, kUsbDevice2 = 4, kPciDevice2 = 5, kFirstOemDevice = 0x80;

constexpr RedactedFact_t kFacts[] = {
#define REDACTED(type, key, how) {type, key, Redaction_t::how},
#include "Packages/Analysis/Redacted.inc"
#undef REDACTED
};

class ClRedaction {
  public:
    ClRedaction(std::span<uint8_t> table, const RedactOptions_t& options, const Hmac_t& hmac)
        : m_table(table), m_options(options), m_pseudonyms(hmac), m_places(table.size(), Place_t::kFree) {
        for (const RedactedFact_t& fact : kFacts) m_hasFacts.set(fact.type);
    }

    // Other bytes of the machine get the pseudonyms of the table's values too.
    bool Run(std::span<const std::span<uint8_t>> others) {
        uint32_t end = 0;
        for (const TableStructure_t& structure : ClWalk(m_table)) {
            end = OffsetOf(structure.data) + structure.size;
            Mark(structure);
            if (structure.Type() != kFirmwareInventory) FindForms({structure.data, structure.size}, kHeaderSize);
            if (!IsStandardType(structure.Type()) || structure.Type() >= kInactive)
                BlankStructure(structure);
            else if (m_hasFacts[structure.Type()])
                ReplaceFacts(structure), ReplaceCutString(structure);
            if (m_pseudonyms.HasFailed()) return false;
        }
        // These bytes belong to no structure.
        if (!m_options.keepsVendor) std::ranges::fill(m_table.subspan(end), uint8_t{0});
        for (const std::span<uint8_t>& other : others) FindForms(other, 0);
        AddForms();
        SeekAll({m_table, std::move(m_places)});
        for (const std::span<uint8_t>& other : others)
            SeekAll({other, std::vector<Place_t>(other.size(), Place_t::kFree)});
        return !m_pseudonyms.HasFailed();
    }

  private:
    enum class Place_t : uint8_t { kFree, kString, kDone };
    // Bytes in which values are sought, and what each of them is.
    struct Ground_t {
        std::span<uint8_t> bytes;
        std::vector<Place_t> places;
    };

    uint32_t OffsetOf(const void* byte) const {
        return static_cast<uint32_t>(static_cast<const uint8_t*>(byte) - m_table.data());
    }

    void SetPlaces(uint32_t offset, size_t size, Place_t place) { std::fill_n(m_places.begin() + offset, size, place); }

    // Headers stay as they are.
    void Mark(const TableStructure_t& structure) {
        const uint32_t begin = OffsetOf(structure.data);
        const uint32_t strings = std::min<uint32_t>(structure.size, structure.Length());
        SetPlaces(begin + strings, structure.size - strings, Place_t::kString);
        SetPlaces(begin, std::min(kHeaderSize, structure.size), Place_t::kDone);
    }

    // Finds MAC addresses and UUIDs by their form, in any text.
    void FindForms(std::span<const uint8_t> bytes, size_t begin) {
        const std::string_view all(reinterpret_cast<const char*>(bytes.data()), bytes.size());
        for (size_t i = begin; i < all.size(); i++) {
            const bool mayBeAddress = i + 2 < all.size() && (i == 0 || all[i - 1] != all[i + 2]);
            const bool mayBeUuid = i + 8 < all.size() && all[i + 8] == '-';
            MacAddress_t address;
            Uuid_t uuid;
            if (mayBeAddress && BeginsWithMacAddress(all.substr(i), &address)) AddMacAddress(address);
            if (mayBeUuid && BeginsWithUuid(all.substr(i), &uuid)) AddUuid(uuid);
        }
    }

    void AddMacAddress(const MacAddress_t& address) {
        if (!IsSame(address)) m_addresses.insert(address);
    }

    void AddUuid(const Uuid_t& uuid) {
        if (!IsSame(uuid)) m_uuids.insert(std::min(uuid, Swapped(uuid)));
    }

    static bool IsSame(std::span<const uint8_t> bytes) {
        return std::ranges::all_of(bytes, [&](uint8_t byte) { return byte == bytes[0]; });
    }

    // Bytes of almost nothing but zeros would be found in other fields.
    static bool IsDistinct(std::span<const uint8_t> bytes) {
        constexpr size_t kLeastValues = 3;
        return std::set<uint8_t>(bytes.begin(), bytes.end()).size() >= kLeastValues;
    }

    // Values that are texts themselves come before these.
    void AddForms() {
        const auto text = [](std::span<const uint8_t> bytes) {
            return std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size());
        };
        for (const MacAddress_t& address : m_addresses) {
            const MacAddress_t pseudonym = m_pseudonyms.MacAddress(address);
            for (const char* between : {":", "-", ""})
                m_texts.Add(HexText(address, between), HexText(pseudonym, between));
            if (IsDistinct(address)) m_bytes.Add(text(address), text(pseudonym));
        }
        for (const Uuid_t& first : m_uuids) {
            for (const Uuid_t& uuid : {first, Swapped(first)}) {
                const Uuid_t pseudonym = m_pseudonyms.Uuid(uuid);
                m_texts.Add(UuidText(uuid), UuidText(pseudonym));
                m_texts.Add(HexText(uuid), HexText(pseudonym));
                if (IsDistinct(uuid)) m_bytes.Add(text(uuid), text(pseudonym));
            }
        }
        m_texts.Prepare();
        m_bytes.Prepare();
    }

    // Replaces a text of the table as a whole, but for blanks around it, which are all characters up to the blank.
    void ReplaceText(uint32_t offset, size_t size, bool isSought) {
        const auto isBlank = [this](size_t place) { return m_table[place] <= ' '; };
        size_t end = offset + size, begin = offset;
        while (end > begin && isBlank(end - 1)) end--;
        while (begin < end && isBlank(begin)) begin++;
        if (begin == end || m_places[begin] == Place_t::kDone) return;
        const std::span<char> text(reinterpret_cast<char*>(&m_table[begin]), end - begin);
        const std::string before(text.begin(), text.end());
        m_pseudonyms.Text(text);
        SetPlaces(offset, size, Place_t::kDone);
        if (isSought) AddText(before, {text.data(), text.size()});
    }

    void AddText(std::string_view text, std::string_view pseudonym) {
        const auto lower = [](std::string_view any) {
            std::string made(any);
            std::ranges::transform(made, made.begin(), LowerCase);
            return made;
        };
        m_texts.Add(lower(text), lower(pseudonym));
    }

    void ReplaceBytes(uint32_t offset, size_t size) {
        m_pseudonyms.Bytes(m_table.subspan(offset, size));
        SetPlaces(offset, size, Place_t::kDone);
    }

    void ReplaceMacAddress(uint32_t offset) {
        MacAddress_t address;
        std::copy_n(m_table.begin() + offset, address.size(), address.begin());
        if (IsSame(address)) return;
        AddMacAddress(address);
        std::ranges::copy(m_pseudonyms.MacAddress(address), m_table.begin() + offset);
        SetPlaces(offset, address.size(), Place_t::kDone);
    }

    void ReplaceUuid(uint32_t offset) {
        Uuid_t uuid;
        std::copy_n(m_table.begin() + offset, uuid.size(), uuid.begin());
        if (IsSame(uuid)) return;
        AddUuid(uuid);
        std::ranges::copy(m_pseudonyms.Uuid(uuid), m_table.begin() + offset);
        SetPlaces(offset, uuid.size(), Place_t::kDone);
    }

    // Nobody knows what structures of a vendor have in them. They keep their form: equal bytes and strings stay equal.
    void BlankStructure(const TableStructure_t& structure) {
        // With a length below a header's, a structure may be shorter than one.
        if (m_options.keepsVendor || structure.size <= kHeaderSize) return;
        const uint32_t begin = OffsetOf(structure.data), end = begin + structure.size;
        const uint32_t strings = begin + std::clamp<uint32_t>(structure.Length(), kHeaderSize, structure.size);
        ReplaceBytes(begin + kHeaderSize, strings - begin - kHeaderSize);
        for (uint32_t place = strings; place < end;) {
            const auto* const nul = static_cast<const uint8_t*>(std::memchr(&m_table[place], 0, end - place));
            const uint32_t next = nul != nullptr ? OffsetOf(nul) : end;
            const std::string_view text(reinterpret_cast<const char*>(&m_table[place]), next - place);
            if (!IsFiller(text)) ReplaceText(place, text.size(), false);
            place = next + 1;
        }
    }

    void ReplaceFacts(const TableStructure_t& structure) {
        m_facts.Begin(structure, {.version = m_options.version});
        while (m_facts.Next()) {
            const Fact_t& fact = *m_facts;
            if (!fact.IsValue()) continue;
            for (const RedactedFact_t& row : kFacts)
                if (row.type == structure.Type() && fact.Key() == row.key) ReplaceFact(row.how, structure, fact);
        }
    }

    // Of a string that the table's end cuts off, no fact tells what it is.
    void ReplaceCutString(const TableStructure_t& structure) {
        const std::string_view all(reinterpret_cast<const char*>(structure.data), structure.size);
        const size_t begin = std::max<size_t>({all.rfind('\0') + 1, structure.Length(), kHeaderSize});
        if (begin >= all.size() || IsFiller(all.substr(begin))) return;
        ReplaceText(OffsetOf(structure.data) + static_cast<uint32_t>(begin), all.size() - begin, false);
    }

    void ReplaceFact(Redaction_t how, const TableStructure_t& structure, const Fact_t& fact) {
        const uint32_t offset = OffsetOf(structure.data) + fact.offset;
        switch (how) {
            case Redaction_t::kText: ReplaceText(OffsetOf(fact.string.data()), fact.string.size(), true); break;
            case Redaction_t::kUuid: ReplaceUuid(offset); break;
            case Redaction_t::kNumber: ReplaceBytes(offset, fact.size); break;
            case Redaction_t::kInterface: ReplaceInterface(structure.data[kHeaderSize], offset, fact.size); break;
            case Redaction_t::kProtocol:
                // The type and the length come before the data.
                ReplaceProtocol(m_table[offset - 2], offset, fact.size);
                break;
        }
    }

    void ReplaceInterface(uint8_t interface, uint32_t offset, uint32_t size) {
        if (interface == kOemDefined) return ReplaceBytes(offset, size);
        if (interface != kNetworkInterface || size == 0) return;
        switch (const uint8_t device = m_table[offset]) {
            case kUsbDevice: {
                // Vendor and product, and a descriptor with the serial number: length, type, UTF-16.
                if (size < 7) break;
                const uint32_t length = std::min<uint32_t>(m_table[offset + 5], size - 5);
                if (length > 2) ReplaceWideText(offset + 7, length - 2);
                break;
            }
            case kUsbDevice2:
                if (size >= 13) ReplaceString(m_table[offset + 6]), ReplaceMacAddress(offset + 7);
                break;
            case kPciDevice2:
                if (size >= 16) ReplaceMacAddress(offset + 10);
                break;
            default:
                if (device >= kFirstOemDevice) ReplaceBytes(offset + 1, size - 1);
                break;
        }
    }

    // A string of the structure whose facts are read.
    void ReplaceString(uint32_t number) {
        if (number == 0 || number > m_facts.Strings().Count()) return;
        const std::string_view text = m_facts.Strings().Get(number);
        if (!IsFiller(text)) ReplaceText(OffsetOf(text.data()), text.size(), true);
    }

    // A text in little-endian UTF-16. Only its low bytes are replaced.
    void ReplaceWideText(uint32_t offset, uint32_t size) {
        std::string before;
        for (uint32_t i = 0; i + 1 < size; i += 2) before += static_cast<char>(m_table[offset + i]);
        std::string text = before;
        if (IsFiller(text)) return;
        m_pseudonyms.Text(text);
        for (uint32_t i = 0; i < text.size(); i++) m_table[offset + 2 * i] = static_cast<uint8_t>(text[i]);
        SetPlaces(offset, size, Place_t::kDone);
        AddText(before, text);
    }

    void ReplaceProtocol(uint8_t protocol, uint32_t offset, uint32_t size) {
        constexpr uint32_t kHostAddress = 17, kServiceAddress = 51, kHostName = 90;
        if (protocol == kOemDefined) return ReplaceBytes(offset, size);
        if (protocol != kRedfish || size <= kHostName) return;
        ReplaceUuid(offset);
        // The address comes after a byte with its format, and its mask after it.
        for (const uint32_t address : {kHostAddress, kServiceAddress}) {
            constexpr uint8_t kIPv4 = 1;
            ReplaceBytes(offset + address + 1, m_table[offset + address] == kIPv4 ? 4 : 16);
        }
        const uint32_t length = std::min<uint32_t>(m_table[offset + kHostName], size - kHostName - 1);
        const std::string_view name(reinterpret_cast<const char*>(&m_table[offset + kHostName]) + 1, length);
        if (!IsFiller(name)) ReplaceText(offset + kHostName + 1, length, true);
    }

    void SeekAll(Ground_t ground) const {
        Seek(m_texts, 1, true, ground);
        Seek(m_texts, 2, true, ground);  // UTF-16 in either byte order
        Seek(m_bytes, 1, false, ground);
    }

    // Replaces known values wherever they are. The bytes of a text are `step` bytes apart, with zeros between them.
    static void Seek(const ClSeeker& seeker, size_t step, bool isText, Ground_t& ground) {
        if (seeker.IsEmpty()) return;
        std::string bytes;
        for (size_t begin = 0; begin + (ClSeeker::kLeast - 1) * step < ground.bytes.size(); begin++) {
            if (isText && ground.bytes[begin] == 0) continue;
            if (!Take(ground, begin, step, isText, ClSeeker::kLeast, &bytes)) continue;
            uint64_t first = 0;
            for (const char c : bytes) first = first << 8 | static_cast<uint8_t>(c);
            if (!seeker.MayBegin(first)) continue;
            Take(ground, begin, step, isText, ClSeeker::kMost, &bytes);
            if (const std::string_view found = seeker.Find(bytes); !found.empty())
                Overwrite(ground, begin, step, isText, std::string(found));
        }
    }

    // Takes as many bytes as there are, in lower case if they are text. False if there are fewer than `most`.
    static bool Take(const Ground_t& ground, size_t begin, size_t step, bool isText, size_t most, std::string* bytes) {
        bytes->clear();
        for (size_t place = begin; bytes->size() < most && place < ground.bytes.size(); place += step) {
            if (step == 2 && place != begin && ground.bytes[place - 1] != 0) return false;
            const auto c = static_cast<char>(ground.bytes[place]);
            if (isText && c == '\0') return false;
            bytes->push_back(isText ? LowerCase(c) : c);
        }
        return bytes->size() == most;
    }

    static void Overwrite(Ground_t& ground, size_t begin, size_t step, bool isText, std::string pseudonym) {
        constexpr uint8_t kDel = 0x7F;
        if (isText) {
            std::string before;
            for (size_t i = 0; i < pseudonym.size(); i++) before += static_cast<char>(ground.bytes[begin + i * step]);
            TakeLetterCase(before, pseudonym);
        }
        for (size_t i = 0; i < pseudonym.size(); i++) {
            uint8_t& byte = ground.bytes[begin + i * step];
            const Place_t place = ground.places[begin + i * step];
            if (place == Place_t::kDone) continue;
            const auto next = static_cast<uint8_t>(pseudonym[i]);
            // Strings keep their ends and their control bytes, and get no others.
            if (place == Place_t::kFree || isText)
                byte = next;
            else if (byte > ' ' && byte != kDel)
                byte = next | 0x80;
        }
    }

    const std::span<uint8_t> m_table;
    const RedactOptions_t& m_options;
    ClPseudonyms m_pseudonyms;
    std::vector<Place_t> m_places;  // of each byte of the table
    std::bitset<256> m_hasFacts;
    ClFacts m_facts;
    ClSeeker m_texts, m_bytes;
    std::set<MacAddress_t> m_addresses;
    std::set<Uuid_t> m_uuids;  // each in the lower one of its byte orders
};

}  // namespace

bool RedactTable(std::span<uint8_t> table, const RedactOptions_t& options, const Hmac_t& hmac,
                 std::span<const std::span<uint8_t>> others) {
    return ClRedaction(table, options, hmac).Run(others);
}

std::span<const RedactedFact_t> RedactedFacts() { return kFacts; }

std::string_view WhatIsReplaced(Redaction_t how) {
    switch (how) {
        case Redaction_t::kText: return "the text";
        case Redaction_t::kUuid: return "the UUID";
        case Redaction_t::kNumber: return "the number";
        case Redaction_t::kInterface:
            return "MAC address and serial number of a network interface; all data of a vendor";
        case Redaction_t::kProtocol: return "UUID, IP addresses and host name of a service; all data of a vendor";
    }
    return "";
}
