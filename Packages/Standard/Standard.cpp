#include "Packages/Standard/Standard.h"

#include "Packages/Standard/Rows.h"

// The structure types of the standard, each with a file of its own.
// clang-format off
#define STANDARD_TYPES(X)                                                                                     \
    X(0) X(1) X(2) X(3) X(4) X(5) X(6) X(7) X(8) X(9) X(10) X(11) X(12) X(13) X(14) X(15) X(16) X(17) X(18)   \
    X(19) X(20) X(21) X(22) X(23) X(24) X(25) X(26) X(27) X(28) X(29) X(30) X(31) X(32) X(33) X(34) X(35)     \
    X(36) X(37) X(38) X(39) X(40) X(41) X(42) X(43) X(44) X(45) X(46) X(126) X(127)
// clang-format on

#define X(number) StandardType_t StandardType##number();
STANDARD_TYPES(X)
#undef X

namespace {

constexpr FieldRow_t kString[] = {
    {Byte(0), "String", Text, ""},
};

// What can be told of a structure without a table.
constexpr FieldRow_t kFields[] = {
    {Rest(0x04), "Data", Raw, ""},
    {List(0x04), "Strings", Strings(kString, Counted_t::kToEnd), ""},
};
constexpr StandardRow_t kVendorType = {128, "Vendor-specific Type", "", {kFields, std::size(kFields)}};
constexpr StandardRow_t kUnknownType = {47, "Unknown Type", "", {kFields, std::size(kFields)}};

}  // namespace

StandardType_t FindStandardType(uint8_t type) {
    switch (type) {
#define X(number) \
    case number: return StandardType##number();
        STANDARD_TYPES(X)
#undef X
        default: break;
    }
    StandardType_t view = type < 128 ? ViewOf<kUnknownType>() : ViewOf<kVendorType>();
    view.type = type;
    return view;
}

bool IsFactKey(std::string_view key) {
    for (unsigned type = 0; type < 256; type++) {
        const StandardType_t table = FindStandardType(static_cast<uint8_t>(type));
        for (const StandardField_t& field : table.fields)
            if (table.Text(field.key) == key) return true;
    }
    return false;
}

bool IsStandardType(uint8_t type) { return type <= 46 || type == 126 || type == 127; }
