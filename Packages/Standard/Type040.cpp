// Additional Information.
#include "Packages/Standard/Rows.h"

namespace {

constexpr FieldRow_t kAdditionalInformationEntries[] = {
    {Byte(0x00), "Entry Length", Count, "2.6"},
    {Word(0x01), "Referenced Handle", HandleOf(), "2.6"},
    {Byte(0x03), "Referenced Offset", Number(kByte), "2.6"},
    {Byte(0x04), "String", Text, "2.6"},
    {Rest(0x05), "Value", Raw, "2.6"},
};

constexpr FieldRow_t kFields[] = {
    {Byte(0x04), "Number of Additional Information entries (n)", Count, "2.6"},
    {List(0x05), "Additional Information entries", RecordsWithLength(kAdditionalInformationEntries, 0, 0), "2.6"},
};

}  // namespace

STANDARD_TYPE(40, "Additional Information", "2.6", kFields)
