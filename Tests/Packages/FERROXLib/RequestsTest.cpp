// The requests that the driver gets, byte by byte, and what becomes of its answers.
#include <functional>

#include "Tests/Packages/FERROXLib/Library.h"

namespace {

using Requests = ClLibraryTest;

constexpr uint64_t kBar = 0x00000001FED00000;

// What the driver got last: "code: bytes". As many bytes go in as come back.
std::string Sent() {
    const DeviceRequest_t& request = Machine().requests.back();
    EXPECT_EQ(request.in.size(), request.outSize);
    char code[16];
    std::snprintf(code, sizeof(code), "%08x: ", static_cast<unsigned>(request.code));
    return code + Hex(request.in.data(), request.in.size());
}

template <typename Record>
std::string Text(const Record& record) {
    return Hex(reinterpret_cast<const uint8_t*>(&record), sizeof(record));
}

}  // namespace

TEST_F(Requests, OfVersions) {
    std::deque<uint32_t> codes = {0x80240004, 0x80240090, 0x80240094, 0x80240098};
    for (const auto& ask : {GetFERROXDriverVersion, GetCPULibVersion, GetIOLibVersion, GetPCILibVersion}) {
        uint32_t version = 0;
        EXPECT_EQ(ask(&version), kSuccess);
        EXPECT_EQ(version, 0x01000000 | (codes.front() & 0xFF));
        const DeviceRequest_t& request = Machine().requests.back();
        EXPECT_EQ(request.code, codes.front());
        EXPECT_EQ(request.in.size(), 0u);
        EXPECT_EQ(request.outSize, 4u);
        codes.pop_front();
    }
}

TEST_F(Requests, OfMemory) {
    const std::string kHead = "00 00 00 00 00 01 00 00 ";  // reserved, any processor
    const std::string kBarAlone = kHead + "00 00 d0 fe 01 00 00 00 20 00 00 00 03 00 00 00 ";
    const std::string kBarAndOffset = kHead + "20 00 d0 fe 01 00 00 00 20 00 00 00 03 00 00 00 ";
    const struct {
        status_t (*move)(uint64_t, uint32_t, DataBuffer_t*);
        std::string sent;
        const char* after;  // in the caller's buffer; memory reads as its address
    } kCases[] = {
        {PCIMMIORead,        "80240114: " + kBarAndOffset + "00 00 00", "20 21 22"},
        {GetSystemTables,    "80240118: " + kBarAndOffset + "00 00 00", "20 21 22"},
        {PCIMMIOReadStored,  "802400fc: " + kBarAlone + "00 00 00",     "20 21 22"},
        {MMIOReadGPIO,       "80240104: " + kBarAlone + "00 00 00",     "20 21 22"},
        {PCIMMIOWriteStored, "80240108: " + kBarAlone + "a0 a1 a2",     "a0 a1 a2"},
        {MMIOWriteGPIO,      "80240110: " + kBarAlone + "a0 a1 a2",     "a0 a1 a2"},
    };
    for (const auto& c : kCases) {
        ClBuffer buffer = {0xA0, 0xA1, 0xA2};
        EXPECT_EQ(c.move(kBar, 0x20, buffer.Get()), kSuccess) << c.sent;
        EXPECT_EQ(Sent(), c.sent);
        EXPECT_EQ(Text(buffer), c.after) << c.sent;
    }
    // The caller's record takes the place of address and offset.
    const DynamicMMIORecord_t dynamic = {0xA1A2A3A4, 0x10, 0x40};
    ClBuffer buffer = {0xA0, 0xA1, 0xA2};
    EXPECT_EQ(PCIMMIOWriteDynamic(&dynamic, buffer.Get()), kSuccess);
    EXPECT_EQ(Sent(), "8024010c: " + kHead + "a4 a3 a2 a1 10 00 00 00 40 00 00 00 03 00 00 00 a0 a1 a2");
}

