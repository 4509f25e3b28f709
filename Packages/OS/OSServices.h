// What the os_ layer offers a host beside OS.h: text, streams, processes, thread affinity, file lists and facts about
// the machine. Nothing inside this library calls it. "The system's last error" is Windows' error number, or errno.
//
// Null       Where no status for a null argument is given, none may be null.
// Ownership  What a function gives through an out pointer is a new allocation, which the caller frees with
// os_FreeBlock.
//            Out pointers are written on status 1 only.
// Threads    Any number at once.
#pragma once

#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <cstdio>

#include "Packages/OS/Export.h"
#include "Packages/OS/Status.h"

// A process that os_StartProcess has started. The handles are this record's until os_KillProcess or os_WaitProcess
// closes them and makes them null. On Linux they hold the process number, and a record that is given to neither leaves
// a zombie when the process ends.
struct ProcessRecord_t {
    void* Process;
    void* Thread;
    uint32_t ProcessNumber;
    uint32_t ThreadNumber;
};

// Local time; Month from 1, Day of the month from 1.
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

// The root key HKEY_LOCAL_MACHINE, for os_ReadRegistryString.
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

// Appends `source` to the text in `destination`, a buffer of `size` bytes. Gives `destination`; null, with the
// destination as it was, where the whole doesn't fit.
QUORLIN_API char* os_strcat(char* destination, size_t size, const char* source);

// The local time as "%m/%d/%Y %H:%M:%S".
// Status  1; 4 null argument; 5 other failures
QUORLIN_API status_t os_GetDateTimeString(char** text);

// Status  1; 4 null argument
QUORLIN_API status_t os_GetLocalTime(LocalTime_t* now);

// Frees each of `count` texts, then their array, and makes the array's pointer null.
// Status  1; 5 null pointer or a count of 0, nothing freed
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

// ---- processes and threads. Where a status is the system's last error, an error that would read as success gives 5.

// Starts `application`, a path. It inherits no handles.
// arguments    null-ended, or null for none; element 0 is skipped. Windows joins them by blanks and doesn't quote them,
//              so an argument with blanks reaches the process as several. On Linux they reach it as they are
// environment  null-ended texts NAME=value, which are its whole environment; null for the caller's own
// Status       1; 3 arguments or environment of 1024 bytes or more; 4 null application or record; otherwise the
//              system's last error
QUORLIN_API status_t os_StartProcess(const char* application, const char* const* arguments,
                                     const char* const* environment, ProcessRecord_t* process);

// Starts `program` with all of `arguments`, null-ended or null, and keeps no hold on it.
// Status  1; 5 on failure or for a null program
QUORLIN_API status_t os_StartProcessDetached(const char* program, const char* const* arguments);

// Ends the process with exit code 0 and closes the record's handles.
// Status  1; 4 null record; otherwise the system's last error
QUORLIN_API status_t os_KillProcess(ProcessRecord_t* process);

// Waits until the process has ended, for as long as it takes, and closes the record's handles.
// Status  1; 4 null record; 5 no exit code; otherwise the system's last error of the wait, as for a record that is
// closed
QUORLIN_API status_t os_WaitProcess(ProcessRecord_t* process);

// Moves the calling thread to a processor. Logical processor numbers run from 0 through all groups in order; on Linux
// through all that are online, 64 of them a group.
// Status  1; 5 no such processor among those of the first 4 groups, or the system refuses
QUORLIN_API status_t os_SetThreadAffinity(uint32_t processor);

// The mask and the group that os_SetThreadAffinity would apply.
// Status  1; 4 null argument; 5 no such processor
QUORLIN_API status_t os_GetProcessorAffinity(uint32_t processor, GroupAffinity_t* affinity);

// ---- machine facts

// The names of the files in `directory`, without folders. Free them with os_FreeStringArray. A folder without files
// gives a count of 0 and a null array.
// Status  1; 3 out of memory; 4 null out pointer; 5 null directory, 258 characters or more, or not to be searched
QUORLIN_API status_t os_FindFiles(const char* directory, char*** names, uint32_t* count);

// A text value of the registry.
// root    kLocalMachine or another root key
// unused  for calls written with five arguments
// Status  1; 3 out of memory; 4 null out pointer; 5 no such key or value, or not readable; 6 no registry: Linux
QUORLIN_API status_t os_ReadRegistryString(void* root, const char* path, const char* value, char** text, void* unused);

// The system's name and the machine's. On Linux PRETTY_NAME of os-release or else the kernel's name, and the host name.
// Status  1; 2 null argument; 3 out of memory; 5 not known
QUORLIN_API status_t os_GetOSName(char** text);
QUORLIN_API status_t os_GetMachineName(char** text);

// The installed memory in bytes. On Linux that of sysfs' memory blocks, or else what the kernel manages.
// Status  1; 4 null argument; 5 on failure
QUORLIN_API status_t os_GetMemorySize(uint64_t* bytes);

// The current folder, in an allocation of 200 bytes, or more for a path that needs more.
// Status  1; 4 null argument; 5 on failure
QUORLIN_API status_t os_GetCurrentDirectory(char** text);
}
