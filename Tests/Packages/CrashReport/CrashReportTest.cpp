// The report of an unhandled exception: its text by code and access.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <string>

#include "Packages/CrashReport/CrashReport.h"

TEST(CrashReport, TellsTheCauseAndTheAccess) {
    const struct {
        uint32_t code;
        uint64_t information[3];
        std::string cause;
    } kCases[] = {
        {0x80000003, {1, 2, 3},              "EXCEPTION_BREAKPOINT"                                                           },
        {0xC00000FD, {0, 0, 0},              "EXCEPTION_STACK_OVERFLOW"                                                       },
        {0x40010005, {0, 0, 0},              "DBG_CONTROL_C (WTF!)"                                                           },
        {0xE06D7363, {0, 0, 0},              "e06d7363"                                                                       },
        {0x00000001, {0, 0, 0},              "00000001"                                                                       },
        {0xC0000005, {0, 0, 0},              "EXCEPTION_ACCESS_VIOLATION Attempted to read from: 0x00000000"                  },
        {0xC0000005, {1, 0x7FFE12345678, 0}, "EXCEPTION_ACCESS_VIOLATION Attempted to write to: 0x7ffe12345678"               },
        {0xC0000005, {8, 16, 0},             "EXCEPTION_ACCESS_VIOLATION Data Execution Prevention (DEP) at: 0x00000010"      },
        {0xC0000005, {2, 16, 9},             "EXCEPTION_ACCESS_VIOLATION Unknown access violation at: 0x00000010"             },
        {0xC0000006, {0, 16, 0},             "EXCEPTION_IN_PAGE_ERROR Attempted to read from: 0x00000010 NTSTATUS: 0x00000000"},
        {0xC0000006,
         {1, 16, 0xC0000011},
         "EXCEPTION_IN_PAGE_ERROR Attempted to write to: 0x00000010 NTSTATUS: 0xc0000011"                                     },
    };
    for (const auto& c : kCases) {
        Fault_t fault = {c.code, 0x1234, {}};
        std::ranges::copy(c.information, fault.Information);
        testing::internal::CaptureStdout();
        EXPECT_EQ(ReportUnhandledException(fault), 0);
        EXPECT_EQ(testing::internal::GetCapturedStdout(),
                  "\n***EXCEPTION HANDLING START***\n"
                  " Exception at address: 0x0000000000001234 Cause: " +
                      c.cause + "\n***EXCEPTION HANDLING END***\n");
    }
}

// An illegal instruction, because that signal is one that no sanitizer takes.
TEST(CrashReport, IsPrintedBeforeTheProcessDies) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_DEATH(
        {
            InstallCrashReport();
            InstallCrashReport();
            dup2(2, 1);  // a death test only sees the error stream
            __builtin_trap();
        },
        "START.*\n.*Cause: EXCEPTION_ILLEGAL_INSTRUCTION\n.*END");
}
