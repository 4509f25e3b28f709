// More functions of the os_ layer, for hosts: text, streams, processes, thread affinity, file lists and facts about the
// machine. Most of them aren't used in this library. "The system's last error" is Windows' error number, or errno.
//
// Null       Arguments must not be null, unless a status for null is listed.
// Ownership  Texts and arrays returned through out pointers are new allocations, which the caller releases with
//            os_FreeBlock. Out pointers are written on status 1 only.
// Threads    All functions may be called by several threads at once.
#pragma once

#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <cstdio>

#include "Packages/OS/Export.h"
#include "Packages/OS/Status.h"

// A process started by os_StartProcess. os_KillProcess and os_WaitProcess close the handles and set them to null; on
// Linux, where the handles are the process number, a process on which neither was called becomes a zombie when it ends.
struct ProcessRecord_t {
    void* Process;
    void* Thread;
    uint32_t ProcessNumber;
    uint32_t ThreadNumber;
};

// Local time. Month and Day start at 1.
struct LocalTime_t {
    uint8_t Second;
    uint8_t Minute;
    uint8_t Hour;
    uint8_t Month;
    uint16_t Year;
    uint8_t Day;
};

// One bit for each processor of a group, and the group's number.
struct GroupAffinity_t {
    uint64_t Mask;
    uint16_t Group;
};

// HKEY_LOCAL_MACHINE, for os_ReadRegistryString.
inline void* const kLocalMachine = reinterpret_cast<void*>(static_cast<intptr_t>(INT32_MIN + 2));

extern "C" {
// ---- text. As the standard functions of these names.

QUORLIN_API int32_t os_strncmp(const char* first, const char* second, size_t count);
QUORLIN_API char* os_strchr(const char* text, int32_t character);
QUORLIN_API char* os_strrchr(const char* text, int32_t character);
QUORLIN_API int32_t os_atoi(const char* text);
QUORLIN_API int32_t os_printf(const char* format, ...) QUORLIN_PRINTF_LIKE(1, 2);
QUORLIN_API int32_t os_vprintf(const char* format, va_list arguments) QUORLIN_PRINTF_LIKE(1, 0);
QUORLIN_API int32_t os_fprintf(FILE* stream, const char* format, ...) QUORLIN_PRINTF_LIKE(2, 3);
QUORLIN_API int32_t os_vfprintf(FILE* stream, const char* format, va_list arguments) QUORLIN_PRINTF_LIKE(2, 0);
QUORLIN_API int32_t os_sscanf(const char* text, const char* format, ...);

// Appends `source` to the text in `destination`, a buffer of `size` bytes. Returns `destination`; or null, without
// changing it, if the whole doesn't fit.
QUORLIN_API char* os_strcat(char* destination, size_t size, const char* source);

// Returns the local time as "%m/%d/%Y %H:%M:%S".
// Status  1; 4 null argument; 5 other failures
QUORLIN_API status_t os_GetDateTimeString(char** text);

// Status  1; 4 null argument
QUORLIN_API status_t os_GetLocalTime(LocalTime_t* now);

// Frees each of `count` texts, then their array, and sets the pointer to null.
// Status  1; 5 null pointer or a count of 0: nothing is freed
QUORLIN_API status_t os_FreeStringArray(char*** array, uint32_t count);

// ---- streams. As the standard functions of these names.

QUORLIN_API int32_t os_fclose(FILE* stream);
QUORLIN_API int32_t os_fflush(FILE* stream);
QUORLIN_API size_t os_fread(void* buffer, size_t size, size_t count, FILE* stream);
QUORLIN_API size_t os_fwrite(const void* buffer, size_t size, size_t count, FILE* stream);
QUORLIN_API char* os_fgets(char* buffer, int32_t size, FILE* stream);
QUORLIN_API int32_t os_fputs(const char* text, FILE* stream);
QUORLIN_API int32_t os_fseek(FILE* stream, long offset, int32_t origin);
QUORLIN_API long os_ftell(FILE* stream);

// ---- processes and threads. If a status is the system's last error and that has the number of success, it is 5.

// Starts the program with the path `application`. It inherits no handles.
// arguments    null-terminated array, or null for none; element 0 is skipped. On Windows they are joined with blanks
// and
//              not quoted, so the process sees an argument with blanks as several. On Linux they are passed as they are
// environment  null-terminated array of texts NAME=value: the whole environment; null for a copy of the caller's
// Status       1; 3 arguments or environment of 1024 bytes or more; 4 null application or record; otherwise the
//              system's last error
QUORLIN_API status_t os_StartProcess(const char* application, const char* const* arguments,
                                     const char* const* environment, ProcessRecord_t* process);

// Starts `program` with all of `arguments`, a null-terminated array or null. It can't be waited for.
// Status  1; 5 failure, or null program
QUORLIN_API status_t os_StartProcessDetached(const char* program, const char* const* arguments);

// Ends the process with exit code 0 and closes the record's handles.
// Status  1; 4 null record; otherwise the system's last error
QUORLIN_API status_t os_KillProcess(ProcessRecord_t* process);

// Waits without limit until the process ends, and closes the record's handles.
// Status  1; 4 null record; 5 no exit code; otherwise the system's last error, as for a record that is closed already
QUORLIN_API status_t os_WaitProcess(ProcessRecord_t* process);

// Moves the calling thread to a processor. Processors are numbered from 0 through all groups in order; on Linux through
// all that are online, in groups of 64.
// Status  1; 5 no such processor in the first 4 groups, or the system refuses
QUORLIN_API status_t os_SetThreadAffinity(uint32_t processor);

// Returns the mask and the group that os_SetThreadAffinity applies.
// Status  1; 4 null argument; 5 no such processor
QUORLIN_API status_t os_GetProcessorAffinity(uint32_t processor, GroupAffinity_t* affinity);

// ---- machine facts

// Lists the names of the files in `directory`, without folders. Release them with os_FreeStringArray. If there are no
// files, the count is 0 and the array null.
// Status  1; 3 out of memory; 4 null out pointer; 5 directory null, of 258 characters or more, or not readable
QUORLIN_API status_t os_FindFiles(const char* directory, char*** names, uint32_t* count);

// Reads a text value from the registry.
// root    kLocalMachine or another root key
// unused  ignored
// Status  1; 3 out of memory; 4 null out pointer; 5 no such key or value, or not readable; 6 no registry: Linux
QUORLIN_API status_t os_ReadRegistryString(void* root, const char* path, const char* value, char** text, void* unused);

// Return the names of the system and of the machine. On Linux these are PRETTY_NAME of os-release, or else the kernel's
// name, and the host name.
// Status  1; 2 null argument; 3 out of memory; 5 unknown
QUORLIN_API status_t os_GetOSName(char** text);
QUORLIN_API status_t os_GetMachineName(char** text);

// Returns the installed memory in bytes. On Linux the sum of sysfs' memory blocks, or else what the kernel manages.
// Status  1; 4 null argument; 5 on failure
QUORLIN_API status_t os_GetMemorySize(uint64_t* bytes);

// Returns the current folder, in a block of at least 200 bytes.
// Status  1; 4 null argument; 5 on failure
QUORLIN_API status_t os_GetCurrentDirectory(char** text);
}
