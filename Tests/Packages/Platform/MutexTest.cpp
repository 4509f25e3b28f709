// Named mutexes between threads and processes. Names are fixed, as each stays in the user's table.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <functional>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "Packages/Container/Container.h"
#include "Packages/Platform/Linux/MutexTable.h"
#include "Packages/Platform/Linux/RuntimeFolder.h"
#include "Packages/Platform/Platform.h"
#include "Tests/Packages/Platform/Calls.h"
#include "Tests/Support/Linux/Processes.h"

namespace {

constexpr char kName[] = "QuorlinMutexTest";

DWORD OnAnotherThread(const std::function<DWORD()>& call) {
    DWORD answer = WAIT_FAILED;
    std::thread([&] { answer = call(); }).join();
    return answer;
}

TEST(Mutex, IsRecursiveAndOwnedByTheThread) {
    for (const char* name : {kName, static_cast<const char*>(nullptr)}) {
        HANDLE mutex = CreateMutexA(nullptr, FALSE, name);
        ASSERT_NE(mutex, nullptr);
        EXPECT_EQ(ErrorOf(ReleaseMutex(mutex)), ERROR_NOT_OWNER);
        EXPECT_EQ(WaitForSingleObject(mutex, INFINITE), WAIT_OBJECT_0);
        EXPECT_EQ(WaitForSingleObject(mutex, 0), WAIT_OBJECT_0);
        EXPECT_TRUE(ReleaseMutex(mutex));
        EXPECT_EQ(OnAnotherThread([&] { return WaitForSingleObject(mutex, 0); }), WAIT_TIMEOUT);
        EXPECT_EQ(OnAnotherThread([&] { return WaitForSingleObject(mutex, 20); }), WAIT_TIMEOUT);
        EXPECT_EQ(OnAnotherThread([&] { return ReleaseMutex(mutex) ? ERROR_SUCCESS : GetLastError(); }),
                  ERROR_NOT_OWNER);
        EXPECT_TRUE(ReleaseMutex(mutex));
        EXPECT_FALSE(ReleaseMutex(mutex));
        EXPECT_EQ(OnAnotherThread([&] { return WaitForSingleObject(mutex, INFINITE); }), WAIT_OBJECT_0);
        EXPECT_EQ(WaitForSingleObject(mutex, INFINITE), WAIT_ABANDONED);  // that thread has ended
        EXPECT_TRUE(ReleaseMutex(mutex));
        EXPECT_TRUE(CloseHandle(mutex));
    }
}

// Memory checkers see here that the lock goes or stays as it has to.
TEST(Mutex, AnUnnamedOneMayBeClosedWhileItIsHeld) {
    HANDLE mutex = CreateMutexA(nullptr, TRUE, nullptr);
    EXPECT_EQ(WaitForSingleObject(mutex, INFINITE), WAIT_OBJECT_0);
    EXPECT_TRUE(CloseHandle(mutex));
    HANDLE abandoned = CreateMutexA(nullptr, FALSE, nullptr);
    EXPECT_EQ(OnAnotherThread([&] { return WaitForSingleObject(abandoned, INFINITE); }), WAIT_OBJECT_0);
    EXPECT_TRUE(CloseHandle(abandoned));
    HANDLE next = CreateMutexA(nullptr, TRUE, nullptr);  // this thread's list of held mutexes is in order
    EXPECT_TRUE(ReleaseMutex(next));
    EXPECT_TRUE(CloseHandle(next));
}

TEST(Mutex, CreationTellsWhetherTheNameIsInUse) {
    HANDLE first = CreateMutexA(nullptr, FALSE, kName);
    EXPECT_EQ(GetLastError(), ERROR_SUCCESS);
    HANDLE second = CreateMutexA(nullptr, TRUE, kName);  // in use: not owned
    EXPECT_EQ(GetLastError(), ERROR_ALREADY_EXISTS);
    EXPECT_FALSE(ReleaseMutex(second));
    EXPECT_EQ(WaitForSingleObject(first, 0), WAIT_OBJECT_0);
    EXPECT_TRUE(ReleaseMutex(second));
    CloseHandle(first);
    CloseHandle(second);
    HANDLE owned = CreateMutexA(nullptr, TRUE, kName);
    EXPECT_EQ(GetLastError(), ERROR_SUCCESS);
    EXPECT_TRUE(ReleaseMutex(owned));
    CloseHandle(owned);
    EXPECT_EQ(ErrorOf(CreateMutexA(nullptr, FALSE, std::string(kLongestMutexName + 1, 'n').c_str())),
              ERROR_FILENAME_EXCED_RANGE);
}

TEST(Mutex, AKilledHolderLeavesItToTheNext) {
    HANDLE mutex = CreateMutexA(nullptr, FALSE, kName);
    for (int round = 0; round < 3; ++round) {
        ClHolder holder([] {  // its own handle: only the name is shared
            HANDLE own = CreateMutexA(nullptr, FALSE, kName);
            WaitForSingleObject(own, INFINITE);
            WaitForSingleObject(own, INFINITE);
        });
        EXPECT_EQ(WaitForSingleObject(mutex, 20), WAIT_TIMEOUT);
        holder.Kill();
        EXPECT_EQ(WaitForSingleObject(mutex, INFINITE), WAIT_ABANDONED);
        EXPECT_TRUE(ReleaseMutex(mutex));
        EXPECT_FALSE(ReleaseMutex(mutex));
    }
    CloseHandle(mutex);
}

// Once told to, holds the container's lock for ever.
std::atomic<bool> toHold = false, isHeld = false;
int32_t CompareOrHold(const void* first, const void* second) {
    for (isHeld = toHold.load(); toHold;) pause();
    return *static_cast<const int32_t*>(first) - *static_cast<const int32_t*>(second);
}

TEST(Mutex, AContainersKilledHolderLeavesItToTheNext) {
    for (const uint32_t kind : {kSortedList, kRedBlackTree, kAVLTree}) {
        ContainerParams_t params{"QuorlinMutexTest", kind, kOwnData, 0, CompareOrHold, nullptr};
        ContainerHandle_t container = nullptr;
        ASSERT_EQ(InitContainer(&params, &container, 0), kSuccess);
        int32_t first = 1, second = 2;
        EXPECT_EQ(Insert(container, &first), kSuccess);
        ClHolder holder([&] {
            toHold = true;
            std::thread([&] { Insert(container, &second); }).detach();
            while (!isHeld) Sleep(1);
        });
        std::atomic<status_t> once = 0, again = 0;
        std::thread waiting([&] {
            once = Insert(container, &second);
            again = Insert(container, &second);
        });
        Sleep(50);
        EXPECT_EQ(once, 0u) << kind << " doesn't wait";
        holder.Kill();
        waiting.join();
        ASSERT_EQ(once, kSuccess) << kind;
        ASSERT_EQ(again, kSuccess) << kind;
        for (int32_t* number : {&first, &second, &second}) EXPECT_EQ(DeleteByData(container, number), kSuccess) << kind;
        EXPECT_EQ(UnInitContainer(container), kSuccess);
    }
}

TEST(Mutex, AChildMayUseAnInheritedHandle) {
    HANDLE mutex = CreateMutexA(nullptr, FALSE, kName);
    EXPECT_EQ(WaitForSingleObject(mutex, INFINITE), WAIT_OBJECT_0);
    {
        ClHolder child([&] {
            if (WaitForSingleObject(mutex, 20) != WAIT_TIMEOUT) _exit(1);
            if (ReleaseMutex(mutex)) _exit(2);
        });
    }
    EXPECT_TRUE(ReleaseMutex(mutex));
    ClHolder child([&] { WaitForSingleObject(mutex, INFINITE); });
    EXPECT_EQ(WaitForSingleObject(mutex, 20), WAIT_TIMEOUT);
    child.Kill();
    EXPECT_EQ(WaitForSingleObject(mutex, INFINITE), WAIT_ABANDONED);
    EXPECT_TRUE(ReleaseMutex(mutex));
    CloseHandle(mutex);
}

class MutexTable : public testing::Test {
  protected:
    MutexTable() : m_path(testing::TempDir() + "QuorlinMutexTable" + std::to_string(getpid())) {
        m_folder = OpenPrivateFolder(m_path.c_str());
        EXPECT_GE(m_folder, 0);
    }
    ~MutexTable() override {
        close(m_folder);
        std::filesystem::remove_all(m_path);
    }
    ClMutexTable Mapped() const {
        ClMutexTable table;
        EXPECT_TRUE(table.Map(m_folder));
        return table;
    }
    const std::string m_path;
    int m_folder;
};

TEST_F(MutexTable, IsSetUpOnceByProcessesThatStartTogether) {
    std::vector<pid_t> processes;
    for (int i = 0; i < 8; ++i) {
        const pid_t process = fork();
        if (process != 0) {
            processes.push_back(process);
            continue;
        }
        ClMutexTable table = Mapped();
        int n = 0;
        while (n < 20 && table.Find(std::to_string(n).c_str()) != nullptr) ++n;
        _exit(n != 20);
    }
    for (const pid_t process : processes) {
        int status;
        waitpid(process, &status, 0);
        EXPECT_EQ(status, 0);
    }
    // 20 names took 20 slots: another takes the next one.
    ClMutexTable table = Mapped();
    std::set<const char*> slots;
    for (int n = 0; n <= 20; ++n) slots.insert(reinterpret_cast<const char*>(table.Find(std::to_string(n).c_str())));
    EXPECT_EQ(slots.size(), 21u);
    EXPECT_EQ(*slots.rbegin() - *slots.begin(), static_cast<std::ptrdiff_t>(20 * sizeof(MutexSlot_t)));
}

TEST_F(MutexTable, GivesAwayTheSlotsOfTheDeadAndNoOthers) {
    constexpr int kOthers = ClMutexTable::kSlots - 2;
    ClMutexTable table = Mapped();
    const pthread_mutex_t* own = table.Find("own");
    const auto claim = [](ClMutexTable in, const std::string& name) {
        int claimed = 0;
        while (claimed <= kOthers && in.Find((name + std::to_string(claimed)).c_str()) != nullptr) ++claimed;
        return claimed;
    };
    ClHolder living([this] { Mapped().Find("the child's"); });
    EXPECT_EQ(InChild([&] { return claim(Mapped(), "first") == kOthers ? 0 : 1; }), 0);
    EXPECT_EQ(claim(table, "second"), kOthers) << "those of the child that has ended";
    EXPECT_EQ(table.Find("one more"), nullptr);
    living.Kill();
    EXPECT_NE(table.Find("one more"), nullptr);
    EXPECT_EQ(table.Find("own"), own);
}

// What other processes know nothing of guards nothing that they share.
TEST(Mutex, ANameWithoutASlotWorksHereAndKeepsSectionsAway) {
    const int result = InChild([] {
        const auto section = [] {
            return CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, 4, "QuorlinMutexTest");
        };
        HANDLE last = nullptr;
        for (uint32_t i = 0; i <= ClMutexTable::kSlots; ++i) {
            if (last != nullptr) CloseHandle(last);
            last = CreateMutexA(nullptr, FALSE, ("QuorlinMutexTest" + std::to_string(i)).c_str());
            EXPECT_EQ(WaitForSingleObject(last, INFINITE), WAIT_OBJECT_0);
            if (i < ClMutexTable::kSlots) ReleaseMutex(last);
        }
        EXPECT_EQ(OnAnotherThread([&] { return WaitForSingleObject(last, 0); }), WAIT_TIMEOUT);
        EXPECT_EQ(ErrorOf(section()), ERROR_NO_SYSTEM_RESOURCES);
        EXPECT_TRUE(CloseHandle(last));
        HANDLE made = section();
        EXPECT_EQ(ErrorOf(made), 0u);
        EXPECT_TRUE(CloseHandle(made));
        return testing::Test::HasFailure() ? 1 : 0;
    });
    EXPECT_EQ(result, 0);
}

