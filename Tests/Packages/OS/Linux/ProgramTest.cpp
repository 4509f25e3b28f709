// What the layer gives a program: new files, and standard output.
#include "Packages/OS/Program.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/seccomp.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <filesystem>

#include "Packages/OS/Processors.h"
#include "Tests/Support/Linux/Processes.h"
#include "Tests/Support/Linux/SystemCalls.h"

namespace {

namespace fs = std::filesystem;

// A new folder that every user may write.
std::string Folder() {
    const std::string folder = testing::TempDir() + "program";
    fs::remove_all(folder);
    fs::create_directory(folder);
    fs::permissions(folder, fs::perms::all);
    return folder + "/";
}

// Calls that some kinds of file systems don't have.
constexpr SystemCall_t kNoNamelessFiles = {SYS_openat, 2, O_TMPFILE & ~O_DIRECTORY}, kNoLinks = {kLinkCall},
                       kNoNamelessLinks = {SYS_linkat};
constexpr uint32_t kNotSupportedHere = SECCOMP_RET_ERRNO | EOPNOTSUPP;

// The result of CreateWholeFile in a child after `prepare`: 0, or errno.
int CreateIn(const std::string& path, const std::string& bytes, const std::function<void()>& prepare) {
    return InChild([&] {
        prepare();
        return CreateWholeFile(path, bytes.data(), bytes.size()) ? 0 : errno;
    });
}

bool IsEmpty(const std::string& folder) { return fs::directory_iterator(folder) == fs::directory_iterator(); }

// On each kind of file system.
TEST(WholeFiles, BelongToTheirOwnerAndReplaceNothing) {
    const std::string bytes(size_t{100} << 10, 'x');
    const std::vector<SystemCall_t> kKinds[] = {
        {},
        {                 kNoNamelessFiles},
        { kNoNamelessFiles, kNoLinks},
        { kNoNamelessLinks, kNoLinks}
    };
    for (const auto& kind : kKinds) {
        const auto prepare = [&] {
            for (const SystemCall_t& missing : kind) ForbidCall(missing, kNotSupportedHere);
        };
        const std::string folder = Folder(), file = folder + "file", link = folder + "link";
        EXPECT_EQ(CreateIn(file, bytes, prepare), 0);
        EXPECT_EQ(ReadWholeFile(file), bytes);
        EXPECT_EQ(fs::status(file).permissions(), fs::perms::owner_read | fs::perms::owner_write);
        fs::create_symlink("nowhere", link);
        for (const std::string& taken : {file, link}) EXPECT_EQ(CreateIn(taken, "other", prepare), EEXIST) << taken;
        EXPECT_EQ(ReadWholeFile(file), bytes);
        EXPECT_EQ(CreateIn(folder + "none/file", bytes, prepare), ENOENT);
        EXPECT_EQ(std::distance(fs::directory_iterator(folder), fs::directory_iterator()), 2) << kind.size();
    }
    EXPECT_TRUE(IsFolder(Folder()));
    EXPECT_FALSE(IsFolder(Folder() + "file"));
}

TEST(WholeFiles, AreAbsentIfNotWhole) {
    const std::string bytes(size_t{100} << 10, 'x');
    for (const bool isNameless : {true, false}) {
        const std::string folder = Folder(), file = folder + "file";
        const auto limited = [&] {
            const rlimit limit = {4096, 4096};
            setrlimit(RLIMIT_FSIZE, &limit);
            if (!isNameless) ForbidCall(kNoNamelessFiles, kNotSupportedHere);
        };
        EXPECT_EQ(CreateIn(file, bytes, limited), EFBIG);
        EXPECT_TRUE(IsEmpty(folder));
        if (!ClFolderOver::IsPossible()) continue;  // only root can have a full disk
        const ClFolderOver full(folder.substr(0, folder.size() - 1).c_str(), "size=8k");
        EXPECT_EQ(CreateIn(file, bytes, [&] { isNameless ? void() : ForbidCall(kNoNamelessFiles, kNotSupportedHere); }),
                  ENOSPC);
        EXPECT_TRUE(IsEmpty(folder));
    }
    // Ended after all is written and before it is linked.
    const std::string folder = Folder();
    EXPECT_EQ(CreateIn(folder + "file", bytes, [] { ForbidCall(kNoNamelessLinks, SECCOMP_RET_KILL_PROCESS); }), -1);
    EXPECT_TRUE(IsEmpty(folder));
}

// A link's target stays, and so does the old file if the new one doesn't fit or the process ends.
TEST(WholeFiles, ReplaceAPlainFileForAllUsers) {
    const std::string folder = Folder(), file = folder + "file", bytes(size_t{100} << 10, 'x');
    const auto replace = [&](const std::string& path, const std::function<void()>& prepare) {
        return InChild([&] {
            prepare();
            const auto write = [&bytes](const AppendBytes_t& append) {
                for (size_t at = 0; at < bytes.size(); at += 1000)
                    append(&bytes[at], std::min<size_t>(1000, bytes.size() - at));
            };
            return ReplaceWholeFile(path, write) ? 0 : errno;
        });
    };
    const auto nothing = [] { umask(077); };
    const auto limited = [] {
        const rlimit limit = {4096, 4096};
        setrlimit(RLIMIT_FSIZE, &limit);
    };
    constexpr auto kReadableByAll =
        fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read | fs::perms::others_read;
    EXPECT_EQ(replace(file, limited), EFBIG);
    EXPECT_TRUE(IsEmpty(folder));
    EXPECT_EQ(replace(file, nothing), 0);
    EXPECT_EQ(ReadWholeFile(file), bytes);
    EXPECT_EQ(fs::status(file).permissions(), kReadableByAll);

    const std::string old = folder + "old", link = folder + "link", pipe = folder + "pipe";
    ASSERT_TRUE(CreateWholeFile(old, "old", 3));
    fs::create_symlink("old", link);
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(replace(old, limited), EFBIG);
    EXPECT_EQ(replace(old, [] { ForbidCall({kRenameCall}, SECCOMP_RET_ERRNO | EIO); }), EIO);
    for (const std::string& other : {link, pipe, folder}) EXPECT_EQ(replace(other, nothing), EEXIST) << other;
    EXPECT_EQ(replace(folder + "none/file", nothing), ENOENT);
    EXPECT_EQ(ReadWholeFile(old), "old");
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_EQ(std::distance(fs::directory_iterator(folder), fs::directory_iterator()), 4) << "a temporary file";
    EXPECT_EQ(replace(folder + "mode", [] { ForbidCall({SYS_fchmod}, SECCOMP_RET_ERRNO | EPERM); }), 0);
    EXPECT_EQ(replace(old, nothing), 0);
    EXPECT_EQ(ReadWholeFile(old), bytes);
    EXPECT_EQ(fs::status(old).permissions(), kReadableByAll);
}

// Makes a folder with two files in a child after `prepare`, writing the second one in pieces. Returns 0, or errno.
int CreateFolderIn(const std::string& path, const std::function<void()>& prepare) {
    return InChild([&] {
        prepare();
        const std::vector<uint8_t> bytes(size_t{10} << 10, 'x');
        ClNewFolder folder(path);
        const size_t first = folder.AddFile("first"), second = folder.AddFile("second");
        folder.Append(first, std::span(bytes).first(10));
        for (int piece = 0; piece < 10; piece++) folder.Append(second, bytes);
        return folder.Finish() ? 0 : folder.Problem();
    });
}

// With and without a rename that never replaces.
TEST(NewFolders, BelongToTheirOwnerAndReplaceNothing) {
    for (const bool hasRename : {true, false}) {
        const auto prepare = [&] {
            if (!hasRename) ForbidCall({SYS_renameat2}, SECCOMP_RET_ERRNO | EINVAL);
        };
        const std::string folder = Folder(), made = folder + "made";
        EXPECT_EQ(CreateFolderIn(made + "/", prepare), 0);
        EXPECT_EQ(ReadWholeFile(made + "/first"), std::string(10, 'x'));
        EXPECT_EQ(ReadWholeFile(made + "/second").size(), size_t{100} << 10);
        EXPECT_EQ(fs::status(made).permissions(), fs::perms::owner_all);
        EXPECT_EQ(fs::status(made + "/second").permissions(), fs::perms::owner_read | fs::perms::owner_write);
        fs::create_symlink("nowhere", folder + "link");
        fs::create_directory(folder + "empty");
        for (const char* taken : {"made", "link", "empty"})
            EXPECT_EQ(CreateFolderIn(folder + taken, prepare), EEXIST) << taken;
        EXPECT_EQ(CreateFolderIn(folder + "none/made", prepare), ENOENT);
        EXPECT_EQ(std::distance(fs::directory_iterator(folder), fs::directory_iterator()), 3);
        EXPECT_TRUE(IsEmpty(folder + "empty"));
    }
}

// A file that doesn't fit, and a signal that comes meanwhile.
TEST(NewFolders, AreAbsentIfNotWhole) {
    const std::string folder = Folder();
    const auto limit = [] {
        const rlimit size = {50 << 10, 50 << 10};
        setrlimit(RLIMIT_FSIZE, &size);
    };
    EXPECT_EQ(CreateFolderIn(folder + "made", limit), EFBIG);
    EXPECT_TRUE(IsEmpty(folder));
    for (int delay = 20; delay <= 2000; delay += 90) {
        CreateFolderIn(folder + "made", [delay] {
            const itimerval soon = {
                {0, 0    },
                {0, delay}
            };
            setitimer(ITIMER_REAL, &soon, nullptr);
        });
        if (IsEmpty(folder)) continue;
        EXPECT_EQ(std::distance(fs::directory_iterator(folder), fs::directory_iterator()), 1) << delay;
        EXPECT_EQ(ReadWholeFile(folder + "made/second").size(), size_t{100} << 10) << delay;
        fs::remove_all(folder + "made");
    }
}

// A signal that ends the process removes the folder first, one that is ignored doesn't, and afterwards a signal ends
// the process as before.
TEST(NewFolders, GoWithTheirProcess) {
    const std::string folder = Folder();
    const auto endBy = [&](int signal, void (*handler)(int), bool isFinished) {
        const pid_t child = fork();
        if (child == 0) {
            std::signal(signal, handler);
            ClNewFolder made(folder + "made");
            made.AddFile("file");
            if (isFinished) made.Finish();
            raise(signal);
            _exit(made.Finish() ? 0 : made.Problem());
        }
        int status = 0;
        waitpid(child, &status, 0);
        return status;
    };
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        EXPECT_EQ(WTERMSIG(endBy(signal, SIG_DFL, false)), signal);
        EXPECT_TRUE(IsEmpty(folder)) << signal;
        EXPECT_EQ(endBy(signal, SIG_IGN, false), 0);
        EXPECT_TRUE(fs::exists(folder + "made/file")) << signal;
        fs::remove_all(folder + "made");
        EXPECT_EQ(WTERMSIG(endBy(signal, SIG_DFL, true)), signal);
        EXPECT_TRUE(fs::exists(folder + "made/file")) << signal;
        fs::remove_all(folder + "made");
    }
}

