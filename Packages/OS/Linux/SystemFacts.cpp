#include "Packages/OS/SystemFacts.h"

#include <algorithm>
#include <charconv>
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

// Takes a number, hexadecimal with "0x" before it or in base 16, after blanks.
std::optional<uint64_t> TakeNumber(std::string_view& text, int base = 10) {
    text.remove_prefix(std::min(text.find_first_not_of(" \t"), text.size()));
    if (text.starts_with("0x")) {
        text.remove_prefix(2);
        base = 16;
    }
    uint64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, base);
    if (error != std::errc()) return std::nullopt;
    text.remove_prefix(static_cast<size_t>(end - text.data()));
    return number;
}

std::optional<uint64_t> ReadNumber(const std::string& path) {
    const std::string line = ReadLine(path);
    std::string_view text = line;
    return TakeNumber(text);
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

// The kernel shows the registers of processors that are online, on ARM64 only.
void AddMidrs(SystemFacts_t* facts) {
    ForEachProcessor(PROCESSORS "online", [facts](int processor) {
        const auto midr = ReadNumber(PROCESSORS "cpu" + std::to_string(processor) + "/regs/identification/midr_el1");
        if (!midr || *midr > UINT32_MAX) return false;
        const auto value = static_cast<uint32_t>(*midr);
        if (std::ranges::find(facts->midrs, value) == facts->midrs.end()) facts->midrs.push_back(value);
        return true;
    });
}

// The kernel's driver for frequencies knows them. Without one, the kernel shows the base speed or the one of now.
void AddSpeeds(SystemFacts_t* facts) {
    constexpr uint64_t kPerMHz = 1000;
    if (const auto most = ReadNumber(PROCESSORS "cpu0/cpufreq/cpuinfo_max_freq")) {
        facts->maxSpeed = *most / kPerMHz;
        facts->baseSpeed = ReadNumber(PROCESSORS "cpu0/acpi_cppc/nominal_freq");
        if (const auto base = ReadNumber(PROCESSORS "cpu0/cpufreq/base_frequency")) facts->baseSpeed = *base / kPerMHz;
        return;
    }
    char line[256];
    std::FILE* file = OpenStreamAbove("/proc/cpuinfo", "re");
    uint64_t speed = 0;
    while (file != nullptr && speed == 0 && std::fgets(line, sizeof line, file) != nullptr) {
        std::string_view text = line;
        if (!text.starts_with("cpu MHz")) continue;
        text.remove_prefix(std::min(text.find(':') + 1, text.size()));
        speed = TakeNumber(text).value_or(0);
    }
    if (file != nullptr) std::fclose(file);
    if (speed != 0) facts->maxSpeed = speed;
}

// The firmware's map; without it, the kernel's. Without rights, the kernel's has no addresses.
void AddMemoryMap(SystemFacts_t* facts) {
    ClFolder folder("/sys/firmware/memmap");
    while (const char* name = folder.Next()) {
        const std::string row = std::string("/sys/firmware/memmap/") + name;
        const auto begin = ReadNumber(row + "/start"), end = ReadNumber(row + "/end");
        if (begin && end && *begin < *end && ReadLine(row + "/type") == "System RAM")
            facts->memoryMap.push_back({*begin, *end});
    }
    char line[256];
    std::FILE* file = facts->memoryMap.empty() ? OpenStreamAbove("/proc/iomem", "re") : nullptr;
    while (file != nullptr && std::fgets(line, sizeof line, file) != nullptr) {
        if (line[0] == ' ' || std::strstr(line, " : System RAM\n") == nullptr) continue;
        std::string_view text = line;
        const auto begin = TakeNumber(text, 16);
        text.remove_prefix(std::min<size_t>(text.size(), 1));  // a dash
        const auto end = TakeNumber(text, 16);
        if (begin && end && *begin < *end) facts->memoryMap.push_back({*begin, *end});
    }
    if (file != nullptr) std::fclose(file);
    std::ranges::sort(facts->memoryMap, {}, &MemoryArea_t::begin);
}

void AddResources(SystemFacts_t* facts) {
    constexpr char kRows[] = "/sys/firmware/efi/esrt/entries";
    ClFolder folder(kRows);
    while (const char* name = folder.Next()) {
        const std::string row = std::string(kRows) + "/" + name;
        const auto type = ReadNumber(row + "/fw_type"), version = ReadNumber(row + "/fw_version");
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
    AddMidrs(&facts);
    AddSpeeds(&facts);
    if (const long pages = sysconf(_SC_PHYS_PAGES), size = sysconf(_SC_PAGESIZE); pages > 0 && size > 0)
        facts.usableMemory = static_cast<uint64_t>(pages) * static_cast<uint64_t>(size);
    AddMemoryMap(&facts);
    AddResources(&facts);
    AddNetworkAddresses(&facts);
    facts.tpm = ReadNumber("/sys/class/tpm/tpm0/tpm_version_major");
    return facts;
}
