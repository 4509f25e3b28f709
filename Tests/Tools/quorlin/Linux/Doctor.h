// A run of doctor on a machine whose devices and tables are files.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <map>
#include <optional>
#include <sstream>

#include "Tests/Support/Linux/Processes.h"
#include "Tests/Support/Structures.h"

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

inline Diagnosis_t Diagnose(const std::function<void()>& prepare = [] {}) {
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
