// The named mutexes of one user: a file of slots that every process of the user maps. A process marks the slots that it
// has taken pointers into by shared locks on one byte each of the file, which the system drops when the process ends,
// however it ends. When all slots have names, those that nobody marks are given to others.
#pragma once

#include <pthread.h>

#include <cstddef>
#include <cstdint>

inline constexpr size_t kLongestMutexName = 259;  // Windows' MAX_PATH less the NUL

struct MutexSlot_t {
    pthread_mutex_t mutex;
    char name[kLongestMutexName + 1];
};

// Robust: when the thread that holds it dies, the next one gets it, with EOWNERDEAD. Recursive, as on Windows.
// `shared` is PTHREAD_PROCESS_SHARED or PTHREAD_PROCESS_PRIVATE.
bool InitRobustMutex(pthread_mutex_t* mutex, int shared);
// Tells the system that what the mutex guards is in order again after its holder died.
void RepairMutex(pthread_mutex_t* mutex);

class ClMutexTable {
  public:
    static constexpr uint32_t kSlots = 256;

    // Maps the table's file in `folder`, made if need be. The mapping stays until the process ends; a forked child has
    // it too, and shares its parent's marks, but maps its own to find more. False where there is no such file to be
    // had, or it is of another layout.
    bool Map(int folder);
    // The mutex of that name, in a slot claimed for it if need be, which is this process's until it ends; null when
    // every slot is some other name's and in use, the name is too long, or nothing is mapped.
    pthread_mutex_t* Find(const char* name);

  private:
    struct Shared_t {
        uint64_t stamp;  // kStamp once all else is in order
        uint32_t used;   // slots that have a name, the first ones
        pthread_mutex_t claim;
        MutexSlot_t slots[kSlots];
    };
    static const uint64_t kStamp;

    uint32_t UnmarkedSlot() const;
    bool Mark(uint32_t slot) const;

    int m_folder = -1;
    int m_file = -1;  // holds this process's marks
    Shared_t* m_shared = nullptr;
};
