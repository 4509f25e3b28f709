// The text forms of a record: what a parser takes is written and read again, and must be the same. What it says is held
// against a table. The tables that describe processors are also read as bytes.
// Input: the form (1 byte), the text; of the description, after a NUL a table; of the tables of processors, instead of
// a text, the size of MADT (1 byte), MADT and PPTT without their heads.
#include "Fuzz/Fuzz.h"
#include "Packages/Analysis/AcpiProcessors.h"
#include "Packages/Analysis/Hardware.h"
#include "Packages/Format/AcpiDat.h"
#include "Packages/Format/CpuidDump.h"
#include "Packages/Format/MachineJson.h"
#include "Packages/Format/MsrDump.h"
#include "Packages/Format/PciDump.h"
#include "Packages/Sample/Sample.h"

template <class Item, class Write, class Parse>
static std::vector<Item> GoRound(std::string_view text, const Write& write, const Parse& parse) {
    std::vector<Item> items, again;
    if (!parse(text, &items).empty()) return {};
    Require(parse(write(items), &again).empty());
    Require(again == items);
    return items;
}

static void Verify(const HardwareFacts_t& facts, std::span<const uint8_t> table = SampleTable()) {
    VerifyTable(table, 0x0309, facts, [&](const Verification_t& each) {
        Require(!each.claim.empty() && !each.hardware.empty() && each.offset < table.size());
    });
}

// Texts that aren't UTF-8 change when they are written first.
static void GoRoundDescription(std::string_view text) {
    MachineFacts_t facts;
    const std::string_view json = text.substr(0, text.find('\0'));
    if (!ParseMachineJson(json, &facts).empty()) return;
    const std::string written = WriteMachineJson(facts);
    Require(ParseMachineJson(written, &facts).empty());
    Require(WriteMachineJson(facts) == written);
    text.remove_prefix(std::min(json.size() + 1, text.size()));
    Verify(HardwareFactsOf(facts, {}, {}, {}), {reinterpret_cast<const uint8_t*>(text.data()), text.size()});
}

static void ReadProcessors(std::span<const uint8_t> bytes) {
    if (bytes.empty()) return;
    const size_t size = std::min<size_t>(bytes[0], bytes.size() - 1);
    std::vector<AcpiTable_t> tables = {
        {"APIC", std::vector<uint8_t>(kAcpiHead + 8, 2)},
        {"PPTT", std::vector<uint8_t>(kAcpiHead,     2)}
    };
    const auto append = [&tables](size_t table, std::span<const uint8_t> rest) {
        tables[table].bytes.insert(tables[table].bytes.end(), rest.begin(), rest.end());
    };
    append(0, bytes.subspan(1, size));
    append(1, bytes.subspan(1 + size));
    const HardwareFacts_t facts = HardwareFactsOf({}, {}, tables, {});
    Verify(facts);
    if (!facts.isArm64) return;
    for (const std::optional<uint64_t> count : {facts.packages, facts.cores})
        Require(!count || (*count >= 1 && *count <= facts.enabled));
    for (const HardwareFacts_t::Cache_t& cache : facts.caches)
        Require(cache.level >= 1 && cache.level <= 8 && cache.size != 0 && cache.count != 0);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    ClInput input(data, size);
    const auto form = input.Take<uint8_t>();
    const std::vector<uint8_t> bytes = input.Rest();
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    MachineFacts_t machine;
    machine.segments = {0};
    switch (form % 6) {
        case 0: Verify(HardwareFactsOf(machine, {}, GoRound<AcpiTable_t>(text, WriteAcpiDat, ParseAcpiDat), {})); break;
        case 1:
            Verify(HardwareFactsOf(machine, {}, {}, GoRound<PciFunction_t>(text, WritePciDump, ParsePciDump)));
            break;
        case 2: {
            const auto processors = GoRound<CpuidLeaves_t>(text, WriteCpuidDump, ParseCpuidDump);
            machine.processors = processors.size();
            Verify(HardwareFactsOf(machine, processors, {}, {}));
            break;
        }
        case 4: GoRoundDescription(text); break;
        case 5: ReadProcessors(bytes); break;
        default: GoRound<RecordedMsr_t>(text, WriteMsrDump, ParseMsrDump); break;
    }
    return 0;
}
