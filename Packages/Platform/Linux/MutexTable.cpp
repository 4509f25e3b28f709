#include "Packages/Platform/Linux/MutexTable.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "Packages/Platform/Linux/RuntimeFolder.h"

// A new layout takes a new name, so that old and new programs don't meet in one file.
static constexpr char kFileName[] = "mutexes-1";
static constexpr uint64_t kStamp = uint64_t{sizeof(ClMutexTable)} << 32 | 1;

bool InitRobustMutex(pthread_mutex_t* mutex, int shared) {
    pthread_mutexattr_t attributes;
    if (pthread_mutexattr_init(&attributes) != 0) return false;
    const bool made = pthread_mutexattr_setpshared(&attributes, shared) == 0 &&
                      pthread_mutexattr_setrobust(&attributes, PTHREAD_MUTEX_ROBUST) == 0 &&
                      pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE) == 0 &&
                      pthread_mutex_init(mutex, &attributes) == 0;
    pthread_mutexattr_destroy(&attributes);
    return made;
}

void RepairMutex(pthread_mutex_t* mutex) { pthread_mutex_consistent(mutex); }

// The file is set up by whoever finds it without a stamp, under the file's lock. One who dies at that leaves no stamp,
// and the next one starts over. The space is reserved, as a write into a hole of a full file system would be fatal.
ClMutexTable* ClMutexTable::Map(int folder) {
    const int file = OpenPrivateFile(folder, kFileName);
    if (file < 0) return nullptr;
    ClMutexTable* table = nullptr;
    struct stat found;
    if (LockFile(file, LOCK_EX) && fstat(file, &found) == 0 &&
        (found.st_size >= static_cast<off_t>(sizeof *table) || ReserveSpace(file, sizeof *table) == 0)) {
        void* view = mmap(nullptr, sizeof *table, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
        if (view != MAP_FAILED) table = static_cast<ClMutexTable*>(view);
    }
    if (table != nullptr && table->stamp == 0) {
        table->used = 0;
        if (InitRobustMutex(&table->claim, PTHREAD_PROCESS_SHARED)) table->stamp = kStamp;
    }
    if (table != nullptr && table->stamp != kStamp) {
        munmap(table, sizeof *table);
        table = nullptr;
    }
    flock(file, LOCK_UN);  // closing alone would not do it: the mapping holds the file open
    close(file);
    return table;
}

pthread_mutex_t* ClMutexTable::Find(const char* name) {
    const size_t size = std::strlen(name) + 1;
    if (size > sizeof slots[0].name) return nullptr;
    const int status = pthread_mutex_lock(&claim);
    if (status == EOWNERDEAD) RepairMutex(&claim);  // a slot half made is not counted in `used`
    if (status != 0 && status != EOWNERDEAD) return nullptr;
    pthread_mutex_t* mutex = nullptr;
    uint32_t i = 0;
    while (i < used && i < kSlots && std::memcmp(slots[i].name, name, size) != 0) ++i;
    if (i < used && i < kSlots) {
        mutex = &slots[i].mutex;
    } else if (i < kSlots && InitRobustMutex(&slots[i].mutex, PTHREAD_PROCESS_SHARED)) {
        std::memcpy(slots[i].name, name, size);
        mutex = &slots[i].mutex;
        used = i + 1;
    }
    pthread_mutex_unlock(&claim);
    return mutex;
}
