#include "Packages/OS/OSServices.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "Packages/OS/OS.h"

namespace fs = std::filesystem;

// Starts this program with one disabled test; detached if `process` is null.
static status_t StartSelf(const char* test, const std::vector<const char*>& environment, ProcessRecord_t* process) {
    static const std::string self = fs::absolute(testing::internal::GetArgvs()[0]).string();
    const std::string filter = std::string("--gtest_filter=OSServicesChild.DISABLED_") + test;
    const char* const arguments[] = {"skipped", filter.c_str(), "--gtest_also_run_disabled_tests", "--gtest_brief=1",
                                     nullptr};
    if (process == nullptr) return os_StartProcessDetached(self.c_str(), arguments + 1);
    return os_StartProcess(self.c_str(), arguments, environment.empty() ? nullptr : environment.data(), process);
}

TEST(OSServicesChild, DISABLED_WritesItsEnvironment) {
    std::ofstream(std::getenv("QUORLIN_FILE"))
        << std::getenv("QUORLIN_TEXT") << "|" << (std::getenv("HOME") == nullptr);
}
TEST(OSServicesChild, DISABLED_MakesAFile) { std::ofstream(fs::path(testing::TempDir()) / "quorlin-detached") << "x"; }
TEST(OSServicesChild, DISABLED_Waits) { std::this_thread::sleep_for(std::chrono::seconds(60)); }

class OSServices : public testing::Test {
  protected:
    void SetUp() override {
        m_folder = fs::path(testing::TempDir()) / "quorlin-os-services";
        fs::remove_all(m_folder);
        fs::create_directories(m_folder);
    }
    void TearDown() override { fs::remove_all(m_folder); }
    fs::path m_folder;
};

TEST_F(OSServices, ProcessGetsItsArgumentsAndOnlyItsEnvironment) {
    const std::string file = "QUORLIN_FILE=" + (m_folder / "written").string();
    ProcessRecord_t process = {};
    ASSERT_EQ(StartSelf("WritesItsEnvironment", {file.c_str(), "QUORLIN_TEXT=a b=c", nullptr}, &process), kSuccess);
    EXPECT_NE(process.ProcessNumber, 0u);
    EXPECT_EQ(os_WaitProcess(&process), kSuccess);
    EXPECT_EQ(process.Process, nullptr);
    std::ifstream written(m_folder / "written");
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(written), {}), "a b=c|1");
}

TEST_F(OSServices, DetachedProcessRuns) {
    const fs::path made = fs::path(testing::TempDir()) / "quorlin-detached";
    fs::remove(made);
    ASSERT_EQ(StartSelf("MakesAFile", {}, nullptr), kSuccess);
    std::error_code notYet;  // on Windows it may still be open
    bool isMade = false;
    for (int tries = 0; !isMade && tries < 600; ++tries) {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        isMade = fs::remove(made, notYet);
    }
    EXPECT_TRUE(isMade);
}

