#include "Packages/OS/FirmwareTables.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "Packages/Format/Ascii.h"
#include "Packages/Format/EntryPoint.h"
#include "Packages/Format/FirmwareAnswer.h"
#include "Packages/OS/Linux/Descriptor.h"

namespace {

constexpr size_t kMostBytes = 64u << 20;  // far larger than any table

#define TABLES_FOLDER "/sys/firmware/dmi/tables/"
#define ACPI_FOLDER "/sys/firmware/acpi/tables/"

// Appends the whole file. Returns 0 or an errno.
int AppendFile(const char* path, std::vector<uint8_t>* bytes) {
    const ClDescriptor file(path, O_RDONLY);
    if (!file.IsOpen()) return errno;
    for (;;) {
        const size_t size = bytes->size();
        bytes->resize(size + 16384);
        const ssize_t got = read(file.Get(), bytes->data() + size, 16384);
        const int problem = got < 0 ? errno : bytes->size() > kMostBytes ? EFBIG : 0;
        bytes->resize(size + static_cast<size_t>(got < 0 ? 0 : got));
        if (problem == EINTR) continue;
        if (problem != 0 || got == 0) return problem;
    }
}

int SMBIOSAnswer(std::vector<uint8_t>* answer) {
    std::vector<uint8_t> entry;
    const int problem = AppendFile(TABLES_FOLDER "smbios_entry_point", &entry);
    EntryPoint_t point;
    if (problem != 0) return problem;
    if (!ParseEntryPoint(entry.data(), entry.size(), &point)) return ENOENT;
    FirmwareAnswer_t head = {0, point.major, point.minor, point.revision, 0};
    answer->resize(sizeof head);
    const int tableProblem = AppendFile(TABLES_FOLDER "DMI", answer);
    head.length = static_cast<uint32_t>(answer->size() - sizeof head);
    std::memcpy(answer->data(), &head, sizeof head);
    return tableProblem;
}

// Several tables with one name have numbers after it, from 1.
int ACPIAnswer(uint32_t table, uint32_t place, std::vector<uint8_t>* answer) {
    char name[5] = "";
    std::memcpy(name, &table, sizeof table);
    for (const char letter : {name[0], name[1], name[2], name[3]})
        if (!IsPrintableAscii(letter) || letter == ' ' || letter == '/' || letter == '.') return ENOENT;
    const std::string path = std::string(ACPI_FOLDER) + name;
    const int problem = place == 0 ? AppendFile(path.c_str(), answer) : ENOENT;
    return problem == ENOENT ? AppendFile((path + std::to_string(place + 1)).c_str(), answer) : problem;
}

// The address after `name`, such as "SMBIOS3=0x", in the line that begins with it; 0 if there is none.
uint64_t AddressAfter(std::string_view name, std::string_view lines) {
    while (!lines.empty()) {
        const std::string_view line = lines.substr(0, lines.find('\n'));
        lines.remove_prefix(std::min(line.size() + 1, lines.size()));
        if (!line.starts_with(name)) continue;
        const char* const end = line.data() + line.size();
        uint64_t address = 0;
        const auto [stop, error] = std::from_chars(line.data() + name.size(), end, address, 16);
        if (error == std::errc() && stop == end) return address;
    }
    return 0;
}

}  // namespace

uint32_t os_GetFirmwareTable(uint32_t provider, uint32_t table, void* buffer, uint32_t room, bool* refused) try {
    std::vector<uint8_t> answer;
    const int problem = provider == kACPIProvider                   ? ACPIAnswer(table, 0, &answer)
                        : provider == kSMBIOSProvider && table == 0 ? SMBIOSAnswer(&answer)
                                                                    : ENOENT;
    if (refused != nullptr) *refused = problem == EACCES || problem == EPERM;
    if (problem != 0) return 0;
    if (buffer != nullptr && answer.size() <= room) std::memcpy(buffer, answer.data(), answer.size());
    return static_cast<uint32_t>(answer.size());
} catch (const std::bad_alloc&) {
    if (refused != nullptr) *refused = false;
    return 0;
}

std::vector<uint32_t> os_ListACPITables() {
    std::vector<std::string> names;
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(opendir(ACPI_FOLDER), closedir);
    if (folder == nullptr) return {};
    while (const dirent* file = readdir(folder.get())) {
        struct stat facts;
        if (fstatat(dirfd(folder.get()), file->d_name, &facts, 0) == 0 && S_ISREG(facts.st_mode))
            names.emplace_back(file->d_name);
    }
    std::ranges::sort(names);
    std::vector<uint32_t> tables;
    for (const std::string& name : names) {
        if (name.size() < sizeof(uint32_t)) continue;
        tables.emplace_back();
        std::memcpy(&tables.back(), name.data(), sizeof(uint32_t));
    }
    return tables;
}

bool os_ReadACPITable(uint32_t table, uint32_t place, std::vector<uint8_t>* bytes, bool* refused) {
    bytes->clear();
    const int problem = ACPIAnswer(table, place, bytes);
    *refused = problem == EACCES || problem == EPERM;
    return problem == 0;
}

status_t os_GetEntryAddresses(EntryAddresses_t* addresses, bool* refused) try {
    *refused = false;
    std::vector<uint8_t> bytes;
    const int problem = AppendFile("/sys/firmware/efi/systab", &bytes);
    *refused = problem == EACCES || problem == EPERM;
    if (problem != 0) return kFailure;
    const std::string_view lines(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    *addresses = {AddressAfter("SMBIOS3=0x", lines), AddressAfter("SMBIOS=0x", lines)};
    return kSuccess;
} catch (const std::bad_alloc&) {
    return kNoMemory;
}
