// What the architecture doesn't have is named as such, whatever the machine shows.
#include "Tests/Tools/quorlin/Linux/Doctor.h"

namespace {

TEST_F(Doctor, WhatTheArchitectureLacksIsNoFault) {
    WriteAll();
    const Diagnosis_t diagnosis = Diagnose();
    EXPECT_EQ(diagnosis.exitCode, 0);
    for (const char* thing : {"scan", "memory", "ports", "msr", "cpuid"})
        EXPECT_EQ(diagnosis.Of(thing), "architecture") << thing << "\n" << diagnosis.output;
    const std::string text = RunPrepared({QUORLIN_PROGRAM, "doctor"}).output;
    EXPECT_NE(text.find("\nI/O ports: this architecture doesn't have it\nModel-specific registers, "), text.npos)
        << text;
}

// One line, and no table from another method.
TEST(Architecture, RefusesWhatItLacks) {
    const struct {
        const char* command;
        const char* line;
    } kCases[] = {
        {"hw cpuid 0",                                    "hw cpuid: this architecture doesn't have it (status 6)"},
        {"hw cpuid 0 --cpu 0",                            "hw cpuid: this architecture doesn't have it (status 6)"},
        {"hw msr read 0x10",                              "hw msr: this architecture doesn't have it (status 6)"  },
        {"hw msr write 1 --write 0 --yes-write-hardware", "hw msr: this architecture doesn't have it (status 6)"  },
        {"hw port read 0x80 1",                           "hw port: this architecture doesn't have it (status 6)" },
        {"--method scan",                                 "this architecture has no BIOS area to scan"            },
    };
    for (const auto& c : kCases) {
        const ProgramRun_t run = RunQuorlin(c.command);
        EXPECT_EQ(run.exitCode, 1) << c.command;
        EXPECT_EQ(run.output, "") << c.command;
        EXPECT_NE(run.errors.find(c.line), run.errors.npos) << run.errors;
        EXPECT_EQ(run.errors.find('\n'), run.errors.size() - 1) << run.errors;
    }
}

}  // namespace
