#include "Packages/Analysis/RedactMachine.h"

#include <algorithm>
#include <numeric>

namespace {

// Of boot by iSCSI and by NVMe over a network, of memory modules, and of firmware's own measurements.
constexpr char kNamingTables[][5] = {"IBFT", "iBFT", "NBFT", "NFIT", "PHAT"};

// Whether a table is as long as it says, with bytes that sum up to 0.
bool HasChecksum(const std::vector<uint8_t>& bytes) {
    constexpr size_t kHeaderSize = 36;
    if (bytes.size() < kHeaderSize) return false;
    const uint32_t length =
        uint32_t{bytes[4]} | uint32_t{bytes[5]} << 8 | uint32_t{bytes[6]} << 16 | uint32_t{bytes[7]} << 24;
    return length == bytes.size() && (std::accumulate(bytes.begin(), bytes.end(), 0u) & 0xFF) == 0;
}

void FixChecksum(std::vector<uint8_t>& bytes) {
    constexpr size_t kChecksum = 9;
    bytes[kChecksum] = 0;
    bytes[kChecksum] = static_cast<uint8_t>(0 - std::accumulate(bytes.begin(), bytes.end(), 0u));
}

bool IsHexDigit(uint8_t c) {
    return (c >= '0' && c <= '9') || (LowerCase(static_cast<char>(c)) >= 'a' && LowerCase(static_cast<char>(c)) <= 'f');
}

// A MAC address as "_AUXMAC_#001122AABBCC#".
void ReplacePassedAddresses(std::vector<uint8_t>& bytes, ClPseudonyms& pseudonyms) {
    constexpr std::string_view kMark = "MAC_#";
    constexpr size_t kDigits = 12;
    const auto digitsOf = [](std::span<const uint8_t> text, MacAddress_t* address) {
        for (size_t i = 0; i < kDigits; i++) {
            if (!IsHexDigit(text[i])) return false;
            const char lower = LowerCase(static_cast<char>(text[i]));
            const int digit = lower <= '9' ? lower - '0' : lower - 'a' + 10;
            (*address)[i / 2] = static_cast<uint8_t>((*address)[i / 2] << 4 | digit);
        }
        return true;
    };
    for (auto from = bytes.begin();;) {
        const auto mark = std::search(from, bytes.end(), kMark.begin(), kMark.end());
        if (static_cast<size_t>(bytes.end() - mark) < kMark.size() + kDigits) return;
        from = mark + static_cast<std::ptrdiff_t>(kMark.size());
        MacAddress_t address = {};
        const std::span<uint8_t> text(&*from, kDigits);
        if (!digitsOf(text, &address)) continue;
        const std::string before(text.begin(), text.end());
        std::string pseudonym = HexText(pseudonyms.MacAddress(address));
        TakeLetterCase(before, pseudonym);
        std::ranges::copy(pseudonym, text.begin());
    }
}

// Clears the processor's serial number, which few have.
void ClearSerialNumbers(CpuidLeaves_t& leaves) {
    constexpr uint32_t kSerialNumber = 3;
    for (CpuidLeaf_t& row : leaves)
        if (row.leaf == kSerialNumber) row = {row.leaf, row.subleaf, 0, 0, 0, 0};
}

}  // namespace

bool IsNamingTable(std::string_view name) {
    return std::ranges::any_of(kNamingTables, [name](const char* each) { return name == each; });
}

bool RedactMachine(std::span<uint8_t> table, const RedactOptions_t& options, const Hmac_t& hmac,
                   std::vector<AcpiTable_t>& tables, std::vector<PciFunction_t>& functions,
                   std::vector<CpuidLeaves_t>& processors) {
    constexpr size_t kHeaderSize = 64, kSerialNumberSize = 8;
    constexpr uint32_t kSerialNumber = 3;
    ClPseudonyms pseudonyms(hmac);
    std::vector<std::span<uint8_t>> others;
    std::vector<bool> hadChecksum;
    for (AcpiTable_t& each : tables) {
        hadChecksum.push_back(HasChecksum(each.bytes));
        ReplacePassedAddresses(each.bytes, pseudonyms);
        others.emplace_back(each.bytes);
    }
    for (PciFunction_t& each : functions) {
        const std::span<uint8_t> bytes(each.bytes);
        ForEachExtendedCapability(bytes, [&](size_t offset, uint32_t number) {
            if (number == kSerialNumber && offset + 4 + kSerialNumberSize <= bytes.size())
                pseudonyms.Bytes(bytes.subspan(offset + 4, kSerialNumberSize));
        });
        others.push_back(bytes.subspan(kHeaderSize));
    }
    for (CpuidLeaves_t& each : processors) ClearSerialNumbers(each);
    if (!RedactTable(table, options, hmac, others) || pseudonyms.HasFailed()) return false;
    for (size_t place = 0; place < tables.size(); place++)
        if (hadChecksum[place]) FixChecksum(tables[place].bytes);
    return true;
}
