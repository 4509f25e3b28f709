// Files by Windows' access lists and renames, and the arguments of a program as they were typed.
#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "Packages/OS/ConfigFile.h"
#include "Packages/OS/Program.h"
#include "Packages/OS/Windows/Windows.h"
#include "Tests/Support/Program.h"

#include <aclapi.h>
#include <sddl.h>

namespace {

namespace fs = std::filesystem;

class Files : public testing::Test {
  protected:
    void SetUp() override {
        fs::remove_all(m_folder);
        fs::create_directory(m_folder);
        HANDLE token;
        ASSERT_TRUE(OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token));
        DWORD size;
        ASSERT_TRUE(GetTokenInformation(token, TokenUser, m_user, sizeof m_user, &size));
        CloseHandle(token);
    }
    void TearDown() override { fs::remove_all(m_folder); }

    // Gives the user all rights, and everybody the given ones.
    void SetAccess(const std::string& path, const char* everybodys) {
        char* user = nullptr;
        ASSERT_TRUE(ConvertSidToStringSidA(reinterpret_cast<TOKEN_USER*>(m_user)->User.Sid, &user));
        const std::string text = std::string("D:P(A;;FA;;;") + user + ")(A;;" + everybodys + ";;;WD)";
        LocalFree(user);
        PSECURITY_DESCRIPTOR facts;
        ASSERT_TRUE(
            ConvertStringSecurityDescriptorToSecurityDescriptorA(text.c_str(), SDDL_REVISION_1, &facts, nullptr));
        EXPECT_TRUE(SetFileSecurityA(path.c_str(), DACL_SECURITY_INFORMATION, facts));
        LocalFree(facts);
    }
    static std::string Refusal(const std::string& path) {
        const char* refusal = nullptr;
        std::FILE* file = OpenConfigFile(path.c_str(), &refusal);
        if (file != nullptr) std::fclose(file);
        return refusal != nullptr ? refusal : file != nullptr ? "" : "none";
    }

    static bool IsForEverybody(const std::string& path) {
        alignas(8) char facts[1024];
        DWORD size;
        char* text = nullptr;
        EXPECT_TRUE(GetFileSecurityA(path.c_str(), DACL_SECURITY_INFORMATION, facts, sizeof facts, &size));
        EXPECT_TRUE(ConvertSecurityDescriptorToStringSecurityDescriptorA(facts, SDDL_REVISION_1,
                                                                         DACL_SECURITY_INFORMATION, &text, nullptr));
        const bool isForEverybody = std::string(text).find(";;;WD)") != std::string::npos;
        LocalFree(text);
        return isForEverybody;
    }

    const fs::path m_folder = fs::temp_directory_path() / "quorlin-files", m_below = m_folder / "below";
    alignas(TOKEN_USER) char m_user[sizeof(TOKEN_USER) + SECURITY_MAX_SID_SIZE];
};

TEST_F(Files, FilesThatOthersCouldHaveWrittenAreRefused) {
    const std::string path = (m_below / "debug.conf").string();
    EXPECT_EQ(Refusal(path), "none");
    fs::create_directory(m_below);
    EXPECT_EQ(Refusal(path), "none");
    EXPECT_EQ(Refusal(m_below.string()), "it can't be read");
    std::ofstream(path) << "#";
    const struct {
        const char *file, *folder, *above, *refusal;
    } kCases[] = {
        {"FR", "FRFX", "FRFX", ""                                         },
        {"FA", "FRFX", "FRFX", "others can write it"                      },
        {"FW", "FRFX", "FRFX", "others can write it"                      },
        {"FR", "FA",   "FRFX", "others can write its folder, or one above"},
        {"FR", "FRFX", "FA",   "others can write its folder, or one above"},
    };
    for (const auto& c : kCases) {
        SetAccess(path, c.file);
        SetAccess(m_below.string(), c.folder);
        SetAccess(m_folder.string(), c.above);
        EXPECT_EQ(Refusal(path), c.refusal) << c.file << ' ' << c.folder << ' ' << c.above;
    }
}

