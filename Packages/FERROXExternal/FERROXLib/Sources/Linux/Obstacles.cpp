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

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "Packages/FERROXExternal/FERROXLib/Sources/Linux/LinuxFERROX.h"
#include "Packages/FERROXExternal/FERROXLib/Sources/Linux/Ports.h"
#include "Packages/Format/EntryPoint.h"
#include "Packages/OS/FirmwareTables.h"
#include "Packages/OS/Linux/Descriptor.h"
#include "Packages/OS/Linux/Processors.h"
#include "Packages/OS/Processors.h"

namespace {

constexpr off_t kTimeStampCounter = 0x10;  // a register that every processor has
constexpr char kMemoryDevice[] = "/dev/mem";

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

// ---- Who this process is

bool HasCapability(int capability) {
    __user_cap_header_struct head = {_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct data[2] = {};
    return syscall(SYS_capget, &head, data) == 0 && (data[capability / 32].effective >> capability % 32 & 1) != 0;
}

// Capabilities of another user namespace don't count for the machine. The first namespace maps all users to themselves;
// a new one may map none.
bool IsInFirstUserNamespace() {
    constexpr char kMap[] = "/proc/self/uid_map";
    std::string map = StartOf(kMap);
    std::erase(map, ' ');
    return map == "004294967295\n" || !IsThere(kMap);  // user 0 is user 0, and so on for all 2^32 - 1
}

bool HasFilter() { return prctl(PR_GET_SECCOMP) == SECCOMP_MODE_FILTER; }

// A container that doesn't show the firmware at all.
bool IsBlindContainer() {
    if (IsThere("/sys/firmware")) return false;
    return std::getenv("container") != nullptr || IsThere("/.dockerenv") || IsThere("/run/.containerenv") ||
           !IsInFirstUserNamespace();
}

// What a refusal means for a process that needs this capability.
Obstacle_t WhyRefused(int capability) {
    if (!IsInFirstUserNamespace()) return Obstacle_t::kNamespace;
    if (HasCapability(capability)) return Obstacle_t::kPolicy;
    return geteuid() == 0 ? Obstacle_t::kCapability : Obstacle_t::kRights;
}

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
    if (error == ENOSYS) return {HasFilter() ? Obstacle_t::kSeccomp : Obstacle_t::kNoIoperm, Reason(kCall, error)};
    if (error != EPERM) return {HasFilter() ? Obstacle_t::kSeccomp : Obstacle_t::kOther, Reason(kCall, error)};
    const Lockdown_t lockdown = ShownLockdown();
    if (lockdown == Lockdown_t::kOn) return {Obstacle_t::kLockdown, Reason(kCall, error)};
    const Obstacle_t refusal = WhyRefused(CAP_SYS_RAWIO);
    if (refusal != Obstacle_t::kPolicy) return {refusal, Reason(kCall, error)};
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

// The innermost folder of the path that exists is a mask if it is empty and of another file system, or no folder.
bool IsMasked(std::string path) {
    while (!IsThere(path.c_str()) && path.rfind('/') != 0) path.resize(path.rfind('/'));
    struct statfs system;
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(opendir(path.c_str()), closedir);
    if (folder == nullptr || fstatfs(dirfd(folder.get()), &system) != 0 || system.f_type == SYSFS_MAGIC) return false;
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
    if (IsRefusal(error)) return {WhyRefused(CAP_DAC_READ_SEARCH), Reason(path, error)};
    if (error == ENOENT || error == ENOTDIR) return {WhyNotShown(folder, none), ""};
    return {Obstacle_t::kOther, Reason(path, error)};
}

Finding_t WhyNoSMBIOS(const char* name) {
    const Obstacle_t none = HasDeviceTree()      ? Obstacle_t::kDeviceTree
                            : IsBlindContainer() ? Obstacle_t::kContainer
                            : IsGuest()          ? Obstacle_t::kGuest
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
    if (tables.empty()) return {WhyNotShown(kFolder, Obstacle_t::kNoACPI), ""};
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
        const Obstacle_t obstacle = error == ENOENT     ? Obstacle_t::kNoDevice
                                    : !IsRefusal(error) ? Obstacle_t::kOther
                                    : IsLockedDown()    ? Obstacle_t::kLockdown
                                                        : WhyRefused(CAP_SYS_RAWIO);
        return {obstacle, Reason(kMemoryDevice, error)};
    }
    void* view = mmap(nullptr, kPage, PROT_READ, MAP_SHARED, file.Get(), address);
    if (view == MAP_FAILED)
        return {IsRefusal(errno) ? Obstacle_t::kStrictMemory : Obstacle_t::kOther, Reason(kMemoryDevice, errno)};
    munmap(view, kPage);
    return {};
}

// ---- PCI

// The kernel gives the first 64 bytes to everybody.
Finding_t WhyNoPCI() {
    if (!IsThere("/sys/bus")) return {Obstacle_t::kNoSysfs, ""};
    constexpr char kFunction[] = "/sys/bus/pci/devices/0000:00:00.0/config";
    const ClDescriptor file(kFunction, O_RDONLY);
    const int error = errno;
    if (!file.IsOpen() && error == ENOENT) return {Obstacle_t::kNoPCI, ""};
    if (!file.IsOpen())
        return {IsRefusal(error) ? WhyRefused(CAP_SYS_ADMIN) : Obstacle_t::kOther, Reason(kFunction, error)};
    if (HasCapability(CAP_SYS_ADMIN) && IsInFirstUserNamespace()) return {};
    return {WhyRefused(CAP_SYS_ADMIN), "only its first 64 bytes can be read"};
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
    if (IsRefusal(error)) return {WhyRefused(CAP_SYS_RAWIO), Reason(kMSRDevices, error)};
    if (error != ENOENT && error != ENOTDIR) return {Obstacle_t::kOther, Reason(kMSRDevices, error)};
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
    if (error != EINVAL)
        return {HasFilter() ? Obstacle_t::kSeccomp : Obstacle_t::kOther, Reason("sched_setaffinity", error)};
    const std::string path = DeviceOf(processor, "cpuid");
    const ClDescriptor file(path.c_str(), O_RDONLY);
    return {Obstacle_t::kCpuset,
            file.IsOpen() ? std::string("read from ") + kCPUIDDevices : Reason(kCPUIDDevices, errno)};
}

}  // namespace

Finding_t FindObstacle(Way_t way, uint32_t processor) {
    constexpr off_t kBIOSArea = 0xF0000, kFirstMegabyte = 0x100000;
    switch (way) {
        case Way_t::kFirmwareTable: {
            Finding_t finding = WhyNoSMBIOS("DMI");
            return finding.obstacle == Obstacle_t::kNone ? WhyNoEntryPoint() : finding;
        }
        case Way_t::kEntryPoint: return WhyNoEntryPoint();
        case Way_t::kACPI: return WhyNoACPI();
        case Way_t::kScan:
        case Way_t::kMemory: return WhyNoMemory(kBIOSArea);
        case Way_t::kRAM: return WhyNoMemory(kFirstMegabyte);
        case Way_t::kPCI: return WhyNoPCI();
        case Way_t::kExtendedPCI: return WhyNoExtendedPCI();
        case Way_t::kPorts: return WhyNoPorts();
        case Way_t::kMSR: return WhyNoMSR(SystemProcessor(processor));
        case Way_t::kCPUID: return WhyNoCPUID(SystemProcessor(processor));
        default: return {Obstacle_t::kNotHere, ""};  // Linux needs no driver
    }
}

status_t BeginTrial(bool) { return FERROXInitialize(); }

void EndTrial() { FERROXTerminate(); }
