// What every call owes its caller: a handle of another kind is refused, and so is what there is no memory for.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <new>

#include "Packages/Container/Container.h"
#include "Packages/Platform/Platform.h"
#include "Tests/Packages/Platform/Calls.h"
#include "Tests/Support/Linux/Processes.h"

// Allocations by new, which the provider makes: while `refuseNew` is set, all fail.
static thread_local bool refuseNew = false;
[[gnu::noinline]] void* operator new(size_t size) {
    void* block = refuseNew ? nullptr : std::malloc(size);
    if (block == nullptr) throw std::bad_alloc();
    return block;
}
[[gnu::noinline]] void* operator new(size_t size, const std::nothrow_t&) noexcept {
    return refuseNew ? nullptr : std::malloc(size);
}
// Not inlined: the compiler would take malloc and free in these places for a mistake.
[[gnu::noinline]] void operator delete(void* block) noexcept { std::free(block); }
[[gnu::noinline]] void operator delete(void* block, size_t) noexcept { std::free(block); }

namespace {

constexpr char kName[] = "QuorlinHandleTest", kKey[] = "SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion";

// A service and a section of the same name, and a handle of most kinds.
class Handle : public testing::Test {
  protected:
    void SetUp() override {
        m_manager = OpenSCManagerA(nullptr, nullptr, SC_MANAGER_ALL_ACCESS);
        m_service = CreateDriver(m_manager, kName, "/there is no such folder/none");
        m_section = CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, 8192, nullptr);
    }
    void TearDown() override {
        EXPECT_TRUE(DeleteService(m_service) && CloseServiceHandle(m_service) && CloseServiceHandle(m_manager));
        EXPECT_TRUE(CloseHandle(m_section));
    }

    SC_HANDLE m_manager = nullptr, m_service = nullptr;
    HANDLE m_section = nullptr;
};