// From the shell to the hardware, with an operation that needs no rights.
// Nothing else is opened: a pipe would wait for its writer.
TEST(PlainFiles, AreNoLinksPipesOrDevices) {
    const std::string folder = Folder();
    ASSERT_TRUE(CreateWholeFile(folder + "file", "text", 4));
    fs::create_symlink("file", folder + "link");
    fs::create_symlink("/dev/null", folder + "device");
    ASSERT_EQ(mkfifo((folder + "pipe").c_str(), 0600), 0);
    std::FILE* const file = OpenPlainFile(folder + "file");
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(std::fgetc(file), 't');
    std::fclose(file);
    for (const std::string name : {"link", "device", "pipe", "", "none"}) {
        EXPECT_EQ(OpenPlainFile(folder + name), nullptr) << name;
        EXPECT_EQ(errno, name == "none" ? ENOENT : EINVAL) << name;
    }
    EXPECT_EQ(OpenPlainFile("/dev/null"), nullptr);
}

TEST(Program, ReadsHardwareFromTheShell) {
    uint32_t registers[4] = {};
    char text[64] = "";
    if (os_ReadCPUID(registers))
        std::snprintf(text, sizeof text, "eax %08x ebx %08x ecx %08x edx %08x\n", registers[0], registers[1],
                      registers[2], registers[3]);
    EXPECT_EQ(RunQuorlin("hw cpuid 0").output, text);
}

