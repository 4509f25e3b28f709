// The report of an unhandled exception: its text by code and access.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <string>

#include "Packages/CrashReport/CrashReport.h"

TEST(CrashReport, TellsTheCauseAndTheAccess) {
    constexpr char kAccess[] = "EXCEPTION_ACCESS_VIOLATION", kPage[] = "EXCEPTION_IN_PAGE_ERROR";
    constexpr uint64_t kHigh = 0x7FFE12345678, kEnd = 0xC0000011;
    const struct {
        uint32_t code;
        uint64_t information[3];
        const char *cause, *access;
    } kCases[] = {
        {0x80000003, {1, 2, 3},     "EXCEPTION_BREAKPOINT", ""                                                        },
        {0x40010005, {0, 0, 0},     "DBG_CONTROL_C (WTF!)", ""                                                        },
        {0xE06D7363, {0, 0, 0},     "e06d7363",             ""                                                        },
        {0x00000001, {0, 0, 0},     "00000001",             ""                                                        },
        {0xC0000005, {0, 0, 0},     kAccess,                " Attempted to read from: 0x00000000"                     },
        {0xC0000005, {1, kHigh, 0}, kAccess,                " Attempted to write to: 0x7ffe12345678"                  },
        {0xC0000005, {8, 16, 0},    kAccess,                " Data Execution Prevention (DEP) at: 0x00000010"         },
        {0xC0000005, {2, 16, 9},    kAccess,                " Unknown access violation at: 0x00000010"                },
        {0xC0000006, {0, 16, 0},    kPage,                  " Attempted to read from: 0x00000010 NTSTATUS: 0x00000000"},
        {0xC0000006, {1, 16, kEnd}, kPage,                  " Attempted to write to: 0x00000010 NTSTATUS: 0xc0000011" },
    };
    for (const auto& c : kCases) {
        Fault_t fault = {c.code, 0x1234, {}};
        std::ranges::copy(c.information, fault.Information);
        testing::internal::CaptureStdout();
        EXPECT_EQ(ReportUnhandledException(fault), 0);
        EXPECT_EQ(testing::internal::GetCapturedStdout(),
                  std::string("\n***EXCEPTION HANDLING START***\n Exception at address: 0x0000000000001234 Cause: ") +
                      c.cause + c.access + "\n***EXCEPTION HANDLING END***\n");
    }
}

// An illegal instruction or a breakpoint, whichever the compiler takes for a trap: no sanitizer handles their signals.
TEST(CrashReport, IsPrintedBeforeTheProcessDies) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_DEATH(
        {
            InstallCrashReport();
            InstallCrashReport();
            dup2(2, 1);  // a death test only sees the error stream
            __builtin_trap();
        },
        "START.*\n.*Cause: EXCEPTION_\\w+\n.*END");
}
