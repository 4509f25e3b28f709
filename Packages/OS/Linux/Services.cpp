// Facts about the machine: from os-release, uname, sysfs and the file system.
#include <sys/utsname.h>
#include <unistd.h>

#include <cctype>
#include <cerrno>
#include <cstring>
#include <ctime>

#include "Packages/OS/Linux/Descriptor.h"
#include "Packages/OS/Linux/Folder.h"
#include "Packages/OS/Memory.h"
#include "Packages/OS/OS.h"
#include "Packages/OS/OSServices.h"

namespace {

status_t GiveCopy(const char* text, char** out) {
    char* copy = CopyOfText(text);
    if (copy == nullptr) return kNoMemory;
    *out = copy;
    return kSuccess;
}

// Returns the size of the memory that the kernel got from the firmware, counted in hot-plug blocks; 0 if unknown.
uint64_t MemoryInBlocks() {
    char digits[32] = "";
    uint64_t blocks = 0;
    if (std::FILE* file = OpenStreamAbove("/sys/devices/system/memory/block_size_bytes", "re")) {
        if (std::fgets(digits, sizeof digits, file) == nullptr) digits[0] = '\0';
        std::fclose(file);
    }
    ClFolder folder("/sys/devices/system/memory");
    while (const char* name = folder.Next())
        blocks += std::strncmp(name, "memory", 6) == 0 && std::isdigit(static_cast<unsigned char>(name[6])) != 0;
    return blocks * std::strtoull(digits, nullptr, 16);
}

}  // namespace

status_t os_GetLocalTime(LocalTime_t* now) {
    if (now == nullptr) return kNullPointer;
    const time_t seconds = std::time(nullptr);
    tm local;
    if (localtime_r(&seconds, &local) == nullptr) return kFailure;
    *now = {static_cast<uint8_t>(local.tm_sec),          static_cast<uint8_t>(local.tm_min),
            static_cast<uint8_t>(local.tm_hour),         static_cast<uint8_t>(local.tm_mon + 1),
            static_cast<uint16_t>(local.tm_year + 1900), static_cast<uint8_t>(local.tm_mday)};
    return kSuccess;
}

status_t os_FindFiles(const char* directory, char*** names, uint32_t* count) {
    if (names == nullptr || count == nullptr) return kNullPointer;
    if (directory == nullptr || std::strlen(directory) >= kLongestFolder) return kFailure;
    ClFolder folder(directory);
    if (!folder.IsOpen()) return kFailure;
    char** all = nullptr;
    uint32_t known = 0;
    status_t status = kSuccess;
    while (const char* name = status == kSuccess ? folder.Next() : nullptr)
        if (!folder.IsFolder(name)) status = AddName(name, &all, &known);
    if (status == kSuccess && errno != 0) status = kFailure;
    return GiveNames(status, all, known, names, count);
}

status_t os_ReadRegistryString(void*, const char*, const char*, char** text, void*) {
    return text == nullptr ? kNullPointer : kNotSupported;
}

status_t os_GetOSName(char** text) {
    if (text == nullptr) return kBadValue;
    char line[256], name[256] = "";
    std::FILE* file = OpenStreamAbove("/etc/os-release", "re");
    if (file == nullptr) file = OpenStreamAbove("/usr/lib/os-release", "re");
    while (file != nullptr && name[0] == '\0' && std::fgets(line, sizeof line, file) != nullptr)
        if (std::sscanf(line, "PRETTY_NAME=\"%255[^\"\n]", name) != 1)  // with and without quotes
            std::sscanf(line, "PRETTY_NAME=%255[^\"\n]", name);
    if (file != nullptr) std::fclose(file);
    utsname system;
    if (name[0] != '\0') return GiveCopy(name, text);
    return uname(&system) == 0 ? GiveCopy(system.sysname, text) : kFailure;
}

status_t os_GetMachineName(char** text) {
    if (text == nullptr) return kBadValue;
    utsname system;
    return uname(&system) == 0 ? GiveCopy(system.nodename, text) : kFailure;
}

status_t os_GetMemorySize(uint64_t* bytes) {
    if (bytes == nullptr) return kNullPointer;
    uint64_t size = MemoryInBlocks();
    const long pages = sysconf(_SC_PHYS_PAGES), pageSize = sysconf(_SC_PAGESIZE);
    if (size == 0 && pages > 0 && pageSize > 0) size = static_cast<uint64_t>(pages) * static_cast<uint64_t>(pageSize);
    if (size == 0) return kFailure;
    *bytes = size;
    return kSuccess;
}

status_t os_GetCurrentDirectory(char** text) {
    if (text == nullptr) return kNullPointer;
    for (size_t room = 200;; room *= 2) {
        auto* buffer = static_cast<char*>(os_malloc(room));
        if (buffer != nullptr && getcwd(buffer, room) != nullptr) {
            *text = buffer;
            return kSuccess;
        }
        const bool isTooSmall = buffer != nullptr && errno == ERANGE;
        os_free(buffer);
        if (!isTooSmall) return kFailure;
    }
}
