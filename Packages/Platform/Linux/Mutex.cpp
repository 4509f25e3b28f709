// Mutexes: recursive, and given on when the holder dies. A named one is shared with the user's other processes.
//
// What lies behind a name is looked up at the first wait, so that creating a mutex that nobody waits for costs no
// system call. Until then only this process can tell whether a name is in use, and ERROR_ALREADY_EXISTS speaks for
// this process alone. Where the shared table can't be had or is full, a name works between the threads of the process;
// named sections, which such a mutex doesn't guard from other processes, can't be created meanwhile.
#include <pthread.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <ctime>
#include <map>
#include <memory>
#include <mutex>
#include <new>
#include <string>
#include <typeinfo>

#include "Packages/Platform/Linux/Descriptor.h"
#include "Packages/Platform/Linux/Handles.h"
#include "Packages/Platform/Linux/Mutex.h"
#include "Packages/Platform/Linux/MutexTable.h"
#include "Packages/Platform/Linux/RuntimeFolder.h"

namespace {

// What all handles of one name in this process share, or what one unnamed handle has.
class ClLock {
  public:
    explicit ClLock(const char* name) : m_name(name) {}
    ClLock(const ClLock&) = delete;
    ClLock& operator=(const ClLock&) = delete;
    ~ClLock();

    const std::string& Name() const { return m_name; }
    // As the pthread functions: 0; EOWNERDEAD taken from a holder that died; EBUSY or ETIMEDOUT; ENOMEM; EPERM.
    int Lock(DWORD milliseconds);
    int Unlock();

  private:
    // The mutex, looked up or made at the first call; null if there is no memory.
    pthread_mutex_t* Mutex() {
        pthread_mutex_t* known = m_mutex.load(std::memory_order_acquire);
        return known != nullptr ? known : Resolve();
    }
    pthread_mutex_t* Resolve();

    const std::string m_name;  // empty: unnamed
    std::atomic<pthread_mutex_t*> m_mutex = nullptr;
    pthread_mutex_t* m_own = nullptr;  // in this process only
    std::atomic<int> m_held = 0;       // how often m_own is held
};

// Guards the names and every first look-up.
std::mutex processLock;

std::atomic<int> unsharedNames = 0;  // names that work in this process only

std::map<std::string, std::weak_ptr<ClLock>>& Names() {
    static auto& names = *new std::map<std::string, std::weak_ptr<ClLock>>;  // outlives every handle
    return names;
}

// Mapped once in each process; what keeps it from being mapped may pass.
ClMutexTable& SharedTable() {
    static ClMutexTable table;
    static pid_t process = 0;
    if (process == getpid()) return table;
    table = {};
    const ClDescriptor folder(OpenRuntimeFolder());
    if (folder.IsOpen() && table.Map(folder.Get())) process = getpid();
    return table;
}

pthread_mutex_t* ClLock::Resolve() {
    const std::lock_guard guard(processLock);
    pthread_mutex_t* mutex = m_mutex.load(std::memory_order_relaxed);
    if (mutex != nullptr) return mutex;  // another thread came first
    if (!m_name.empty()) mutex = SharedTable().Find(m_name.c_str());
    if (mutex == nullptr) {
        m_own = new (std::nothrow) pthread_mutex_t;
        if (m_own != nullptr && !InitRobustMutex(m_own, PTHREAD_PROCESS_PRIVATE)) {
            delete m_own;
            m_own = nullptr;
        }
        mutex = m_own;
        if (m_own != nullptr && !m_name.empty()) ++unsharedNames;
    }
    m_mutex.store(mutex, std::memory_order_release);
    return mutex;
}

// A mutex of this process that another thread still holds stays: that thread's list of held mutexes leads through it.
ClLock::~ClLock() {
    if (m_own == nullptr) return;
    if (!m_name.empty()) --unsharedNames;
    const int status = pthread_mutex_trylock(m_own);
    if (status != 0 && status != EOWNERDEAD) return;
    if (status == EOWNERDEAD) {
        RepairMutex(m_own);
        m_held = 0;
    }
    for (int times = m_held + 1; times > 0; --times) pthread_mutex_unlock(m_own);
    pthread_mutex_destroy(m_own);
    delete m_own;
}

timespec After(DWORD milliseconds) {
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    time.tv_sec += milliseconds / 1000;
    time.tv_nsec += static_cast<long>(milliseconds % 1000) * 1'000'000;
    if (time.tv_nsec >= 1'000'000'000) {
        ++time.tv_sec;
        time.tv_nsec -= 1'000'000'000;
    }
    return time;
}

int LockWithin(pthread_mutex_t* mutex, DWORD milliseconds) {
    if (milliseconds == 0) return pthread_mutex_trylock(mutex);
    const timespec end = After(milliseconds);
    return pthread_mutex_clocklock(mutex, CLOCK_MONOTONIC, &end);
}

int ClLock::Lock(DWORD milliseconds) {
    pthread_mutex_t* mutex = Mutex();
    if (mutex == nullptr) return ENOMEM;
    const int status = milliseconds == INFINITE ? pthread_mutex_lock(mutex) : LockWithin(mutex, milliseconds);
    if (status == EOWNERDEAD) {
        RepairMutex(mutex);
        m_held = 0;
    }
    if (m_own != nullptr && (status == 0 || status == EOWNERDEAD)) ++m_held;
    return status;
}

int ClLock::Unlock() {
    pthread_mutex_t* mutex = Mutex();
    if (mutex == nullptr) return EPERM;
    const int status = pthread_mutex_unlock(mutex);
    if (m_own != nullptr && status == 0) --m_held;
    return status;
}

class ClMutex final : public ClObject {
  public:
    explicit ClMutex(std::shared_ptr<ClLock> lock) : m_lock(std::move(lock)) {}
    ~ClMutex() override {
        const std::lock_guard guard(processLock);
        const bool last = m_lock.use_count() == 1 && !m_lock->Name().empty();
        if (last) Names().erase(m_lock->Name());
        m_lock.reset();
    }
    DWORD Wait(DWORD milliseconds) override;
    BOOL Release();

