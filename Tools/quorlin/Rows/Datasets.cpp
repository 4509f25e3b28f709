#include "Tools/quorlin/Rows/Datasets.h"

#include <span>

#include "Packages/Standard/Key.h"
#include "Packages/Standard/Standard.h"

namespace {

using enum ColumnType_t;

struct Column_t {
    char name[29];
    ColumnType_t type;
};
constexpr Column_t kMachineColumns[] = {
#define COLUMN(name, type, value) {#name, type},
#include "Tools/quorlin/Rows/Machines.inc"
#undef COLUMN
};
constexpr Column_t kStringColumns[] = {
    {"record", kInteger},
    {"handle", kInteger},
    {"type",   kInteger},
    {"number", kInteger},
    {"string", kText   },
};
constexpr Column_t kFindingColumns[] = {
    {"record",   kInteger},
    {"rule",     kText   },
    {"severity", kText   },
    {"handle",   kInteger},
    {"type",     kInteger},
    {"message",  kText   },
};
constexpr Column_t kRejectColumns[] = {
    {"source", kText},
    {"reason", kText},
};

std::span<const Column_t> FixedColumns(size_t dataset) {
    switch (dataset) {
        case kMachines: return kMachineColumns;
        case kStrings: return kStringColumns;
        case kFindings: return kFindingColumns;
        default: return kRejectColumns;
    }
}

// Whether a number may have all 64 bits. Derived ones may be as large as what they come from.
bool MayBeLarge(const StandardType_t& type, const StandardField_t& field) {
    if (field.isSigned) return false;
    if (field.sources == 0) return field.width == sizeof(uint64_t) && !field.IsPart();
    bool isLarge = false;
    for (size_t source = 0; source < field.sources; source++)
        isLarge = isLarge || MayBeLarge(type, type.TopFields()[field.from[source]]);
    return isLarge;
}

ColumnType_t TypeOf(const StandardType_t& type, const StandardField_t& field) {
    if (field.kind == FactKind_t::kHandle) return kInteger;
    if (field.kind != FactKind_t::kNumber) return kText;
    return MayBeLarge(type, field) ? kUnsigned : kInteger;
}

}  // namespace

bool HasDataset(uint8_t type) { return type < kMachines && IsStandardType(type); }

std::vector<size_t> AllDatasets() {
    std::vector<size_t> all = {kMachines, kStrings, kFindings, kRejects};
    for (uint8_t type = 0; type < kMachines; type++)
        if (HasDataset(type)) all.push_back(type);
    return all;
}

std::string NameOfDataset(size_t dataset) {
    switch (dataset) {
        case kMachines: return "machines";
        case kStrings: return "strings";
        case kFindings: return "findings";
        case kRejects: return "rejects";
        default: break;
    }
    std::string name;
    PutKey(FindStandardType(static_cast<uint8_t>(dataset)).Name(), [&](char character) { name += character; });
    return name;
}

std::string_view SqlName(ColumnType_t type) {
    static constexpr char kNames[][8] = {"VARCHAR", "BIGINT", "UBIGINT"};
    return kNames[static_cast<size_t>(type)];
}

std::vector<DatasetColumn_t> ColumnsOf(size_t dataset) {
    std::vector<DatasetColumn_t> columns;
    if (dataset >= kMachines) {
        for (const Column_t& column : FixedColumns(dataset)) columns.push_back({column.name, column.type});
        return columns;
    }
    for (const char* name : {"record", "handle", "instance"}) columns.push_back({name, kInteger});
    const StandardType_t type = FindStandardType(static_cast<uint8_t>(dataset));
    for (const StandardField_t& field : type.TopFields())
        columns.push_back({std::string(type.Text(field.key)), TypeOf(type, field)});
    return columns;
}
