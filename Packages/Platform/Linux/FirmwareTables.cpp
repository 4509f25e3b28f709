// The operating system's firmware tables, in the form in which the Windows call answers.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>
#include <vector>

#include "Packages/Format/EntryPoint.h"
#include "Packages/Platform/Linux/Descriptor.h"
#include "Packages/Platform/Linux/Handles.h"

namespace {

constexpr DWORD kRawSMBIOSProvider = 0x52534D42;  // "RSMB"
constexpr DWORD kACPIProvider = 0x41435049;       // "ACPI"
constexpr size_t kMostBytes = 64u << 20;          // far above any table

#define TABLES_FOLDER "/sys/firmware/dmi/tables/"

// The whole file, or FALSE with the last error set.
BOOL ReadWhole(const char* path, std::vector<uint8_t>* bytes) {
    const ClDescriptor file(open(path, O_RDONLY | O_CLOEXEC));
    if (!file.IsOpen()) return FailWithErrno();
    bytes->clear();
    for (;;) {
        const size_t size = bytes->size();
        bytes->resize(size + 16384);
        const ssize_t got = read(file.Get(), bytes->data() + size, 16384);
        if (got < 0 && errno == EINTR) {
            bytes->resize(size);
            continue;
        }
        bytes->resize(size + static_cast<size_t>(got < 0 ? 0 : got));
        if (got > 0 && bytes->size() <= kMostBytes) continue;
        return got == 0 ? TRUE : got < 0 ? FailWithErrno() : Fail(ERROR_INSUFFICIENT_BUFFER);
    }
}

// Calling method, major, minor, revision, length, and the table.
BOOL RawSMBIOSAnswer(std::vector<uint8_t>* answer) {
    std::vector<uint8_t> entry, table;
    if (!ReadWhole(TABLES_FOLDER "smbios_entry_point", &entry) || !ReadWhole(TABLES_FOLDER "DMI", &table)) return FALSE;
    EntryPoint_t point;
    if (!ParseEntryPoint(entry.data(), entry.size(), &point)) return Fail(ERROR_INVALID_FUNCTION);
    const auto length = static_cast<uint32_t>(table.size());
    *answer = {0, point.major, point.minor, point.revision};
    answer->resize(8);
    std::memcpy(answer->data() + 4, &length, sizeof length);
    answer->insert(answer->end(), table.begin(), table.end());
    return TRUE;
}

// The table with that name, its first letter in the low byte. Of several with one name the first answers, which the
// kernel numbers 1.
BOOL ACPIAnswer(DWORD table, std::vector<uint8_t>* answer) {
    char name[5] = "";
    std::memcpy(name, &table, sizeof table);
    for (const char letter : {name[0], name[1], name[2], name[3]})
        if (letter <= ' ' || letter > '~' || letter == '/' || letter == '.') return Fail(ERROR_INVALID_FUNCTION);
    for (const char* number : {"", "1"}) {
        if (ReadWhole((std::string("/sys/firmware/acpi/tables/") + name + number).c_str(), answer)) return TRUE;
        if (GetLastError() != ERROR_FILE_NOT_FOUND) return FALSE;
    }
    return Fail(ERROR_INVALID_FUNCTION);
}

BOOL Answer(DWORD provider, DWORD table, std::vector<uint8_t>* answer) {
    if (provider == kACPIProvider) return ACPIAnswer(table, answer);
    if (provider == kRawSMBIOSProvider && table == 0) return RawSMBIOSAnswer(answer);
    return Fail(ERROR_INVALID_FUNCTION);
}

}  // namespace

UINT GetSystemFirmwareTable(DWORD provider, DWORD table, PVOID buffer, DWORD size) try {
    std::vector<uint8_t> answer;
    if (!Answer(provider, table, &answer)) return 0;
    if (buffer == nullptr || size < answer.size())
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
    else
        std::memcpy(buffer, answer.data(), answer.size());
    return static_cast<UINT>(answer.size());
} catch (const std::bad_alloc&) {
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return 0;
}
