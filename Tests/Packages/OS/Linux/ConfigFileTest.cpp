// Which configuration files a process obeys. The rules of owners and modes, and pipes in a folder, are Linux's own:
// hence the POSIX calls.
#include "Packages/OS/ConfigFile.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

class ClConfigFile : public testing::Test {
  protected:
    void SetUp() override {
        std::filesystem::remove_all(m_folder);
        std::filesystem::create_directory(m_folder);
        chmod(m_folder.c_str(), 0755);
    }
    void TearDown() override { std::filesystem::remove_all(m_folder); }

    static bool IsOpened(const std::string& path) {
        FILE* file = OpenConfigFile(path.c_str());
        if (file == nullptr) return false;
        std::fclose(file);
        return true;
    }

    const std::filesystem::path m_folder = std::filesystem::temp_directory_path() / "quorlin-config-file";
    const std::string m_path = m_folder / "debug.conf";
};

TEST_F(ClConfigFile, OnlyRegularFilesCount) {
    EXPECT_FALSE(IsOpened(m_path));
    EXPECT_FALSE(IsOpened(m_folder));
    ASSERT_EQ(mkfifo(m_path.c_str(), 0600), 0);
    EXPECT_FALSE(IsOpened(m_path));  // and returns, though nobody writes
    EXPECT_FALSE(IsOpened("/dev/zero"));
}

TEST_F(ClConfigFile, RootObeysNoFileThatOthersCouldHaveWritten) {
    if (geteuid() != 0) GTEST_SKIP() << "only root can give files away";
    constexpr uid_t kRoot = 0, kOther = 65534;
    const struct {
        uid_t owner;
        mode_t mode;
        bool byRoot, byOther;
    } kCases[] = {
        {kRoot,  0644, true,  true },
        {kRoot,  0600, true,  false}, // not readable
        {kRoot,  0664, false, true },
        {kRoot,  0646, false, true },
        {kOther, 0644, false, true },
        {kOther, 0400, false, true },
    };
    std::ofstream(m_path) << "#";
    for (const auto& c : kCases) {
        ASSERT_EQ(chown(m_path.c_str(), c.owner, 0), 0);
        ASSERT_EQ(chmod(m_path.c_str(), c.mode), 0);
        EXPECT_EQ(IsOpened(m_path), c.byRoot) << c.owner << ' ' << std::oct << c.mode;
        ASSERT_EQ(seteuid(kOther), 0);
        const bool byOther = IsOpened(m_path);
        ASSERT_EQ(seteuid(kRoot), 0);
        EXPECT_EQ(byOther, c.byOther) << c.owner << ' ' << std::oct << c.mode;
    }
}
