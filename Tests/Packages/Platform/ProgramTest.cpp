// What the provider gives a program: files that are made new.
#include "Packages/Platform/Program.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>

namespace {

namespace fs = std::filesystem;

TEST(Program, ANewFileIsItsOwnersAndReplacesNothing) {
    const std::string folder = testing::TempDir() + "new-files";
    fs::remove_all(folder);
    fs::create_directory(folder);
    const std::string file = folder + "/file", link = folder + "/link";
    fs::create_symlink("nowhere", link);
    std::FILE* made = CreateNewFile(file);
    ASSERT_NE(made, nullptr);
    std::fclose(made);
    EXPECT_EQ(fs::status(file).permissions(), fs::perms::owner_read | fs::perms::owner_write);
    for (const std::string& taken : {file, link}) {
        errno = 0;
        EXPECT_EQ(CreateNewFile(taken), nullptr) << taken;
        EXPECT_EQ(errno, EEXIST) << taken;
    }
    EXPECT_FALSE(fs::exists(folder + "/nowhere"));
    EXPECT_TRUE(IsFolder(folder));
    EXPECT_FALSE(IsFolder(file));
    fs::remove_all(folder);
}

}  // namespace
