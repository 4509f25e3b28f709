// The operations of the library: the request that each one sends, byte by byte, and what it does with the answer.
#include <functional>
#include <utility>

#include "Tests/Packages/FERROXLib/Library.h"

namespace {

using Requests = ClLibraryTest;

// Calls an operation with the caller's record or buffer, and with the address or location in the requests below.
using Call_t = std::function<status_t(void* record)>;

template <class Record_t>
Call_t At(status_t (*call)(Record_t*)) {
    return [call](void* record) { return call(static_cast<Record_t*>(record)); };
}
Call_t At(status_t (*call)(uint32_t, CPUIDRecord_t*)) {
    return [call](void* record) { return call(7, static_cast<CPUIDRecord_t*>(record)); };
}
Call_t At(status_t (*call)(uint16_t, DataBuffer_t*)) {
    return [call](void* buffer) { return call(0x1234, static_cast<DataBuffer_t*>(buffer)); };
}
Call_t At(status_t (*call)(uint32_t, uint32_t, DataBuffer_t*)) {
    return [call](void* buffer) { return call(0x1234, 0x20, static_cast<DataBuffer_t*>(buffer)); };
}
Call_t At(status_t (*call)(uint64_t, uint32_t, DataBuffer_t*)) {
    return [call](void* buffer) { return call(0x1FED00000, 0x20, static_cast<DataBuffer_t*>(buffer)); };
}
Call_t At(status_t (*call)(const DynamicMMIORecord_t*, DataBuffer_t*)) {
    static constexpr DynamicMMIORecord_t kDynamic = {0xA1A2A3A4, 0x10, 0x40};
    return [call](void* buffer) { return call(&kDynamic, static_cast<DataBuffer_t*>(buffer)); };
}

const std::string kHead = "00 00 00 00 00 01 00 00 ";  // reserved, any processor
const std::string kPlace = kHead + "00 00 d0 fe 01 00 00 00 20 00 00 00 03 00 00 00 ";
const std::string kSum = kHead + "20 00 d0 fe 01 00 00 00 20 00 00 00 03 00 00 00 ";     // the offset is added already
const std::string kMapped = kHead + "20 00 49 e3 02 00 00 00 20 00 00 00 03 00 00 00 ";  // the location's registers
const std::string kMSR = "00 00 00 00 05 00 00 00 10 00 00 00 ";                         // processor 5, register 10h
const std::string kCPUID = "00 00 00 00 04 00 00 00 00 00 00 00 02 00 00 00 00 00 00 00";
const std::string kTimer = "01 00 00 00 ce 00 00 00 08 04 00 00 ";
const std::string kThree = "03 00 00 00 ";  // the size of the caller's buffer
const std::string kBuffer = kThree + "a0 a1 a2";

// In the order of the operations in HardwareServices_t. Memory reads as its address, a port as 90h and up.
const struct {
    const char* name;
    Call_t call;
    std::string record;  // of the caller, before the call
    std::string sent;    // code and bytes of the request
    std::string after;   // the caller's record after the answer
    status_t refused;    // the status when the driver refuses the request, with the error line
    const char* line;
} kOperations[] = {
  // clang-format off
    {"GetFERROXDriverVersion", At(GetFERROXDriverVersion), "4d 00 00 00", "80240004: ", "04 00 00 01",
     5, "OSGetFERROXDriverVersion ret =  0Bytes Returned = 0"},
    {"GetPCILibVersion", At(GetPCILibVersion), "4d 00 00 00", "80240098: ", "98 00 00 01",
     5, "OSGetPCILibVersion ret =  0Bytes Returned = 0"},
    {"GetIOLibVersion", At(GetIOLibVersion), "4d 00 00 00", "80240094: ", "94 00 00 01",
     5, "OSGetIOLibVersion ret =  0Bytes Returned = 0"},
    {"GetCPULibVersion", At(GetCPULibVersion), "4d 00 00 00", "80240090: ", "90 00 00 01",
     5, "OSGetCPULibVersion ret =  0Bytes Returned = 0"},
    {"PCIRead", At(PCIRead), kBuffer, "80240048: 00 00 00 00 34 12 00 00 20 00 00 00 04 00 00 00 00 00 00 00",
     kThree + "20 21 22", 0, "OSPCIRead ret = 0Bytes Returned0"},
    {"PCIExRead", At(PCIExRead), kBuffer, "80240114: " + kMapped + "00 00 00",
     kThree + "20 21 22", 0, "OSPCIMMIORead ret =  0Bytes Returned0"},
    {"PCIMMIORead", At(PCIMMIORead), kBuffer, "80240114: " + kSum + "00 00 00",
     kThree + "20 21 22", 0, "OSPCIMMIORead ret =  0Bytes Returned0"},
    {"PCIMMIOReadStored", At(PCIMMIOReadStored), kBuffer, "802400fc: " + kPlace + "00 00 00",
     kThree + "20 21 22", 0, "OSPCIMMIOReadStored ret =  0Bytes Returned0"},
    {"MMIOReadGPIO", At(MMIOReadGPIO), kBuffer, "80240104: " + kPlace + "00 00 00",
     kThree + "20 21 22", 0, "OSMMIOReadGPIO ret =  0Bytes Returned0"},
    {"PCIMMIOWriteStored", At(PCIMMIOWriteStored), kBuffer, "80240108: " + kPlace + "a0 a1 a2",
     kBuffer, 0, "OSPCIMMIOWriteStored ret =  0Bytes Returned0"},
    {"MMIOWriteGPIO", At(MMIOWriteGPIO), kBuffer, "80240110: " + kPlace + "a0 a1 a2",
     kBuffer, 0, "OSMMIOWriteGPIO ret =  0Bytes Returned0"},
    {"GetSystemTables", At(GetSystemTables), kBuffer, "80240118: " + kSum + "00 00 00",
     kThree + "20 21 22", 0, "OSGetSystemTables ret =  0Bytes Returned0"},
    {"PCIMMIOReadDynamic", At(PCIMMIOReadDynamic), kBuffer, "", kBuffer, 1, ""},  // the driver has no such request
    {"PCIMMIOWriteDynamic", At(PCIMMIOWriteDynamic), kBuffer,
     "8024010c: " + kHead + "a4 a3 a2 a1 10 00 00 00 40 00 00 00 03 00 00 00 a0 a1 a2",
     kBuffer, 0, "OSPCIMMIOWriteDynamic ret =  0Bytes Returned0"},
    {"ReadWakeupTimer", At(ReadWakeupTimer), kBuffer, "80240034: " + kHead + "34 12 00 00 03 00 00 00 00 00 00 00",
     kThree + "90 91 92", 0, "OSReadPort ret = 0Bytes Returned0"},
    {"ConfigureWakeUpTimer", At(ConfigureWakeUpTimer), kBuffer,
     "80244074: " + kHead + "34 12 00 00 03 00 00 00 a0 a1 a2 00", kBuffer, 0, "OSWritePort ret = 0Bytes Returned0"},
    {"ReadMSR", At(ReadMSR), kMSR + "04 03 02 01 08 07 06 05", "80240040: " + kMSR + "04 03 02 01 08 07 06 05",
     kMSR + "44 33 22 11 88 77 66 55", 0, "OSReadMSR ret =  0 Bytes Returned0"},
    {"WriteMSR", At(WriteMSR), kMSR + "04 03 02 01 08 07 06 05", "80244080: " + kMSR + "04 03 02 01 08 07 06 05",
     kMSR + "04 03 02 01 08 07 06 05", 0, "OSWriteMSR ret =  0 Bytes Returned0"},
    {"ReadCPUID", At(ReadCPUID), kCPUID, "80240000: 00 00 00 00 07 00 00 00 00 00 00 00 00 00 00 00 " + kCPUID +
     " 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00",
     "00 00 00 00 a9 06 03 00 04 00 00 00 ff ff ff 7f 02 00 00 00", 0, "OSReadCPUID ret =  0Bytes Returned0"},
    {"CalcFreqNonTurbo", At(CalcFreqNonTurbo), kTimer + "00 00 00 00 00 00 00 00",
     "8024009c: " + kTimer + "00 00 00 00 00 00 00 00", kTimer + "60 09 00 00 00 00 00 00",
     5, "OSDriverCalcNonTurbo ret =  0Bytes Returned0"},
  // clang-format on
};

std::vector<uint8_t> FromHex(const std::string& text) {
    std::vector<uint8_t> bytes;
    for (size_t place = 0; place < text.size(); place += 3)
        bytes.push_back(static_cast<uint8_t>(std::stoi(text.substr(place, 2), nullptr, 16)));
    return bytes;
}

// The last request, "code: bytes". As many bytes go in as come back; a version alone comes back for nothing.
std::string Sent() {
    if (Machine().requests.empty()) return "";
    const DeviceRequest_t& request = Machine().requests.back();
    EXPECT_EQ(request.outSize, request.in.empty() ? 4 : request.in.size());
    char code[16];
    std::snprintf(code, sizeof(code), "%08x: ", static_cast<unsigned>(request.code));
    return code + Hex(request.in);
}

}  // namespace