TEST_F(Files, LogsAreNewOrPlain) {
    const std::string log = (m_folder / "log").string();
    for (const char* text : {"longer", "log"}) {
        std::FILE* file = OpenLogFile(log.c_str(), false);
        ASSERT_NE(file, nullptr);
        std::fputs(text, file);
        std::fclose(file);
        EXPECT_EQ(ReadWholeFile(log), text);
    }
    EXPECT_EQ(OpenLogFile(m_folder.string().c_str(), true), nullptr);
    EXPECT_EQ(OpenLogFile("NUL", false), nullptr);
    std::FILE* device = OpenLogFile("NUL", true);
    ASSERT_NE(device, nullptr);
    std::fclose(device);
}

TEST_F(Files, NewFilesAreWholeForTheirOwnerAndReplaceNothing) {
    const std::string name = (m_folder / "new").string(), bytes(3u << 20, 'x');
    EXPECT_TRUE(CreateWholeFile(name, bytes.data(), bytes.size()));
    EXPECT_EQ(ReadWholeFile(name), bytes);
    EXPECT_FALSE(IsForEverybody(name));
    EXPECT_TRUE(IsForEverybody(WriteFile("other", {})));
    EXPECT_FALSE(CreateWholeFile(name, "other", 5));
    EXPECT_EQ(errno, EEXIST);
    EXPECT_EQ(fs::file_size(name), bytes.size());
    EXPECT_FALSE(CreateWholeFile((m_folder / "none" / "new").string(), "other", 5));
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(std::distance(fs::directory_iterator(m_folder), fs::directory_iterator()), 1);
}

TEST_F(Files, PlainFilesAreReplacedForEverybody) {
    const std::string name = (m_folder / "file").string();
    const auto pieces = [](const AppendBytes_t& append) { append("ne", 2) && append("w", 1); };
    EXPECT_TRUE(ReplaceWholeFile(name, [](const AppendBytes_t& append) { append("longer", 6); }));
    EXPECT_TRUE(ReplaceWholeFile(name, pieces));
    EXPECT_EQ(ReadWholeFile(name), "new");
    EXPECT_TRUE(IsForEverybody(name));
    EXPECT_FALSE(ReplaceWholeFile(m_folder.string(), pieces));
    EXPECT_EQ(errno, EEXIST);
    EXPECT_FALSE(ReplaceWholeFile((m_folder / "none" / "file").string(), pieces));
    EXPECT_EQ(errno, ENOENT);
    // Open without sharing.
    const HANDLE open = CreateFileW((m_folder / "file").c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    EXPECT_FALSE(ReplaceWholeFile(name, pieces));
    CloseHandle(open);
    EXPECT_EQ(ReadWholeFile(name), "new");
    EXPECT_EQ(std::distance(fs::directory_iterator(m_folder), fs::directory_iterator()), 1);
}

TEST_F(Files, NewFoldersAreWholeForTheirOwnerAndReplaceNothing) {
    const std::string name = (m_folder / "new").string();
    const std::vector<uint8_t> bytes(3u << 20, 'x');
    // Returns 0, or errno.
    const auto create = [&](const std::string& path) {
        ClNewFolder folder(path);
        const size_t first = folder.AddFile("first"), second = folder.AddFile("second");
        folder.Append(first, bytes);
        for (const char* piece : {"xx", "yyy"})
            folder.Append(second, {reinterpret_cast<const uint8_t*>(piece), std::strlen(piece)});
        return folder.Finish() ? 0 : folder.Problem();
    };
    EXPECT_EQ(create(name + "\\"), 0);
    EXPECT_EQ(ReadWholeFile(name + "/second"), "xxyyy");
    EXPECT_EQ(fs::file_size(name + "/first"), bytes.size());
    EXPECT_FALSE(IsForEverybody(name + "/first"));
    EXPECT_EQ(create(name), EEXIST);
    EXPECT_EQ(create((m_folder / "none" / "new").string()), ENOENT);
    EXPECT_EQ(std::distance(fs::directory_iterator(m_folder), fs::directory_iterator()), 1);
}

TEST(Program, TakesArgumentsAsTheyWereTyped) {
    const std::string errors = testing::TempDir() + "typed";
    const std::string program = QUORLIN_PROGRAM;
    const std::wstring command = std::wstring(program.begin(), program.end()) + LR"( --image "a \"b\" \\ ж \\" 2>)" +
                                 std::wstring(errors.begin(), errors.end());
    EXPECT_NE(_wsystem(command.c_str()), 0);
    EXPECT_NE(ReadWholeFile(errors).find(R"(a "b" \\ ж \:)"), std::string::npos) << ReadWholeFile(errors);
}

}  // namespace
