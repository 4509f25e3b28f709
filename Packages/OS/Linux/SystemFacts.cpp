#include "Packages/OS/SystemFacts.h"

#include <algorithm>
#include <cinttypes>
#include <cstring>
#include <set>

#include "Packages/OS/Linux/Folder.h"
#include "Packages/OS/Linux/Processors.h"

namespace {

#define PROCESSORS "/sys/devices/system/cpu/"

// Returns the first line, without its end; empty if there is none.
std::string ReadLine(const std::string& path) {
    char line[256] = "";
    if (std::FILE* file = OpenStreamAbove(path.c_str(), "re")) {
        if (std::fgets(line, sizeof line, file) == nullptr) line[0] = '\0';
        std::fclose(file);
    }
    line[std::strcspn(line, "\n")] = '\0';
    return line;
}

// `format` has one conversion, such as SCNu64.
std::optional<uint64_t> ReadNumber(const std::string& path, const char* format) {
    uint64_t number = 0;
    return std::sscanf(ReadLine(path).c_str(), format, &number) == 1 ? std::optional(number) : std::nullopt;
}

void AddProcessors(SystemFacts_t* facts) {
    std::set<std::string> packages, cores;
    uint32_t threads = 0, online = 0;
    ForEachProcessor(PROCESSORS "present", [&](int) { return ++threads != 0; });
    ForEachProcessor(PROCESSORS "online", [&](int processor) {
        const std::string topology = PROCESSORS "cpu" + std::to_string(processor) + "/topology/";
        packages.insert(ReadLine(topology + "physical_package_id"));
        cores.insert(ReadLine(topology + "thread_siblings_list"));
        return ++online != 0;
    });
    if (threads != 0) facts->threads = threads;
    if (online != threads || packages.contains("") || packages.contains("-1") || cores.contains("")) return;
    facts->packages = packages.size();
    facts->cores = cores.size();
}

// The kernel's driver for frequencies knows them. Without one, the kernel shows the base speed or the one of now.
void AddSpeeds(SystemFacts_t* facts) {
    constexpr uint64_t kPerMHz = 1000;
    if (const auto most = ReadNumber(PROCESSORS "cpu0/cpufreq/cpuinfo_max_freq", "%" SCNu64)) {
        facts->maxSpeed = *most / kPerMHz;
        facts->baseSpeed = ReadNumber(PROCESSORS "cpu0/acpi_cppc/nominal_freq", "%" SCNu64);
        if (const auto base = ReadNumber(PROCESSORS "cpu0/cpufreq/base_frequency", "%" SCNu64))
            facts->baseSpeed = *base / kPerMHz;
        return;
    }
    char line[256];
    std::FILE* file = OpenStreamAbove("/proc/cpuinfo", "re");
    uint64_t speed = 0;
    while (file != nullptr && speed == 0 && std::fgets(line, sizeof line, file) != nullptr)
        std::sscanf(line, "cpu MHz : %" SCNu64, &speed);
    if (file != nullptr) std::fclose(file);
    if (speed != 0) facts->maxSpeed = speed;
}

// The firmware's map; without it, the kernel's. Without rights, the kernel's has no addresses.
void AddMemoryMap(SystemFacts_t* facts) {
    ClFolder folder("/sys/firmware/memmap");
    while (const char* name = folder.Next()) {
        const std::string row = std::string("/sys/firmware/memmap/") + name;
        const auto begin = ReadNumber(row + "/start", "%" SCNx64), end = ReadNumber(row + "/end", "%" SCNx64);
        if (begin && end && *begin < *end && ReadLine(row + "/type") == "System RAM")
            facts->memoryMap.push_back({*begin, *end});
    }
    char line[256];
    std::FILE* file = facts->memoryMap.empty() ? OpenStreamAbove("/proc/iomem", "re") : nullptr;
    while (file != nullptr && std::fgets(line, sizeof line, file) != nullptr) {
        MemoryArea_t area;
        if (line[0] != ' ' && std::strstr(line, " : System RAM\n") != nullptr &&
            std::sscanf(line, "%" SCNx64 "-%" SCNx64, &area.begin, &area.end) == 2 && area.begin < area.end)
            facts->memoryMap.push_back(area);
    }
    if (file != nullptr) std::fclose(file);
    std::ranges::sort(facts->memoryMap, {}, &MemoryArea_t::begin);
}

void AddResources(SystemFacts_t* facts) {
    constexpr char kRows[] = "/sys/firmware/efi/esrt/entries";
    ClFolder folder(kRows);
    while (const char* name = folder.Next()) {
        const std::string row = std::string(kRows) + "/" + name;
        const auto type = ReadNumber(row + "/fw_type", "%" SCNu64),
                   version = ReadNumber(row + "/fw_version", "%" SCNu64);
        if (type && version)
            facts->resources.push_back(
                {ReadLine(row + "/fw_class"), static_cast<uint32_t>(*type), static_cast<uint32_t>(*version)});
    }
    std::ranges::sort(facts->resources, {}, &FirmwareResource_t::id);
}

// Interfaces without a device are the system's own.
void AddNetworkAddresses(SystemFacts_t* facts) {
    ClFolder folder("/sys/class/net");
    while (const char* name = folder.Next()) {
        const std::string interface = std::string("/sys/class/net/") + name;
        std::string address = ReadLine(interface + "/address");
        std::erase(address, ':');
        constexpr size_t kDigits = 12;
        if (address.size() == kDigits && ReadLine(interface + "/addr_assign_type") == "0" &&
            access((interface + "/device").c_str(), F_OK) == 0)
            facts->networkAddresses.push_back(address);
    }
    std::ranges::sort(facts->networkAddresses);
}

}  // namespace

SystemFacts_t ReadSystemFacts() {
    SystemFacts_t facts;
    AddProcessors(&facts);
    AddSpeeds(&facts);
    if (const long pages = sysconf(_SC_PHYS_PAGES), size = sysconf(_SC_PAGESIZE); pages > 0 && size > 0)
        facts.usableMemory = static_cast<uint64_t>(pages) * static_cast<uint64_t>(size);
    AddMemoryMap(&facts);
    AddResources(&facts);
    AddNetworkAddresses(&facts);
    facts.tpm = ReadNumber("/sys/class/tpm/tpm0/tpm_version_major", "%" SCNu64);
    return facts;
}