TEST_F(MutexTable, RefusesAFileThatIsNotItsOwn) {
    ASSERT_TRUE(ClMutexTable().Map(m_folder));
    const std::string file = std::filesystem::directory_iterator(m_path)->path();
    chmod(file.c_str(), 0666);
    EXPECT_FALSE(ClMutexTable().Map(m_folder)) << "anyone may write it";
    std::filesystem::rename(file, m_path + "/elsewhere");
    std::filesystem::create_symlink("elsewhere", file);
    EXPECT_FALSE(ClMutexTable().Map(m_folder)) << "a link";
    std::filesystem::remove(file);
    const int other = OpenPrivateFile(m_folder, std::filesystem::path(file).filename().c_str());
    EXPECT_EQ(write(other, "other", 5), 5);
    close(other);
    EXPECT_FALSE(ClMutexTable().Map(m_folder)) << "another layout";
}

TEST(RuntimeFolder, ALockIsWaitedForThroughSignals) {
    const std::string path = testing::TempDir() + "QuorlinLock" + std::to_string(getpid());
    const auto openFile = [&] { return open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600); };
    const int file = openFile();
    ClHolder holder([&] { EXPECT_TRUE(LockFile(openFile(), LOCK_EX)); });
    struct sigaction action = {};  // without SA_RESTART
    action.sa_handler = [](int) {};
    sigaction(SIGUSR1, &action, nullptr);
    std::thread caller([file] { EXPECT_TRUE(LockFile(file, LOCK_EX)); });
    for (int i = 0; i < 5; ++i) {
        Sleep(10);
        pthread_kill(caller.native_handle(), SIGUSR1);
    }
    holder.Kill();
    caller.join();
    close(file);
    std::filesystem::remove(path);
}

TEST(RuntimeFolder, IsTheUsersAlone) {
    const std::string path = testing::TempDir() + "QuorlinRuntimeFolder" + std::to_string(getpid());
    const auto opens = [&](const std::string& folder) {
        const int descriptor = OpenPrivateFolder(folder.c_str());
        if (descriptor >= 0) close(descriptor);
        return descriptor >= 0;
    };
    EXPECT_TRUE(opens(path));
    EXPECT_TRUE(opens(path));
    std::filesystem::create_symlink(path, path + "Link");
    EXPECT_FALSE(opens(path + "Link"));
    for (const mode_t mode : {0755u, 0770u, 0701u}) {
        chmod(path.c_str(), mode);
        EXPECT_FALSE(opens(path)) << mode;
    }
    EXPECT_FALSE(opens(path + "/none/below"));
    if (geteuid() == 0) {  // another user's
        chmod(path.c_str(), 0700);
        ASSERT_EQ(chown(path.c_str(), 1, 1), 0);
        EXPECT_FALSE(opens(path));
    }
    std::filesystem::remove(path + "Link");
    std::filesystem::remove(path);
}

}  // namespace