TEST_F(OSServices, ProcessIsKilledAtOnce) {
    uint64_t before = 0, after = 0;
    ASSERT_EQ(os_GetTimestampMs(&before), kSuccess);
    ProcessRecord_t process = {};
    ASSERT_EQ(StartSelf("Waits", {}, &process), kSuccess);
    EXPECT_EQ(os_KillProcess(&process), kSuccess);
    EXPECT_EQ(process.Process, nullptr);
    ASSERT_EQ(os_GetTimestampMs(&after), kSuccess);
    EXPECT_LT(after - before, 20'000u);
    EXPECT_NE(os_WaitProcess(&process), kSuccess) << "closed";
}

TEST_F(OSServices, CommandLineAndEnvironmentEndBelow1024Bytes) {
    constexpr status_t kFileNotFound = 2;
    const std::string fits(1018, 'a'), tooLong(1019, 'a'), environmentFits(1022, 'a'), environmentTooLong(1023, 'a');
    const struct {
        const char *what, *argument, *environment;
        status_t status;
    } kCases[] = {
        {"the longest line",     fits.c_str(),    nullptr,                    kFileNotFound},
        {"a longer line",        tooLong.c_str(), nullptr,                    kNoMemory    },
        {"the longest block",    nullptr,         environmentFits.c_str(),    kFileNotFound},
        {"a longer environment", nullptr,         environmentTooLong.c_str(), kNoMemory    },
    };
    for (const auto& c : kCases) {
        const char* const arguments[] = {"", c.argument, nullptr};
        const char* const environment[] = {c.environment, nullptr};
        ProcessRecord_t process = {};
        EXPECT_EQ(os_StartProcess("no-such-program.exe", arguments, environment, &process), c.status) << c.what;
        EXPECT_EQ(process.Process, nullptr) << c.what;
    }
    EXPECT_EQ(os_StartProcess("no-such-program.exe", nullptr, nullptr, nullptr), kNullPointer);
    EXPECT_EQ(os_StartProcessDetached("no-such-program.exe", nullptr), kFailure);
    EXPECT_EQ(os_StartProcessDetached(nullptr, nullptr), kFailure);
    EXPECT_EQ(os_KillProcess(nullptr), kNullPointer);
    EXPECT_EQ(os_WaitProcess(nullptr), kNullPointer);
}

TEST_F(OSServices, FindsFilesAndNoFolders) {
    char** names = nullptr;
    uint32_t count = 7;
    ASSERT_EQ(os_FindFiles(m_folder.string().c_str(), &names, &count), kSuccess);
    EXPECT_EQ(count, 0u);
    EXPECT_EQ(names, nullptr);
    std::vector<std::string> expected;
    for (int i = 0; i < 20; ++i) {
        expected.push_back("file " + std::to_string(10 + i) + ".bin");
        std::ofstream(m_folder / expected.back()) << i;
    }
    fs::create_directory(m_folder / "folder");
    ASSERT_EQ(os_FindFiles(m_folder.string().c_str(), &names, &count), kSuccess);
    std::vector<std::string> found(names, names + count);
    std::sort(found.begin(), found.end());
    EXPECT_EQ(found, expected);
    EXPECT_EQ(os_FreeStringArray(&names, count), kSuccess);
    EXPECT_EQ(names, nullptr);

    for (const std::string& refused : {(m_folder / "missing").string(), m_folder.string() + std::string(258, '/')})
        EXPECT_EQ(os_FindFiles(refused.c_str(), &names, &count), kFailure) << refused;
    EXPECT_EQ(os_FindFiles(nullptr, &names, &count), kFailure);
}

TEST_F(OSServices, GivesTheMachinesNamesMemoryAndFolder) {
    char* text = nullptr;
    for (status_t (*const get)(char**) : {os_GetOSName, os_GetMachineName}) {
        ASSERT_EQ(get(&text), kSuccess);
        EXPECT_NE(text[0], '\0');
        os_FreeBlock(text);
        EXPECT_EQ(get(nullptr), kBadValue);
    }
    text = nullptr;
    const char* const version = "SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion";
    const status_t read = os_ReadRegistryString(kLocalMachine, version, "ProductName", &text, nullptr);
    os_FreeBlock(std::exchange(text, nullptr));
    const status_t refused = read == kSuccess ? kFailure : kNotSupported;  // a system without a registry
    EXPECT_EQ(os_ReadRegistryString(kLocalMachine, "SOFTWARE\\NoSuchKey", "NoSuchValue", &text, nullptr), refused);
    EXPECT_EQ(os_ReadRegistryString(kLocalMachine, version, "NoSuchValue", &text, nullptr), refused);
    EXPECT_EQ(text, nullptr);
    uint64_t bytes = 0;
    ASSERT_EQ(os_GetMemorySize(&bytes), kSuccess);
    EXPECT_GE(bytes, uint64_t{64} << 20);  // bytes, not kilobytes
    const fs::path before = fs::current_path();
    const fs::path deep = m_folder / std::string(90, 'a') / std::string(90, 'b');
    fs::create_directories(deep);
    fs::current_path(deep);
    ASSERT_EQ(os_GetCurrentDirectory(&text), kSuccess);
    EXPECT_TRUE(fs::equivalent(text, deep)) << text;
    os_FreeBlock(text);
    fs::current_path(before);
}

TEST_F(OSServices, ThreadsMoveToEachProcessor) {
    GroupAffinity_t affinity = {};
    std::thread([&] {
        const uint32_t count = std::min(64u, std::thread::hardware_concurrency());
        for (uint32_t processor = 0; processor < count; ++processor) {
            EXPECT_EQ(os_GetProcessorAffinity(processor, &affinity), kSuccess);
            EXPECT_EQ(affinity.Mask, uint64_t{1} << processor);
            EXPECT_EQ(affinity.Group, 0);
            EXPECT_EQ(os_SetThreadAffinity(processor), kSuccess);
        }
    }).join();
    EXPECT_EQ(os_SetThreadAffinity(100'000), kFailure);
    EXPECT_EQ(os_GetProcessorAffinity(100'000, &affinity), kFailure);
    EXPECT_EQ(os_GetProcessorAffinity(0, nullptr), kNullPointer);
}

TEST_F(OSServices, TimeIsLocal) {
    char *text = nullptr, minute[32];
    LocalTime_t now = {};
    do {  // again if a minute ended in between
        os_FreeBlock(std::exchange(text, nullptr));
        ASSERT_EQ(os_GetDateTimeString(&text), kSuccess);
        ASSERT_EQ(os_GetLocalTime(&now), kSuccess);
    } while (std::atoi(text + 14) != now.Minute);
    os_snprintf(minute, sizeof minute, 31, "%02u/%02u/%04u %02u:%02u:", now.Month, now.Day, now.Year, now.Hour,
                now.Minute);
    EXPECT_EQ(std::string(text, 17), minute);
    EXPECT_EQ(std::string(text).size(), 19u);
    os_FreeBlock(text);
    EXPECT_EQ(os_GetDateTimeString(nullptr), kNullPointer);
    EXPECT_EQ(os_GetLocalTime(nullptr), kNullPointer);
}

TEST_F(OSServices, AppendedTextNeverLeavesItsBuffer) {
    char buffer[8] = "abc";
    EXPECT_EQ(os_strcat(buffer, 7, "defg"), nullptr);
    EXPECT_STREQ(buffer, "abc");
    EXPECT_EQ(os_strcat(buffer, 8, "defg"), buffer);
    EXPECT_STREQ(buffer, "abcdefg");
    EXPECT_EQ(os_strcat(buffer, 4, ""), nullptr) << "the text is longer than its buffer";
}
