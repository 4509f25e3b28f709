// The text forms of a record: what a parser takes is written and read again, and must be the same.
// Input: the form (1 byte), the text.
#include "Fuzz/Fuzz.h"
#include "Packages/Format/AcpiDat.h"
#include "Packages/Format/CpuidDump.h"
#include "Packages/Format/MachineJson.h"
#include "Packages/Format/MsrDump.h"
#include "Packages/Format/PciDump.h"

template <class Item, class Write, class Parse>
static void GoRound(std::string_view text, const Write& write, const Parse& parse) {
    std::vector<Item> items, again;
    if (!parse(text, &items).empty()) return;
    Require(parse(write(items), &again).empty());
    Require(again == items);
}

// Texts that aren't UTF-8 change when they are written first.
static void GoRoundDescription(std::string_view text) {
    MachineFacts_t facts;
    if (!ParseMachineJson(text, &facts).empty()) return;
    const std::string written = WriteMachineJson(facts);
    Require(ParseMachineJson(written, &facts).empty());
    Require(WriteMachineJson(facts) == written);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    ClInput input(data, size);
    const auto form = input.Take<uint8_t>();
    const std::vector<uint8_t> bytes = input.Rest();
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    switch (form % 5) {
        case 0: GoRound<AcpiTable_t>(text, WriteAcpiDat, ParseAcpiDat); break;
        case 1: GoRound<PciFunction_t>(text, WritePciDump, ParsePciDump); break;
        case 2: GoRound<CpuidLeaves_t>(text, WriteCpuidDump, ParseCpuidDump); break;
        case 4: GoRoundDescription(text); break;
        default: GoRound<RecordedMsr_t>(text, WriteMsrDump, ParseMsrDump); break;
    }
    return 0;
}
