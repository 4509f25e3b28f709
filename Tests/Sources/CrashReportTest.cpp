// The report of an unhandled exception: its text by code and access, and that it reads no more than the record has.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <iterator>
#include <string>

#include "Sources/CrashReport.h"

namespace {

std::string Report(DWORD code, std::initializer_list<ULONG_PTR> information) {
    EXCEPTION_RECORD record = {};
    record.ExceptionCode = code;
    record.ExceptionAddress = reinterpret_cast<PVOID>(ULONG_PTR{0x1234});
    record.NumberParameters = static_cast<DWORD>(information.size());
    std::fill(std::begin(record.ExceptionInformation), std::end(record.ExceptionInformation), 0xEEEEEEEE);
    std::copy(information.begin(), information.end(), record.ExceptionInformation);
    EXCEPTION_POINTERS pointers = {&record, nullptr};
    testing::internal::CaptureStdout();
    EXPECT_EQ(ReportUnhandledException(&pointers), 0);
    return testing::internal::GetCapturedStdout();
}

// What stands between the frame lines, without the address, whose form is the platform's.
std::string Body(const std::string& report) {
    const size_t cause = report.find(" Cause: ");
    const size_t end = report.find("\n***EXCEPTION HANDLING END***\n");
    return cause == std::string::npos || end == std::string::npos ? report : report.substr(cause, end - cause);
}

}  // namespace

TEST(CrashReport, TellsCauseAndAccess) {
    const struct {
        DWORD code;
        std::initializer_list<ULONG_PTR> information;
        const char* body;
    } kCases[] = {
        {0x80000002, {},                  " Cause: EXCEPTION_DATATYPE_MISALIGNMENT"                                          },
        {0x80000003, {},                  " Cause: EXCEPTION_BREAKPOINT"                                                     },
        {0xC000001D, {},                  " Cause: EXCEPTION_ILLEGAL_INSTRUCTION"                                            },
        {0xC0000094, {1, 2, 3},           " Cause: EXCEPTION_INT_DIVIDE_BY_ZERO"                                             },
        {0xC00000FD, {1, 2},              " Cause: EXCEPTION_STACK_OVERFLOW"                                                 },
        {0x40010005, {},                  " Cause: DBG_CONTROL_C (WTF!)"                                                     },
        {0xE06D7363, {1, 2, 3},           " Cause: e06d7363"                                                                 },
        {0x00000001, {},                  " Cause: 00000001"                                                                 },
        {0xC0000005, {0, 0},              " Cause: EXCEPTION_ACCESS_VIOLATION Attempted to read from: 0x00000000"            },
        {0xC0000005, {1, 0x7FFE12345678}, " Cause: EXCEPTION_ACCESS_VIOLATION Attempted to write to: 0x7ffe12345678"         },
        {0xC0000005, {8, 0x10},           " Cause: EXCEPTION_ACCESS_VIOLATION Data Execution Prevention (DEP) at: 0x00000010"},
        {0xC0000005, {2, 0x10, 9},        " Cause: EXCEPTION_ACCESS_VIOLATION Unknown access violation at: 0x00000010"       },
        {0xC0000005, {},                  " Cause: EXCEPTION_ACCESS_VIOLATION Attempted to read from: 0x00000000"            },
        {0xC0000006,
         {1, 0xABC, 0xC0000011},
         " Cause: EXCEPTION_IN_PAGE_ERROR Attempted to write to: 0x00000abc NTSTATUS: 0xc0000011"                            },
        {0xC0000006,
         {0, 0xABC},
         " Cause: EXCEPTION_IN_PAGE_ERROR Attempted to read from: 0x00000abc NTSTATUS: 0x00000000"                           },
    };
    for (const auto& c : kCases) EXPECT_EQ(Body(Report(c.code, c.information)), c.body);
}

TEST(CrashReport, StandsBetweenItsFrameLines) {
    const std::string report = Report(0x80000003, {});
    const std::string head = "\n***EXCEPTION HANDLING START***\n Exception at address: 0x";
    EXPECT_EQ(report.substr(0, head.size()), head);
    EXPECT_NE(report.find("1234 Cause: "), std::string::npos);
    EXPECT_TRUE(report.ends_with("BREAKPOINT\n***EXCEPTION HANDLING END***\n"));
}

// An illegal instruction, because that signal is one that no sanitizer takes.
TEST(CrashReport, IsPrintedBeforeTheProcessDies) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_DEATH(
        {
            InstallCrashReport();
            InstallCrashReport();
            dup2(2, 1);  // a death test sees the error stream alone
            __builtin_trap();
        },
        "START.*\n.*Cause: EXCEPTION_ILLEGAL_INSTRUCTION\n.*END");
}
