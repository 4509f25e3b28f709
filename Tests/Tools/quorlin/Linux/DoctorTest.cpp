// What doctor says of a machine in each state that Linux can be made to show. Files stand in for its devices and
// tables; Tests/Machine/init has a locked-down kernel, a real cpuset and real memory.
#include <cpuid.h>
#include <gtest/gtest.h>
#include <linux/capability.h>
#include <linux/seccomp.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/sysmacros.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <fstream>
#include <map>
#include <optional>
#include <sstream>

#include "Tests/Support/Linux/Processes.h"
#include "Tests/Support/Structures.h"

namespace {

constexpr uint32_t kErrno = SECCOMP_RET_ERRNO;

// The causes of one run by the names of the things; "" for a thing that works.
struct Diagnosis_t {
    int exitCode;
    std::map<std::string, std::string> causes;
    std::string output;

    std::string Of(const std::string& thing) const {
        const auto found = causes.find(thing);
        return found == causes.end() ? "(not shown)" : found->second;
    }
};

Diagnosis_t Diagnose(const std::function<void()>& prepare = [] {}) {
    const ProgramRun_t run = RunPrepared({QUORLIN_PROGRAM, "doctor", "--format", "csv"}, prepare);
    EXPECT_TRUE(run.errors.empty() || HasCoverage()) << run.errors;  // not everybody can write the counters
    Diagnosis_t diagnosis = {run.exitCode, {}, run.output};
    std::istringstream lines(run.output);
    for (std::string line; std::getline(lines, line);) {
        // Thing, title, two processors, works, cause.
        std::istringstream row(line);
        std::string cells[6];
        for (std::string& cell : cells) std::getline(row, cell, ',');
        if (cells[0] == "thing") continue;
        EXPECT_EQ(cells[4], cells[5].empty() ? "true" : "false") << line;
        diagnosis.causes.emplace(cells[0], cells[5]);
    }
    return diagnosis;
}

bool HasHypervisor() {
    uint32_t eax, ebx, ecx, edx;
    __cpuid(1, eax, ebx, ecx, edx);
    return ecx >> 31 != 0;
}

class Doctor : public testing::Test {
  protected:
    void SetUp() override {
        if (!ClFolderOver::IsPossible()) GTEST_SKIP() << "only root can have folders over those of the system";
        m_dev.emplace("/dev");
        m_pci.emplace("/sys/bus/pci");
        m_firmware.emplace("/sys/firmware");
        m_dev->Write("null", "");
    }

    void WriteTables() const {
        const std::vector<uint8_t> dump = DumpOf(TableOf({ClStructureBuilder(3, 9)}), 2, 7);
        m_firmware->Write("dmi/tables/smbios_entry_point", {dump.begin(), dump.begin() + 31});
        m_firmware->Write("dmi/tables/DMI", {dump.begin() + 32, dump.end()});
        m_firmware->Write("acpi/tables/FACP", "FACP");
    }
    // All that the machine may have, for root.
    void WriteAll() const {
        WriteTables();
        m_dev->Write("mem", std::string(1u << 21, '\0'));
        for (long cpu = 0; cpu < sysconf(_SC_NPROCESSORS_ONLN); ++cpu)
            m_dev->Write("cpu/" + std::to_string(cpu) + "/msr", std::string(32, '\1'));
        m_pci->Write("devices/0000:00:00.0/config", std::string(256, '\1'));
    }

