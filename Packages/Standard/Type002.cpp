// Baseboard (or Module) Information.
#include "Packages/Standard/Rows.h"
#include "Packages/Standard/SharedRows.h"

namespace {

constexpr BitRow_t kBaseboardFeatureFlags[] = {
    {0, "hosting board", "2.3.2"}, {1, "requires at least one daughter board or auxiliary card", "2.3.2"},
    {2, "removable", "2.3.2"},     {3, "replaceable", "2.3.2"},
    {4, "hot swappable", "2.3.2"},
};

constexpr FieldRow_t kContainedObjectHandles[] = {
    {Word(0x00), "Contained Object Handle", HandleOf(), "2.3.2"},
};

constexpr FieldRow_t kFields[] = {
    {Byte(0x04), "Manufacturer", Text, "2.0"},
    {Byte(0x05), "Product", Text, "2.0"},
    {Byte(0x06), "Version", Text, "2.0"},
    {Byte(0x07), "Serial Number", Text, "2.0"},
    {Byte(0x08), "Asset Tag", Text, "2.3.2"},
    {Byte(0x09), "Feature Flags", Flags(kBaseboardFeatureFlags), "2.3.2"},
    {Byte(0x0A), "Location in Chassis", Text, "2.3.2"},
    {Word(0x0B), "Chassis Handle", HandleOf(3), "2.3.2"},
    {Byte(0x0D), "Board Type", Code(kBoardType), "2.3.2"},
    {Byte(0x0E), "Number of Contained Object Handles (n)", Count, "2.3.2"},
    {List(0x0F), "Contained Object Handles", Records(kContainedObjectHandles, 2), "2.3.2"},
};

}  // namespace

STANDARD_TYPE(2, "Baseboard (or Module) Information", "2.0", kFields)
