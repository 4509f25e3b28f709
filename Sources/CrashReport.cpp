#include "Sources/CrashReport.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <iterator>

namespace {

struct Cause_t {
    uint32_t code;
    const char* text;
};

constexpr Cause_t kCauses[] = {
    {0x80000002, "EXCEPTION_DATATYPE_MISALIGNMENT"   },
    {0x80000003, "EXCEPTION_BREAKPOINT"              },
    {0x80000004, "EXCEPTION_SINGLE_STEP"             },
    {0xC0000005, "EXCEPTION_ACCESS_VIOLATION"        },
    {0xC0000006, "EXCEPTION_IN_PAGE_ERROR"           },
    {0xC000001D, "EXCEPTION_ILLEGAL_INSTRUCTION"     },
    {0xC0000025, "EXCEPTION_NONCONTINUABLE_EXCEPTION"},
    {0xC0000026, "EXCEPTION_INVALID_DISPOSITION"     },
    {0xC000008C, "EXCEPTION_ARRAY_BOUNDS_EXCEEDED"   },
    {0xC000008D, "EXCEPTION_FLT_DENORMAL_OPERAND"    },
    {0xC000008E, "EXCEPTION_FLT_DIVIDE_BY_ZERO"      },
    {0xC000008F, "EXCEPTION_FLT_INEXACT_RESULT"      },
    {0xC0000090, "EXCEPTION_FLT_INVALID_OPERATION"   },
    {0xC0000091, "EXCEPTION_FLT_OVERFLOW"            },
    {0xC0000092, "EXCEPTION_FLT_STACK_CHECK"         },
    {0xC0000093, "EXCEPTION_FLT_UNDERFLOW"           },
    {0xC0000094, "EXCEPTION_INT_DIVIDE_BY_ZERO"      },
    {0xC0000095, "EXCEPTION_INT_OVERFLOW"            },
    {0xC0000096, "EXCEPTION_PRIV_INSTRUCTION"        },
    {0xC00000FD, "EXCEPTION_STACK_OVERFLOW"          },
    {0x40010005, "DBG_CONTROL_C (WTF!)"              },
};

void PrintCause(uint32_t code) {
    const auto* cause =
        std::find_if(std::begin(kCauses), std::end(kCauses), [code](const Cause_t& each) { return each.code == code; });
    if (cause != std::end(kCauses)) {
        std::printf(" Cause: %s", cause->text);
    } else {
        std::printf(" Cause: %08x", static_cast<unsigned>(code));
    }
}

// A word of the exception's information; 0 for one that the record doesn't have.
unsigned long long Information(const EXCEPTION_RECORD& record, uint32_t index) {
    return index < record.NumberParameters && index < EXCEPTION_MAXIMUM_PARAMETERS ? record.ExceptionInformation[index]
                                                                                   : 0;
}

void PrintAccess(const EXCEPTION_RECORD& record) {
    const unsigned long long address = Information(record, 1);
    switch (Information(record, 0)) {
        case 0: std::printf(" Attempted to read from: 0x%08llx", address); break;
        case 1: std::printf(" Attempted to write to: 0x%08llx", address); break;
        case 8: std::printf(" Data Execution Prevention (DEP) at: 0x%08llx", address); break;
        default: std::printf(" Unknown access violation at: 0x%08llx", address); break;
    }
}

}  // namespace

LONG WINAPI ReportUnhandledException(EXCEPTION_POINTERS* pointers) {
    const EXCEPTION_RECORD& record = *pointers->ExceptionRecord;
    const uint32_t code = record.ExceptionCode;
    std::printf("\n***EXCEPTION HANDLING START***\n");
    // As Windows' own form of a pointer, which other systems' %p doesn't give.
    std::printf(" Exception at address: 0x%016llX",
                static_cast<unsigned long long>(reinterpret_cast<uintptr_t>(record.ExceptionAddress)));
    PrintCause(code);
    if (code == EXCEPTION_ACCESS_VIOLATION || code == EXCEPTION_IN_PAGE_ERROR) PrintAccess(record);
    if (code == EXCEPTION_IN_PAGE_ERROR) std::printf(" NTSTATUS: 0x%08llx", Information(record, 2));
    std::printf("\n***EXCEPTION HANDLING END***\n");
    // The process is about to end, and the system doesn't flush for it.
    std::fflush(stdout);
    return EXCEPTION_CONTINUE_SEARCH;
}

void InstallCrashReport() { SetUnhandledExceptionFilter(ReportUnhandledException); }