TEST_F(Handle, OfAnotherKindIsRefusedByEveryCall) {
    HANDLE file = CreateFileA("/dev/null", GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    for (HANDLE handle : {file, static_cast<HANDLE>(nullptr), INVALID_HANDLE_VALUE, GetCurrentThread()}) {
        const auto service = static_cast<SC_HANDLE>(handle);
        const auto key = static_cast<HKEY>(handle);
        DWORD size = 0;
        BYTE bytes[64];
        SERVICE_STATUS status;
        WIN32_FIND_DATAA found;
        const bool answers[] = {
            WaitForSingleObject(handle, 0) != WAIT_FAILED,
            ReleaseMutex(handle) != FALSE,
            FindNextFileA(handle, &found) != FALSE,
            FindClose(handle) != FALSE,
            MapViewOfFile(handle, FILE_MAP_READ, 0, 0, 0) != nullptr,
            TerminateProcess(handle, 0) != FALSE,
            GetExitCodeProcess(handle, &size) != FALSE,
            DeviceIoControl(handle, 0x80240004, nullptr, 0, bytes, 4, &size, nullptr) != FALSE,
            OpenServiceA(service, kName, 0) != nullptr,
            CreateDriver(service, kName) != nullptr,
            StartServiceA(service, 0, nullptr) != FALSE,
            ControlService(service, SERVICE_CONTROL_STOP, &status) != FALSE,
            QueryServiceStatusEx(service, SC_STATUS_PROCESS_INFO, bytes, sizeof bytes, &size) != FALSE,
            QueryServiceConfigA(service, nullptr, 0, &size) != FALSE,
            DeleteService(service) != FALSE,
            handle != file && CloseServiceHandle(service),
            RegQueryValueExA(key, "", nullptr, nullptr, nullptr, &size) != static_cast<LSTATUS>(ERROR_INVALID_HANDLE),
            RegCloseKey(key) != static_cast<LSTATUS>(ERROR_INVALID_HANDLE),
        };
        for (size_t i = 0; i < std::size(answers); ++i) EXPECT_FALSE(answers[i]) << i << " took " << handle;
        EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    }
    EXPECT_TRUE(CloseHandle(file));
    EXPECT_FALSE(CloseHandle(nullptr));
    EXPECT_FALSE(DeleteService(m_manager)) << "a manager is no service";
    EXPECT_EQ(OpenServiceA(m_service, kName, 0), nullptr) << "and a service no manager";
}

TEST_F(Handle, WithoutMemoryThereIsAnErrorAndNothingLeft) {
    HKEY key = nullptr;
    WIN32_FIND_DATAA found;
    PROCESS_INFORMATION process;
    ContainerParams_t params{};
    ContainerHandle_t container = nullptr;
    char line[] = "true";
    refuseNew = true;
    const DWORD errors[] = {
        ErrorOf(CreateMutexA(nullptr, FALSE, kName)),
        ErrorOf(CreateFileA("/dev/null", GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr)),
        ErrorOf(FindFirstFileA("/proc/self/*", &found)),
        ErrorOf(CreateProcessA(nullptr, line, nullptr, nullptr, FALSE, 0, nullptr, nullptr, nullptr, &process)),
        ErrorOf(CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, 4, kName)),
        ErrorOf(MapViewOfFile(m_section, FILE_MAP_READ, 0, 0, 0)),
        ErrorOf(OpenSCManagerA(nullptr, nullptr, 0)),
        ErrorOf(OpenServiceA(m_manager, kName, 0)),
        ErrorOf(CreateDriver(m_manager, "QuorlinHandleTestOther")),
        ErrorOf(StartServiceA(m_service, 0, nullptr)),
        static_cast<DWORD>(RegOpenKeyExA(HKEY_LOCAL_MACHINE, kKey, 0, KEY_ALL_ACCESS, &key)),
        ErrorOf(GetSystemFirmwareTable(0x41435049, 0x58585858, nullptr, 0) != 0),
    };
    const status_t status = InitContainer(&params, &container, 0);
    refuseNew = false;
    for (size_t i = 0; i < std::size(errors); ++i) EXPECT_EQ(errors[i], ERROR_NOT_ENOUGH_MEMORY) << i;
    EXPECT_EQ(status, kFailure) << "no lock, no container";
    EXPECT_EQ(container, nullptr);
    EXPECT_EQ(OpenServiceA(m_manager, "QuorlinHandleTestOther", 0), nullptr);
}

TEST_F(Handle, NothingIsTakenFromWhereOthersCouldHaveWrittenIt) {
    if (!ClFolderOver::IsPossible()) GTEST_SKIP() << "only root can have a /run of its own";
    const ClFolderOver run("/run");
    const auto expectRefused = [this](const char* what) {
        EXPECT_EQ(ErrorOf(OpenServiceA(m_manager, kName, 0)), ERROR_ACCESS_DENIED) << what;
        EXPECT_EQ(ErrorOf(CreateDriver(m_manager, kName)), ERROR_ACCESS_DENIED) << what;
        EXPECT_EQ(ErrorOf(CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, 4, kName)),
                  ERROR_ACCESS_DENIED)
            << what;
    };
    ASSERT_EQ(mkdir("/run/quorlin", 0700), 0);
    for (const char* file : {"/run/quorlin/section.QuorlinHandleTest", "/run/quorlin/service.quorlinhandletest"})
        ASSERT_EQ(symlink("/etc/hostname", file), 0);
    expectRefused("links");
    ASSERT_EQ(chmod("/run/quorlin", 0720), 0);
    expectRefused("a folder for a group");
    EXPECT_EQ(OpenSCManagerA(nullptr, nullptr, 0), nullptr);
    EXPECT_FALSE(StartServiceA(m_service, 0, nullptr));
    EXPECT_EQ(ErrorOf(CreateFileA("\\\\.\\Ravelink", GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr)),
              ERROR_FILE_NOT_FOUND);
}

}  // namespace