TEST_F(Requests, EachOperationSendsOneAndReturnsItsAnswer) {
    for (const auto& c : kOperations) {
        SCOPED_TRACE(c.name);
        while (FERROXTerminate() == kSuccess) continue;
        NewMachine().tables["MCFG"] = MCFG(std::vector(1, SegmentEntry_t{0x2E0000000, 0, 0, 0x7F}));
        Open();
        std::vector<uint8_t> record = FromHex(c.record);
        EXPECT_EQ(c.call(nullptr), kNullPointer);
        EXPECT_EQ(c.call(record.data()), kSuccess);
        EXPECT_EQ(Machine().requests.size(), c.sent.empty() ? 0u : 1u);
        EXPECT_EQ(Sent(), c.sent);
        EXPECT_EQ(Hex(record), c.after);
        EXPECT_TRUE(Machine().lines.front().level == 1 && Machine().lines.front().text == c.name);
        EXPECT_TRUE(Machine().lines.back().level == 32 && Machine().lines.back().text == c.name);

        // A refused request, and one to a closed library, changes nothing.
        record = FromHex(c.record);
        Machine().failCalls = {"DeviceIoControl#3"};  // the hypervisor test was the first one
        for (const bool isOpen : {true, false}) {
            Machine().lines.clear();
            Machine().requests.clear();
            EXPECT_EQ(c.call(record.data()), c.refused);
            EXPECT_EQ(Hex(record), c.record);
            EXPECT_EQ(Machine().requests.size(), 0u);
            EXPECT_TRUE(c.sent.empty() || !isOpen || Machine().Traced(16, std::string("ERROR in ") + c.line));
            EXPECT_EQ(FERROXTerminate(), isOpen ? kSuccess : kFailure);
        }
    }
}

