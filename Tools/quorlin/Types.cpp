// quorlin types: the structure types of a table, with counts and titles.
#include <optional>

#include "Packages/Format/Structures.h"
#include "Tools/quorlin/Commands.h"
#include "Tools/quorlin/Csv.h"
#include "Tools/quorlin/Json.h"
#include "Tools/quorlin/Model.h"
#include "Tools/quorlin/Standard.h"
#include "Tools/quorlin/Text.h"

constexpr Usage_t kTypesUsage = {
    "quorlin types",
    "Lists the structure types of a table, with their counts and titles.",
    "Example: quorlin types --image table.bin\n"
    "Exit codes: 0 done, 1 no table or an unreadable one, 2 bad usage.",
    kExitNoTable,
};

namespace {

constexpr Format_t kFormats[] = {Format_t::kText, Format_t::kJson, Format_t::kNdjson, Format_t::kCsv};

struct TypeCount_t {
    uint8_t type;
    uint32_t count;
    std::string title;  // that of the type's decoder, or the standard's name where a decoder gives none
    bool hasItems;
};

std::vector<TypeCount_t> CountTypes(ClTable& table) {
    uint32_t counts[256] = {};
    for (const TableStructure_t& structure : ClWalk(table.Bytes())) counts[structure.Type()]++;
    // A decoder titles the first structure of its type, or none.
    std::optional<std::string> titles[256];
    VisitStructures(
        table.Package(), AllTypes(true),
        [&](const Structure_t& structure) {
            if (!structure.isUndecoded) titles[structure.type] = structure.title;
        },
        Which_t::kFirstOfType);
    std::vector<TypeCount_t> types;
    for (unsigned type = 0; type < 256; type++) {
        if (counts[type] == 0) continue;
        const bool hasItems = titles[type].has_value();
        const std::string title = hasItems ? *titles[type] : std::string(NameOfType(static_cast<uint8_t>(type)));
        types.push_back({static_cast<uint8_t>(type), counts[type], title, hasItems});
    }
    return types;
}

std::string PadLeft(const std::string& text, size_t width) {
    return text.size() < width ? std::string(width - text.size(), ' ') + text : text;
}

void ListText(const std::vector<TypeCount_t>& types, ClOutput& output) {
    output << "Type  Count  Title\n";
    for (const TypeCount_t& row : types)
        output << PadLeft(std::to_string(row.type), 4) << "  " << PadLeft(std::to_string(row.count), 5) << "  "
               << Printable(row.title) << "\n";
}

void ListCsv(const std::vector<TypeCount_t>& types, ClCsv& csv) {
    csv.Head({"type", "count", "title", "decoded"});
    for (const TypeCount_t& row : types)
        csv.Row({std::to_string(row.type), std::to_string(row.count), row.title, row.hasItems ? "true" : "false"});
}

void ListJson(const std::vector<TypeCount_t>& types, const ClTable& table, ClJson& json) {
    json.BeginObject();
    WriteTableMembers(json, table);
    json.Name("types");
    json.BeginList();
    for (const TypeCount_t& row : types) {
        json.BeginObject();
        json.Member("type", row.type);
        json.Member("count", row.count);
        json.Member("title", row.title);
        json.Name("decoded");
        json.Truth(row.hasItems);
        json.FinishObject();
    }
    json.FinishList();
    json.FinishObject();
    json.Finish();
}

}  // namespace

int RunTypes(const Arguments_t& arguments) {
    Source_t source;
    std::string formatName = "text";
    std::vector<Option_t> options = source.FleetOptions();
    options.push_back({"--format", "FORMAT", "text (for people), json, ndjson or csv", &formatName});
    int exitCode = kExitDone;
    Format_t format;
    if (!ParseCommandLine(kTypesUsage, options, arguments, &exitCode) || !source.Check(kTypesUsage, &exitCode) ||
        !ChooseFormat(kTypesUsage, formatName, kFormats, &format, &exitCode) ||
        !CheckFleet(kTypesUsage, source, format, &exitCode))
        return exitCode;
    ClOutput output;
    ClJson json(output);
    ClCsv csv(output, source.IsFleet());
    exitCode = RunOnTables(source, format, kTypesUsage.trouble, json, [&](ClTable& table) {
        const std::vector<TypeCount_t> types = CountTypes(table);
        if (format == Format_t::kText)
            ListText(types, output);
        else if (format == Format_t::kCsv)
            csv.SetImage(table.Name()), ListCsv(types, csv);
        else
            ListJson(types, table, json);
        return kExitDone;
    });
    return output.Finish() ? exitCode : kTypesUsage.trouble;
}
