// What the kernel's files say of the machine. Folders over those of the system stand in for other machines.
#include "Packages/OS/SystemFacts.h"

#include <gtest/gtest.h>
#include <sys/mount.h>

#include <optional>

#include "Tests/Support/Linux/Processes.h"

namespace {

class SystemFacts : public testing::Test {
  protected:
    void SetUp() override {
        if (!ClFolderOver::IsPossible()) GTEST_SKIP() << "only root can have folders over those of the system";
        m_sys.emplace("/sys");
    }
    // A core with two threads in each of two packages; a thread more is offline or not.
    void WriteProcessors(const char* present) const {
        m_sys->Write("devices/system/cpu/present", present);
        m_sys->Write("devices/system/cpu/online", "0-3\n");
        for (int cpu = 0; cpu < 4; cpu++) {
            const std::string topology = "devices/system/cpu/cpu" + std::to_string(cpu) + "/topology/";
            m_sys->Write(topology + "physical_package_id", cpu < 2 ? "0\n" : "1\n");
            m_sys->Write(topology + "thread_siblings_list", cpu < 2 ? "0-1\n" : "2-3\n");
        }
    }
    void WriteArea(int number, const char* begin, const char* end, const char* type) const {
        const std::string area = "firmware/memmap/" + std::to_string(number) + "/";
        m_sys->Write(area + "start", begin);
        m_sys->Write(area + "end", end);
        m_sys->Write(area + "type", type);
    }

    std::optional<ClFolderOver> m_sys;
};

TEST_F(SystemFacts, ProcessorsAreCountedWhenAllAreOnline) {
    WriteProcessors("0-3\n");
    SystemFacts_t facts = ReadSystemFacts();
    EXPECT_EQ(facts.threads, 4u);
    EXPECT_EQ(facts.cores, 2u);
    EXPECT_EQ(facts.packages, 2u);
    WriteProcessors("0-4\n");
    facts = ReadSystemFacts();
    EXPECT_EQ(facts.threads, 5u);
    EXPECT_FALSE(facts.cores || facts.packages);
}

TEST_F(SystemFacts, EachKindOfArm64ProcessorIsKnown) {
    WriteProcessors("0-3\n");
    EXPECT_FALSE(ReadSystemFacts().IsArm64());
    for (int cpu = 0; cpu < 4; cpu++)
        m_sys->Write("devices/system/cpu/cpu" + std::to_string(cpu) + "/regs/identification/midr_el1",
                     cpu % 2 == 0 ? "0x00000000410fd0c1\n" : "0x00000000410fd050\n");
    EXPECT_EQ(ReadSystemFacts().midrs, (std::vector<uint32_t>{0x410FD0C1, 0x410FD050}));
}

TEST_F(SystemFacts, SpeedsAreThoseOfTheFrequencyDriver) {
    const SystemFacts_t fixed = ReadSystemFacts();
    const bool isShown = ReadWholeFile("/proc/cpuinfo").find("cpu MHz") != std::string::npos;  // not on ARM64
    EXPECT_EQ(fixed.maxSpeed.value_or(0) > 100, isShown) << "of /proc/cpuinfo";
    EXPECT_FALSE(fixed.baseSpeed);
    m_sys->Write("devices/system/cpu/cpu0/cpufreq/cpuinfo_max_freq", "4200000\n");
    EXPECT_EQ(ReadSystemFacts().maxSpeed, 4200u);
    EXPECT_FALSE(ReadSystemFacts().baseSpeed);
    m_sys->Write("devices/system/cpu/cpu0/acpi_cppc/nominal_freq", "3400\n");
    EXPECT_EQ(ReadSystemFacts().baseSpeed, 3400u);
    m_sys->Write("devices/system/cpu/cpu0/cpufreq/base_frequency", "2100000\n");
    EXPECT_EQ(ReadSystemFacts().baseSpeed, 2100u);
}

TEST_F(SystemFacts, TheMemoryMapIsTheFirmwares) {
    WriteArea(0, "0x100000\n", "0xbfffffff\n", "System RAM\n");
    WriteArea(1, "0x0\n", "0x9ffff\n", "System RAM\n");
    WriteArea(2, "0xf0000000\n", "0xffffffff\n", "Reserved\n");
    WriteArea(3, "nothing\n", "0xffffffff\n", "System RAM\n");
    const std::vector<MemoryArea_t> kMap = {
        {0,        0x9FFFF   },
        {0x100000, 0xBFFFFFFF}
    };
    EXPECT_EQ(ReadSystemFacts().memoryMap, kMap);
}

TEST_F(SystemFacts, WithoutTheFirmwaresMapItIsTheKernels) {
    m_sys->Write("iomem",
                 "00000000-00000fff : Reserved\n00001000-0009fbff : System RAM\n"
                 "100000000-23fffffff : System RAM\n  123a00000-124a01fff : Kernel code\n"
                 "00000000-00000000 : System RAM\n");
    ASSERT_EQ(mount("/sys/iomem", "/proc/iomem", nullptr, MS_BIND, nullptr), 0);
    const std::vector<MemoryArea_t> kMap = {
        {0x1000,      0x9FBFF    },
        {0x100000000, 0x23FFFFFFF}
    };
    EXPECT_EQ(ReadSystemFacts().memoryMap, kMap);
    umount("/proc/iomem");
}

TEST_F(SystemFacts, FirmwareTpmAndNetwork) {
    SystemFacts_t facts = ReadSystemFacts();
    EXPECT_FALSE(facts.tpm);
    EXPECT_TRUE(facts.resources.empty());
    EXPECT_TRUE(facts.networkAddresses.empty());
    m_sys->Write("class/tpm/tpm0/tpm_version_major", "2\n");
    m_sys->Write("firmware/efi/esrt/entries/entry0/fw_class", "0f2a3c44-0000-4000-8000-0102030405ab\n");
    m_sys->Write("firmware/efi/esrt/entries/entry0/fw_type", "1\n");
    m_sys->Write("firmware/efi/esrt/entries/entry0/fw_version", "65546\n");
    m_sys->Write("firmware/efi/esrt/entries/entry1/fw_class", "without the rest\n");
    const auto add = [this](const std::string& name, const char* address, const char* assigned, bool hasDevice) {
        m_sys->Write("class/net/" + name + "/address", address);
        m_sys->Write("class/net/" + name + "/addr_assign_type", assigned);
        if (hasDevice) m_sys->Write("class/net/" + name + "/device/vendor", "");
    };
    add("eth1", "02:1d:c3:88:4e:f2\n", "0\n", true);
    add("eth0", "02:1d:c3:88:4e:f1\n", "0\n", true);
    add("random", "02:1d:c3:88:4e:f3\n", "1\n", true);
    add("bridge", "02:1d:c3:88:4e:f4\n", "0\n", false);
    add("infiniband", "80:00:02:08:fe:80:00:00\n", "0\n", true);
    facts = ReadSystemFacts();
    EXPECT_EQ(facts.tpm, 2u);
    const std::vector<FirmwareResource_t> kResources = {
        {"0f2a3c44-0000-4000-8000-0102030405ab", kSystemFirmware, 65546}
    };
    EXPECT_EQ(facts.resources, kResources);
    EXPECT_EQ(facts.networkAddresses, (std::vector<std::string>{"021dc3884ef1", "021dc3884ef2"}));
}

}  // namespace
