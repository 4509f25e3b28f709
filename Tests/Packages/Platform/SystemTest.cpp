// Registry, files, processes, processors and the clock.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>
#include <string>

#include "Tests/Support/Linux/Processes.h"
#include "Packages/Platform/Platform.h"

static const char kDriverKey[] = "SOFTWARE\\Wow6432Node\\Lumetra\\Ravelink";

// 0 and the text, or the error.
static LSTATUS Query(const char* path, const char* name, std::string* text) {
    HKEY key = nullptr;
    char buffer[512];
    DWORD size = sizeof buffer;
    const LSTATUS opened = RegOpenKeyExA(HKEY_LOCAL_MACHINE, path, 0, KEY_ALL_ACCESS, &key);
    if (opened != 0) return opened;
    const LSTATUS result = RegQueryValueExA(key, name, nullptr, nullptr, reinterpret_cast<LPBYTE>(buffer), &size);
    if (result == 0) text->assign(buffer, size - 1);
    RegCloseKey(key);
    return result;
}

TEST(Registry, AnswersWithoutAnySetUp) {
    std::string text;
    EXPECT_EQ(Query(kDriverKey, "FERROXDrvPath", &text), 0);
    EXPECT_EQ(access(text.c_str(), R_OK), 0) << text;
    EXPECT_EQ(Query("system\\currentcontrolset\\control\\computername\\computername", "computername", &text), 0);
    char host[256];
    gethostname(host, sizeof host);
    EXPECT_EQ(text, host);
    EXPECT_EQ(Query("SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion", "ProductName", &text), 0);
    EXPECT_FALSE(text.empty());
    EXPECT_EQ(Query(kDriverKey, "Else", &text), static_cast<LSTATUS>(ERROR_FILE_NOT_FOUND));
    EXPECT_EQ(Query("SOFTWARE\\Else", "Else", &text), static_cast<LSTATUS>(ERROR_FILE_NOT_FOUND));
}

TEST(Registry, ASmallBufferTellsTheSize) {
    HKEY key = nullptr;
    ASSERT_EQ(RegOpenKeyExA(HKEY_LOCAL_MACHINE, kDriverKey, 0, KEY_ALL_ACCESS, &key), 0);
    BYTE buffer[64] = {0xA5};
    DWORD size = 9, type = 0;  // "/dev/null" has 9 letters and a NUL
    EXPECT_EQ(RegQueryValueExA(key, "FERROXDrvPath", nullptr, &type, buffer, &size),
              static_cast<LSTATUS>(ERROR_MORE_DATA));
    EXPECT_EQ(buffer[0], 0xA5);
    EXPECT_EQ(size, 10u);
    EXPECT_EQ(RegQueryValueExA(key, "FERROXDrvPath", nullptr, &type, buffer, &size), 0);
    EXPECT_EQ(type, REG_SZ);
    EXPECT_EQ(RegCloseKey(key), 0);
}

// In a child that has an /etc of its own.
TEST(Registry, ObeysItsFileOnlyWhereRootAloneCanWriteIt) {
    const int result = InChild([] {
        if (unshare(CLONE_NEWNS) != 0 || mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
            mount("none", "/etc", "tmpfs", 0, "mode=755") != 0)
            return 99;
        mkdir("/etc/quorlin", 0755);
        const int file = open("/etc/quorlin/registry", O_CREAT | O_WRONLY, 0644);
        const char kText[] =
            "[SOFTWARE\\Else]\nFERROXDrvPath=/wrong\n[SOFTWARE\\Wow6432Node\\Lumetra\\Ravelink]\r\nFERROXDrvPath=/"
            "right\r\n";
        if (write(file, kText, sizeof kText - 1) < 0) return 1;
        std::string text;
        if (Query(kDriverKey, "FERROXDrvPath", &text) != 0 || text != "/right") return 2;
        fchmod(file, 0646);
        if (Query(kDriverKey, "FERROXDrvPath", &text) != static_cast<LSTATUS>(ERROR_ACCESS_DENIED)) return 3;
        fchmod(file, 0644);
        chmod("/etc/quorlin", 0777);
        if (Query(kDriverKey, "FERROXDrvPath", &text) != static_cast<LSTATUS>(ERROR_ACCESS_DENIED)) return 4;
        return 0;
    });
    if (result == 99) GTEST_SKIP() << "this user can't have an /etc of its own";
    EXPECT_EQ(result, 0);
}

