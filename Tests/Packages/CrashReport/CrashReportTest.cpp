// The report of an unhandled exception: its text by code and access.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <string>

#include "Packages/CrashReport/CrashReport.h"

namespace {

std::string Report(uint32_t code, std::initializer_list<uint64_t> information) {
    Fault_t fault = {code, 0x1234, {}};
    std::copy(information.begin(), information.end(), fault.Information);
    testing::internal::CaptureStdout();
    EXPECT_EQ(ReportUnhandledException(fault), 0);
    return testing::internal::GetCapturedStdout();
}

// What is between the address and the last frame line.
std::string Body(const std::string& report) {
    const size_t cause = report.find(" Cause: ");
    const size_t end = report.find("\n***EXCEPTION HANDLING END***\n");
    return cause == std::string::npos || end == std::string::npos ? report : report.substr(cause, end - cause);
}

}  // namespace

TEST(CrashReport, TellsTheCause) {
    const struct {
        uint32_t code;
        std::string cause;
    } kCauses[] = {
        {0x80000002, "EXCEPTION_DATATYPE_MISALIGNMENT"},
        {0xC0000094, "EXCEPTION_INT_DIVIDE_BY_ZERO"   },
        {0xC00000FD, "EXCEPTION_STACK_OVERFLOW"       },
        {0x40010005, "DBG_CONTROL_C (WTF!)"           },
        {0xE06D7363, "e06d7363"                       },
        {0x00000001, "00000001"                       },
    };
    for (const auto& [code, cause] : kCauses) EXPECT_EQ(Body(Report(code, {1, 2, 3})), " Cause: " + cause);
}

TEST(CrashReport, TellsTheAccess) {
    const struct {
        uint32_t code;
        std::initializer_list<uint64_t> information;
        std::string text;
    } kAccesses[] = {
        {0xC0000005, {0, 0},              "ACCESS_VIOLATION Attempted to read from: 0x00000000"                  },
        {0xC0000005, {1, 0x7FFE12345678}, "ACCESS_VIOLATION Attempted to write to: 0x7ffe12345678"               },
        {0xC0000005, {8, 16},             "ACCESS_VIOLATION Data Execution Prevention (DEP) at: 0x00000010"      },
        {0xC0000005, {2, 16, 9},          "ACCESS_VIOLATION Unknown access violation at: 0x00000010"             },
        {0xC0000006, {0, 16},             "IN_PAGE_ERROR Attempted to read from: 0x00000010 NTSTATUS: 0x00000000"},
        {0xC0000006, {1, 16, 0xC0000011}, "IN_PAGE_ERROR Attempted to write to: 0x00000010 NTSTATUS: 0xc0000011" },
    };
    for (const auto& c : kAccesses) EXPECT_EQ(Body(Report(c.code, c.information)), " Cause: EXCEPTION_" + c.text);
}

TEST(CrashReport, IsBetweenItsFrameLines) {
    EXPECT_EQ(Report(0x80000003, {}),
              "\n***EXCEPTION HANDLING START***\n"
              " Exception at address: 0x0000000000001234 Cause: EXCEPTION_BREAKPOINT"
              "\n***EXCEPTION HANDLING END***\n");
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
