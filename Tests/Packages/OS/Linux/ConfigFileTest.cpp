// Which configuration files a process obeys, and which logs it opens, by Linux' rules of owners and modes.
#include "Packages/OS/ConfigFile.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "Packages/Debug/DebugInternal.h"
#include "Tests/Support/Linux/Processes.h"

class ClConfigFile : public testing::Test {
  protected:
    void SetUp() override {
        std::filesystem::remove_all(m_folder);
        std::filesystem::create_directory(m_folder);
        chmod(m_folder.c_str(), 0755);
    }
    void TearDown() override { std::filesystem::remove_all(m_folder); }

    // "" for a file that is obeyed, "none" for no file, otherwise the reason of the refusal.
    static std::string Refusal(const std::string& path) {
        const char* refusal = "unset";
        std::FILE* file = OpenConfigFile(path.c_str(), &refusal);
        if (file == nullptr) return refusal == nullptr ? "none" : refusal;
        std::fclose(file);
        return refusal == nullptr ? "" : refusal;
    }
    static bool IsWritten(const std::string& path, bool deviceToo) {
        std::FILE* log = OpenLogFile(path.c_str(), deviceToo);
        return log != nullptr && std::fputs("log", log) >= 0 && std::fclose(log) == 0;
    }

    // In a sticky folder, as the one for temporary files is.
    const std::filesystem::path m_folder = std::filesystem::temp_directory_path() / "quorlin-config-file";
    const std::string m_path = m_folder / "debug.conf";
};

TEST_F(ClConfigFile, OnlyPlainFilesCount) {
    EXPECT_EQ(Refusal(m_path), "none");
    EXPECT_EQ(Refusal(m_folder), "it is no plain file");
    ASSERT_EQ(mkfifo(m_path.c_str(), 0600), 0);
    EXPECT_EQ(Refusal(m_path), "it is no plain file");  // and returns, although nobody writes
    EXPECT_EQ(Refusal("/dev/zero"), "it is no plain file");
    std::filesystem::remove(m_path);
    std::ofstream(m_folder / "other") << "#";
    std::filesystem::create_symlink("other", m_path);
    EXPECT_EQ(Refusal(m_path), "it is a link");
}

