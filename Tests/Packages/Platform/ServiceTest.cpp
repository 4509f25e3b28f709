#include <gtest/gtest.h>

#include <vector>

#include "Packages/Platform/Platform.h"
#include "Tests/Support/Linux/Processes.h"

class Service : public testing::Test {
  protected:
    void SetUp() override { m_manager = OpenSCManagerA(nullptr, nullptr, SC_MANAGER_ALL_ACCESS); }
    void TearDown() override { CloseServiceHandle(m_manager); }

    SC_HANDLE Create(DWORD startType = SERVICE_DEMAND_START, const char* path = "/dev/null") const {
        return CreateServiceA(m_manager, kName, kName, SERVICE_ALL_ACCESS, SERVICE_KERNEL_DRIVER, startType,
                              SERVICE_ERROR_NORMAL, path, "Extended Base", nullptr, nullptr, nullptr, nullptr);
    }
    SC_HANDLE Open(DWORD access = SERVICE_ALL_ACCESS) const { return OpenServiceA(m_manager, kName, access); }
    static DWORD State(SC_HANDLE service) {
        SERVICE_STATUS_PROCESS status = {};
        DWORD needed = 1;
        const BOOL done = QueryServiceStatusEx(service, SC_STATUS_PROCESS_INFO, reinterpret_cast<LPBYTE>(&status),
                                               sizeof status, &needed);
        return done && needed == 0 ? status.dwCurrentState : 0;
    }
    static BOOL Stop(SC_HANDLE service, DWORD* state = nullptr) {
        SERVICE_STATUS status = {};
        const BOOL done = ControlService(service, SERVICE_CONTROL_STOP, &status);
        if (state != nullptr) *state = status.dwCurrentState;
        return done;
    }
    // 0, or the error of a call that gave FALSE.
    static DWORD ErrorOf(BOOL done) { return done ? 0 : GetLastError(); }

    static constexpr char kName[] = "QuorlinTestService";
    SC_HANDLE m_manager = nullptr;
};

TEST_F(Service, LivesFromCreationToDeletionAsOnWindows) {
    ASSERT_NE(m_manager, nullptr) << GetLastError();
    EXPECT_EQ(Open(), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_SERVICE_DOES_NOT_EXIST);
    SC_HANDLE service = Create();
    ASSERT_NE(service, nullptr) << GetLastError();
    EXPECT_EQ(State(service), SERVICE_STOPPED);
    EXPECT_EQ(Create(), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_SERVICE_EXISTS);
    EXPECT_EQ(ErrorOf(Stop(service)), ERROR_SERVICE_NOT_ACTIVE);
    EXPECT_EQ(ErrorOf(StartServiceA(service, 0, nullptr)), 0u);
    EXPECT_EQ(State(service), SERVICE_RUNNING);
    EXPECT_EQ(ErrorOf(StartServiceA(service, 0, nullptr)), ERROR_SERVICE_ALREADY_RUNNING);
    DWORD state = 0;
    EXPECT_EQ(ErrorOf(Stop(service, &state)), 0u);
    EXPECT_EQ(state, SERVICE_STOPPED);
    EXPECT_EQ(State(service), SERVICE_STOPPED);

    SC_HANDLE second = Open();
    EXPECT_EQ(ErrorOf(DeleteService(service)), 0u);
    EXPECT_EQ(ErrorOf(DeleteService(second)), ERROR_SERVICE_MARKED_FOR_DELETE);
    EXPECT_EQ(ErrorOf(StartServiceA(second, 0, nullptr)), ERROR_SERVICE_MARKED_FOR_DELETE);
    CloseServiceHandle(service);
    EXPECT_EQ(Create(), nullptr) << "a handle is open";
    EXPECT_EQ(GetLastError(), ERROR_SERVICE_MARKED_FOR_DELETE);
    CloseServiceHandle(second);
    EXPECT_EQ(Open(), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_SERVICE_DOES_NOT_EXIST);
}

TEST_F(Service, DeletedWhileRunningGoesWhenItHasStopped) {
    SC_HANDLE service = Create();
    StartServiceA(service, 0, nullptr);
    DeleteService(service);
    CloseServiceHandle(service);
    service = Open();
    ASSERT_NE(service, nullptr) << GetLastError();
    EXPECT_EQ(ErrorOf(Stop(service)), 0u);
    CloseServiceHandle(service);
    EXPECT_EQ(Open(), nullptr);
}

