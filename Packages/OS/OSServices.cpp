#include "Packages/OS/OSServices.h"

#include <cstdlib>
#include <cstring>

#include "Packages/OS/OS.h"
#include "Packages/Platform/Platform.h"

namespace {

constexpr size_t kCommandLineSize = 1024;

char* CopyOf(const char* text) {
    const size_t size = std::strlen(text) + 1;
    auto* copy = static_cast<char*>(os_malloc(size));
    if (copy != nullptr) std::memcpy(copy, text, size);
    return copy;
}

// The system's last error as a status; an error that would read as success is a failure.
status_t LastErrorStatus() {
    const DWORD error = GetLastError();
    return error == 0 || error == kSuccess ? kFailure : static_cast<status_t>(error);
}

// A text that grows in a buffer of fixed size, always NUL-terminated.
class ClFixedText {
  public:
    // False, with nothing added, for what would not leave room for a NUL.
    bool Add(const char* text, size_t length) {
        if (length >= kCommandLineSize - m_length) return false;
        std::memcpy(m_bytes + m_length, text, length);
        m_length += length;
        m_bytes[m_length] = '\0';
        return true;
    }
    bool AddArguments(const char* const* arguments) {
        for (; *arguments != nullptr; ++arguments)
            if (!Add("     ", 5) || !Add(*arguments, std::strlen(*arguments))) return false;
        return true;
    }
    // Each text with its NUL, so that with the last NUL the block ends as the system wants it.
    bool AddEnvironment(const char* const* texts) {
        if (*texts == nullptr) return Add("", 1);
        for (; *texts != nullptr; ++texts)
            if (!Add(*texts, std::strlen(*texts) + 1)) return false;
        return true;
    }
    char* Bytes() { return m_bytes; }

  private:
    char m_bytes[kCommandLineSize] = "";
    size_t m_length = 0;
};

bool Start(const char* application, char* commandLine, char* environment, PROCESS_INFORMATION* information) {
    STARTUPINFOA startup = {};
    startup.cb = sizeof startup;
    return CreateProcessA(application, commandLine, nullptr, nullptr, FALSE, NORMAL_PRIORITY_CLASS, environment,
                          nullptr, &startup, information) != FALSE;
}

void CloseHandles(ProcessRecord_t* process) {
    if (process->Thread != nullptr) CloseHandle(process->Thread);
    if (process->Process != nullptr) CloseHandle(process->Process);
    process->Thread = process->Process = nullptr;
}

// The processor groups, in their order; a group's first processor has the logical number behind the last of the former.
struct ProcessorGroup_t {
    uint8_t number;  // kFree marks a slot without a group
    uint32_t first, count;
};
constexpr size_t kMostGroups = 4;
constexpr uint8_t kFree = 255;

struct ProcessorGroups_t {
    ProcessorGroup_t groups[kMostGroups];

    ProcessorGroups_t() {
        uint32_t first = 0;
        const WORD present = GetActiveProcessorGroupCount();
        for (WORD number = 0; number < kMostGroups; ++number) {
            const uint32_t count = number < present ? GetActiveProcessorCount(number) : 0;
            groups[number] = {number < present ? static_cast<uint8_t>(number) : kFree, first, count};
            first += count;
        }
    }
};

// Grows the array by a copy of `name`.
bool AddName(const char* name, char*** names, uint32_t* count) {
    auto* grown = static_cast<char**>(os_realloc(*names, (*count + size_t{1}) * sizeof(char*)));
    if (grown == nullptr) return false;
    *names = grown;
    grown[*count] = CopyOf(name);
    if (grown[*count] == nullptr) return false;
    ++*count;
    return true;
}

}  // namespace

int32_t os_strncmp(const char* first, const char* second, size_t count) { return std::strncmp(first, second, count); }

char* os_strchr(const char* text, int32_t character) { return const_cast<char*>(std::strchr(text, character)); }

char* os_strrchr(const char* text, int32_t character) { return const_cast<char*>(std::strrchr(text, character)); }

int32_t os_atoi(const char* text) { return static_cast<int32_t>(std::strtol(text, nullptr, 10)); }

int32_t os_printf(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const int32_t length = os_vprintf(format, arguments);
    va_end(arguments);
    return length;
}

int32_t os_vprintf(const char* format, va_list arguments) { return std::vprintf(format, arguments); }

int32_t os_fprintf(FILE* stream, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const int32_t length = os_vfprintf(stream, format, arguments);
    va_end(arguments);
    return length;
}

int32_t os_vfprintf(FILE* stream, const char* format, va_list arguments) {
    return std::vfprintf(stream, format, arguments);
}