TEST_F(Requests, OfPorts) {
    ClBuffer buffer = {0xA0, 0xA1, 0xA2};
    EXPECT_EQ(ConfigureWakeUpTimer(0xCF8, buffer.Get()), kSuccess);
    EXPECT_EQ(Sent(), "80244074: 00 00 00 00 00 01 00 00 f8 0c 00 00 03 00 00 00 a0 a1 a2 00");
    EXPECT_EQ(ReadWakeupTimer(0x1234, buffer.Get()), kSuccess);
    EXPECT_EQ(Sent(), "80240034: 00 00 00 00 00 01 00 00 34 12 00 00 03 00 00 00 00 00 00 00");
    EXPECT_EQ(Text(buffer), "90 91 92");
}

TEST_F(Requests, OfAProcessor) {
    MSRRecord_t msr = {0, 5, 0x10, 0x01020304, 0x05060708};
    EXPECT_EQ(WriteMSR(&msr), kSuccess);
    EXPECT_EQ(Sent(), "80244080: 00 00 00 00 05 00 00 00 10 00 00 00 04 03 02 01 08 07 06 05");
    EXPECT_EQ(ReadMSR(&msr), kSuccess);
    EXPECT_EQ(Sent(), "80240040: 00 00 00 00 05 00 00 00 10 00 00 00 04 03 02 01 08 07 06 05");
    EXPECT_EQ(Text(msr), "00 00 00 00 05 00 00 00 10 00 00 00 44 33 22 11 88 77 66 55");

    CPUIDRecord_t cpuid = {0, 4, 0, 2, 0};
    EXPECT_EQ(ReadCPUID(7, &cpuid), kSuccess);
    EXPECT_EQ(Sent(),
              "80240000: 00 00 00 00 07 00 00 00 00 00 00 00 00 00 00 00 "
              "00 00 00 00 04 00 00 00 00 00 00 00 02 00 00 00 00 00 00 00 "
              "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00");
    EXPECT_EQ(Text(cpuid), "00 00 00 00 a9 06 03 00 04 00 00 00 ff ff ff 7f 02 00 00 00");

    NonTurboRecord_t nonTurbo = {1, 0xCE, 0x408, {}};
    EXPECT_EQ(CalcFreqNonTurbo(&nonTurbo), kSuccess);
    EXPECT_EQ(Sent(), "8024009c: 01 00 00 00 ce 00 00 00 08 04 00 00 00 00 00 00 00 00 00 00");
    EXPECT_EQ(Text(nonTurbo), "01 00 00 00 ce 00 00 00 08 04 00 00 60 09 00 00 00 00 00 00");
}

