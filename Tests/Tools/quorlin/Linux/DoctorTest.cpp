// What doctor says of a machine in each state that Linux can be made to show. Files stand in for its devices and
// tables; Tests/Machine/init has a locked-down kernel, a real cpuset and real memory. A folder for each architecture
// has what only that one shows.
#include "Tests/Tools/quorlin/Linux/Doctor.h"

#include <linux/capability.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/wait.h>

#include <fstream>

#include "Packages/OS/Processors.h"

namespace {

bool HasHypervisor() {
    uint32_t registers[4] = {1, 0, 0, 0};
    return os_ReadCPUID(registers) && registers[2] >> 31 != 0;
}

// The cause of a thing that only x86 machines have.
std::string OnX86(const std::string& cause) {
    uint32_t registers[4] = {};
    return os_ReadCPUID(registers) ? cause : "architecture";
}

TEST_F(Doctor, AMachineThatShowsAllWorks) {
    WriteAll();
    const Diagnosis_t diagnosis = Diagnose();
    EXPECT_EQ(diagnosis.exitCode, 0);
    for (const char* thing : {"table", "entry-point", "acpi", "ram", "pci", "new-files"})
        EXPECT_EQ(diagnosis.Of(thing), "") << thing << "\n" << diagnosis.output;
    for (const char* thing : {"memory", "msr", "cpuid"})
        EXPECT_EQ(diagnosis.Of(thing), OnX86("")) << thing << "\n" << diagnosis.output;
    EXPECT_EQ(diagnosis.Of("scan"), OnX86("no-anchors"));
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
    for (const char* thing : {"table", "entry-point", "acpi", "efi", "ram", "pci"})
        EXPECT_EQ(diagnosis.Of(thing), "rights") << thing << "\n" << diagnosis.output;
    for (const char* thing : {"scan", "memory", "msr"})
        EXPECT_EQ(diagnosis.Of(thing), OnX86("rights")) << thing << "\n" << diagnosis.output;
    EXPECT_EQ(diagnosis.Of("new-files"), "foreign-folder") << diagnosis.output;
    EXPECT_EQ(diagnosis.Of("cpuid"), OnX86("")) << diagnosis.output;
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
    EXPECT_EQ(diagnosis.Of("pci"), "capability") << diagnosis.output;
    EXPECT_EQ(diagnosis.Of("scan"), OnX86("capability")) << diagnosis.output;
    EXPECT_EQ(diagnosis.output.find("CAP_SYS_ADMIN, /proc/iomem shows no addresses") != std::string::npos,
              diagnosis.Of("scan") == "capability");
    EXPECT_EQ(diagnosis.Of("table"), "") << diagnosis.output;
    EXPECT_EQ(diagnosis.exitCode, 0) << "the table from the system is enough";
}

TEST_F(Doctor, AnAddressMayLeadNowhere) {
    WriteAll();
    m_dev->Write("map", "000f0000-000fffff : System ROM\n");
    ASSERT_EQ(mount("/dev/map", "/proc/iomem", nullptr, MS_BIND, nullptr), 0);
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
    umount("/proc/iomem");
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
    for (const char* thing : {"memory", "msr"})
        EXPECT_EQ(diagnosis.Of(thing), OnX86("namespace")) << thing << "\n" << diagnosis.output;
    for (const char* thing : {"table", "pci"})
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

}  // namespace
