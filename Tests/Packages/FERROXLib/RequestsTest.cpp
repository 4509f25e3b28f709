// The requests that the driver gets, byte by byte, and what becomes of its answers.
#include <functional>

#include "Tests/Packages/FERROXLib/Library.h"

namespace {

using Requests = ClLibraryTest;

std::vector<uint8_t> Bytes(const std::string& hex) {
    std::vector<uint8_t> bytes;
    for (size_t index = 0; index < hex.size(); index += 3) {
        bytes.push_back(static_cast<uint8_t>(std::stoi(hex.substr(index, 2), nullptr, 16)));
    }
    return bytes;
}

uint32_t word;
ClBuffer buffer(3);
MSRRecord_t msr;
CPUIDRecord_t cpuid;
NonTurboRecord_t nonTurbo;
const DynamicMMIORecord_t kDynamic = {0xA1A2A3A4, 0x10, 0x40};
constexpr uint64_t kBar = 0x00000001FED00000;

// Bytes of the caller's block after the call.
std::string Buffer() { return buffer.Text(); }
std::string Word() { return Hex(reinterpret_cast<uint8_t*>(&word), 4); }
template <typename Record>
std::string Text(const Record& record) {
    return Hex(reinterpret_cast<const uint8_t*>(&record), sizeof(record));
}

}  // namespace

TEST_F(Requests, HaveTheirRecords) {
    const std::string kHead = "00 00 00 00 00 01 00 00 ";  // reserved, any processor
    const std::string kPlace = "00 00 d0 fe 01 00 00 00 20 00 00 00 03 00 00 00 ";
    const std::string kSum = "20 00 d0 fe 01 00 00 00 20 00 00 00 03 00 00 00 ";
    const struct {
        const char* what;
        std::function<status_t()> call;
        uint32_t code;
        std::string in;
        DWORD outSize;
        std::function<std::string()> after;
        std::string text;
    } kCases[] = {
        {"driver version",      [] { return GetFERROXDriverVersion(&word); },                0x80240004, "",                          4,  Word,                          "04 00 00 01"                                                },
        {"CPU library version", [] { return GetCPULibVersion(&word); },                      0x80240090, "",                          4,  Word,                          "90 00 00 01"                                                },
        {"I/O library version", [] { return GetIOLibVersion(&word); },                       0x80240094, "",                          4,  Word,                          "94 00 00 01"                                                },
        {"PCI library version", [] { return GetPCILibVersion(&word); },                      0x80240098, "",                          4,  Word,                          "98 00 00 01"                                                },
        {"port read",           [] { return ReadWakeupTimer(0x1234, buffer.Get()); },        0x80240034,
         kHead + "34 12 00 00 03 00 00 00 00 00 00 00",                                                                               20, Buffer,                        "90 91 92"                                                   },
        {"port write",          [] { return ConfigureWakeUpTimer(0xCF8, buffer.Get()); },    0x80244074,
         kHead + "f8 0c 00 00 03 00 00 00 a0 a1 a2 00",                                                                               20, Buffer,                        "a0 a1 a2"                                                   },
        {"MSR read",            [] { return ReadMSR(&msr); },                                0x80240040,
         "00 00 00 00 05 00 00 00 10 00 00 00 04 03 02 01 08 07 06 05",                                                               20, [] { return Text(msr); },
         "00 00 00 00 05 00 00 00 10 00 00 00 44 33 22 11 88 77 66 55"                                                                                                                                                                },
        {"MSR write",           [] { return WriteMSR(&msr); },                               0x80244080,
         "00 00 00 00 05 00 00 00 10 00 00 00 04 03 02 01 08 07 06 05",                                                               20, [] { return Text(msr); },
         "00 00 00 00 05 00 00 00 10 00 00 00 04 03 02 01 08 07 06 05"                                                                                                                                                                },
        {"CPUID",               [] { return ReadCPUID(7, &cpuid); },                         0x80240000,
         "00 00 00 00 07 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 04 00 00 00 00 00 00 00 02 00 00 00 00 00 00 00 "
         "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00",                                                               56, [] { return Text(cpuid); },    "00 00 00 00 a9 06 03 00 04 00 00 00 00 00 00 00 02 00 00 00"},
        {"non-turbo frequency", [] { return CalcFreqNonTurbo(&nonTurbo); },                  0x8024009C,
         "01 00 00 00 ce 00 00 00 08 04 00 00 00 00 00 00 00 00 00 00",                                                               20, [] { return Text(nonTurbo); },
         "01 00 00 00 ce 00 00 00 08 04 00 00 60 09 00 00 00 00 00 00"                                                                                                                                                                },
        {"MMIO read",           [] { return PCIMMIORead(kBar, 0x20, buffer.Get()); },        0x80240114, kHead + kSum + "00 00 00",   27,
         Buffer,                                                                                                                                                         "20 21 22"                                                   },
        {"memory",              [] { return GetSystemTables(kBar, 0x20, buffer.Get()); },    0x80240118, kHead + kSum + "00 00 00",   27,
         Buffer,                                                                                                                                                         "20 21 22"                                                   },
        {"stored read",         [] { return PCIMMIOReadStored(kBar, 0x20, buffer.Get()); },  0x802400FC,
         kHead + kPlace + "00 00 00",                                                                                                 27, Buffer,                        "20 21 22"                                                   },
        {"GPIO read",           [] { return MMIOReadGPIO(kBar, 0x20, buffer.Get()); },       0x80240104, kHead + kPlace + "00 00 00",
         27,                                                                                                                              Buffer,                        "20 21 22"                                                   },
        {"stored write",        [] { return PCIMMIOWriteStored(kBar, 0x20, buffer.Get()); }, 0x80240108,
         kHead + kPlace + "a0 a1 a2",                                                                                                 27, Buffer,                        "a0 a1 a2"                                                   },
        {"GPIO write",          [] { return MMIOWriteGPIO(kBar, 0x20, buffer.Get()); },      0x80240110, kHead + kPlace + "a0 a1 a2",
         27,                                                                                                                              Buffer,                        "a0 a1 a2"                                                   },
        {"dynamic write",       [] { return PCIMMIOWriteDynamic(&kDynamic, buffer.Get()); }, 0x8024010C,
         kHead + "a4 a3 a2 a1 10 00 00 00 40 00 00 00 03 00 00 00 a0 a1 a2",                                                          27, Buffer,                        "a0 a1 a2"                                                   },
    };
    for (const auto& c : kCases) {
        word = 0;
        buffer = {0xA0, 0xA1, 0xA2};
        msr = {0, 5, 0x10, 0x01020304, 0x05060708};
        cpuid = {0, 4, 0, 2, 0};
        nonTurbo = {1, 0xCE, 0x408, {}};
        Platform().requests.clear();
        EXPECT_EQ(c.call(), kSuccess) << c.what;
        ASSERT_EQ(Platform().requests.size(), 1u) << c.what;
        const DeviceRequest_t& request = Platform().requests[0];
        EXPECT_EQ(request.code, c.code) << c.what;
        EXPECT_EQ(Hex(request.in.data(), request.in.size()), Hex(Bytes(c.in).data(), Bytes(c.in).size())) << c.what;
        EXPECT_EQ(request.outSize, c.outSize) << c.what;
        EXPECT_EQ(c.after(), c.text) << c.what;
    }
}