    std::optional<ClFolderOver> m_dev, m_pci, m_firmware;
};

TEST_F(Doctor, AMachineThatShowsAllWorks) {
    WriteAll();
    const Diagnosis_t diagnosis = Diagnose();
    EXPECT_EQ(diagnosis.exitCode, 0);
    for (const char* thing : {"table", "entry-point", "acpi", "memory", "ram", "pci", "msr", "cpuid", "new-files"})
        EXPECT_EQ(diagnosis.Of(thing), "") << thing << "\n" << diagnosis.output;
    EXPECT_EQ(diagnosis.Of("scan"), "no-anchors");
    EXPECT_EQ(diagnosis.Of("efi"), "no-addresses");
    EXPECT_EQ(diagnosis.Of("driver"), "(not shown)");
    const std::string text = RunPrepared({QUORLIN_PROGRAM, "doctor"}).output;
    EXPECT_TRUE(text.starts_with("SMBIOS table from the system: works (SMBIOS 2.7, ")) << text;
}

TEST_F(Doctor, AnOrdinaryUserHasNoRights) {
    WriteAll();
    m_firmware->Write("efi/systab", "SMBIOS=0xf0000\n");
    const Diagnosis_t diagnosis = Diagnose([] {
        if (!BecomeNobody() || chdir("/") != 0) _exit(99);
    });
    EXPECT_EQ(diagnosis.exitCode, 1);
    for (const char* thing : {"table", "entry-point", "acpi", "scan", "efi", "memory", "ram", "pci", "msr"})
        EXPECT_EQ(diagnosis.Of(thing), "rights") << thing << "\n" << diagnosis.output;
    EXPECT_EQ(diagnosis.Of("new-files"), "foreign-folder") << diagnosis.output;
    EXPECT_EQ(diagnosis.Of("cpuid"), "") << diagnosis.output;
    ASSERT_EQ(chmod("/sys/firmware/acpi/tables", 0700), 0);
    EXPECT_EQ(Diagnose([] {
                  if (!BecomeNobody()) _exit(99);
              }).Of("acpi"),
              "rights")
        << "a folder that can't be listed isn't an empty one";
}

// The kernel gives it 64 bytes of configuration space, and a map of memory without addresses.
TEST_F(Doctor, ARootMayLackACapability) {
    WriteAll();
    const std::vector<uint8_t> dump = DumpOf(TableOf({ClStructureBuilder(3, 9)}), 2, 7, 0xF0100, 0x100);
    m_dev->Write("mem", std::string(0xF0000, '\0') + std::string(dump.begin(), dump.end()) + std::string(0x10000, ' '));
    m_dev->Write("map", "00000000-00000000 : Reserved\n");
    ASSERT_EQ(mount("/dev/map", "/proc/iomem", nullptr, MS_BIND, nullptr), 0);
    const Diagnosis_t diagnosis = Diagnose([] { prctl(PR_CAPBSET_DROP, CAP_SYS_ADMIN); });
    umount("/proc/iomem");
    for (const char* thing : {"scan", "pci"})
        EXPECT_EQ(diagnosis.Of(thing), "capability") << thing << "\n" << diagnosis.output;
    EXPECT_NE(diagnosis.output.find("CAP_SYS_ADMIN, /proc/iomem shows no addresses"), std::string::npos);
    EXPECT_EQ(diagnosis.Of("table"), "") << diagnosis.output;
    EXPECT_EQ(diagnosis.exitCode, 0) << "the table from the system is enough";
}

TEST_F(Doctor, AnAddressMayLeadNowhere) {
    WriteAll();
    const ClFolderOver proc("/proc");
    proc.Write("iomem", "000f0000-000fffff : System ROM\n");
    const std::vector<uint8_t> dump = DumpOf(TableOf({ClStructureBuilder(3, 9)}), 3, 2);
    m_dev->Write("mem", std::string(0xF0000, '\0') + std::string(dump.begin(), dump.end()) + std::string(0x10000, ' '));
    const struct {
        const char *systab, *cause;
    } kCases[] = {
        {"ACPI=0xf0000\n",    "no-entry-point"},
        {"SMBIOS3=0xf0010\n", "no-entry-point"},
        {"SMBIOS3=0xe0000\n", "no-map"        },
        {"SMBIOS3=0xf0000\n", "no-map"        }, // of the table, whose address is that in a dump
    };
    for (const auto& c : kCases) {
        m_firmware->Write("efi/systab", c.systab);
        EXPECT_EQ(Diagnose().Of("efi"), c.cause) << c.systab;
    }
}

TEST_F(Doctor, RootOfAnotherUserNamespaceHasNone) {
    if (InChild([] { return unshare(CLONE_NEWUSER) == 0 ? 0 : 1; }) != 0)
        GTEST_SKIP() << "no new user namespaces: by the system, or as ThreadSanitizer has a thread of its own";
    WriteAll();
    for (const char* file : {"/sys/firmware/dmi/tables/DMI", "/dev/mem", "/dev/cpu/0/msr"})
        ASSERT_EQ(chown(file, 1, 1), 0) << file;
    const Diagnosis_t diagnosis = Diagnose([] {
        if (unshare(CLONE_NEWUSER) != 0) _exit(99);
    });
    for (const char* thing : {"table", "memory", "pci", "msr"})
        EXPECT_EQ(diagnosis.Of(thing), "namespace") << thing << "\n" << diagnosis.output;
    // One that maps all users to themselves, as the first one does.
    const Diagnosis_t mapped = Diagnose([] {
        const std::string map = "/proc/" + std::to_string(getpid()) + "/uid_map";
        int begins[2];
        if (pipe(begins) != 0) _exit(99);
        const pid_t mapper = fork();
        if (mapper == 0) {
            char byte;
            const bool isMapped = read(begins[0], &byte, 1) == 1 && (std::ofstream(map) << "0 0 4294967295").flush();
            _exit(isMapped ? 0 : 99);
        }
        int status = -1;
        if (unshare(CLONE_NEWUSER) != 0 || write(begins[1], "", 1) != 1 || waitpid(mapper, &status, 0) != mapper ||
            status != 0)
            _exit(99);
        close(begins[0]);
        close(begins[1]);
    });
    EXPECT_EQ(mapped.Of("pci"), "namespace") << mapped.output;
}

TEST_F(Doctor, AMaskIsNoFirmwareWithoutTables) {
    const Diagnosis_t masked = Diagnose();
    EXPECT_EQ(masked.exitCode, 1);
    for (const char* thing : {"table", "entry-point", "acpi", "efi"})
        EXPECT_EQ(masked.Of(thing), "masked") << thing << "\n" << masked.output;
    // A single file.
    WriteTables();
    ASSERT_EQ(mknod("/sys/firmware/dmi/tables/nothing", S_IFCHR | 0400, makedev(1, 3)), 0);
    ASSERT_EQ(rename("/sys/firmware/dmi/tables/nothing", "/sys/firmware/dmi/tables/DMI"), 0);
    EXPECT_EQ(Diagnose().Of("table"), "masked");
}

TEST_F(Doctor, NoSMBIOSIsTheFirmwaresOrTheContainers) {
    m_firmware->Write("acpi/tables/FACP", "FACP");
    const Diagnosis_t none = Diagnose();
    EXPECT_EQ(none.exitCode, 1);
    EXPECT_EQ(none.Of("table"), HasHypervisor() ? "guest" : "no-smbios") << none.output;
    EXPECT_EQ(none.Of("acpi"), "") << none.output;
    m_firmware->Write("devicetree/base/compatible", "board");
    EXPECT_EQ(Diagnose().Of("table"), "device-tree");
    const ClFolderOver sys("/sys");
    EXPECT_EQ(Diagnose().Of("table"), "no-sysfs");
    sys.Write("bus/pci/devices/none", "");
    EXPECT_EQ(Diagnose().Of("table"), "container");
}

TEST_F(Doctor, TheMSRModuleIsMissing) {
    EXPECT_EQ(Diagnose().Of("msr"), "no-msr-module");
    // It is there, and its files aren't; a processor without the register.
    m_dev->Write("drivers", "Character devices:\n202 cpu/msr\n");
    EXPECT_EQ(mount("/dev/drivers", "/proc/devices", nullptr, MS_BIND, nullptr), 0);
    EXPECT_EQ(Diagnose().Of("msr"), "no-device");
    umount("/proc/devices");
    for (long cpu = 0; cpu < sysconf(_SC_NPROCESSORS_ONLN); ++cpu)
        m_dev->Write("cpu/" + std::to_string(cpu) + "/msr", "short");
    EXPECT_EQ(Diagnose().Of("msr"), "no-register");
}

// Files that were made without a driver for them, as in a container.
TEST_F(Doctor, ADeviceFileWithoutADriverIsNone) {
    constexpr unsigned kExperimental = 240;
    ASSERT_EQ(mkdir("/dev/cpu", 0755) + mkdir("/dev/cpu/0", 0755), 0);
    for (const char* file : {"/dev/mem", "/dev/cpu/0/msr"})
        ASSERT_EQ(mknod(file, S_IFCHR | 0600, makedev(kExperimental, 0)), 0) << file;
    const Diagnosis_t diagnosis = Diagnose();
    EXPECT_EQ(diagnosis.Of("memory"), "no-device") << diagnosis.output;
    EXPECT_EQ(diagnosis.Of("msr"), "no-msr-module") << diagnosis.output;
}

// Offline processors have no numbers here. Number 256 means any processor, and works everywhere.
TEST_F(Doctor, ProcessorsAreCountedWithoutGapsUpTo256) {
    const ClFolderOver cpus("/sys/devices/system/cpu");
    cpus.Write("online", "1,3\n");
    m_dev->Write("cpu/1/msr", std::string(32, '\1'));
    m_dev->Write("cpu/3/msr", std::string(32, '\1'));
    const std::string gaps = Diagnose().output;
    EXPECT_NE(gaps.find("\nmsr,Model-specific registers,0,1,true,"), gaps.npos) << gaps;
    cpus.Write("online", "0-299\n");
    const std::string many = Diagnose().output;
    EXPECT_NE(many.find(",255,false,no-msr-module,"), many.npos) << many;
    for (const char* row : {"\nmsr,Model-specific registers,256,299,false,no-number,", ",255,false,cpuset,",
                            "\ncpuid,CPUID,256,299,false,no-number,"})
        EXPECT_NE(many.find(row), many.npos) << row << many;
}

// Refused, not there, and deadly.
TEST_F(Doctor, AFilterKeepsPortsAway) {
    for (const uint32_t action : {kErrno | EPERM, kErrno | ENOSYS, uint32_t{SECCOMP_RET_KILL_PROCESS}}) {
        const Diagnosis_t diagnosis = Diagnose([action] {
            std::signal(SIGCHLD, SIG_IGN);  // as some parents leave it
            ForbidCall({SYS_ioperm}, action);
        });
        EXPECT_EQ(diagnosis.Of("ports"), "seccomp") << action << "\n" << diagnosis.output;
        EXPECT_EQ(diagnosis.Of("cpuid"), "") << action << "\n" << diagnosis.output;
    }
}

TEST_F(Doctor, AReadOnlyRootTakesNoFiles) {
    const auto makeReadOnly = [] {
        const bool isReadOnly = unshare(CLONE_NEWNS) == 0 && chdir("/") == 0 &&
                                mount(nullptr, "/", nullptr, MS_REMOUNT | MS_BIND | MS_RDONLY, nullptr) == 0;
        if (!isReadOnly) _exit(99);
    };
    WriteTables();
    const Diagnosis_t diagnosis = Diagnose(makeReadOnly);
    EXPECT_EQ(diagnosis.exitCode, 0) << "the table can be read";
    EXPECT_EQ(diagnosis.Of("new-files"), "read-only") << diagnosis.output;
}

// What a cpuset without the processor answers.
TEST_F(Doctor, AForeignCpusetKeepsProcessorsAway) {
    const auto leaveCpuset = [] { ForbidCall({SYS_sched_setaffinity}, kErrno | EINVAL); };
    const Diagnosis_t diagnosis = Diagnose(leaveCpuset);
    EXPECT_EQ(diagnosis.Of("cpuid"), "cpuset") << diagnosis.output;
    for (long cpu = 0; cpu < sysconf(_SC_NPROCESSORS_ONLN); ++cpu)
        m_dev->Write("cpu/" + std::to_string(cpu) + "/cpuid", std::string(64, 'x'));
    const Diagnosis_t byFile = Diagnose(leaveCpuset);
    EXPECT_EQ(byFile.Of("cpuid"), "") << byFile.output;
    EXPECT_TRUE(byFile.output.find("read from /dev/cpu/*/cpuid") != std::string::npos) << byFile.output;
}

}  // namespace
