// quorlin verify, on recorded machines, so that it runs on every system.
#include <gtest/gtest.h>
#include <rapidjson/document.h>

#include <filesystem>
#include <sstream>

#include "Tests/Support/AcpiTables.h"
#include "Tests/Support/Program.h"
#include "Tests/Support/Records.h"
#include "Tests/Support/Structures.h"

namespace {

constexpr uint32_t kSignature = 0x506E3;  // of the recorded processors

ClStructureBuilder Processor() {
    return ClStructureBuilder(4, 0x28, 0x0400)
        .Byte(5, 3)
        .Byte(6, 0xB3)
        .Dword(8, kSignature)
        .Dword(12, 0x1F)
        .Word(0x14, 3000)
        .Word(0x16, 2500)
        .Byte(0x18, 0x41)
        .Bytes(0x23, {2, 2, 2});
}

std::vector<uint8_t> TableWith(const ClStructureBuilder& processor) {
    return TableOf({ClStructureBuilder(0, 0x18).Byte(0x13, 0x08).Byte(5, 1).Strings({"1.2.3"}), processor,
                    ClStructureBuilder(7, 0x13, 0x0700).Word(5, 0x0180).Word(9, 64),
                    ClStructureBuilder(9, 0x11, 0x0900).Bytes(4, {0, 0xA5, 0x0A, 4, 3}).Bytes(0x0D, {0, 0, 0, 0x18}),
                    ClStructureBuilder(17, 0x28, 0x1100).Word(12, 1024),
                    ClStructureBuilder(41, 0x0B, 0x2900).Bytes(5, {0x83, 1, 0, 0, 0, 0x18})});
}

// Its firmware tells the truth.
TestRecord_t HonestMachine() {
    TestRecord_t record;
    record.table = TableWith(Processor());
    std::vector<uint8_t> madt(60), space(64);
    madt[44] = madt[52] = 0;  // local APICs
    madt[45] = madt[53] = 8;
    madt[55] = 1;
    madt[48] = madt[56] = 1;
    space[0x0B] = 3;  // a display
    record.hardware.tables.push_back({"APIC", madt});
    record.hardware.functions.back().bytes = space;
    SystemFacts_t& known = record.hardware.facts.known;
    known.packages = 1;
    known.cores = known.threads = 2;
    known.baseSpeed = 2500;
    known.memoryMap = {
        {0x1000, 0x3FFFFFFF}
    };
    return record;
}

// Rules and verdicts, as each form has them.
std::string FromRows(const std::string& csv) {
    std::string all, line;
    std::istringstream lines(csv);
    std::getline(lines, line);
    while (std::getline(lines, line)) {
        const size_t rule = line.find(','), verdict = line.find(',', rule + 1);
        all.append(line, 0, rule).append(" ").append(line, rule + 1, verdict - rule - 1).append("\n");
    }
    return all;
}
std::string FromJson(const std::string& json) {
    rapidjson::Document document;
    document.Parse(json.c_str());
    if (document.HasParseError() || !document.HasMember("verdicts")) return json;
    std::string all;
    for (const auto& each : document["verdicts"].GetArray())
        all.append(each["rule"].GetString()).append(" ").append(each["verdict"].GetString()).append("\n");
    return all;
}
std::string FromText(const std::string& text) {
    std::string all, line;
    std::istringstream lines(text);
    while (std::getline(lines, line))
        if (!line.starts_with(' ')) all.append(line.substr(0, line.find(':'))).append("\n");
    return all;
}

size_t Count(const std::string& text, const std::string& part) {
    size_t count = 0;
    for (size_t at = text.find(part); at != text.npos; at = text.find(part, at + 1)) count++;
    return count;
}

TEST(Verify, AllFormsHaveTheSameVerdicts) {
    const std::string replay = " --replay " + WriteRecord("honest", HonestMachine());
    const std::string lie = WriteFile("lie.bin", DumpOf(TableWith(Processor().Dword(8, 0x406E3)), 3, 0));
    for (const bool isLie : {false, true}) {
        std::string command = "verify";
        if (isLie) command.append(" --image ").append(lie);
        command.append(replay);
        const ProgramRun_t rows = RunQuorlin(command + " --format csv");
        EXPECT_EQ(rows.exitCode, isLie ? 1 : 0) << rows.errors << rows.output;
        const std::string verdicts = FromRows(rows.output);
        EXPECT_EQ(Count(verdicts, "contradicts"), isLie ? 1u : 0u) << rows.output;
        EXPECT_TRUE(verdicts.find(isLie ? "QV0101 contradicts" : "QV0101 agrees") != verdicts.npos) << verdicts;
        EXPECT_GE(Count(verdicts, "agrees"), 10u) << rows.output;
        for (const char* format : {"json", "ndjson"}) {
            const ProgramRun_t run = RunQuorlin(command + " --format " + format);
            EXPECT_EQ(run.exitCode, rows.exitCode);
            EXPECT_EQ(FromJson(run.output), verdicts) << format;
        }
        const ProgramRun_t text = RunQuorlin(command);
        EXPECT_EQ(text.exitCode, rows.exitCode);
        EXPECT_EQ(FromText(text.output), verdicts);
    }
    for (const char* wrong : {"verify --replay no-such-folder", "verify --image no-such-file", "verify --format xml",
                              "verify --sample --replay no-such-folder", "verify --such"})
        EXPECT_EQ(RunQuorlin(wrong).exitCode, 2) << wrong;
    EXPECT_EQ(RunQuorlin("verify --image no-such-file" + replay).exitCode, 2);
    EXPECT_EQ(RunQuorlin("verify --driver" + replay).exitCode, 2);
}

// The reasons are those of the machine that was recorded.
TEST(Verify, WhatWasNotRecordedCantTell) {
    TestRecord_t record = HonestMachine();
    record.hardware.tables.clear();
    record.hardware.functions.clear();
    record.hardware.processors.clear();
    MachineFacts_t& facts = record.hardware.facts;
    facts.known = {};
    facts.firmware.clear();
    facts.segments.clear();
    facts.unread = {
        {"ACPI tables",                 "reason A"},
        {"CPUID from processor 0 on",   "reason B"},
        {"PCI segment 0 from bus 0 on", "reason C"}
    };
    const std::string image = WriteFile("honest.bin", DumpOf(record.table, 3, 0));
    const std::string command = "verify --image " + image + " --replay " + WriteRecord("poor", record);
    const ProgramRun_t run = RunQuorlin(command);
    EXPECT_EQ(run.exitCode, 0) << run.errors;
    const std::string verdicts = FromText(run.output);
    EXPECT_EQ(Count(verdicts, "\n"), Count(verdicts, "can't tell\n")) << run.output;
    const auto reasonOf = [&](const std::string& rule) {
        const size_t line = run.output.find('\n', run.output.find(rule)) + 1;
        return run.output.substr(line, run.output.find(" (", line) - line);
    };
    for (const char* rule : {"QV0107", "QV0505"}) EXPECT_EQ(reasonOf(rule), "    reason A") << rule;
    for (const char* rule : {"QV0101", "QV0102", "QV0103", "QV0108", "QV0201"})
        EXPECT_EQ(reasonOf(rule), "    reason B") << rule;
    for (const char* rule : {"QV0401", "QV0403"}) EXPECT_EQ(reasonOf(rule), "    reason C") << rule;
    for (const char* rule : {"QV0104", "QV0301", "QV0501"}) EXPECT_EQ(reasonOf(rule), "    not available") << rule;
    // The record alone has no table without CPUID.
    EXPECT_EQ(RunQuorlin("verify --replay " + testing::TempDir() + "record-poor").exitCode, 2);
}

// A record of an ARM64 machine answers anywhere, though it has no CPUID.
TEST(Verify, Arm64MachinesAreReplayed) {
    constexpr uint32_t kMidr = 0x410FD0C1;
    TestRecord_t record = HonestMachine();
    record.table = TableWith(Processor().Dword(8, kMidr).Dword(12, 0).Byte(6, 2));
    record.hardware.processors.clear();
    record.hardware.registers.clear();
    record.hardware.facts.known.midrs = {kMidr};
    record.hardware.facts.leftOut.clear();
    record.hardware.facts.unread.clear();
    ClTree tree;
    const uint32_t package = tree.Node(ClTree::kPackage, 0, 0);
    for (uint32_t id = 0; id < 2; id++) tree.Core(package, id, {tree.Cache(32768, ClTree::kData)});
    std::vector<AcpiTable_t>& tables = record.hardware.tables;
    tables.back().bytes = MadtOf({
        {0, 1},
        {1, 1}
    });
    tables.push_back({"PPTT", tree.Bytes()});
    const std::string folder = WriteRecord("arm64", record), command = "verify --format csv --replay ";
    const ProgramRun_t run = RunQuorlin(command + folder);
    EXPECT_EQ(run.exitCode, 0) << run.errors;
    const std::string verdicts = FromRows(run.output);
    for (const char* rule : {"QV0101", "QV0104", "QV0105", "QV0106", "QV0107", "QV0201"})
        EXPECT_EQ(Count(verdicts, std::string(rule).append(" agrees\n")), 1u) << run.output;
    EXPECT_EQ(RunQuorlin("--replay " + folder).exitCode, 0) << "signature 0";
    const ProgramRun_t cpuid = RunQuorlin("hw cpuid 0 --replay " + folder);
    EXPECT_NE(cpuid.exitCode, 0);
    EXPECT_EQ(Count(cpuid.errors, "\n"), 1u) << cpuid.errors;
    // A copy of the record has all that it had, and misses nothing.
    const std::string copy = testing::TempDir() + "record-arm64-copy";
    std::filesystem::remove_all(copy);
    const ProgramRun_t recording = RunQuorlin("record " + copy + " --redact --replay " + folder);
    EXPECT_EQ(recording.exitCode, 0);
    EXPECT_EQ(recording.errors, "");
    EXPECT_EQ(RunQuorlin(command + copy).output, run.output);
}

TEST(Verify, AnyTableCanBeHeldAgainstAMachine) {
    const std::string replay = " --replay " + WriteRecord("honest", HonestMachine());
    const std::string all = WriteFile("all-types.bin", TableOfAllTypes(1));
    for (const std::string& table : {std::string(" --sample"), " --as table --smbios-version 3.9 --image " + all}) {
        const ProgramRun_t run = RunQuorlin(std::string("verify --format csv").append(table).append(replay));
        EXPECT_EQ(run.exitCode, 1) << run.errors;
        EXPECT_EQ(run.errors, "");
        EXPECT_GT(Count(FromRows(run.output), "QV0"), 10u) << run.output;
    }
}

}  // namespace