TEST_F(Requests, FailuresAreToldAndChangeNothing) {
    const struct {
        std::function<status_t()> call;
        status_t status;
        const char* line;
    } kCases[] = {
        {[] { return GetFERROXDriverVersion(&word); },            5,
         "ERROR in OSGetFERROXDriverVersion ret =  0Bytes Returned = 0"                                                      },
        {[] { return GetPCILibVersion(&word); },                  5, "ERROR in OSGetPCILibVersion ret =  0Bytes Returned = 0"},
        {[] { return PCIRead(0, 0, buffer.Get()); },              0, "ERROR in OSPCIRead ret = 0Bytes Returned0"             },
        {[] { return PCIMMIORead(kBar, 0, buffer.Get()); },       0, "ERROR in OSPCIMMIORead ret =  0Bytes Returned0"        },
        {[] { return GetSystemTables(kBar, 0, buffer.Get()); },   0,
         "ERROR in OSGetSystemTables ret =  0Bytes Returned0"                                                                },
        {[] { return MMIOWriteGPIO(kBar, 0, buffer.Get()); },     0, "ERROR in OSMMIOWriteGPIO ret =  0Bytes Returned0"      },
        {[] { return ReadWakeupTimer(0x70, buffer.Get()); },      0, "ERROR in OSReadPort ret = 0Bytes Returned0"            },
        {[] { return ConfigureWakeUpTimer(0x70, buffer.Get()); }, 0, "ERROR in OSWritePort ret = 0Bytes Returned0"           },
        {[] { return ReadMSR(&msr); },                            0, "ERROR in OSReadMSR ret =  0 Bytes Returned0"           },
        {[] { return WriteMSR(&msr); },                           0, "ERROR in OSWriteMSR ret =  0 Bytes Returned0"          },
        {[] { return ReadCPUID(kAnyProcessor, &cpuid); },         0, "ERROR in OSReadCPUID ret =  0Bytes Returned0"          },
        {[] { return CalcFreqNonTurbo(&nonTurbo); },              5, "ERROR in OSDriverCalcNonTurbo ret =  0Bytes Returned0" },
    };
    int number = 1;  // the hypervisor test was the first
    for (const auto& c : kCases) {
        word = 77;
        buffer = {0xA0, 0xA1, 0xA2};
        msr = {0, 0, 0x10, 1, 2};
        Platform().failCalls = {"DeviceIoControl#" + std::to_string(++number)};
        EXPECT_EQ(c.call(), c.status) << c.line;
        EXPECT_TRUE(Platform().Traced(16, c.line)) << c.line;
        EXPECT_EQ(buffer.Text(), "a0 a1 a2") << c.line;
        EXPECT_EQ(word, 77u) << c.line;
        EXPECT_EQ(msr.HiContent, 1u) << c.line;
    }
}