TEST_F(Service, OutlivesTheProcessThatStartedIt) {
    ClHolder starter([this] { StartServiceA(Create(), 0, nullptr); });
    starter.Kill();
    SC_HANDLE service = Open();
    ASSERT_NE(service, nullptr) << GetLastError();
    EXPECT_EQ(State(service), SERVICE_RUNNING);
    Stop(service);
    ClHolder holder([this] { Open(); });
    DeleteService(service);
    CloseServiceHandle(service);
    EXPECT_EQ(Create(), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_SERVICE_MARKED_FOR_DELETE);
    holder.Kill();  // the last handle goes with it
    service = Create();
    ASSERT_NE(service, nullptr) << GetLastError();
    DeleteService(service);
    CloseServiceHandle(service);
}

TEST_F(Service, DoesNotStartWithoutItsFileOrWhenDisabled) {
    const struct {
        DWORD startType;
        const char* path;
        DWORD error;
    } kCases[] = {
        {SERVICE_DEMAND_START, "/dev/no-such-driver",        ERROR_FILE_NOT_FOUND  },
        {SERVICE_DEMAND_START, "/no-such-folder/driver.sys", ERROR_PATH_NOT_FOUND  },
        {SERVICE_DISABLED,     "/dev/null",                  ERROR_SERVICE_DISABLED},
    };
    for (const auto& c : kCases) {
        SC_HANDLE service = Create(c.startType, c.path);
        EXPECT_EQ(ErrorOf(StartServiceA(service, 0, nullptr)), c.error) << c.path;
        DeleteService(service);
        CloseServiceHandle(service);
    }
}

TEST_F(Service, ConfigurationComesBackWholeOrTellsItsSize) {
    SC_HANDLE service = Create(SERVICE_AUTO_START);
    DWORD needed = 0;
    EXPECT_EQ(ErrorOf(QueryServiceConfigA(service, nullptr, 0, &needed)), ERROR_INSUFFICIENT_BUFFER);
    std::vector<ULONG64> block(needed / sizeof(ULONG64) + 1);
    auto* config = reinterpret_cast<LPQUERY_SERVICE_CONFIGA>(block.data());
    EXPECT_EQ(ErrorOf(QueryServiceConfigA(service, config, needed - 1, &needed)), ERROR_INSUFFICIENT_BUFFER);
    ASSERT_EQ(ErrorOf(QueryServiceConfigA(service, config, needed, &needed)), 0u);
    EXPECT_EQ(config->dwStartType, SERVICE_AUTO_START);
    EXPECT_STREQ(config->lpBinaryPathName, "/dev/null");
    EXPECT_STREQ(config->lpLoadOrderGroup, "Extended Base");
    EXPECT_STREQ(config->lpDisplayName, kName);
    BYTE small[35];
    EXPECT_EQ(ErrorOf(QueryServiceStatusEx(service, SC_STATUS_PROCESS_INFO, small, sizeof small, &needed)),
              ERROR_INSUFFICIENT_BUFFER);
    EXPECT_EQ(needed, 36u);
    DeleteService(service);
    CloseServiceHandle(service);
}

TEST_F(Service, AHandleGivesWhatItWasOpenedForAndNoMore) {
    SC_HANDLE service = Create(), reader = Open(SERVICE_QUERY_STATUS);
    EXPECT_EQ(State(reader), SERVICE_STOPPED);
    EXPECT_EQ(ErrorOf(StartServiceA(reader, 0, nullptr)), ERROR_ACCESS_DENIED);
    EXPECT_EQ(ErrorOf(DeleteService(reader)), ERROR_ACCESS_DENIED);
    EXPECT_EQ(ErrorOf(CloseServiceHandle(nullptr)), ERROR_INVALID_HANDLE);
    EXPECT_EQ(ErrorOf(DeleteService(m_manager)), ERROR_INVALID_HANDLE);
    DeleteService(service);
    CloseServiceHandle(service);
    CloseServiceHandle(reader);
}
