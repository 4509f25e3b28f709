// The named mutexes of one user: a file of slots that every process of the user maps. A slot belongs to one name for
// as long as the file lives, so that a process may keep a pointer into it.
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

    // Maps the table's file in `folder`, made if need be. The mapping stays until the process ends. Null where there
    // is no such file to be had, or it is of another layout.
    static ClMutexTable* Map(int folder);
    // The mutex of that name, in a slot claimed for it if need be; null when the table is full or the name too long.
    pthread_mutex_t* Find(const char* name);

  private:
    uint64_t stamp;  // kStamp once all else is in order
    uint32_t used;   // slots in use, the first ones
    pthread_mutex_t claim;
    MutexSlot_t slots[kSlots];
};