// All bytes reach a slow reader through a non-blocking pipe of 64 KiB.
TEST(StandardStreams, NonBlockingOutputIsWaitedFor) {
    int ends[2];
    ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
    const std::string bytes(size_t{300} << 10, 'x');
    const pid_t writer = fork();
    if (writer == 0) {
        dup2(ends[1], STDOUT_FILENO);
        close(ends[0]);
        fcntl(STDOUT_FILENO, F_SETFL, O_NONBLOCK);
        _exit(WriteStandardOutput(bytes.data(), bytes.size()) ? 0 : errno);
    }
    close(ends[1]);
    std::string got;
    char block[4096];
    for (ssize_t size; usleep(1000), (size = read(ends[0], block, sizeof block)) > 0;)
        got.append(block, static_cast<size_t>(size));
    close(ends[0]);
    int status = 0;
    waitpid(writer, &status, 0);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(got.size(), bytes.size());
}

constexpr char kTraceToFile[] =
    "FERROX:OutputType<Fi>;FERROX:FileName<trace>;FERROX:TraceType<Ex>;FERROX:TraceFormatType<No>";
constexpr char kTrace[] =
    "\n FERROXInitialize Success\n GetFERROXLibVersion\n GetFERROXDriverVersion\n GetPCILibVersion\n GetIOLibVersion"
    "\n GetCPULibVersion";

