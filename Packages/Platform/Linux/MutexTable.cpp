#include "Packages/Platform/Linux/MutexTable.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "Packages/Platform/Linux/Descriptor.h"
#include "Packages/Platform/Linux/RuntimeFolder.h"

// A new layout takes a new name, so that old and new programs don't meet in one file.
static constexpr char kFileName[] = "mutexes-2";
const uint64_t ClMutexTable::kStamp = uint64_t{sizeof(Shared_t)} << 32 | 2;

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
bool ClMutexTable::Map(int folder) {
    ClDescriptor file(OpenPrivateFile(folder, kFileName)), ownFolder(fcntl(folder, F_DUPFD_CLOEXEC, 0));
    struct stat found;
    if (!file.IsOpen() || !ownFolder.IsOpen() || !LockFile(file.Get(), LOCK_EX)) return false;
    Shared_t* shared = nullptr;
    if (fstat(file.Get(), &found) == 0 &&
        (found.st_size >= static_cast<off_t>(sizeof *shared) || ReserveSpace(file.Get(), sizeof *shared) == 0)) {
        void* view = mmap(nullptr, sizeof *shared, PROT_READ | PROT_WRITE, MAP_SHARED, file.Get(), 0);
        if (view != MAP_FAILED) shared = static_cast<Shared_t*>(view);
    }
    if (shared != nullptr && shared->stamp == 0) {
        shared->used = 0;
        if (InitRobustMutex(&shared->claim, PTHREAD_PROCESS_SHARED)) shared->stamp = kStamp;
    }
    LockFile(file.Get(), LOCK_UN);  // closing alone would not do it: the mapping holds the file open
    if (shared == nullptr || shared->stamp != kStamp) {
        if (shared != nullptr) munmap(shared, sizeof *shared);
        return false;
    }
    m_folder = ownFolder.Release();
    m_file = file.Release();
    m_shared = shared;
    return true;
}

static struct flock MarkOf(uint32_t slot, short kind) {
    struct flock mark = {};
    mark.l_type = kind;
    mark.l_whence = SEEK_SET;
    mark.l_start = slot;
    mark.l_len = 1;
    return mark;
}

bool ClMutexTable::Mark(uint32_t slot) const {
    struct flock mark = MarkOf(slot, F_RDLCK);
    return fcntl(m_file, F_OFD_SETLK, &mark) == 0;
}

// The first slot that no process marks, or kSlots. Asked through another descriptor, which all marks are in the way of.
uint32_t ClMutexTable::UnmarkedSlot() const {
    const ClDescriptor file(OpenPrivateFile(m_folder, kFileName));
    for (uint32_t slot = 0; slot < kSlots; ++slot) {
        struct flock mark = MarkOf(slot, F_WRLCK);
        if (fcntl(file.Get(), F_OFD_GETLK, &mark) == 0 && mark.l_type == F_UNLCK) return slot;
    }
    return kSlots;
}

pthread_mutex_t* ClMutexTable::Find(const char* name) {
    const size_t size = std::strlen(name) + 1;
    if (m_shared == nullptr || size > sizeof(MutexSlot_t::name)) return nullptr;
    const int status = pthread_mutex_lock(&m_shared->claim);
    if (status == EOWNERDEAD) RepairMutex(&m_shared->claim);  // a slot half made has no name yet
    if (status != 0 && status != EOWNERDEAD) return nullptr;
    MutexSlot_t* const slots = m_shared->slots;
    const uint32_t used = m_shared->used < kSlots ? m_shared->used : kSlots;
    uint32_t slot = 0;
    while (slot < used && std::memcmp(slots[slot].name, name, size) != 0) ++slot;
    const bool isNew = slot == used;
    if (slot == kSlots) slot = UnmarkedSlot();
    bool isFound = slot < kSlots && Mark(slot);
    if (isFound && isNew) {
        slots[slot].name[0] = '\0';
        isFound = InitRobustMutex(&slots[slot].mutex, PTHREAD_PROCESS_SHARED);
        if (isFound) std::memcpy(slots[slot].name, name, size);
        if (isFound && slot == used) m_shared->used = used + 1;
    }
    pthread_mutex_unlock(&m_shared->claim);
    return isFound ? &slots[slot].mutex : nullptr;
}
