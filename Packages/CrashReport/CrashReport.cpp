#include "Packages/CrashReport/CrashReport.h"

#include <algorithm>
#include <cstdarg>
#include <cstdint>
#include <iterator>

#include "Packages/OS/OS.h"

namespace {

struct Cause_t {
    uint32_t code;
    char text[36];
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

// The text of the report, on the stack, because nothing may be allocated after a crash.
class ClReport {
  public:
    [[gnu::format(printf, 2, 3)]] void Print(const char* format, ...) {
        va_list arguments;
        va_start(arguments, format);
        const int32_t length = os_vsnprintf(m_text + m_length, sizeof m_text - m_length, format, arguments);
        va_end(arguments);
        if (length > 0) m_length += static_cast<size_t>(length);
    }
    void Write() const { os_WriteCrashText(m_text, m_length); }

  private:
    char m_text[512] = "";
    size_t m_length = 0;
};

void PrintCause(ClReport* report, uint32_t code) {
    const auto* cause =
        std::find_if(std::begin(kCauses), std::end(kCauses), [code](const Cause_t& each) { return each.code == code; });
    if (cause != std::end(kCauses))
        report->Print(" Cause: %s", cause->text);
    else
        report->Print(" Cause: %08x", static_cast<unsigned>(code));
}

void PrintAccess(ClReport* report, const Fault_t& fault) {
    const unsigned long long address = fault.Information[1];
    switch (fault.Information[0]) {
        case 0: report->Print(" Attempted to read from: 0x%08llx", address); break;
        case 1: report->Print(" Attempted to write to: 0x%08llx", address); break;
        case 8: report->Print(" Data Execution Prevention (DEP) at: 0x%08llx", address); break;
        default: report->Print(" Unknown access violation at: 0x%08llx", address); break;
    }
}

}  // namespace

int32_t ReportUnhandledException(const Fault_t& fault) {
    ClReport report;
    report.Print("\n***EXCEPTION HANDLING START***\n");
    // The form of Windows' %p, which other systems' %p doesn't have.
    report.Print(" Exception at address: 0x%016llX", static_cast<unsigned long long>(fault.Address));
    PrintCause(&report, fault.Code);
    if (fault.Code == kFaultAccessViolation || fault.Code == kFaultPageError) PrintAccess(&report, fault);
    if (fault.Code == kFaultPageError)
        report.Print(" NTSTATUS: 0x%08llx", static_cast<unsigned long long>(fault.Information[2]));
    report.Print("\n***EXCEPTION HANDLING END***\n");
    report.Write();
    return 0;
}

void InstallCrashReport() { os_SetCrashFilter(ReportUnhandledException); }
