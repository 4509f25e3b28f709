// What the hardware library's tests share: a library on a scripted machine, and tables in that machine's memory.
#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <span>
#include <string>
#include <vector>

#include "Packages/FERROXExternal/FERROXLib/FERROXLib.h"
#include "Packages/FERROXExternal/FERROXLib/Sources/WinFERROX.h"
#include "Tests/ScriptedWindows/ScriptedWindows.h"
#include "Tests/Support/Buffer.h"

// "0f a0": two digits for each byte.
inline std::string Hex(std::span<const uint8_t> bytes) {
    std::string text;
    char digits[4];
    for (const uint8_t byte : bytes) {
        std::snprintf(digits, sizeof(digits), "%02x ", byte);
        text += digits;
    }
    return text.substr(0, text.size() - !text.empty());
}

inline std::string Text(const ClBuffer& buffer) { return Hex(buffer.Bytes()); }

// An entry point and a DMI entry in physical memory, for the scan of the BIOS area.
inline constexpr uint32_t kTable = 0x9F000;

inline void Put(uint64_t address, std::initializer_list<size_t> bytes) {
    for (const size_t byte : bytes) Machine().memory[address++] = static_cast<uint8_t>(byte);
}

inline void PutEntry(uint64_t address, uint8_t minor = 8) {
    Put(address, {'_', 'S', 'M', '_', 0, 0x1F, 2, minor, 9, 10, 11, 12, 13, 14, 15, 16});
}

inline void PutDMI(uint64_t address, size_t length = 5, uint32_t table = kTable) {
    Put(address,
        {'_', 'D', 'M', 'I', '_', 0, length, length >> 8, table, table >> 8, table >> 16, table >> 24, 1, 0, 0x28});
}

// An entry of MCFG, as the table has it.
struct SegmentEntry_t {
    uint64_t base;
    uint16_t segment;
    uint8_t startBus, endBus;
    uint32_t reserved = 0xAAAAAAAA;
};
static_assert(sizeof(SegmentEntry_t) == 16);

// An MCFG table with these entries. `length` is the length that its header states; 0 means the true one.
inline std::vector<uint8_t> MCFG(const std::vector<SegmentEntry_t>& entries, uint32_t length = 0) {
    std::vector<uint8_t> table(44, 0xAA);
    for (const SegmentEntry_t& entry : entries) {
        const auto* bytes = reinterpret_cast<const uint8_t*>(&entry);
        table.insert(table.end(), bytes, bytes + sizeof entry);
    }
    if (length == 0) length = static_cast<uint32_t>(table.size());
    std::memcpy(&table[4], &length, sizeof length);
    return table;
}

// Starts with a machine that has the driver's file and nothing open, and expects nothing open at the end.
class ClMachineTest : public testing::Test {
  protected:
    void SetUp() override { NewMachine(); }
    void TearDown() override {
        while (FERROXTerminate() != kFailure) continue;
        unlockInstallFile();  // the end of a process closes it
        EXPECT_EQ(Machine().Open(), "");
        EXPECT_EQ(Machine().badCloses, 0);
        EXPECT_EQ(Machine().traceHandles, 0);
        EXPECT_FALSE(Machine().mutexHeld);
    }
};

// The same with the library open and no request noted yet.
class ClLibraryTest : public ClMachineTest {
  protected:
    void SetUp() override {
        ClMachineTest::SetUp();
        Open();
    }
    void Open() {
        ASSERT_EQ(FERROXInitialize(), kSuccess);
        Machine().requests.clear();
        Machine().lines.clear();
    }
};
