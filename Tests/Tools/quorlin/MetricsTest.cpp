// One machine for Prometheus.
#include <gtest/gtest.h>

#include <filesystem>

#include "Tests/Support/Program.h"
#include "Tests/Support/Structures.h"

namespace {

namespace fs = std::filesystem;

std::string MetricsOf(const std::string& image) {
    const ProgramRun_t run = RunQuorlin("metrics --image " + image);
    EXPECT_EQ(run.exitCode, 0) << image << run.errors;
    return run.output;
}

ClStructureBuilder Module(uint16_t handle, uint16_t size, uint16_t speed, const std::string& slot) {
    return ClStructureBuilder(17, 0x28, handle).Word(0x0C, size).Word(0x20, speed).String(0x10, slot);
}

// Texts that need an escape or a mend, the same name and handle of several slots, empty ones, and numbers that
// aren't known.
constexpr char kText[] =
    R"(# HELP quorlin_firmware_info The firmware.
# TYPE quorlin_firmware_info gauge
quorlin_firmware_info{vendor="a\"b\\c d",version="caf)"
    "\xC3\xA9\xEF\xBF\xBD"
    R"(",release="5.27",release_date=""} 1
# HELP quorlin_processor_sockets Sockets for processors, with or without one.
# TYPE quorlin_processor_sockets gauge
quorlin_processor_sockets 2
# HELP quorlin_processor_cores Cores of the processor in a socket.
# TYPE quorlin_processor_cores gauge
quorlin_processor_cores{socket="CPU",handle="0400h"} 300
# HELP quorlin_processor_boot_speed_hertz Speed at which the processor was started.
# TYPE quorlin_processor_boot_speed_hertz gauge
quorlin_processor_boot_speed_hertz{socket="CPU",handle="0400h"} 65535000000
# HELP quorlin_processor_info The processor in a socket.
# TYPE quorlin_processor_info gauge
quorlin_processor_info{socket="CPU",handle="0400h",manufacturer="",version="X",family=""} 1
# HELP quorlin_memory_slots Slots for memory modules, with or without one.
# TYPE quorlin_memory_slots gauge
quorlin_memory_slots 6
# HELP quorlin_memory_module_size_bytes Size of the module in a slot.
# TYPE quorlin_memory_module_size_bytes gauge
quorlin_memory_module_size_bytes{slot="A",bank="",handle="1100h-2"} 17179869184
quorlin_memory_module_size_bytes{slot="A",bank="",handle="1100h-3"} 1048576
quorlin_memory_module_size_bytes{slot="A",bank="B",handle="1101h"} 17179869184
# HELP quorlin_memory_module_configured_speed_transfers_per_second Speed at which the module in a slot runs.
# TYPE quorlin_memory_module_configured_speed_transfers_per_second gauge
quorlin_memory_module_configured_speed_transfers_per_second{slot="A",bank="",handle="1100h-2"} 4800000000
quorlin_memory_module_configured_speed_transfers_per_second{slot="A",bank="",handle="1100h-4"} 4800000000
# HELP quorlin_memory_module_info The module in a slot.
# TYPE quorlin_memory_module_info gauge
quorlin_memory_module_info{slot="A",bank="B",handle="1101h",type="DDR5",form_factor="DIMM",manufacturer="M",)"
    R"(part_number="P"} 1
# HELP quorlin_findings What is wrong with the SMBIOS table, by the rules of quorlin check.
# TYPE quorlin_findings gauge
quorlin_findings{rule="QR0101",severity="error"} 0
)";

