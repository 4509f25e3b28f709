// quorlin types: the structure types of a table, with counts and titles.
#include "Tools/quorlin/Types.h"

#include <optional>

#include "Packages/Format/Structures.h"
#include "Sources/Types.h"
#include "Tools/quorlin/Commands.h"
#include "Tools/quorlin/Formats.h"

namespace {

constexpr Column_t kColumns[] = {
    {"type",    "Type" },
    {"count",   "Count"},
    {"title",   "Title"},
    {"decoded", ""     },
};
constexpr List_t kList = {.name = "types", .columns = kColumns};

int ListTypes(ClTable& table, ClWriter& writer) {
    uint32_t counts[256] = {};
    for (const TableStructure_t& structure : ClWalk(table.Bytes())) counts[structure.Type()]++;
    // A decoder titles the first structure of its type, or none.
    std::optional<std::string> titles[256];
    VisitStructures(table.Package(), AllTypes(true), [&](const Structure_t& structure) {
        if (!structure.isUndecoded) titles[structure.type] = structure.title;
        return false;
    });
    for (unsigned type = 0; type < 256; type++) {
        if (counts[type] == 0) continue;
        const bool isDecoded = titles[type].has_value();
        writer.Row({type, counts[type],
                    isDecoded ? std::string_view(*titles[type]) : NameOfType(static_cast<uint8_t>(type)), isDecoded});
    }
    return kExitDone;
}

}  // namespace

constexpr Command_t kTypesCommand = {
    .name = "types",
    .summary = "the structure types of a table, with counts",
    .description = "Lists the structure types of a table, with their counts and titles.",
    .footer =
        "Example: quorlin types --image table.bin\n"
        "Exit codes: 0 done, 1 no table or an unreadable one, 2 bad usage.",
    .trouble = kExitNoTable,
    .make = MakeCommand<ClListCommand<ListTypes, kList, kTypesCommand>>,
};
