// What the provider gives a program: files that are made new.
#include "Packages/Platform/Program.h"

#include <cpuid.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>

#include "Tests/Support/Program.h"

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

// The whole way from the shell to the hardware, by the two operations that need no rights.
TEST(Program, ReadsHardwareFromTheShell) {
    unsigned eax, ebx, ecx, edx;
    __cpuid(0, eax, ebx, ecx, edx);
    char text[64];
    std::snprintf(text, sizeof text, "eax %08x ebx %08x ecx %08x edx %08x\n", eax, ebx, ecx, edx);
    EXPECT_EQ(RunQuorlin("hw cpuid 0").output, text);
    // As on the bus, what isn't there reads as ones.
    if (!IsFolder("/sys/bus/pci/devices") || IsFolder("/sys/bus/pci/devices/0000:ff:1f.7"))
        GTEST_SKIP() << "no PCI bus with a free place";
    EXPECT_EQ(RunQuorlin("hw pci 0000:ff:1f.7 2 5").output, "ff ff ff ff ff\n");
}

}  // namespace
