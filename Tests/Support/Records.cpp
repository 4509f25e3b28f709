#include "Tests/Support/Records.h"

#include <gtest/gtest.h>

#include <array>
#include <filesystem>

#include "Packages/Format/TableFile.h"
#include "Packages/Format/TextLines.h"
#include "Packages/OS/Hmac.h"
#include "Tests/Support/Program.h"
#include "Tests/Support/Structures.h"

namespace {

std::vector<uint8_t> Repeated(size_t size, uint8_t first) {
    std::vector<uint8_t> bytes(size);
    for (uint8_t& byte : bytes) byte = first++;
    return bytes;
}

CpuidLeaves_t Processor(uint32_t apic) {
    return {
        {0x00000000, 0, 4,       0x756E6547, 0x6C65746E, 0x49656E69},
        {0x00000001, 0, 0x506E3, apic << 24, 0,          0x1F      },
        {0x00000004, 0, 0,       0,          0,          7         },
        {0x00000004, 1, 0,       0,          1,          7         },
    };
}

}  // namespace

TestRecord_t::TestRecord_t()
    : table(
          TableOf({ClStructureBuilder(3, 0x15).Bytes(4, {1, 3}).Strings({"Nord"}),
                   ClStructureBuilder(1, 0x1B, 0x20).Bytes(4, {1, 2, 0, 3}).Strings({"Maker", "Model", "SN-4711"})})) {
    hardware.facts.system = "Debian \xC3\xA9 \"12\"";
    hardware.facts.kernel = "Linux 6.1";
    hardware.facts.host = "secret-host";
    hardware.facts.firmware = "UEFI";
    hardware.facts.processors = 2;
    hardware.facts.memory = 1u << 30;
    hardware.facts.versions = {0x30001, 0x30002, 0x30003, 0x30004};
    hardware.facts.segments = {0};
    hardware.facts.hasExtendedSpace = true;
    hardware.facts.leftOut = {"MSDM"};
    hardware.facts.unread = {
        {"ACPI table MSDM", "it holds a licence key"}
    };
    hardware.tables = {
        {"FACP", Repeated(44, 1)},
        {"SSDT", Repeated(37, 2)},
        {"SSDT", Repeated(40, 3)}
    };
    hardware.functions = {
        {0x00000000, Repeated(256, 0x10)},
        {0x00000300, Repeated(64,  0x20)}
    };
    hardware.processors = {Processor(0), Processor(1)};
    hardware.registers = {
        {0x1B, 0, 0xFEE00900  },
        {0x1B, 1, std::nullopt}
    };
}

std::string WriteRecord(const std::string& suffix, TestRecord_t record) {
    const std::string name = "record-" + suffix, folder = testing::TempDir() + name;
    std::filesystem::remove_all(folder);
    std::filesystem::create_directory(folder);
    const auto bytes = [](const std::string& text) { return std::vector<uint8_t>(text.begin(), text.end()); };
    const RecordedHardware_t& hardware = record.hardware;
    const std::vector<uint8_t> files[] = {
        MakeDump(record.table, 2, 7), bytes(WriteAcpiDat(hardware.tables)), bytes(WritePciDump(hardware.functions)),
        bytes(WriteCpuidDump(hardware.processors)), bytes(WriteMsrDump(hardware.registers))};
    const bool isThere[] = {true, !hardware.tables.empty(), !hardware.functions.empty(), !hardware.processors.empty(),
                            !hardware.registers.empty()};
    for (size_t number = 0; number < kRecordFileCount; number++) {
        if (!isThere[number]) continue;
        std::array<uint8_t, 32> hash;
        EXPECT_TRUE(os_Sha256(files[number], hash));
        RecordedFile_t file = {kRecordFiles[number], {}};
        for (const uint8_t byte : hash) AppendHex(file.sha256, byte, 2);
        record.hardware.facts.files.push_back(file);
        WriteFile(name + "/" + file.name, files[number]);
    }
    WriteFile(name + "/" + kMachineJson, bytes(WriteMachineJson(record.hardware.facts)));
    return folder;
}
