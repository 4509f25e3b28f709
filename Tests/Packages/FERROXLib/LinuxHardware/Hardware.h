// The Linux half of the hardware library, with files in place of what the kernel shows.
#pragma once

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "Packages/FERROXExternal/FERROXLib/FERROXLib.h"
#include "Tests/Support/Buffer.h"
#include "Tests/Support/Linux/Processes.h"

inline constexpr status_t kRefused = 0;

inline std::string Text(const ClBuffer& buffer) {
    const std::vector<uint8_t> bytes = buffer.Bytes();
    return {bytes.begin(), bytes.end()};
}

class Hardware : public testing::Test {
  protected:
    void SetUp() override { ASSERT_EQ(FERROXInitialize(), kSuccess); }
    void TearDown() override { EXPECT_EQ(FERROXTerminate(), kSuccess); }
};

class StandIns : public Hardware {
  protected:
    void SetUp() override {
        Hardware::SetUp();
        if (!ClFolderOver::IsPossible()) GTEST_SKIP() << "only root can have folders over those of the system";
        m_dev.emplace("/dev");
        m_pci.emplace("/sys/bus/pci");
        m_firmware.emplace("/sys/firmware");
        m_dev->Write("null", "");
    }

    std::optional<ClFolderOver> m_dev, m_pci, m_firmware;
};