TEST(Metrics, OfAMachine) {
    const std::string image = WriteFile(
        "metrics.bin", DumpOf(TableOf({
                                  ClStructureBuilder(0, 0x1A)
                                      .Bytes(0x14, {5, 27, 255, 255})
                                      .String(4, "a\"b\\c\nd ")
                                      .String(5, "caf\xC3\xA9\xFF"),
                                  ClStructureBuilder(4, 0x30, 0x400)
                                      .Byte(5, 3)
                                      .Word(0x16, 0xFFFF)
                                      .Byte(0x18, 0x41)
                                      .Byte(0x23, 0xFF)
                                      .Word(0x2A, 300)
                                      .String(4, "CPU")
                                      .String(7, "Default string")
                                      .String(0x10, "X")
                                      .String(0x20, "SECRET"),
                                  ClStructureBuilder(4, 0x30, 0x401).Byte(5, 3).String(4, "CPU"),
                                  Module(0x1100, 0, 0, "A"),
                                  Module(0x1100, 16384, 4800, "A"),
                                  Module(0x1100, 1, 0, "A"),
                                  Module(0x1101, 16384, 0, "A")
                                      .Bytes(0x0E, {9})
                                      .Byte(0x12, 0x22)
                                      .String(0x11, "B")
                                      .String(0x17, "M")
                                      .String(0x18, "SECRET")
                                      .String(0x19, "SECRET")
                                      .String(0x1A, "P"),
                                  Module(0x1100, 0xFFFF, 4800, "A"),
                                  Module(0x1102, 0, 0, "A"),
                              }),
                              3, 4, 32));
    const std::string text = MetricsOf(image);
    EXPECT_EQ(text.substr(0, sizeof kText - 1), kText);
    // Three handles that an earlier structure has.
    EXPECT_NE(text.find("\nquorlin_findings{rule=\"QR0205\",severity=\"error\"} 3\n"), text.npos) << text;
}

constexpr char kOldText[] =
    R"(# HELP quorlin_memory_installed_bytes Size of all memory modules.
# TYPE quorlin_memory_installed_bytes gauge
quorlin_memory_installed_bytes 134217728
# HELP quorlin_memory_slots Slots for memory modules, with or without one.
# TYPE quorlin_memory_slots gauge
quorlin_memory_slots 2
# HELP quorlin_memory_module_size_bytes Size of the module in a slot.
# TYPE quorlin_memory_module_size_bytes gauge
quorlin_memory_module_size_bytes{slot="S",bank="",handle="0001h"} 134217728
# HELP quorlin_findings)";

TEST(Metrics, OfOthers) {
    const std::string text = RunQuorlin("metrics --sample").output;
    for (const char* line : {"quorlin_memory_slots 12\n", "quorlin_processor_sockets 4\n"})
        EXPECT_NE(text.find(line), text.npos) << line;
    EXPECT_EQ(text.find("HV24"), text.npos) << "a serial number";
    // The size of one module isn't known.
    EXPECT_EQ(text.find("quorlin_memory_installed_bytes"), text.npos);
    // Tables from before 2.1 have other modules.
    const std::string old =
        WriteFile("old-metrics.bin", DumpOf(TableOf({ClStructureBuilder(6, 12, 1).Byte(9, 7).String(4, "S"),
                                                     ClStructureBuilder(6, 12, 2).Byte(9, 0x7F)}),
                                            2, 0, 32));
    EXPECT_EQ(MetricsOf(old).substr(0, sizeof kOldText - 1), kOldText);
}

// A file is replaced as a whole, and stays as it was where there is no table.
TEST(Metrics, ReplaceAFile) {
    const std::string file = testing::TempDir() + "quorlin.prom", out = " --out " + file;
    fs::remove(file);
    EXPECT_EQ(RunQuorlin("metrics --sample --out -").output, RunQuorlin("metrics --sample").output);
    for (const std::string& before : {std::string(), std::string(100000, 'x')}) {
        if (!before.empty()) WriteFile("quorlin.prom", {before.begin(), before.end()});
        EXPECT_EQ(RunQuorlin("metrics --sample" + out).output, "");
        EXPECT_EQ(ReadWholeFile(file), RunQuorlin("metrics --sample").output);
    }
    EXPECT_EQ(RunQuorlin("metrics --image " + file + ".none" + out).exitCode, 1);
    EXPECT_EQ(ReadWholeFile(file), RunQuorlin("metrics --sample").output);
    const ProgramRun_t run = RunQuorlin("metrics --sample --out " + testing::TempDir());
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_NE(run.errors.find("is no plain file"), run.errors.npos) << run.errors;
    EXPECT_EQ(RunQuorlin("metrics --sample --image " + file).exitCode, 2);
    EXPECT_EQ(RunQuorlin("metrics --image " + file + " --image " + file).exitCode, 2);
}

}  // namespace
