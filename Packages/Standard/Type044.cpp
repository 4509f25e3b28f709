// Processor Additional Information.
#include "Packages/Standard/Rows.h"

namespace {

constexpr CodeRow_t kProcessorArchitecture[] = {
    {0x00, "Reserved", "3.3"},
    {0x01, "IA32 (x86)", "3.3"},
    {0x02, "x64 (x86-64, Intel64, AMD64, EM64T)", "3.3"},
    {0x03, "Intel® Itanium® architecture", "3.3"},
    {0x04, "32-bit ARM (Aarch32)", "3.3"},
    {0x05, "64-bit ARM (Aarch64)", "3.3"},
    {0x06, "32-bit RISC-V (RV32)", "3.3"},
    {0x07, "64-bit RISC-V (RV64)", "3.3"},
    {0x08, "128-bit RISC-V (RV128)", "3.3"},
    {0x09, "32-bit LoongArch (LoongArch32)", "3.6"},
    {0x0A, "64-bit LoongArch (LoongArch64)", "3.6"},
};

constexpr FieldRow_t kProcessorSpecificBlock[] = {
    {Byte(0x00), "Block Length", Count, "3.3"},
    {Byte(0x01), "Processor Type", Code(kProcessorArchitecture), "3.3"},
    {Rest(0x02), "Processor-Specific Data", Raw, "3.3"},
};

constexpr FieldRow_t kFields[] = {
    {Word(0x04), "Referenced Handle", HandleOf(4), "3.3"},
    {List(0x06), "Processor-Specific Block", RecordsWithLength(kProcessorSpecificBlock, 0, 2, Counted_t::kOne), "3.3"},
};

}  // namespace

STANDARD_TYPE(44, "Processor Additional Information", "3.3", kFields)
