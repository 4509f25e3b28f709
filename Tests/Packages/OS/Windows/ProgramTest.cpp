// What the layer gives a program on Windows: new files for their owner only, and arguments as they were typed.
#include "Packages/OS/Program.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "Packages/OS/Windows/Windows.h"
#include "Tests/Support/Program.h"

namespace {

// The number of users besides the owner in a file's access list, without the system, which Wine adds to every list.
// -1 if the list can't be read or lets everybody in.
int OthersWithAccess(const std::string& path) {
    alignas(8) BYTE room[1024];
    alignas(8) BYTE systemRoom[SECURITY_MAX_SID_SIZE];
    DWORD size = 0, systemSize = sizeof systemRoom;
    if (!GetFileSecurityA(path.c_str(), OWNER_SECURITY_INFORMATION | DACL_SECURITY_INFORMATION, room, sizeof room,
                          &size) ||
        !CreateWellKnownSid(WinLocalSystemSid, nullptr, systemRoom, &systemSize))
        return -1;
    PSID owner = nullptr;
    PACL list = nullptr;
    BOOL isPresent = FALSE, isDefault = FALSE;
    if (!GetSecurityDescriptorOwner(room, &owner, &isDefault) ||
        !GetSecurityDescriptorDacl(room, &isPresent, &list, &isDefault) || list == nullptr)
        return -1;
    int others = 0;
    for (DWORD place = 0; place < list->AceCount; ++place) {
        void* entry = nullptr;
        if (!GetAce(list, place, &entry)) return -1;
        const auto* allowed = static_cast<ACCESS_ALLOWED_ACE*>(entry);
        if (allowed->Header.AceType != ACCESS_ALLOWED_ACE_TYPE) continue;
        PSID user = const_cast<DWORD*>(&allowed->SidStart);
        if (!EqualSid(user, owner) && !EqualSid(user, systemRoom)) ++others;
    }
    return others;
}

TEST(Program, NewFileIsForItsOwnerOnly) {
    const std::string file = testing::TempDir() + "owned", other = testing::TempDir() + "other";
    DeleteFileA(file.c_str());
    ASSERT_TRUE(CreateWholeFile(file, "text", 4));
    WriteFile("other", {});
    EXPECT_EQ(OthersWithAccess(file), 0);
    EXPECT_GT(OthersWithAccess(other), 0);
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