TEST(Hardware, OperationsThatTheMachineLacksAreNotSupported) {
    const HardwareServices_t empty = {};
    UseHardware(empty);
    EXPECT_EQ(FERROXInitialize(), kNotSupported);
    for (const auto& c : kOperations) {
        std::vector<uint8_t> record = FromHex(c.record);
        EXPECT_EQ(c.call(record.data()), kNotSupported) << c.name;
    }
    DataBuffer_t* table = nullptr;
    EXPECT_EQ(GetACPITable("MCFG", &table), kFailure);
    UseHardware(kThisHardware);
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
        for (const auto& request : Machine().requests) words.push_back(request.Number(8, 4));
        EXPECT_EQ(words, c.words) << c.what;
    }
    // Words that were read before one is refused are in the buffer.
    ClBuffer buffer(3);
    Machine().failCall = Machine().calls.size() + 2;
    EXPECT_EQ(PCIRead(0, 2, buffer.Get()), 0u);
    EXPECT_EQ(Text(buffer), "02 03 ee");
}

TEST_F(Requests, ProcessorNumbers) {
    CPUIDRecord_t record = {};
    for (const uint32_t number : {7u, 8u, 255u, 256u, 257u})
        EXPECT_EQ(ReadCPUID(number, &record), number == 7 || number == 256 ? kSuccess : kBadValue) << number;
    EXPECT_TRUE(Machine().Traced(2, "Number of logical processors : 8"));
}

TEST_F(Requests, NoRequestIsAsLargeAs4GiB) {
    ClBuffer hugest(0xFFFFFFFF, 0);
    EXPECT_EQ(GetSystemTables(0xF0000, 0, hugest.Get()), kNoMemory);
    EXPECT_EQ(PCIMMIOWriteStored(0xF0000, 0, hugest.Get()), kNoMemory);
    EXPECT_TRUE(Machine().Traced(16, "ERROR in OSGetSystemTables in os_malloc "));
    EXPECT_EQ(Machine().requests.size(), 0u);
}