TEST(File, ALockedOneCannotBeOpenedForWriting) {
    char path[] = "/tmp/quorlin-lock-XXXXXX";
    close(mkstemp(path));
    const auto openFor = [&](DWORD access, DWORD share) {
        return CreateFileA(path, access, share, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    };
    HANDLE lock = openFor(GENERIC_READ, FILE_SHARE_READ), second = openFor(GENERIC_READ, FILE_SHARE_READ);
    ASSERT_NE(lock, INVALID_HANDLE_VALUE);
    EXPECT_NE(second, INVALID_HANDLE_VALUE);
    EXPECT_EQ(openFor(GENERIC_WRITE, FILE_SHARE_READ), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), ERROR_SHARING_VIOLATION);
    CloseHandle(second);
    CloseHandle(lock);
    HANDLE writer = openFor(GENERIC_WRITE, 0);
    EXPECT_NE(writer, INVALID_HANDLE_VALUE);
    CloseHandle(writer);
    unlink(path);
    EXPECT_EQ(openFor(GENERIC_READ, FILE_SHARE_READ), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
}

TEST(Process, TheCommandLineIsSplitAsOnWindows) {
    const struct {
        const char *what, *application, *line;
        DWORD exitCode;
    } kCases[] = {
        {"exit code",           "/bin/sh", "sh -c \"exit 7\"",                                            7},
        {"a blank before all",  "/bin/sh", "     -c     \"exit 8\"",                                      8},
        {"a quoted blank",      "/bin/sh", "sh -c \"test $# = 1 || exit 1\" 0 \"a b\"",                   0},
        {"a quote in a word",   "/bin/sh", "sh -c \"test \\\"$1\\\" = 'a b' || exit 1\" 0 \"a b\"",       0},
        {"backslashes stay",    "/bin/sh", "sh -c \"test \\\"$1\\\" = 'a\\b\\\\' || exit 1\" 0 a\\b\\\\", 0},
        {"halved at a quote",   "/bin/sh", "sh -c \"test \\\"$1\\\" = 'a\\' || exit 1\" 0 \"a\\\\\"",     0},
        {"an empty argument",   "/bin/sh", "sh -c \"test $# = 2 || exit 1\" 0 \"\" b",                    0},
        {"the program by PATH", nullptr,   "sh -c \"exit 9\"",                                            9},
    };
    for (const auto& c : kCases) {
        PROCESS_INFORMATION process = {};
        std::string line = c.line;
        ASSERT_TRUE(CreateProcessA(c.application, line.data(), nullptr, nullptr, FALSE, NORMAL_PRIORITY_CLASS, nullptr,
                                   nullptr, nullptr, &process))
            << c.what;
        EXPECT_EQ(WaitForSingleObject(process.hProcess, INFINITE), WAIT_OBJECT_0);
        DWORD exitCode = 77;
        EXPECT_TRUE(GetExitCodeProcess(process.hProcess, &exitCode));
        EXPECT_EQ(exitCode, c.exitCode) << c.what;
        CloseHandle(process.hThread);
        CloseHandle(process.hProcess);
    }
}

TEST(Process, RunsWaitsAndIsTerminated) {
    PROCESS_INFORMATION process = {};
    char line[] = "sleep 60";
    ASSERT_TRUE(CreateProcessA(nullptr, line, nullptr, nullptr, FALSE, 0, nullptr, nullptr, nullptr, &process));
    DWORD exitCode = 0;
    EXPECT_EQ(WaitForSingleObject(process.hProcess, 20), WAIT_TIMEOUT);
    EXPECT_TRUE(GetExitCodeProcess(process.hProcess, &exitCode));
    EXPECT_EQ(exitCode, STILL_ACTIVE);
    EXPECT_TRUE(TerminateProcess(process.hProcess, 5));
    EXPECT_EQ(WaitForSingleObject(process.hProcess, INFINITE), WAIT_OBJECT_0);
    EXPECT_TRUE(GetExitCodeProcess(process.hProcess, &exitCode));
    EXPECT_EQ(exitCode, 5u);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    char missing[] = "/no/such/program";
    EXPECT_FALSE(CreateProcessA(missing, nullptr, nullptr, nullptr, FALSE, 0, nullptr, nullptr, nullptr, &process));
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
}

TEST(Processors, AThreadMovesToTheProcessorOfItsMask) {
    GROUP_AFFINITY before = {};
    const DWORD count = GetActiveProcessorCount(ALL_PROCESSOR_GROUPS);
    ASSERT_GE(count, 1u);
    EXPECT_EQ(GetActiveProcessorGroupCount(), (count + 63) / 64);
    for (DWORD cpu = 0; cpu < count && cpu < 2; ++cpu) {
        const GROUP_AFFINITY one = {KAFFINITY{1} << cpu, 0, {}};
        ASSERT_TRUE(SetThreadGroupAffinity(GetCurrentThread(), &one, cpu == 0 ? &before : nullptr));
        Sleep(1);
        EXPECT_EQ(sched_getcpu(), static_cast<int>(cpu));
    }
    EXPECT_TRUE(SetThreadGroupAffinity(GetCurrentThread(), &before, nullptr));
    const GROUP_AFFINITY none = {1, 200, {}};
    EXPECT_FALSE(SetThreadGroupAffinity(GetCurrentThread(), &none, nullptr));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    EXPECT_TRUE(CloseHandle(GetCurrentThread()));
}

TEST(Clock, SleepsAtLeastAsLongAsAsked) {
    LARGE_INTEGER before, after, perSecond;
    QueryPerformanceFrequency(&perSecond);
    QueryPerformanceCounter(&before);
    Sleep(30);
    QueryPerformanceCounter(&after);
    EXPECT_GE((after.QuadPart - before.QuadPart) * 1000 / perSecond.QuadPart, 30);
}
