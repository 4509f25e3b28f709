// Why the kernel refuses, as far as it shows that.
#include "Packages/FERROXExternal/FERROXLib/Obstacles.h"

#include <dirent.h>
#include <fcntl.h>
#include <linux/capability.h>
#include <linux/magic.h>
#include <linux/seccomp.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/vfs.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <memory>

#include "Packages/FERROXExternal/FERROXLib/Sources/Linux/LinuxFERROX.h"
#include "Packages/FERROXExternal/FERROXLib/Sources/Linux/Ports.h"
#include "Packages/Format/EntryPoint.h"
#include "Packages/OS/FirmwareTables.h"
#include "Packages/OS/Linux/Descriptor.h"
#include "Packages/OS/Linux/Processors.h"
#include "Packages/OS/Processors.h"
#include "Packages/OS/SystemFacts.h"

namespace {

constexpr off_t kTimeStampCounter = 0x10;  // a register that every processor has
constexpr char kMemoryDevice[] = "/dev/mem";
constexpr off_t kBIOSArea = 0xF0000;

std::string Reason(std::string_view what, int error) {
    return std::string(what).append(": ").append(std::strerror(error));
}

// The start of a small file; empty if it can't be read.
std::string StartOf(const char* path) {
    char text[4096];
    const ClDescriptor file(path, O_RDONLY);
    const ssize_t size = file.IsOpen() ? read(file.Get(), text, sizeof text) : 0;
    return {text, static_cast<size_t>(size < 0 ? 0 : size)};
}

bool IsThere(const char* path) { return access(path, F_OK) == 0; }

bool IsRefusal(int error) { return error == EACCES || error == EPERM; }

// A device file without a driver can't be opened either (ENXIO).
bool IsAbsence(int error) { return error == ENOENT || error == ENOTDIR || error == ENXIO; }

// ---- Who this process is

struct Capability_t {
    int number;
    char name[16];
};
constexpr Capability_t kRawIO = {CAP_SYS_RAWIO, "CAP_SYS_RAWIO"}, kAdmin = {CAP_SYS_ADMIN, "CAP_SYS_ADMIN"};

bool HasCapability(int capability) {
    __user_cap_header_struct head = {_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct data[2] = {};
    return syscall(SYS_capget, &head, data) == 0 && (data[capability / 32].effective >> capability % 32 & 1) != 0;
}

// Capabilities of another user namespace don't count for the machine. Such a namespace may map all users to themselves,
// too, but only the first one has this number.
bool IsInFirstUserNamespace() {
    constexpr ino_t kFirst = 0xEFFFFFFD;
    struct stat facts;
    return stat("/proc/self/ns/user", &facts) != 0 || facts.st_ino == kFirst;
}

bool HasFilter() { return prctl(PR_GET_SECCOMP) == SECCOMP_MODE_FILTER; }

// What a refusal of something that belongs to root means. EACCES comes from a file's mode or from a security module.
// Any other error comes from a check for the capability, or from what may refuse a process that has it.
Finding_t WhyRefused(int error, const Capability_t& capability, std::string detail) {
    if (!IsInFirstUserNamespace()) return {Obstacle_t::kNamespace, std::move(detail)};
    const bool isRoot = geteuid() == 0;
    const bool isEntitled = error != EACCES
                                ? HasCapability(capability.number)
                                : isRoot || HasCapability(CAP_DAC_READ_SEARCH) || HasCapability(CAP_DAC_OVERRIDE);
    if (isEntitled) return {Obstacle_t::kPolicy, std::move(detail)};
    if (!isRoot) return {Obstacle_t::kRights, std::move(detail)};
    return {Obstacle_t::kCapability, std::string(capability.name).append(", ").append(detail)};
}

// The same for a file that needs no capability.
Finding_t WhyFileRefused(std::string_view path, int error) { return WhyRefused(EACCES, kAdmin, Reason(path, error)); }

// ---- Lockdown

enum class Lockdown_t { kOff, kOn, kUnknown };

// The kernel writes all levels, with brackets around the one in force.
Lockdown_t ShownLockdown() {
    const std::string levels = StartOf("/sys/kernel/security/lockdown");
    return levels.empty()                         ? Lockdown_t::kUnknown
           : levels.find("[none]") == levels.npos ? Lockdown_t::kOn
                                                  : Lockdown_t::kOff;
}

// Asks in a child for the permission to use a port, as a filter may kill the process that asks, which then leaves no
// core file. Returns 0, an errno, or -1 if a filter killed it.
int AskForPort() {
    constexpr uint32_t kDiagnosticPort = 0x80;
    std::signal(SIGCHLD, SIG_DFL);  // a process that inherited SIG_IGN can't ask how its child ended
    const pid_t child = fork();
    if (child < 0) return errno;
    if (child == 0) {
        prctl(PR_SET_DUMPABLE, 0);
        ClPorts ports;
        _exit(ports.Open(kDiagnosticPort, 1) ? 0 : errno);
    }
    int status = 0;
    while (waitpid(child, &status, 0) < 0)
        if (errno != EINTR) return errno;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

Finding_t WhyNoPorts() {
    constexpr char kCall[] = "ioperm";
    const int error = AskForPort();
    if (error == 0) return {};
    if (error < 0) return {Obstacle_t::kSeccomp, "ioperm: the filter kills the process"};
    if (error == ENOSYS && HasFilter())
        return {Obstacle_t::kSeccomp, Reason(kCall, error).append(", perhaps by the kernel itself")};
    if (error == ENOSYS) return {Obstacle_t::kNoIoperm, Reason(kCall, error)};
    if (error != EPERM) return {HasFilter() ? Obstacle_t::kSeccomp : Obstacle_t::kOther, Reason(kCall, error)};
    const Lockdown_t lockdown = ShownLockdown();
    if (lockdown == Lockdown_t::kOn) return {Obstacle_t::kLockdown, Reason(kCall, error)};
    Finding_t refusal = WhyRefused(error, kRawIO, Reason(kCall, error));
    if (refusal.obstacle != Obstacle_t::kPolicy) return refusal;
    if (HasFilter()) return {Obstacle_t::kSeccomp, Reason(kCall, error)};
    // For a process with the capability only lockdown is left, be it that the kernel doesn't show it.
    return {lockdown == Lockdown_t::kOff ? Obstacle_t::kPolicy : Obstacle_t::kLockdown, Reason(kCall, error)};
}

bool IsLockedDown() {
    const Lockdown_t lockdown = ShownLockdown();
    return lockdown == Lockdown_t::kOn ||
           (lockdown == Lockdown_t::kUnknown && WhyNoPorts().obstacle == Obstacle_t::kLockdown);
}

// ---- Firmware tables

// The innermost folder of the path that exists is a mask if it is of another file system and shows nothing.
bool IsMasked(std::string path) {
    while (!IsThere(path.c_str()) && path.rfind('/') != 0) path.resize(path.rfind('/'));
    struct statfs system;
    if (statfs(path.c_str(), &system) != 0 || system.f_type == SYSFS_MAGIC) return false;
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(opendir(path.c_str()), closedir);
    if (folder == nullptr) return true;
    while (const dirent* entry = readdir(folder.get()))
        if (std::strcmp(entry->d_name, ".") != 0 && std::strcmp(entry->d_name, "..") != 0) return false;
    return true;
}

// Kernels without a device tree may show an empty one.
bool HasDeviceTree() { return IsThere("/sys/firmware/devicetree/base/compatible"); }

bool IsGuest() {
    uint32_t registers[4] = {1, 0, 0, 0};
    return os_ReadCPUID(registers) && registers[2] >> 31 != 0;
}

// Why the kernel doesn't show the firmware's tables; `none` if the firmware has none.
Obstacle_t WhyNotShown(const char* folder, Obstacle_t none) {
    if (!IsThere("/sys/bus")) return Obstacle_t::kNoSysfs;
    if (IsMasked(folder)) return Obstacle_t::kMasked;
    return none;
}

Finding_t WhyNoFirmwareFile(const char* folder, const std::string& name, Obstacle_t none) {
    const std::string path = std::string(folder).append("/").append(name);
    const ClDescriptor file(path.c_str(), O_RDONLY);
    struct stat facts;
    if (file.IsOpen() && fstat(file.Get(), &facts) == 0)
        return S_ISREG(facts.st_mode) ? Finding_t{} : Finding_t{Obstacle_t::kMasked, path};
    const int error = errno;
    if (IsRefusal(error)) return WhyFileRefused(path, error);
    if (IsAbsence(error)) return {WhyNotShown(folder, none), ""};
    return {Obstacle_t::kOther, Reason(path, error)};
}

Finding_t WhyNoSMBIOS(const char* name) {
    const Obstacle_t none = HasDeviceTree()             ? Obstacle_t::kDeviceTree
                            : !IsThere("/sys/firmware") ? Obstacle_t::kContainer  // every kernel has that folder
                            : IsGuest()                 ? Obstacle_t::kGuest
                                                        : Obstacle_t::kNoSMBIOS;
    return WhyNoFirmwareFile("/sys/firmware/dmi/tables", name, none);
}

Finding_t WhyNoEntryPoint() {
    Finding_t finding = WhyNoSMBIOS("smbios_entry_point");
    if (finding.obstacle != Obstacle_t::kNone) return finding;
    const std::string bytes = StartOf("/sys/firmware/dmi/tables/smbios_entry_point");
    EntryPoint_t point;
    if (ParseEntryPoint(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size(), &point)) return {};
    return {Obstacle_t::kOther, "its bytes aren't those of an entry point"};
}

Finding_t WhyNoACPI() {
    constexpr char kFolder[] = "/sys/firmware/acpi/tables";
    const std::vector<uint32_t> tables = os_ListACPITables();
    if (tables.empty()) {
        const ClDescriptor folder(kFolder, O_RDONLY);
        const int error = errno;
        if (!folder.IsOpen() && IsRefusal(error)) return WhyFileRefused(kFolder, error);
        return {WhyNotShown(kFolder, Obstacle_t::kNoACPI), ""};
    }
    char name[5] = "";
    std::memcpy(name, &tables.front(), sizeof tables.front());
    return WhyNoFirmwareFile(kFolder, name, Obstacle_t::kNoACPI);
}

// ---- Memory

// Maps a page and doesn't touch it.
Finding_t WhyNoMemory(off_t address) {
    constexpr size_t kPage = 4096;
    const ClDescriptor file(kMemoryDevice, O_RDONLY);
    if (!file.IsOpen()) {
        const int error = errno;
        std::string reason = Reason(kMemoryDevice, error);
        if (IsAbsence(error)) return {Obstacle_t::kNoDevice, std::move(reason)};
        if (!IsRefusal(error)) return {Obstacle_t::kOther, std::move(reason)};
        if (IsLockedDown()) return {Obstacle_t::kLockdown, std::move(reason)};
        return WhyRefused(error, kRawIO, std::move(reason));
    }
    void* view = mmap(nullptr, kPage, PROT_READ, MAP_SHARED, file.Get(), address);
    if (view == MAP_FAILED)
        return {IsRefusal(errno) ? Obstacle_t::kStrictMemory : Obstacle_t::kOther, Reason(kMemoryDevice, errno)};
    munmap(view, kPage);
    return {};
}

// The first RAM above the first megabyte, which isn't treated as RAM everywhere.
off_t PlaceOfRAM() {
    constexpr uint64_t kFirstMegabyte = 0x100000;
    for (const MemoryArea_t& area : ReadSystemFacts().memoryMap)
        if (area.end > kFirstMegabyte) return static_cast<off_t>(std::max(kFirstMegabyte, area.begin));
    return kFirstMegabyte;
}

// The scan also needs the addresses in the map of memory, which the kernel shows as zeros to processes without rights.
Finding_t WhyNoScan() {
    Finding_t finding = WhyNoMemory(kBIOSArea);
    if (finding.obstacle != Obstacle_t::kNone || !StartOf("/proc/iomem").starts_with("00000000-00000000 "))
        return finding;
    return WhyRefused(EPERM, kAdmin, "/proc/iomem shows no addresses");
}

// Reads memory as the scan does.
Finding_t WhyNoTableByAddress() {
    Finding_t finding = WhyNoFirmwareFile("/sys/firmware/efi", "systab", Obstacle_t::kNoAddresses);
    return finding.obstacle == Obstacle_t::kNone ? WhyNoScan() : finding;
}

// ---- PCI

// The kernel gives the first 64 bytes to everybody.
Finding_t WhyNoPCI() {
    if (!IsThere("/sys/bus")) return {Obstacle_t::kNoSysfs, ""};
    constexpr char kFunction[] = "/sys/bus/pci/devices/0000:00:00.0/config";
    const ClDescriptor file(kFunction, O_RDONLY);
    const int error = errno;
    if (!file.IsOpen() && IsAbsence(error)) return {Obstacle_t::kNoPCI, ""};
    if (!file.IsOpen() && IsRefusal(error)) return WhyFileRefused(kFunction, error);
    if (!file.IsOpen()) return {Obstacle_t::kOther, Reason(kFunction, error)};
    if (HasCapability(CAP_SYS_ADMIN) && IsInFirstUserNamespace()) return {};
    return WhyRefused(EPERM, kAdmin, "only its first 64 bytes can be read");
}

Finding_t WhyNoExtendedPCI() {
    if (HasHypervisor()) return {Obstacle_t::kHypervisor, ""};
    constexpr uint32_t kMCFG = 'M' | 'C' << 8 | 'F' << 16 | 'G' << 24;
    if (os_GetFirmwareTable(kACPIProvider, kMCFG, nullptr, 0, nullptr) == 0)
        return WhyNoFirmwareFile("/sys/firmware/acpi/tables", "MCFG", Obstacle_t::kNoMCFG);
    return WhyNoPCI();
}

// ---- Processors

constexpr char kMSRDevices[] = "/dev/cpu/*/msr", kCPUIDDevices[] = "/dev/cpu/*/cpuid";  // in details

std::string DeviceOf(int processor, const char* name) {
    return std::string("/dev/cpu/").append(std::to_string(processor)).append("/").append(name);
}

Finding_t WhyNoMSR(int processor) {
    const std::string path = DeviceOf(processor, "msr");
    const ClDescriptor file(path.c_str(), O_RDONLY);
    uint64_t counter;
    if (file.IsOpen()) errno = EIO;  // of a short read
    if (file.IsOpen() && pread(file.Get(), &counter, sizeof counter, kTimeStampCounter) == sizeof counter) return {};
    const int error = errno;
    if (file.IsOpen()) return {Obstacle_t::kNoRegister, Reason(kMSRDevices, error)};
    if (IsRefusal(error)) return WhyRefused(error, kRawIO, Reason(kMSRDevices, error));
    if (!IsAbsence(error)) return {Obstacle_t::kOther, Reason(kMSRDevices, error)};
    const bool isLoaded = StartOf("/proc/devices").find(" cpu/msr\n") != std::string::npos;
    return {isLoaded ? Obstacle_t::kNoDevice : Obstacle_t::kNoMSRModule, Reason(kMSRDevices, error)};
}

// Moves this thread to the processor, and back.
Finding_t WhyNoCPUID(int processor) {
    ClProcessorSet before, one;
    if (one.Add(processor) && before.ReadFromThread() && one.ApplyToThread()) {
        before.ApplyToThread();
        return {};
    }
    const int error = errno;
    if (error != EINVAL) {
        const Obstacle_t obstacle = HasFilter()        ? Obstacle_t::kSeccomp
                                    : IsRefusal(error) ? Obstacle_t::kPolicy
                                                       : Obstacle_t::kOther;
        return {obstacle, Reason("sched_setaffinity", error)};
    }
    const std::string path = DeviceOf(processor, "cpuid");
    const ClDescriptor file(path.c_str(), O_RDONLY);
    return {Obstacle_t::kCpuset,
            file.IsOpen() ? std::string("read from ") + kCPUIDDevices : Reason(kCPUIDDevices, errno)};
}

}  // namespace

Finding_t FindObstacle(Way_t way, uint32_t processor) {
    const int number = way == Way_t::kMSR || way == Way_t::kCPUID ? SystemProcessor(processor) : 0;
    if (number < 0) return {Obstacle_t::kOther, "it isn't online"};
    if (!ArchitectureHas(way)) return {Obstacle_t::kArchitecture, ""};
    switch (way) {
        case Way_t::kFirmwareTable: {
            Finding_t finding = WhyNoSMBIOS("DMI");
            return finding.obstacle == Obstacle_t::kNone ? WhyNoEntryPoint() : finding;
        }
        case Way_t::kEntryPoint: return WhyNoEntryPoint();
        case Way_t::kACPI: return WhyNoACPI();
        case Way_t::kScan: return WhyNoScan();
        case Way_t::kByAddress: return WhyNoTableByAddress();
        case Way_t::kMemory: return WhyNoMemory(kBIOSArea);
        case Way_t::kRAM: return WhyNoMemory(PlaceOfRAM());
        case Way_t::kPCI: return WhyNoPCI();
        case Way_t::kExtendedPCI: return WhyNoExtendedPCI();
        case Way_t::kPorts: return WhyNoPorts();
        case Way_t::kMSR: return WhyNoMSR(number);
        case Way_t::kCPUID: return WhyNoCPUID(number);
        default: return {Obstacle_t::kNotHere, ""};  // Linux needs no driver
    }
}

status_t BeginTrial(bool) { return FERROXInitialize(); }

void EndTrial() { FERROXTerminate(); }
