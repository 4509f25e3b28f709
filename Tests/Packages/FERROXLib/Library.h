// What the hardware library's tests share: a library on a scripted machine, and a caller's buffer.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Packages/FERROXExternal/FERROXLib/FERROXLib.h"
#include "Packages/FERROXExternal/FERROXLib/Sources/WinFERROX.h"
#include "Tests/ScriptedWindows/ScriptedWindows.h"
#include "Tests/Support/Buffer.h"

// "0f a0": two digits a byte.
inline std::string Hex(const uint8_t* bytes, size_t size) {
    std::string text;
    for (size_t index = 0; index < size; ++index) {
        char digits[4];
        std::snprintf(digits, sizeof(digits), "%02x ", bytes[index]);
        text += digits;
    }
    if (!text.empty()) text.pop_back();
    return text;
}

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

inline std::string Text(const ClBuffer& buffer) {
    const std::vector<uint8_t> bytes = buffer.Bytes();
    return Hex(bytes.data(), bytes.size());
}

// A machine with its driver's file, and nothing open before and after.
class ClMachineTest : public testing::Test {
  protected:
    void SetUp() override { NewMachine(); }
    void TearDown() override {
        while (FERROXTerminate() != kFailure) continue;
        unlockInstallFile();  // as the end of the process does
        EXPECT_EQ(Machine().Open(), "");
        EXPECT_EQ(Machine().badCloses, 0);
        EXPECT_EQ(Machine().traceHandles, 0);
        EXPECT_FALSE(Machine().mutexHeld);
    }
};

// The same with the library open, and its requests not yet noted.
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
