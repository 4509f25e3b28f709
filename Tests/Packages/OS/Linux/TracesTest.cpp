// A run of the program leaves only the files that its user names: no call of it makes a file or folder.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/seccomp.h>
#include <sched.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <iterator>
#include <optional>
#include <sstream>

#include "Tests/Support/Linux/Processes.h"
#include "Tests/Support/Linux/SystemCalls.h"

namespace {

constexpr SystemCall_t kMakesFiles[] = {
    {SYS_openat,  2, O_CREAT                 },
    {SYS_openat,  2, O_TMPFILE & ~O_DIRECTORY},
    {kMkdirCall,  0, 0                       },
    {SYS_mkdirat, 0, 0                       },
    {SYS_mknodat, 0, 0                       },
    {SYS_bind,    0, 0                       },
};

TEST(Traces, NoRunLeavesAny) {
    if (HasCoverage()) GTEST_SKIP() << "the counters of a run are files";
    std::optional<ClFolderOver> noDevices;
    if (ClFolderOver::IsPossible()) noDevices.emplace("/dev");  // keeps root from reading this machine's memory
    const std::string image = WriteFile("traces-image", DumpOf({127, 4, 0, 0, 0, 0}, 3, 0, 32));
    for (const std::string command :
         {"--sample", "types --sample", "find --sample BIOS", "get --sample Manufacturer", "raw --sample",
          "check --sample", "diff --sample IMAGE", "--image IMAGE", "--sample --trace Global:TraceType<EnEx>", "",
          "--driver", "--road scan", "hw cpuid 0", "hw pci 0000:ff:1f.7 2 5", "hw versions", "hw acpi FACP",
          "hw segments"}) {
        std::istringstream stream(QUORLIN_PROGRAM " " + command);
        std::vector<std::string> words(std::istream_iterator<std::string>(stream), {});
        std::replace(words.begin(), words.end(), std::string("IMAGE"), image);
        const ProgramRun_t free = RunPrepared(words), limited = RunPrepared(words, [] {
                                                          for (const SystemCall_t& call : kMakesFiles)
                                                              ForbidCall(call, SECCOMP_RET_KILL_PROCESS);
                                                      });
        EXPECT_NE(free.exitCode, -1) << command;
        EXPECT_EQ(limited.exitCode, free.exitCode) << command;
        EXPECT_EQ(limited.output + limited.errors, free.output + free.errors) << command;
    }
}

}  // namespace
