// Recorded machines: what they answer, what they refuse, and folders that are none.
#include "Packages/FERROXExternal/StructureStore/Record.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>

#include "Packages/FERROXExternal/StructureStore/Machine.h"
#include "Packages/FERROXExternal/StructureStore/StructureStore.h"
#include "Packages/OS/OS.h"
#include "Tests/Support/Buffer.h"
#include "Tests/Support/Program.h"
#include "Tests/Support/Records.h"

namespace {

constexpr status_t kRefused = 0;

class Replay : public testing::Test {
  protected:
    void Use(const TestRecord_t& record) {
        const std::string folder = WriteRecord("replayed", record);
        ASSERT_EQ(SetReplayMachine(folder.c_str()), kSuccess);
        ASSERT_EQ(FERROXInitialize(), kSuccess);
        EXPECT_EQ(SetReplayMachine(nullptr), kFailure) << "the hardware library is up";
    }
    void TearDown() override {
        while (FERROXTerminate() == kSuccess) continue;
        EXPECT_EQ(SetReplayMachine(nullptr), kSuccess);
        EXPECT_EQ(&CurrentHardware(), &kThisHardware);
    }
};

TEST_F(Replay, AnswersAsTheMachineDid) {
    Use({});
    uint8_t entry[kEntryBufferSize] = {};
    ASSERT_EQ(LibSMBIOSInit(entry), kSuccess);
    SMBIOSTableImage_t* dump = nullptr;
    ASSERT_EQ(GetSMBIOSDump(entry, &dump), kSuccess);
    EXPECT_EQ(std::vector<uint8_t>(dump->Data(), dump->Data() + dump->Length), TestRecord_t().table);
    EXPECT_EQ(entry[6], 2);
    EXPECT_EQ(entry[7], 7);
    os_FreeBlock(dump);
    EXPECT_EQ(LibSMBIOSExit(), kSuccess);

    const struct {
        uint32_t processor, leaf, subleaf;
        status_t status;
        uint32_t ebx;
    } kLeaves[] = {
        {kAnyProcessor, 0, 0, kSuccess,      0x756E6547},
        {1,             1, 0, kSuccess,      1u << 24  },
        {2,             1, 0, kBadValue,     0         },
        {1,             1, 9, kSuccess,      1u << 24  }, // which has no sub-leaves
        {0,             4, 1, kSuccess,      0         },
        {0,             4, 2, kNotSupported, 0         },
        {0,             2, 0, kNotSupported, 0         },
    };
    for (const auto& c : kLeaves) {
        CPUIDRecord_t record = {0, c.leaf, 0, c.subleaf, 0};
        EXPECT_EQ(ReadCPUID(c.processor, &record), c.status) << c.processor << " " << c.leaf;
        EXPECT_EQ(record.Ebx, c.ebx) << c.processor << " " << c.leaf;
    }
    const struct {
        uint32_t location, offset, size;
        status_t status;
        uint8_t first;
    } kSpaces[] = {
        {0x000,    0,   256, kSuccess,      0x10},
        {0x000,    254, 2,   kSuccess,      0x0E},
        {0x300,    60,  4,   kSuccess,      0x5C},
        {0x300,    61,  4,   kNotSupported, 0xEE}, // which nothing wrote
        {0x301,    0,   4,   kSuccess,      0xFF}, // isn't there
        {1u << 16, 0,   4,   kNotSupported, 0xEE},
    };
    for (const auto& c : kSpaces) {
        ClBuffer buffer(c.size);
        EXPECT_EQ(PCIRead(c.location, c.offset, buffer.Get()), c.status) << c.location << " " << c.offset;
        EXPECT_EQ(buffer.Bytes()[0], c.first) << c.location << " " << c.offset;
    }
    MSRRecord_t msr = {0, 0, 0x1B, 0, 0};
    EXPECT_EQ(ReadMSR(&msr), kSuccess);
    EXPECT_EQ(msr.LoContent, 0xFEE00900u);
    msr.Cpu = 1;
    EXPECT_EQ(ReadMSR(&msr), kRefused);
    EXPECT_EQ(LastRefusal(), Refusal_t::kOther);
    uint32_t version = 0;
    EXPECT_EQ(GetIOLibVersion(&version), kSuccess);
    EXPECT_EQ(version, 0x30003u);
    DataBuffer_t* table = nullptr;
    ASSERT_EQ(GetACPITable("SSDT", &table), kSuccess);
    EXPECT_EQ(table->Size, 37u) << "the first of two";
    os_FreeBlock(table);
    EXPECT_EQ(GetACPITable("NONE", &table), kFailure);
    EXPECT_EQ(LastRefusal(), Refusal_t::kOther) << "the machine has none";
    EXPECT_EQ(GetACPITable("MSDM", &table), kFailure);
    EXPECT_EQ(LastRefusal(), Refusal_t::kNotRecorded);
}

TEST_F(Replay, RefusesWhatIsNeverRecorded) {
    Use({});
    static ClBuffer buffer(4);
    static MSRRecord_t msr = {0, 0, 0x10, 0, 0};
    static NonTurboRecord_t turbo = {};
    static DynamicMMIORecord_t place = {};
    status_t (*const kCalls[])() = {
        [] { return GetSystemTables(0xF0000, 0, buffer.Get()); },
        [] { return PCIMMIORead(0xF0000, 0, buffer.Get()); },
        [] { return PCIMMIOWriteStored(0xF0000, 0, buffer.Get()); },
        [] { return PCIMMIOReadDynamic(&place, buffer.Get()); },
        [] { return ReadWakeupTimer(0x80, buffer.Get()); },
        [] { return ConfigureWakeUpTimer(0x80, buffer.Get()); },
        [] { return ReadMSR(&msr); },
        [] { return WriteMSR(&msr); },
        [] { return CalcFreqNonTurbo(&turbo); },
    };
    for (const auto& call : kCalls) {
        NoteRefusal(Refusal_t::kOther);
        EXPECT_EQ(call(), kNotSupported) << &call - kCalls;
        EXPECT_EQ(LastRefusal(), Refusal_t::kNotRecorded) << &call - kCalls;
    }
}

// The package sees a processor of signature 0, and whoever asks for CPUID or a register learns that there is none.
TEST_F(Replay, Arm64HasNoCpuid) {
    TestRecord_t record;
    record.hardware.facts.known.midrs = {0x410FD0C1};
    record.hardware.processors.clear();
    record.hardware.registers.clear();
    Use(record);
    CPUIDRecord_t cpuid = {0, 1, 2, 3, 4};
    EXPECT_EQ(ReadCPUID(kAnyProcessor, &cpuid), kNotSupported);
    EXPECT_EQ(LastRefusal(), Refusal_t::kArchitecture);
    MSRRecord_t msr = {0, 0, 0x1B, 0, 0};
    NoteRefusal(Refusal_t::kOther);
    EXPECT_EQ(ReadMSR(&msr), kNotSupported);
    EXPECT_EQ(LastRefusal(), Refusal_t::kArchitecture);
    EXPECT_EQ(CurrentMachine()->ReadCPUID(kAnyProcessor, &cpuid), kSuccess);
    EXPECT_EQ(cpuid.Eax | cpuid.Ebx | cpuid.Ecx | cpuid.Edx, 0u);
    EXPECT_EQ(CurrentMachine()->ReadCPUID(kAnyProcessor, nullptr), kNullPointer);
}

// An MCFG table of one segment, and a function of 256 bytes: its extended space reads as ones if the recording says so.
TEST_F(Replay, ExtendedSpaceIsAsItWas) {
    TestRecord_t record;
    std::vector<uint8_t> map(60);
    std::memcpy(map.data(), "MCFG\x3C", 5);
    map[55] = 0xFF;
    record.hardware.tables = {
        {"MCFG", map}
    };
    record.hardware.functions.push_back({0x400, std::vector<uint8_t>(4096, 0x44)});
    for (const bool isComplete : {true, false}) {
        record.hardware.facts.hasExtendedSpace = isComplete;
        Use(record);
        ClBuffer buffer(4);
        EXPECT_EQ(PCIExRead(0x400, 4092, buffer.Get()), kSuccess);
        EXPECT_EQ(buffer.Bytes(), std::vector<uint8_t>(4, 0x44));
        EXPECT_EQ(PCIExRead(0, 256, buffer.Get()), isComplete ? kSuccess : kNotSupported);
        EXPECT_EQ(buffer.Bytes(), std::vector<uint8_t>(4, isComplete ? 0xFF : 0x44)) << "unchanged if refused";
        TearDown();
    }
    record.hardware.processors[0][1].ecx = 1u << 31;  // under a hypervisor
    Use(record);
    ClBuffer buffer(4);
    EXPECT_EQ(PCIExRead(0x400, 256, buffer.Get()), kBadValue);
    EXPECT_EQ(PCIExRead(0x400, 252, buffer.Get()), kSuccess);
    TearDown();
    record.hardware.processors.clear();  // of ARM64
    record.hardware.facts.known.midrs = {0x410FD0C1};
    Use(record);
    EXPECT_EQ(PCIExRead(0x400, 4092, buffer.Get()), kSuccess);
}

TEST(Record, BadFoldersAreRefusedInOneLine) {
    const auto damaged = [](const char* file, size_t place, char byte) {
        const std::string folder = WriteRecord("damaged");
        std::string text = ReadWholeFile(folder + "/" + file);
        text[place] = byte;
        WriteFile(std::string("record-damaged/") + file, {text.begin(), text.end()});
        return folder;
    };
    const auto without = [](const char* file) {
        const std::string folder = WriteRecord("without");
        std::filesystem::remove(folder + "/" + file);
        return folder;
    };
    const auto has = [](const std::string& folder, const char* part) {
        Record_t record;
        std::string error;
        EXPECT_EQ(ReadRecord(folder, &record, &error), kFailure);
        EXPECT_NE(error.find(part), error.npos) << part << ": " << error;
        EXPECT_NE(error.find("; try "), error.npos) << error;
        EXPECT_EQ(error.find('\n'), error.npos) << error;
    };
    has(testing::TempDir() + "no-such-folder", "machine.json can't be read");
    has(without("machine.json"), "machine.json can't be read");
    has(damaged("machine.json", 0, '['), "machine.json: not JSON");
    for (const char* file : kRecordFiles) {
        has(without(file), file);
        has(damaged(file, 0, '?'), "not the file that machine.json describes");
    }
    const std::string folder = WriteRecord("large");
    std::filesystem::resize_file(folder + "/cpuid.txt", 64u << 20);  // more than all files may have together
    has(folder, "cpuid.txt: larger than a record may be");
    // A file that is as described, but not of its form.
    TestRecord_t record;
    record.hardware.processors[0].push_back({0, 0, 0, 0, 0, 0});
    has(WriteRecord("odd", record), "cpuid.txt: line 6: a leaf out of order");
    record = {};
    record.table.clear();
    has(WriteRecord("empty", record), "dmi.bin: ");
}

}  // namespace