// Each combination of closed streams: a run fails if it needs one of them, and its files contain only their own bytes.
TEST(StandardStreams, ClosedOnesFailAndAreNotReplaced) {
    const std::string folder = Folder();
    const auto run = [&](std::vector<std::string> words, unsigned closed) {
        words.insert(words.begin(), QUORLIN_PROGRAM);
        return RunPrepared(words, [&] {
            if (chdir(folder.c_str()) != 0) _exit(99);
            for (int stream = 0; stream < 3; ++stream)
                if ((closed >> stream & 1) != 0) close(stream);
        });
    };
    ASSERT_EQ(run({"dump", "--sample", "reference"}, 0).exitCode, 0);
    const std::string dump = ReadWholeFile(folder + "reference");
    const struct {
        std::vector<std::string> words;
        unsigned needs;  // a bit for each stream
        int failure;     // its exit code when one of these is closed
        int success;
        const char* file;  // that the run writes
        std::string content;
    } kCases[] = {
        {{"--sample"},                                2, 1, 0, "none",  ""    },
        {{"--sample", "--verbose"},                   6, 1, 0, "none",  ""    },
        {{"hw", "versions"},                          2, 1, 0, "none",  ""    },
        {{"hw", "versions", "--trace", kTraceToFile}, 2, 1, 0, "trace", kTrace},
        {{"dump", "--sample", "dump"},                0, 1, 0, "dump",  dump  },
        {{"--image", "/nowhere"},                     4, 1, 1, "none",  ""    },
        {{"--image-list", "-", "--format", "ndjson"}, 1, 1, 0, "none",  ""    },
        {{"--nonsense"},                              4, 2, 2, "none",  ""    },
    };
    for (const auto& c : kCases) {
        std::string output;
        for (unsigned closed = 0; closed < 8; ++closed) {
            fs::remove(folder + c.file);
            const ProgramRun_t ran = run(c.words, closed);
            const std::string what = c.words.back() + " without " + std::to_string(closed);
            EXPECT_EQ(ran.exitCode, (c.needs & closed) != 0 ? c.failure : c.success) << what << ran.errors;
            if (closed == 0) output = ran.output;
            EXPECT_EQ(ran.output, (closed & 2) != 0 ? "" : output) << what;
            EXPECT_EQ(ReadWholeFile(folder + c.file), c.content) << what;
        }
    }
}

}  // namespace