  private:
    std::shared_ptr<ClLock> m_lock;
};

DWORD ClMutex::Wait(DWORD milliseconds) {
    const int status = m_lock->Lock(milliseconds);
    if (status == 0) return WAIT_OBJECT_0;
    switch (status) {
        case EOWNERDEAD: return WAIT_ABANDONED;
        case EBUSY:
        case ETIMEDOUT: return WAIT_TIMEOUT;
        default: SetLastError(ErrorFromErrno(status)); return WAIT_FAILED;
    }
}

BOOL ClMutex::Release() { return m_lock->Unlock() == 0 ? TRUE : Fail(ERROR_NOT_OWNER); }

// The lock of that name, and whether it was there before.
std::shared_ptr<ClLock> LockOf(const char* name, bool* existed) {
    *existed = false;
    if (*name == '\0') return std::make_shared<ClLock>(name);
    const std::lock_guard guard(processLock);
    std::weak_ptr<ClLock>& known = Names()[name];
    std::shared_ptr<ClLock> lock = known.lock();
    *existed = lock != nullptr;
    if (!*existed) known = lock = std::make_shared<ClLock>(name);
    return lock;
}

}  // namespace

bool HasUnsharedNames() { return unsharedNames != 0; }

HANDLE CreateMutexA(SECURITY_ATTRIBUTES*, BOOL initialOwner, LPCSTR name) try {
    if (name == nullptr) name = "";
    if (std::char_traits<char>::length(name) > kLongestMutexName) {
        SetLastError(ERROR_FILENAME_EXCED_RANGE);
        return nullptr;
    }
    bool existed;
    auto mutex = std::make_unique<ClMutex>(LockOf(name, &existed));
    if (initialOwner && !existed) existed = mutex->Wait(0) == WAIT_TIMEOUT;  // held: another process made it
    SetLastError(existed ? ERROR_ALREADY_EXISTS : ERROR_SUCCESS);
    return mutex.release();
} catch (const std::bad_alloc&) {
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return nullptr;
}

BOOL ReleaseMutex(HANDLE handle) {
    if (handle == nullptr || handle == INVALID_HANDLE_VALUE || handle == kCurrentThread)
        return Fail(ERROR_INVALID_HANDLE);
    auto* object = static_cast<ClObject*>(handle);
    if (typeid(*object) != typeid(ClMutex)) return Fail(ERROR_INVALID_HANDLE);
    return static_cast<ClMutex*>(object)->Release();
}