TEST_F(Requests, FailuresAreToldAndChangeNothing) {
    static ClBuffer buffer(3);
    static uint32_t word = 77;
    static MSRRecord_t msr = {0, 0, 0x10, 1, 2};
    static CPUIDRecord_t cpuid = {0, 7, 0, 0, 0};
    static NonTurboRecord_t nonTurbo;
    const struct {
        const char* line;  // behind "ERROR in "
        status_t status;
        std::function<status_t()> call;
    } kCases[] = {
        {"OSGetFERROXDriverVersion ret =  0Bytes Returned = 0", 5, [] { return GetFERROXDriverVersion(&word); }           },
        {"OSGetPCILibVersion ret =  0Bytes Returned = 0",       5, [] { return GetPCILibVersion(&word); }                 },
        {"OSPCIRead ret = 0Bytes Returned0",                    0, [] { return PCIRead(0, 0, buffer.Get()); }             },
        {"OSPCIMMIORead ret =  0Bytes Returned0",               0, [] { return PCIMMIORead(kBar, 0, buffer.Get()); }      },
        {"OSGetSystemTables ret =  0Bytes Returned0",           0, [] { return GetSystemTables(kBar, 0, buffer.Get()); }  },
        {"OSMMIOWriteGPIO ret =  0Bytes Returned0",             0, [] { return MMIOWriteGPIO(kBar, 0, buffer.Get()); }    },
        {"OSReadPort ret = 0Bytes Returned0",                   0, [] { return ReadWakeupTimer(0x70, buffer.Get()); }     },
        {"OSWritePort ret = 0Bytes Returned0",                  0, [] { return ConfigureWakeUpTimer(0x70, buffer.Get()); }},
        {"OSReadMSR ret =  0 Bytes Returned0",                  0, [] { return ReadMSR(&msr); }                           },
        {"OSWriteMSR ret =  0 Bytes Returned0",                 0, [] { return WriteMSR(&msr); }                          },
        {"OSReadCPUID ret =  0Bytes Returned0",                 0, [] { return ReadCPUID(kAnyProcessor, &cpuid); }        },
        {"OSDriverCalcNonTurbo ret =  0Bytes Returned0",        5, [] { return CalcFreqNonTurbo(&nonTurbo); }             },
    };
    int number = 1;  // the hypervisor test was the first request
    for (const auto& c : kCases) {
        Machine().failCalls = {"DeviceIoControl#" + std::to_string(++number)};
        EXPECT_EQ(c.call(), c.status) << c.line;
        EXPECT_TRUE(Machine().Traced(16, std::string("ERROR in ") + c.line)) << c.line;
    }
    EXPECT_EQ(Text(buffer), "ee ee ee");
    EXPECT_EQ(word, 77u);
    EXPECT_EQ(msr.HiContent, 1u);
    EXPECT_EQ(cpuid.Eax, 7u);
    // All but this one: the word that came is in the buffer when the next one doesn't come.
    Machine().failCalls = {"DeviceIoControl#" + std::to_string(number + 2)};
    EXPECT_EQ(PCIRead(0, 2, buffer.Get()), 0u);
    EXPECT_EQ(Text(buffer), "02 03 ee");
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
        Machine().requests.clear();
        ASSERT_EQ(PCIRead(0x1234, c.offset, data.Get()), kSuccess) << c.what;
        EXPECT_EQ(Text(data), c.text) << c.what;
        std::vector<uint64_t> words;
        for (const auto& request : Machine().requests) {
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
    Machine().hypervisorECX = 0x80000000;
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
        Machine().requests.clear();
        EXPECT_EQ(PCIExRead(c.location, c.offset, data.Get()), c.status) << c.offset;
        EXPECT_EQ(Machine().requests.size(), c.status == kSuccess ? 1u : 0u) << c.offset;
        for (const auto& request : Machine().requests) EXPECT_EQ(request.code, 0x802400F4u);
    }
    EXPECT_TRUE(Machine().Traced(2, "HyperV enabled."));
    EXPECT_FALSE(Machine().Called("GetSystemFirmwareTable"));
}

TEST_F(Requests, ProcessorNumbers) {
    CPUIDRecord_t record = {};
    for (const uint32_t number : {7u, 8u, 255u, 256u, 257u})
        EXPECT_EQ(ReadCPUID(number, &record), number == 7 || number == 256 ? kSuccess : kBadValue) << number;
    EXPECT_TRUE(Machine().Traced(2, "Number of logical processors : 8"));
}

TEST_F(Requests, MemoryBlock) {
    ClBuffer data(4096);
    ASSERT_EQ(GetSystemTables(0xF0000, 0x1000, data.Get()), kSuccess);
    EXPECT_EQ(Machine().requests[0].in.size(), 4120u);
    EXPECT_EQ(Machine().requests[0].outSize, 4120u);
    EXPECT_EQ(data.Get()->Data()[4095], 0xFF);

    ClScriptedWindows::failAllocationOf = 4120;
    EXPECT_EQ(GetSystemTables(0xF0000, 0, data.Get()), kNoMemory);
    EXPECT_EQ(PCIMMIOWriteStored(0xF0000, 0, data.Get()), kNoMemory);
    EXPECT_TRUE(Machine().Traced(16, "ERROR in OSGetSystemTables in os_malloc "));
    ClScriptedWindows::failAllocationOf = 0;
    // Head and data together are more than a request can hold.
    ClBuffer hugest(0xFFFFFFFF, 0);
    EXPECT_EQ(GetSystemTables(0xF0000, 0, hugest.Get()), kNoMemory);
    EXPECT_EQ(Machine().requests.size(), 1u);
}

TEST_F(Requests, DynamicReadAsksNothing) {
    ClBuffer data({1, 2, 3});
    const DynamicMMIORecord_t dynamic = {1, 0x10, 0x40};
    EXPECT_EQ(PCIMMIOReadDynamic(&dynamic, data.Get()), kSuccess);
    EXPECT_EQ(Text(data), "01 02 03");
    EXPECT_EQ(Machine().requests.size(), 0u);
}