int32_t os_sscanf(const char* text, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const int32_t fields = std::vsscanf(text, format, arguments);
    va_end(arguments);
    return fields;
}

char* os_strcat(char* destination, size_t size, const char* source) {
    const size_t present = std::strlen(destination), added = std::strlen(source);
    if (present >= size || added >= size - present) return nullptr;
    std::memcpy(destination + present, source, added + 1);
    return destination;
}

status_t os_GetDateTimeString(char** text) {
    if (text == nullptr) return kNullPointer;
    SYSTEMTIME now;
    char buffer[64];
    GetLocalTime(&now);
    std::snprintf(buffer, sizeof buffer, "%02u/%02u/%04u %02u:%02u:%02u", now.wMonth, now.wDay, now.wYear, now.wHour,
                  now.wMinute, now.wSecond);
    char* copy = CopyOf(buffer);
    if (copy == nullptr) return kFailure;
    *text = copy;
    return kSuccess;
}

status_t os_GetLocalTime(LocalTime_t* now) {
    if (now == nullptr) return kNullPointer;
    SYSTEMTIME time;
    GetLocalTime(&time);
    *now = {static_cast<uint8_t>(time.wSecond),
            static_cast<uint8_t>(time.wMinute),
            static_cast<uint8_t>(time.wHour),
            static_cast<uint8_t>(time.wMonth),
            time.wYear,
            static_cast<uint8_t>(time.wDay)};
    return kSuccess;
}

status_t os_FreeStringArray(char*** array, uint32_t count) {
    if (array == nullptr || *array == nullptr || count == 0) return kFailure;
    for (uint32_t i = 0; i < count; ++i) os_free((*array)[i]);
    os_free(*array);
    *array = nullptr;
    return kSuccess;
}

int32_t os_fclose(FILE* stream) { return std::fclose(stream); }

int32_t os_fflush(FILE* stream) { return std::fflush(stream); }

size_t os_fread(void* buffer, size_t size, size_t count, FILE* stream) {
    return std::fread(buffer, size, count, stream);
}

size_t os_fwrite(const void* buffer, size_t size, size_t count, FILE* stream) {
    return std::fwrite(buffer, size, count, stream);
}

char* os_fgets(char* buffer, int32_t size, FILE* stream) { return std::fgets(buffer, size, stream); }

int32_t os_fputs(const char* text, FILE* stream) { return std::fputs(text, stream); }

int32_t os_fseek(FILE* stream, long offset, int32_t origin) { return std::fseek(stream, offset, origin); }

long os_ftell(FILE* stream) { return std::ftell(stream); }

status_t os_StartProcess(const char* application, const char* const* arguments, const char* const* environment,
                         ProcessRecord_t* process) {
    if (application == nullptr || process == nullptr) return kNullPointer;
    ClFixedText commandLine, block;
    const bool hasArguments = arguments != nullptr && arguments[0] != nullptr;
    if (hasArguments && !commandLine.AddArguments(arguments + 1)) return kNoMemory;
    if (environment != nullptr && !block.AddEnvironment(environment)) return kNoMemory;
    PROCESS_INFORMATION started;
    if (!Start(application, commandLine.Bytes(), environment == nullptr ? nullptr : block.Bytes(), &started))
        return LastErrorStatus();
    *process = {started.hProcess, started.hThread, started.dwProcessId, started.dwThreadId};
    return kSuccess;
}

status_t os_StartProcessDetached(const char* program, const char* const* arguments) {
    ClFixedText commandLine;
    if (program == nullptr || !commandLine.Add(program, std::strlen(program))) return kFailure;
    if (arguments != nullptr && !commandLine.AddArguments(arguments)) return kFailure;
    PROCESS_INFORMATION started;
    if (!Start(program, commandLine.Bytes(), nullptr, &started)) return kFailure;
    CloseHandle(started.hThread);
    CloseHandle(started.hProcess);
    return kSuccess;
}

status_t os_KillProcess(ProcessRecord_t* process) {
    if (process == nullptr) return kNullPointer;
    const status_t status = TerminateProcess(process->Process, 0) ? kSuccess : LastErrorStatus();
    CloseHandles(process);
    return status;
}

status_t os_WaitProcess(ProcessRecord_t* process) {
    if (process == nullptr) return kNullPointer;
    DWORD exitCode;
    status_t status = kSuccess;
    if (WaitForSingleObject(process->Process, INFINITE) == WAIT_FAILED)
        status = LastErrorStatus();
    else if (!GetExitCodeProcess(process->Process, &exitCode))
        status = kFailure;
    CloseHandles(process);
    return status;
}

