// Registry, files, processes, processors and the clock.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <vector>

#include "Packages/Platform/Platform.h"
#include "Tests/Packages/Platform/Calls.h"
#include "Tests/Support/Linux/Processes.h"

namespace fs = std::filesystem;

static const char kDriverKey[] = "SOFTWARE\\Wow6432Node\\Lumetra\\Ravelink";

// 0 and the text, or the error.
static LSTATUS Query(const char* path, const char* name, std::string* text) {
    HKEY key = nullptr;
    DWORD size = 0, type = 0;
    LSTATUS result = RegOpenKeyExA(HKEY_LOCAL_MACHINE, path, 0, KEY_ALL_ACCESS, &key);
    if (result != 0) return result;
    result = RegQueryValueExA(key, name, nullptr, &type, nullptr, &size);
    if (result == 0) {
        std::vector<BYTE> buffer(size, 0xA5);
        DWORD room = size - 1;
        EXPECT_EQ(RegQueryValueExA(key, name, nullptr, nullptr, buffer.data(), &room),
                  static_cast<LSTATUS>(ERROR_MORE_DATA));
        EXPECT_EQ(buffer, std::vector<BYTE>(size, 0xA5)) << "a buffer too small stays as it is";
        EXPECT_EQ(room, size);
        EXPECT_EQ(type, REG_SZ);
        result = RegQueryValueExA(key, name, nullptr, nullptr, buffer.data(), &size);
        text->assign(buffer.begin(), buffer.end() - 1);
    }
    EXPECT_EQ(RegCloseKey(key), 0);
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

TEST(Registry, ObeysItsFileOnlyWhereRootAloneCanWriteIt) {
    if (!ClFolderOver::IsPossible()) GTEST_SKIP() << "only root can have an /etc of its own";
    const ClFolderOver etc("/etc");
    static constexpr char kFolder[] = "/etc/quorlin", kFile[] = "/etc/quorlin/registry";
    static const auto is = [](bool done) { EXPECT_TRUE(done); };
    const struct {
        const char* what;
        void (*change)();
        DWORD error;
        const char* text;
    } kCases[] = {
        {"as it should be",      [] {},                                                                0,                   "/right"   },
        {"no file",              [] { is(unlink(kFile) == 0); },                                       0,                   "/dev/null"},
        {"of another user",      [] { is(chown(kFile, 1, 0) == 0); },                                  ERROR_ACCESS_DENIED, ""         },
        {"a group may write",    [] { is(chmod(kFile, 0620) == 0); },                                  ERROR_ACCESS_DENIED, ""         },
        {"all may write",        [] { is(chmod(kFile, 0602) == 0); },                                  ERROR_ACCESS_DENIED, ""         },
        {"another's folder",     [] { is(chown(kFolder, 1, 0) == 0); },                                ERROR_ACCESS_DENIED, ""         },
        {"all write into it",    [] { is(chmod(kFolder, 0777) == 0); },                                ERROR_ACCESS_DENIED, ""         },
        {"a link",               [] { is(unlink(kFile) == 0 && symlink("x", kFile) == 0); },           ERROR_ACCESS_DENIED, ""         },
        {"a folder",             [] { is(unlink(kFile) == 0 && mkdir(kFile, 0755) == 0); },            ERROR_ACCESS_DENIED, ""         },
        {"no folder but a file", [] { is(fs::remove_all(kFolder) > 0 && creat(kFolder, 0600) >= 0); },
         ERROR_PATH_NOT_FOUND,                                                                                              ""         },
    };
    for (const auto& c : kCases) {
        fs::remove_all(kFolder);
        etc.Write("quorlin/registry",
                  "FERROXDrvPath=/wrong\n[SOFTWARE\\Else]\nFERROXDrvPath=/wrong\nno value\n"
                  "[software\\wow6432node\\lumetra\\RAVELINK] \r\nno value\r\nFerroxDrvPath=/right\r\n");
        c.change();
        std::string text;
        EXPECT_EQ(Query(kDriverKey, "FERROXDrvPath", &text), static_cast<LSTATUS>(c.error)) << c.what;
        EXPECT_EQ(text, c.text) << c.what;
    }
    fs::remove_all(kFolder);
    etc.Write("quorlin/registry", "[Own\\Key]\nText=a=b\n");
    std::string text;
    EXPECT_EQ(Query("own\\key", "TEXT", &text), 0);
    EXPECT_EQ(text, "a=b");
    EXPECT_EQ(Query("Own\\Key", "Else", &text), static_cast<LSTATUS>(ERROR_FILE_NOT_FOUND));
    EXPECT_EQ(Query("Own", "Text", &text), static_cast<LSTATUS>(ERROR_FILE_NOT_FOUND));
}

// A folder of this test's own, with a file and a search in it for each case.
class File : public testing::Test {
  protected:
    File() {
        fs::remove_all(m_folder);
        fs::create_directory(m_folder);
    }
    ~File() override { fs::remove_all(m_folder); }

    // 0, or the error of opening it.
    DWORD Open(const std::string& path, DWORD access, DWORD share, DWORD disposition) {
        HANDLE file = CreateFileA(path.c_str(), access, share, nullptr, disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
        m_open.push_back(file);
        return ErrorOf(file);
    }
    void CloseAll() {
        for (HANDLE file : m_open) CloseHandle(file);
        m_open.clear();
    }

    const std::string m_folder = testing::TempDir() + "quorlin-file", m_path = m_folder + "/file";
    std::vector<HANDLE> m_open;
};

TEST_F(File, ALockedOneCannotBeOpenedForWriting) {
    fclose(fopen(m_path.c_str(), "w"));
    EXPECT_EQ(Open(m_path, GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING), 0u);
    EXPECT_EQ(Open(m_path, GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING), 0u);
    EXPECT_EQ(Open(m_path, GENERIC_WRITE, FILE_SHARE_READ, OPEN_EXISTING), ERROR_SHARING_VIOLATION);
    CloseAll();
    EXPECT_EQ(Open(m_path, GENERIC_WRITE, 0, OPEN_EXISTING), 0u);
    CloseAll();
}

TEST_F(File, ThatCannotBeOpenedTellsWhy) {
    const std::string loop = m_folder + "/loop";
    fs::create_symlink("loop", loop);
    std::ofstream(m_path) << "old";
    const struct {
        std::string path;
        DWORD error;
    } kCases[] = {
        {m_folder + "/none", ERROR_FILE_NOT_FOUND},
        {m_folder,           ERROR_ACCESS_DENIED },
        {m_path + "/x",      ERROR_PATH_NOT_FOUND},
        {loop,               ERROR_GEN_FAILURE   },
        {"\\\\.\\ravelink",  ERROR_FILE_NOT_FOUND}, // the device, whose service doesn't run
    };
    for (const auto& c : kCases) EXPECT_EQ(Open(c.path, GENERIC_READ, 0, OPEN_EXISTING), c.error) << c.path;
    EXPECT_EQ(Open(m_path, GENERIC_WRITE, 0, 2), ERROR_INVALID_PARAMETER) << "nothing is made or emptied";
    rlimit limit;
    getrlimit(RLIMIT_NOFILE, &limit);
    const rlimit none_more = {3, limit.rlim_max};
    setrlimit(RLIMIT_NOFILE, &none_more);
    EXPECT_EQ(Open(m_path, GENERIC_READ, 0, OPEN_EXISTING), ERROR_TOO_MANY_OPEN_FILES);
    setrlimit(RLIMIT_NOFILE, &limit);
}

TEST_F(File, ASearchFindsWhatFitsItsPattern) {
    for (const char* name : {"Ab.txt", "abc.bin", "b", ".hidden"}) std::ofstream(m_folder + "/" + name) << "x";
    const struct {
        const char *pattern, *names;
        DWORD error;
    } kCases[] = {
        {"/*.*",    ". .. .hidden Ab.txt abc.bin b", 0                   },
        {"\\AB?.*", "abc.bin",                       0                   },
        {"/?",      ". b",                           0                   },
        {"/a*b*",   "Ab.txt abc.bin",                0                   },
        {"/b*c",    "",                              ERROR_FILE_NOT_FOUND},
        {"/none/*", "",                              ERROR_PATH_NOT_FOUND},
        {"/b/*",    "",                              ERROR_PATH_NOT_FOUND},
    };
    for (const auto& c : kCases) {
        std::set<std::string> found;
        std::string names;
        WIN32_FIND_DATAA data;
        HANDLE search = FindFirstFileA((m_folder + c.pattern).c_str(), &data);
        EXPECT_EQ(ErrorOf(search), c.error) << c.pattern;
        for (BOOL isFound = search != INVALID_HANDLE_VALUE; isFound; isFound = FindNextFileA(search, &data)) {
            found.insert(data.cFileName);
            const bool isFolder = data.cFileName == std::string(".") || data.cFileName == std::string("..");
            EXPECT_EQ(data.dwFileAttributes, isFolder ? FILE_ATTRIBUTE_DIRECTORY : FILE_ATTRIBUTE_NORMAL);
        }
        if (search != INVALID_HANDLE_VALUE) {
            EXPECT_EQ(GetLastError(), ERROR_NO_MORE_FILES);
            EXPECT_TRUE(FindClose(search));
        }
        for (const std::string& name : found) names += (names.empty() ? "" : " ") + name;
        EXPECT_EQ(names, c.names) << c.pattern;
    }
}

TEST(Process, TheCommandLineIsSplitAsOnWindows) {
    const struct {
        const char *what, *application, *line;
        DWORD exitCode;
    } kCases[] = {
        {"exit code",               "/bin/sh", "sh -c \"exit 7\"",                                            7       },
        {"a blank before all",      "/bin/sh", "     -c     \"exit 8\"",                                      8       },
        {"a quoted blank",          "/bin/sh", "sh -c \"test $# = 1 || exit 1\" 0 \"a b\"",                   0       },
        {"a quote in a word",       "/bin/sh", "sh -c \"test \\\"$1\\\" = 'a b' || exit 1\" 0 \"a b\"",       0       },
        {"backslashes stay",        "/bin/sh", "sh -c \"test \\\"$1\\\" = 'a\\b\\\\' || exit 1\" 0 a\\b\\\\", 0       },
        {"halved at a quote",       "/bin/sh", "sh -c \"test \\\"$1\\\" = 'a\\' || exit 1\" 0 \"a\\\\\"",     0       },
        {"an empty argument",       "/bin/sh", "sh -c \"test $# = 2 || exit 1\" 0 \"\" b",                    0       },
        {"tabs, none at the end",   "/bin/sh", "sh\t-c\t\"exit 6\" \t",                                       6       },
        {"a quote that stays open", "/bin/sh", "sh -c \"exit 5",                                              5       },
        {"a quoted program",        nullptr,   "\"/bin/sh\" -c \"exit 4\"",                                   4       },
        {"the program by PATH",     nullptr,   "sh -c \"exit 9\"",                                            9       },
        {"ended by a signal",       nullptr,   "sh -c \"kill -TERM $$\"",                                     128 + 15},
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
    EXPECT_TRUE(TerminateProcess(process.hThread, 5));
    EXPECT_EQ(WaitForSingleObject(process.hProcess, INFINITE), WAIT_OBJECT_0);
    EXPECT_TRUE(GetExitCodeProcess(process.hProcess, &exitCode));
    EXPECT_EQ(exitCode, 5u);
    EXPECT_EQ(ErrorOf(TerminateProcess(process.hProcess, 6)), ERROR_ACCESS_DENIED) << "it has ended";
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    const struct {
        const char *program, *line;
        DWORD error;
    } kRefused[] = {
        {"/no/such/program", nullptr, ERROR_FILE_NOT_FOUND   },
        {"sh",               nullptr, ERROR_FILE_NOT_FOUND   }, // a path, not looked for
        {"/etc",             nullptr, ERROR_ACCESS_DENIED    },
        {nullptr,            " sh",   ERROR_FILE_NOT_FOUND   }, // an empty first word
        {nullptr,            nullptr, ERROR_INVALID_PARAMETER},
    };
    for (const auto& c : kRefused) {
        std::string text = c.line == nullptr ? "" : c.line;
        EXPECT_EQ(ErrorOf(CreateProcessA(c.program, c.line == nullptr ? nullptr : text.data(), nullptr, nullptr, FALSE,
                                         0, nullptr, nullptr, nullptr, &process)),
                  c.error)
            << (c.program == nullptr ? text : c.program);
    }
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
    EXPECT_EQ(ErrorOf(SetThreadGroupAffinity(GetCurrentThread(), &none, nullptr)), ERROR_INVALID_PARAMETER);
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