TEST_F(Requests, ConfigurationSpaceIsReadInAlignedWords) {
    const struct {
        const char* what;
        uint32_t offset, size;
        std::vector<uint64_t> words;
        const char* text;
    } kCases[] = {
        {"over two words",   2,    4, {0, 4},             "02 03 04 05"      },
        {"last byte",        3,    1, {0},                "03"               },
        {"one word",         4,    4, {4},                "04 05 06 07"      },
        {"three words",      0x0F, 6, {0x0C, 0x10, 0x14}, "0f 10 11 12 13 14"},
        {"end of the space", 252,  4, {252},              "fc fd fe ff"      },
        {"size 0",           256,  0, {},                 ""                 },
    };
    for (const auto& c : kCases) {
        ClBuffer data(c.size);
        Platform().requests.clear();
        ASSERT_EQ(PCIRead(0x1234, c.offset, data.Get()), kSuccess) << c.what;
        EXPECT_EQ(data.Text(), c.text) << c.what;
        std::vector<uint64_t> words;
        for (const auto& request : Platform().requests) {
            EXPECT_EQ(request.code, 0x80240048u) << c.what;
            EXPECT_EQ(request.in.size(), 20u) << c.what;
            EXPECT_EQ(request.Number(4, 4), 0x1234u) << c.what;
            EXPECT_EQ(request.Number(12, 4), 4u) << c.what;
            words.push_back(request.Number(8, 4));
        }
        EXPECT_EQ(words, c.words) << c.what;
    }
}

TEST_F(Requests, ExtendedSpaceUnderAHypervisorIsTheFirst256Bytes) {
    ASSERT_EQ(FERROXTerminate(), kSuccess);
    Platform().hypervisorECX = 0x80000000;
    Open();
    const struct {
        uint32_t location, offset, size;
        status_t status;
    } kCases[] = {
        {0x0008,  252, 4, 1},
        {0x0008,  256, 1, 2},
        {0x0008,  253, 4, 2},
        {0x10000, 0,   4, 6},
        {0xFFFF,  0,   4, 1},
    };
    for (const auto& c : kCases) {
        ClBuffer data(c.size);
        Platform().requests.clear();
        EXPECT_EQ(PCIExRead(c.location, c.offset, data.Get()), c.status) << c.offset;
        EXPECT_EQ(Platform().requests.size(), c.status == kSuccess ? 1u : 0u) << c.offset;
        for (const auto& request : Platform().requests) EXPECT_EQ(request.code, 0x802400F4u);
    }
    EXPECT_TRUE(Platform().Traced(2, "HyperV enabled."));
    EXPECT_FALSE(Platform().Called("GetSystemFirmwareTable"));
}

TEST_F(Requests, ProcessorNumbers) {
    CPUIDRecord_t record = {};
    EXPECT_EQ(ReadCPUID(7, &record), kSuccess);
    EXPECT_EQ(ReadCPUID(8, &record), kBadValue);
    EXPECT_EQ(ReadCPUID(255, &record), kBadValue);
    EXPECT_EQ(ReadCPUID(256, &record), kSuccess);
    EXPECT_EQ(ReadCPUID(257, &record), kBadValue);
    EXPECT_TRUE(Platform().Traced(2, "Number of logical processors : 8"));
}

TEST_F(Requests, MemoryBlock) {
    ClBuffer data(4096);
    ASSERT_EQ(GetSystemTables(0xF0000, 0x1000, data.Get()), kSuccess);
    EXPECT_EQ(Platform().requests[0].in.size(), 4120u);
    EXPECT_EQ(Platform().requests[0].outSize, 4120u);
    EXPECT_EQ(data.Get()->Data()[4095], 0xFF);

    ClScriptedPlatform::failAllocationOf = 4120;
    EXPECT_EQ(GetSystemTables(0xF0000, 0, data.Get()), kNoMemory);
    EXPECT_EQ(PCIMMIOWriteStored(0xF0000, 0, data.Get()), kNoMemory);
    EXPECT_TRUE(Platform().Traced(16, "ERROR in OSGetSystemTables in os_malloc "));
    ClScriptedPlatform::failAllocationOf = 0;
    // Head and data together are more than a request can hold.
    ClBuffer hugest(0xFFFFFFFF, 0);
    EXPECT_EQ(GetSystemTables(0xF0000, 0, hugest.Get()), kNoMemory);
    EXPECT_EQ(Platform().requests.size(), 1u);
}

TEST_F(Requests, DynamicReadAsksNothing) {
    ClBuffer data({1, 2, 3});
    EXPECT_EQ(PCIMMIOReadDynamic(&kDynamic, data.Get()), kSuccess);
    EXPECT_EQ(data.Text(), "01 02 03");
    EXPECT_EQ(Platform().requests.size(), 0u);
}