TEST_F(ClConfigFile, FilesThatOthersCouldHaveWrittenAreRefused) {
    if (geteuid() != 0) GTEST_SKIP() << "only root can give files away";
    constexpr uid_t kRoot = 0, kUser = 1234, kOther = 1235, kNobody = 65534;
    constexpr const char *kOwner = "another user owns it", *kWritable = "others can write it",
                         *kFolderOwner = "another user owns its folder, or one above",
                         *kFolderWritable = "others can write its folder, or one above",
                         *kUnreadable = "it can't be read";
    const struct {
        uid_t owner;
        mode_t mode;
        uid_t folderOwner;
        mode_t folderMode;
        const char *toRoot, *toUser;  // the refusal to each
    } kCases[] = {
        {kRoot,  0644, kRoot,  0755,  "",              ""             },
        {kRoot,  0600, kRoot,  0755,  "",              kUnreadable    },
        {kUser,  0600, kUser,  0700,  kOwner,          ""             },
        {kRoot,  0644, kUser,  0755,  kFolderOwner,    ""             },
        {kUser,  0644, kRoot,  0755,  kOwner,          ""             },
        {kRoot,  0664, kRoot,  0755,  kWritable,       kWritable      },
        {kUser,  0646, kUser,  0755,  kOwner,          kWritable      },
        {kOther, 0644, kOther, 0755,  kOwner,          kOwner         },
        {kUser,  0644, kOther, 0755,  kOwner,          kFolderOwner   },
        {kRoot,  0644, kRoot,  0775,  kFolderWritable, kFolderWritable},
        {kRoot,  0644, kRoot,  01777, kFolderWritable, kFolderWritable},
    };
    std::ofstream(m_path) << "#";
    for (const auto& c : kCases) {
        ASSERT_EQ(chown(m_path.c_str(), c.owner, 0), 0);
        ASSERT_EQ(chmod(m_path.c_str(), c.mode), 0);
        ASSERT_EQ(chown(m_folder.c_str(), c.folderOwner, 0), 0);
        ASSERT_EQ(chmod(m_folder.c_str(), c.folderMode), 0);
        for (const auto& [user, expected] : {std::pair(kRoot, c.toRoot), std::pair(kUser, c.toUser)}) {
            const int result = InChild([&, user = user, expected = expected] {
                if (setresgid(user, user, user) != 0 || setresuid(user, user, user) != 0) return 2;
                return Refusal(m_path) == expected ? 0 : 1;
            });
            EXPECT_EQ(result, 0) << user << ": " << c.owner << ' ' << std::oct << c.mode << ' ' << c.folderMode;
        }
    }

    // Folders above count, too, except for sticky ones, where nobody can rename others' files.
    std::filesystem::create_directory(m_folder / "below");
    const std::string deep = m_folder / "below" / "debug.conf";
    std::ofstream(deep) << "#";
    ASSERT_EQ(chown(m_folder.c_str(), kRoot, 0), 0);
    for (const auto& [mode, expected] : {std::pair(0777u, kFolderWritable), std::pair(01777u, "")}) {
        ASSERT_EQ(chmod(m_folder.c_str(), mode), 0);
        EXPECT_EQ(Refusal(deep), expected);
    }

    // In a user namespace all users without a number have that of this user.
    ASSERT_EQ(chown(deep.c_str(), kNobody, 0), 0);
    EXPECT_EQ(InChild([&] { return BecomeNobody() && Refusal(deep) == kOwner ? 0 : 1; }), 0);

    // A process with another user's rights obeys none, and writes no log that its user names.
    ASSERT_EQ(chown(deep.c_str(), kRoot, 0), 0);
    EXPECT_EQ(InChild([&] {
                  if (setresuid(kUser, kRoot, kRoot) != 0 || !HasForeignRights()) return 1;
                  if (DebugUseConfigText("A:FileName<log>") != kNotSupported) return 2;
                  return Refusal(deep) == "this process has rights that its user doesn't have" ? 0 : 3;
              }),
              0);
    EXPECT_FALSE(HasForeignRights());
}

TEST_F(ClConfigFile, LogsAreNewOrPlainAndNoLinks) {
    const std::string target = m_folder / "target", link = m_folder / "link", log = m_folder / "log";
    std::ofstream(target) << "precious";
    std::filesystem::create_symlink("target", link);
    for (const bool deviceToo : {false, true}) {
        EXPECT_FALSE(IsWritten(link, deviceToo));
        EXPECT_FALSE(IsWritten(m_folder, deviceToo));
        EXPECT_FALSE(IsWritten(m_folder / "none" / "log", deviceToo));
        EXPECT_TRUE(IsWritten(log, deviceToo));
        std::ofstream(log) << "what was there before";  // at the second run
        EXPECT_EQ(IsWritten("/dev/null", deviceToo), deviceToo);
    }
    EXPECT_EQ(ReadWholeFile(target), "precious");
    EXPECT_TRUE(IsWritten(log, false));
    EXPECT_EQ(ReadWholeFile(log), "log");
    using std::filesystem::perms;
    EXPECT_EQ(std::filesystem::status(log).permissions(), perms::owner_read | perms::owner_write);

    // A stream of this process: the present content of its file stays.
    EXPECT_EQ(InChild([&] {
                  const int file = open(target.c_str(), O_WRONLY | O_APPEND);
                  dup2(file, STDERR_FILENO);
                  return IsWritten("/dev/stderr", true) && !IsWritten("/dev/stderr", false) ? 0 : 1;
              }),
              0);
    EXPECT_EQ(ReadWholeFile(target), "preciouslog");
}
