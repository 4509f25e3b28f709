// What Windows says of the machine.
#include "Packages/OS/SystemFacts.h"

#include <gtest/gtest.h>

#include "Packages/OS/Processors.h"
#include "Packages/OS/Windows/Windows.h"

namespace {

TEST(SystemFacts, AreThoseOfThisMachine) {
    const SystemFacts_t facts = ReadSystemFacts();
    EXPECT_EQ(facts.threads, os_GetProcessorCount());
    EXPECT_GE(facts.cores.value_or(0), facts.packages.value_or(1));
    EXPECT_LE(facts.cores.value_or(9999), *facts.threads);
    EXPECT_GE(facts.packages.value_or(0), 1u);
    EXPECT_GT(facts.baseSpeed.value_or(0), 100u);
    EXPECT_GT(facts.usableMemory.value_or(0), uint64_t{64} << 20);
    for (const std::string& address : facts.networkAddresses) {
        EXPECT_EQ(address.size(), 12u) << address;
        EXPECT_EQ(address.find_first_not_of("0123456789abcdef"), address.npos) << address;
    }
}

TEST(SystemFacts, FirmwareResourcesComeFromTheRegistry) {
    constexpr char kRow[] = "HARDWARE\\UEFI\\ESRT\\{0F2A3C44-0000-4000-8000-0102030405AB}";
    HKEY key = nullptr;
    ASSERT_EQ(RegCreateKeyExA(HKEY_LOCAL_MACHINE, kRow, 0, nullptr, REG_OPTION_VOLATILE, KEY_ALL_ACCESS, nullptr, &key,
                              nullptr),
              ERROR_SUCCESS);
    const auto set = [key](const char* name, DWORD value) {
        return RegSetValueExA(key, name, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&value), sizeof value);
    };
    EXPECT_EQ(set("Version", 65546), ERROR_SUCCESS);
    EXPECT_TRUE(ReadSystemFacts().resources.empty()) << "without a type";
    EXPECT_EQ(set("Type", kSystemFirmware), ERROR_SUCCESS);
    const std::vector<FirmwareResource_t> kResources = {
        {"0f2a3c44-0000-4000-8000-0102030405ab", kSystemFirmware, 65546}
    };
    EXPECT_EQ(ReadSystemFacts().resources, kResources);
    RegCloseKey(key);
    RegDeleteKeyA(HKEY_LOCAL_MACHINE, kRow);
    RegDeleteKeyA(HKEY_LOCAL_MACHINE, "HARDWARE\\UEFI\\ESRT");
    RegDeleteKeyA(HKEY_LOCAL_MACHINE, "HARDWARE\\UEFI");
}

}  // namespace
