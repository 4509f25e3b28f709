#include "Packages/OS/NamedLock.h"

#include <map>
#include <mutex>
#include <new>
#include <string>

struct NamedLock_t {
    std::string name = {};  // empty if not listed in Names_t
    size_t references = 1;
    std::recursive_mutex mutex = {};
};

namespace {

// All locks that have names. Never destroyed, because a host may close containers while its static objects are
// destroyed.
struct Names_t {
    std::mutex guard;
    std::map<std::string, NamedLock_t*> locks;
};
Names_t& Names() {
    static Names_t& names = *new Names_t;
    return names;
}

}  // namespace

NamedLock_t* os_OpenNamedLock(const char* name) try {
    if (*name == '\0') return new NamedLock_t;
    Names_t& names = Names();
    const std::lock_guard hold(names.guard);
    NamedLock_t*& lock = names.locks[name];
    if (lock != nullptr)
        ++lock->references;
    else
        lock = new NamedLock_t{name};
    return lock;
} catch (const std::bad_alloc&) {
    return nullptr;
}

void os_CloseNamedLock(NamedLock_t* lock) {
    Names_t& names = Names();
    const std::lock_guard hold(names.guard);
    if (--lock->references != 0) return;
    if (!lock->name.empty()) names.locks.erase(lock->name);
    delete lock;
}

bool os_TakeNamedLock(NamedLock_t* lock) try {
    lock->mutex.lock();
    return true;
} catch (const std::exception&) {
    return false;
}

void os_ReleaseNamedLock(NamedLock_t* lock) { lock->mutex.unlock(); }
