// A debug.conf in the working folder, as a user meets it.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "Tests/Support/Program.h"
#include "Tests/Support/Structures.h"

TEST(Trace, ADebugConfMakesALogOfTheWalk) {
    const auto table =
        TableOf({ClStructureBuilder(3, 0x15), ClStructureBuilder(13, 0x16), ClStructureBuilder(17, 0x28)});
    const std::string arguments = "--format lines --type 3 --image " + WriteFile("trace.bin", table);
    const auto home = std::filesystem::current_path();
    const auto folder = std::filesystem::path(testing::TempDir()) / "quorlin-trace";
    std::filesystem::remove_all(folder);
    std::filesystem::create_directory(folder);
    std::filesystem::current_path(folder);

    const ProgramRun_t silent = RunQuorlin(arguments);
    EXPECT_TRUE(std::filesystem::is_empty(folder));

    std::ofstream("debug.conf") << "[GLOBAL]\nGlobal:TraceType<Al>\nGlobal:OutputType<Fi>\n"
                                   "Global:TraceFormatType<TdFn>\nGlobal:FileName<walk.log>\n";
    using std::filesystem::perms;
    std::filesystem::permissions("debug.conf", perms::owner_read | perms::owner_write);
    const ProgramRun_t traced = RunQuorlin(arguments);
    std::string log = ReadWholeFile("walk.log");
    std::erase(log, '\r');  // the log is a text file of its platform
    std::filesystem::current_path(home);

    EXPECT_EQ(silent.exitCode, 0);
    EXPECT_EQ(traced.exitCode, 0);
    EXPECT_EQ(traced.output, silent.output);
    const std::string line = "\n Info  Fn:ParseAllStructures The present type is ";
    EXPECT_NE(log.find(line + "0x3 myHeaderPtr->Length = 0x15" + line + "0xd myHeaderPtr->Length = 0x16" + line +
                       "0x11 myHeaderPtr->Length = 0x28\n"),
              std::string::npos)
        << log;
}
