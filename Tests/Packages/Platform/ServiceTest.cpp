#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <string>
#include <utility>
#include <vector>

#include "Packages/Platform/Linux/RuntimeFolder.h"
#include "Packages/Platform/Platform.h"
#include "Tests/Packages/Platform/Calls.h"
#include "Tests/Support/Linux/Processes.h"

class Service : public testing::Test {
  protected:
    void SetUp() override { m_manager = OpenSCManagerA(nullptr, nullptr, SC_MANAGER_ALL_ACCESS); }
    void TearDown() override { CloseServiceHandle(m_manager); }

    SC_HANDLE Create(DWORD startType = SERVICE_DEMAND_START, const char* path = "/dev/null") const {
        return CreateDriver(m_manager, kName, path, startType, "Extended Base");
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

    static constexpr char kName[] = "QuorlinTestService";
    SC_HANDLE m_manager = nullptr;
};

TEST_F(Service, LivesFromCreationToDeletionAsOnWindows) {
    ASSERT_NE(m_manager, nullptr) << GetLastError();
    EXPECT_EQ(ErrorOf(Open()), ERROR_SERVICE_DOES_NOT_EXIST);
    SC_HANDLE service = Create();
    ASSERT_NE(service, nullptr) << GetLastError();
    EXPECT_EQ(State(service), SERVICE_STOPPED);
    EXPECT_EQ(ErrorOf(Create()), ERROR_SERVICE_EXISTS);
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
    EXPECT_EQ(ErrorOf(Create()), ERROR_SERVICE_MARKED_FOR_DELETE) << "a handle is open";
    CloseServiceHandle(second);
    EXPECT_EQ(ErrorOf(Open()), ERROR_SERVICE_DOES_NOT_EXIST);
}

TEST_F(Service, DeletedWhileRunningGoesWhenItHasStopped) {
    SC_HANDLE service = Create();
    StartServiceA(service, 0, nullptr);
    RemoveDriver(service);
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
    RemoveDriver(service);
    EXPECT_EQ(ErrorOf(Create()), ERROR_SERVICE_MARKED_FOR_DELETE);
    holder.Kill();  // the last handle goes with it
    service = Create();
    ASSERT_NE(service, nullptr) << GetLastError();
    RemoveDriver(service);
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
        RemoveDriver(service);
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
    RemoveDriver(service);
}

TEST_F(Service, AHandleGivesWhatItWasOpenedForAndNoMore) {
    SC_HANDLE service = Create(), reader = Open(SERVICE_QUERY_STATUS);
    EXPECT_EQ(State(reader), SERVICE_STOPPED);
    EXPECT_EQ(ErrorOf(StartServiceA(reader, 0, nullptr)), ERROR_ACCESS_DENIED);
    EXPECT_EQ(ErrorOf(DeleteService(reader)), ERROR_ACCESS_DENIED);
    RemoveDriver(service);
    CloseServiceHandle(reader);
}

TEST_F(Service, WhatCannotBeIsRefused) {
    const std::string longest(191, 'n'), longer(192, 'n'), longPath = "/" + std::string(511, 'p'), longGroup(64, 'g');
    const auto create = [this](const char* name, const char* path, const char* group, DWORD startType) -> DWORD {
        SC_HANDLE service = CreateDriver(m_manager, name, path, startType, group);
        if (service == nullptr) return GetLastError();
        RemoveDriver(service);
        return 0;
    };
    const struct {
        const char *what, *name, *path, *group;
        DWORD startType, error;
    } kCases[] = {
        {"the longest name",   longest.c_str(), "/dev/null",          nullptr,           3, 0                      },
        {"a longer name",      longer.c_str(),  "/dev/null",          nullptr,           3, ERROR_INVALID_NAME     },
        {"no name",            nullptr,         "/dev/null",          nullptr,           3, ERROR_INVALID_NAME     },
        {"an empty name",      "",              "/dev/null",          nullptr,           3, ERROR_INVALID_NAME     },
        {"a path for a name",  "../n",          "/dev/null",          nullptr,           3, ERROR_INVALID_NAME     },
        {"the longest path",   kName,           longPath.c_str() + 1, nullptr,           3, 0                      },
        {"a longer path",      kName,           longPath.c_str(),     nullptr,           3, ERROR_INVALID_PARAMETER},
        {"an empty path",      kName,           "",                   nullptr,           3, ERROR_INVALID_PARAMETER},
        {"a long group",       kName,           "/dev/null",          longGroup.c_str(), 3, ERROR_INVALID_PARAMETER},
        {"no such start type", kName,           "/dev/null",          nullptr,           5, ERROR_INVALID_PARAMETER},
    };
    for (const auto& c : kCases) {
        EXPECT_EQ(create(c.name, c.path, c.group, c.startType), c.error) << c.what;
        if (c.error != ERROR_INVALID_NAME) continue;
        EXPECT_EQ(OpenServiceA(m_manager, c.name, DELETE), nullptr) << c.what;
        EXPECT_EQ(GetLastError(), ERROR_INVALID_NAME) << c.what;
    }
    EXPECT_EQ(ErrorOf(OpenSCManagerA("another machine", nullptr, 0)), ERROR_NOT_SUPPORTED);
    SC_HANDLE visitor = OpenSCManagerA("", nullptr, 0);
    std::swap(visitor, m_manager);
    EXPECT_EQ(create(kName, "/dev/null", nullptr, 3), ERROR_ACCESS_DENIED) << "the manager wasn't opened for that";
    std::swap(visitor, m_manager);
    CloseServiceHandle(visitor);

    SC_HANDLE service = Create();
    SERVICE_STATUS status;
    EXPECT_EQ(ErrorOf(ControlService(service, 77, &status)), ERROR_INVALID_SERVICE_CONTROL);
    EXPECT_EQ(ErrorOf(ControlService(service, SERVICE_CONTROL_STOP, nullptr)), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(ErrorOf(QueryServiceStatusEx(service, SC_STATUS_PROCESS_INFO, nullptr, 0, nullptr)),
              ERROR_INVALID_PARAMETER);
    EXPECT_EQ(ErrorOf(QueryServiceConfigA(service, nullptr, 0, nullptr)), ERROR_INVALID_PARAMETER);
    RemoveDriver(service);
}

TEST_F(Service, ARecordCutShortIsNone) {
    const int folder = OpenRuntimeFolder();
    close(openat(folder, "service.quorlintestservice", O_CREAT | O_WRONLY, 0600));
    close(folder);
    SC_HANDLE service = Create();
    EXPECT_NE(service, nullptr) << GetLastError();
    RemoveDriver(service);
}
