// quorlin record and --replay, on recorded machines, so that they run on every system.
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>

#include "Packages/FERROXExternal/StructureStore/Record.h"
#include "Packages/Format/TableFile.h"
#include "Tests/Support/Program.h"
#include "Tests/Support/Records.h"

namespace {

namespace fs = std::filesystem;

// A path in the test's folder at which nothing is.
std::string NewFolder(const std::string& name) {
    const std::string path = testing::TempDir() + "record-" + name;
    fs::remove_all(path);
    return path;
}

bool Has(const std::string& text, const std::string& part) { return text.find(part) != text.npos; }

size_t CountEntries() {
    return static_cast<size_t>(std::distance(fs::directory_iterator(testing::TempDir()), fs::directory_iterator()));
}

// An ACPI table with a header and a checksum that fits.
std::vector<uint8_t> AcpiTable(const std::string& body) {
    const std::string text = std::string(36, '\0') + body;
    std::vector<uint8_t> bytes(text.begin(), text.end());
    bytes[4] = static_cast<uint8_t>(bytes.size());
    uint8_t sum = 0;
    for (const uint8_t byte : bytes) sum = static_cast<uint8_t>(sum + byte);
    bytes[9] = static_cast<uint8_t>(0 - sum);
    return bytes;
}

// A machine whose names and numbers are in every file.
TestRecord_t NamedMachine() {
    TestRecord_t record;
    record.hardware.tables = {
        {"SSDT", AcpiTable("_AUXMAC_#0A1B2C3D4E5F# SN-4711 02:11:22:33:44:55 ")},
        {"MSDM", AcpiTable("AAAAA-BBBBB")                                      },
        {"IBFT", AcpiTable("iqn.initiator")                                    }
    };
    std::vector<uint8_t> map(60), space(4096);  // the map has one segment with all its buses
    map[4] = 60;
    map[55] = 0xFF;
    record.hardware.tables.push_back({"MCFG", map});
    std::memcpy(&space[0x100], "\x03\0\x01\0SERIALNO", 12);
    record.hardware.functions = {
        {0, space}
    };
    CpuidLeaves_t& leaves = record.hardware.processors[0];
    leaves.insert(leaves.begin() + 2, {3, 0, 0, 0, 0x5E41A1, 0x5E41A2});
    record.hardware.facts.leftOut.clear();
    record.hardware.facts.unread.clear();
    return record;
}

TEST(Record, OfAReplayIsTheSame) {
    const std::string first = WriteRecord("first"), second = NewFolder("second");
    const ProgramRun_t run = RunQuorlin("record " + second + " --replay " + first);
    EXPECT_EQ(run.exitCode, 0) << run.errors;
    EXPECT_EQ(run.output, "");
    for (const char* file : {"dmi.bin", "acpi.dat", "pci.txt", "cpuid.txt", "msr.txt"})
        EXPECT_EQ(ReadWholeFile(second + "/" + file), ReadWholeFile(first + "/" + file)) << file;
    Record_t before, after;
    std::string error;
    ASSERT_EQ(ReadRecord(first, &before, &error), kSuccess) << error;
    ASSERT_EQ(ReadRecord(second, &after, &error), kSuccess) << error;
    EXPECT_EQ(after.hardware.facts, before.hardware.facts);
    // No second folder takes the place of another, and nothing else is left.
    const size_t entries = CountEntries();
    const ProgramRun_t again = RunQuorlin("record " + second + " --replay " + first);
    EXPECT_EQ(again.exitCode, 1);
    EXPECT_TRUE(Has(again.errors, "exists already")) << again.errors;
    EXPECT_EQ(RunQuorlin("record " + testing::TempDir() + "none/below --replay " + first).exitCode, 1);
    EXPECT_EQ(CountEntries(), entries);
}

TEST(Record, RedactedLeavesNoName) {
    const std::string named = WriteRecord("named", NamedMachine()), folder = NewFolder("redacted");
    const std::string key = WriteFile("record.key", std::vector<uint8_t>(32, 7));
    const ProgramRun_t run = RunQuorlin("record " + folder + " --redact --key " + key + " --replay " + named);
    ASSERT_EQ(run.exitCode, 0) << run.errors;
    for (const auto& entry : fs::directory_iterator(folder)) {
        const std::string text = ReadWholeFile(entry.path().string());
        for (const char* name : {"SN-4711", "secret-host", "AAAAA-BBBBB", "iqn", "005e41a"})
            EXPECT_FALSE(Has(text, name)) << entry.path() << " " << name;
    }
    Record_t before, after;
    std::string error;
    ASSERT_EQ(ReadRecord(named, &before, &error), kSuccess) << error;
    ASSERT_EQ(ReadRecord(folder, &after, &error), kSuccess) << error;
    const RecordedHardware_t &old = before.hardware, &made = after.hardware;
    EXPECT_TRUE(made.facts.isRedacted);
    EXPECT_EQ(made.facts.leftOut, (std::vector<std::string>{"MSDM", "IBFT"}));
    ASSERT_EQ(made.tables.size(), 2u);
    const std::string text(made.tables[0].bytes.begin() + 36, made.tables[0].bytes.end());
    EXPECT_EQ(text.size() + 36, old.tables[0].bytes.size());
    for (const char* part : {"0A1B2C3D4E5F", "SN-4711", "11:22:33:44:55"}) EXPECT_FALSE(Has(text, part)) << text;
    EXPECT_TRUE(text.starts_with("_AUXMAC_#") && text[21] == '#') << text;
    uint8_t sum = 0;
    for (const uint8_t byte : made.tables[0].bytes) sum = static_cast<uint8_t>(sum + byte);
    EXPECT_EQ(sum, 0) << "the checksum";
    ASSERT_EQ(made.functions[0].bytes.size(), 4096u);
    const std::vector<uint8_t>&space = made.functions[0].bytes, &oldSpace = old.functions[0].bytes;
    EXPECT_NE(std::memcmp(&space[0x104], &oldSpace[0x104], 8), 0);
    EXPECT_EQ(std::memcmp(space.data(), oldSpace.data(), 0x104), 0);
    EXPECT_EQ(std::memcmp(&space[0x10C], &oldSpace[0x10C], 4096 - 0x10C), 0);
    EXPECT_EQ(made.processors[0][2], (CpuidLeaf_t{3, 0, 0, 0, 0, 0}));
    // As redact makes it of the dump.
    const std::string dump = testing::TempDir() + "named.bin";
    fs::remove(dump);
    ASSERT_EQ(RunQuorlin("redact " + named + "/dmi.bin " + dump + " --key " + key).exitCode, 0);
    EXPECT_EQ(ReadWholeFile(dump), ReadWholeFile(folder + "/dmi.bin"));
}

TEST(Record, LicenceKeysAreRecordedOnlyOnDemand) {
    const std::string named = WriteRecord("named", NamedMachine());
    for (const bool isWanted : {false, true}) {
        const std::string folder = NewFolder("keys");
        RunQuorlin("record " + folder + " --replay " + named + (isWanted ? " --with-licence-keys" : ""));
        EXPECT_EQ(Has(ReadWholeFile(folder + "/acpi.dat"), "MSDM @"), isWanted);
        const ProgramRun_t run = RunQuorlin("hw acpi MSDM --replay " + folder);
        EXPECT_EQ(run.exitCode, isWanted ? 0 : 1);
        EXPECT_EQ(Has(run.errors, "the record doesn't have it"), !isWanted) << run.errors;
    }
}

TEST(Replay, CommandsShowTheRecordedMachine) {
    const std::string folder = " --replay " + WriteRecord("shown");
    const auto expect = [&](const std::string& arguments, int exitCode, const char* output, const char* says) {
        const ProgramRun_t run = RunQuorlin(arguments + folder);
        EXPECT_EQ(run.exitCode, exitCode) << arguments << run.errors;
        EXPECT_TRUE(run.output.starts_with(output)) << arguments << ": " << run.output;
        EXPECT_TRUE(Has(run.errors, says)) << arguments << ": " << run.errors;
    };
    const char* const kMissing = "the record doesn't have it";
    expect("get 1 \"Serial Number\"", 0, "SN-4711\n", "");
    expect("hw cpuid 1 --cpu 1", 0, "eax 000506e3 ebx 01000000 ecx 00000000 edx 0000001f", "");
    expect("hw cpuid 4 2", 1, "", kMissing);
    expect("hw pci 0000:00:03.0 0 4", 0, "20 21 22 23\n", "");
    expect("hw pci 0000:00:03.0 62 4", 1, "", kMissing);
    expect("hw msr read 0x1b", 0, "00000000fee00900\n", "");
    expect("hw msr read 0x1b --cpu 1", 1, "", "was refused (status 0); try quorlin hw --help\n");
    expect("hw msr read 0x10", 1, "", kMissing);
    expect("hw mem 0xf0000 16", 1, "", kMissing);
    expect("hw acpi", 0, "Table  Bytes\nFACP      44\nSSDT      37  the first of 2\nMSDM       -\n", "");
    expect("hw acpi NONE", 1, "", "no such thing");
    expect("hw versions", 0, "Library  03.00.0.1000\nDriver   3.1\n", "");
    expect("types --image x.bin", 2, "", "exclude each other");
    expect("types --no-driver", 2, "", "not for an image or a record");
    expect("record x --keep-vendor", 2, "", "for --redact");
    // The table's source is called as on the machine itself.
    EXPECT_TRUE(
        Has(RunQuorlin("show --format ndjson" + folder).output, "{\"source\":\"this machine\",\"smbios\":\"2.7\""));
    for (const char* command : {"types", "hw versions", "record x"}) {
        const ProgramRun_t run = RunQuorlin(std::string(command) + " --replay no-such-folder");
        EXPECT_EQ(run.exitCode, 1) << command;
        EXPECT_TRUE(run.errors.starts_with("quorlin: no-such-folder: not a record")) << run.errors;
    }
}

}  // namespace
