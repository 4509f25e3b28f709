// Processes and facts about the machine.
#include <cstring>

#include "Packages/OS/Memory.h"
#include "Packages/OS/OS.h"
#include "Packages/OS/OSServices.h"
#include "Packages/OS/Windows/Windows.h"

namespace {

constexpr size_t kCommandLineSize = 1024;

// Returns the system's last error as a status; kFailure for an error that has the number of success.
status_t LastErrorStatus() {
    const DWORD error = GetLastError();
    return error == 0 || error == kSuccess ? kFailure : static_cast<status_t>(error);
}

// A NUL-terminated text in a buffer of fixed size.
class ClFixedText {
  public:
    // Returns false, and adds nothing, if no room for a NUL would be left.
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
    // Adds each text with its NUL. The NUL at the end makes the double NUL that the system expects.
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

}  // namespace

status_t os_GetTimestampMs(uint64_t* milliseconds) {
    if (milliseconds == nullptr) return kNullPointer;
    LARGE_INTEGER ticks, perSecond;
    if (!QueryPerformanceCounter(&ticks) || !QueryPerformanceFrequency(&perSecond)) {
        const status_t error = GetLastError();
        return error != kSuccess ? error : kFailure;  // error 1 would read as success
    }
    const double seconds = static_cast<double>(ticks.QuadPart) / static_cast<double>(perSecond.QuadPart);
    *milliseconds = static_cast<uint64_t>(seconds * 1000);
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

status_t os_FindFiles(const char* directory, char*** names, uint32_t* count) {
    if (names == nullptr || count == nullptr) return kNullPointer;
    if (directory == nullptr || std::strlen(directory) >= kLongestFolder) return kFailure;
    char pattern[kLongestFolder + 2];
    std::snprintf(pattern, sizeof pattern, "%s\\*", directory);
    WIN32_FIND_DATAA found;
    HANDLE search = FindFirstFileA(pattern, &found);
    if (search == INVALID_HANDLE_VALUE) return kFailure;
    char** all = nullptr;
    uint32_t known = 0;
    status_t status = kSuccess;
    do {
        if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0) status = AddName(found.cFileName, &all, &known);
    } while (status == kSuccess && FindNextFileA(search, &found));
    if (status == kSuccess && GetLastError() != ERROR_NO_MORE_FILES) status = kFailure;
    FindClose(search);
    return GiveNames(status, all, known, names, count);
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
                char* copy = CopyOfText(buffer);
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