status_t os_SetThreadAffinity(uint32_t processor) {
    GroupAffinity_t affinity;
    if (os_GetProcessorAffinity(processor, &affinity) != kSuccess) return kFailure;
    GROUP_AFFINITY wanted = {};
    wanted.Mask = affinity.Mask;
    wanted.Group = affinity.Group;
    if (!SetThreadGroupAffinity(GetCurrentThread(), &wanted, nullptr)) return kFailure;
    Sleep(1);  // the thread has moved when this returns
    return kSuccess;
}

status_t os_GetProcessorAffinity(uint32_t processor, GroupAffinity_t* affinity) {
    if (affinity == nullptr) return kNullPointer;
    static const ProcessorGroups_t table;
    for (const ProcessorGroup_t& group : table.groups) {
        if (group.number == kFree || processor - group.first >= group.count) continue;
        *affinity = {uint64_t{1} << (processor - group.first), group.number};
        return kSuccess;
    }
    return kFailure;
}

status_t os_FindFiles(const char* directory, char*** names, uint32_t* count) {
    constexpr size_t kLongest = 258;
    if (names == nullptr || count == nullptr) return kNullPointer;
    if (directory == nullptr || std::strlen(directory) >= kLongest) return kFailure;
    char pattern[kLongest + 2];
    std::snprintf(pattern, sizeof pattern, "%s\\*", directory);
    WIN32_FIND_DATAA found;
    HANDLE search = FindFirstFileA(pattern, &found);
    if (search == INVALID_HANDLE_VALUE) return kFailure;
    char** all = nullptr;
    uint32_t known = 0;
    status_t status = kSuccess;
    do {
        if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0 && !AddName(found.cFileName, &all, &known))
            status = kNoMemory;
    } while (status == kSuccess && FindNextFileA(search, &found));
    if (status == kSuccess && GetLastError() != ERROR_NO_MORE_FILES) status = kFailure;
    FindClose(search);
    if (status != kSuccess) {
        if (known != 0)
            os_FreeStringArray(&all, known);
        else
            os_free(all);
        return status;
    }
    *names = all;
    *count = known;
    return kSuccess;
}

status_t os_ReadRegistryString(void* root, const char* path, const char* value, char** text, void*) {
    if (text == nullptr) return kNullPointer;
    DWORD room = 8192;
    auto* buffer = static_cast<char*>(std::calloc(room, 1));
    if (buffer == nullptr) return kNoMemory;
    HKEY key = nullptr;
    status_t status = kFailure;
    if (RegOpenKeyExA(static_cast<HKEY>(root), path, 0, KEY_ALL_ACCESS, &key) == ERROR_SUCCESS) {
        for (;;) {
            DWORD size = room - 1;  // the last byte stays a NUL
            const auto result = static_cast<DWORD>(
                RegQueryValueExA(key, value, nullptr, nullptr, reinterpret_cast<LPBYTE>(buffer), &size));
            if (result == ERROR_SUCCESS) {
                buffer[size] = '\0';
                char* copy = CopyOf(buffer);
                if (copy != nullptr) *text = copy;
                status = copy != nullptr ? kSuccess : kNoMemory;
            }
            if (result != ERROR_MORE_DATA) break;
            room += 4096;
            auto* grown = static_cast<char*>(os_realloc(buffer, room));
            if (grown == nullptr) {
                status = kNoMemory;
                break;
            }
            buffer = grown;
        }
        RegCloseKey(key);
    }
    os_free(buffer);
    return status;
}

status_t os_GetOSName(char** text) {
    if (text == nullptr) return kBadValue;
    return os_ReadRegistryString(kLocalMachine, "SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion", "ProductName", text,
                                 nullptr);
}

status_t os_GetMachineName(char** text) {
    if (text == nullptr) return kBadValue;
    return os_ReadRegistryString(kLocalMachine, "SYSTEM\\CurrentControlSet\\Control\\ComputerName\\ComputerName",
                                 "ComputerName", text, nullptr);
}

status_t os_GetMemorySize(uint64_t* bytes) {
    if (bytes == nullptr) return kNullPointer;
    ULONGLONG kilobytes = 0;
    if (!GetPhysicallyInstalledSystemMemory(&kilobytes)) return kFailure;
    *bytes = kilobytes * 1024;
    return kSuccess;
}

status_t os_GetCurrentDirectory(char** text) {
    if (text == nullptr) return kNullPointer;
    DWORD room = 200;
    for (;;) {
        auto* buffer = static_cast<char*>(os_malloc(room));
        const DWORD length = buffer == nullptr ? 0 : GetCurrentDirectoryA(room, buffer);
        if (length != 0 && length < room) {
            *text = buffer;
            return kSuccess;
        }
        os_free(buffer);
        if (length == 0) return kFailure;
        room = length + 1;
    }
}
