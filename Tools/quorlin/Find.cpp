// quorlin find and quorlin get: items by what they say, and values by their key.
#include "Tools/quorlin/Columns.h"
#include "Tools/quorlin/Commands.h"
#include "Tools/quorlin/Csv.h"
#include "Tools/quorlin/Json.h"
#include "Tools/quorlin/Model.h"
#include "Tools/quorlin/Text.h"

constexpr Usage_t kFindUsage = {
    "quorlin find",
    "Finds the items whose key or value holds a text, in whatever case, and shows the structures they stand in.",
    "Example: quorlin find serial\n"
    "Exit codes: 0 found, 1 not found, 2 bad usage, no table or an unreadable one.",
    kExitTrouble,
};

constexpr Usage_t kGetUsage = {
    "quorlin get",
    "Prints the values of a key, one a line and nothing else.",
    "Example: quorlin get 1 \"Serial Number\"\n"
    "Exit codes: 0 done, 1 no such value, 2 bad usage, no table or an unreadable one.",
    kExitTrouble,
};

namespace {

constexpr Format_t kFindFormats[] = {Format_t::kText, Format_t::kJson, Format_t::kNdjson, Format_t::kCsv};

// An item that holds the text.
struct Hit_t {
    std::string_view group;  // empty for an item of no group
    ShownItem_t item;
};

// Calls `show` with each structure that holds the text, and its hits; returns whether there was one.
bool FindText(ClTable& table, std::span<const uint8_t> types, std::string_view text,
              const std::function<void(const Structure_t& structure, const std::vector<Hit_t>& hits)>& show) {
    bool isFound = false;
    std::vector<Hit_t> hits;
    VisitStructures(table.Package(), types, [&](const Structure_t& structure) {
        hits.clear();
        std::string_view group;
        for (size_t index = structure.firstItem; index < structure.EndItem(); index++) {
            const ShownItem_t item = structure.Item(index);
            if (item.opensGroup) group = item.key;
            if (ContainsIgnoringCase(item.key, text) || ContainsIgnoringCase(item.value, text))
                hits.push_back({group, item});
        }
        if (hits.empty()) return;
        isFound = true;
        show(structure, hits);
    });
    return isFound;
}

void ShowText(const Structure_t& structure, const std::vector<Hit_t>& hits, ClColumns& columns) {
    columns.Heading(structure.Heading().empty()
                        ? std::string(structure.title) + ", handle " + HandleText(structure.handle)
                        : structure.Heading());
    for (const Hit_t& hit : hits) columns.Pair(hit.item.key, hit.item.value);
    columns.Finish(2);
}

void ShowCsv(const Structure_t& structure, const std::vector<Hit_t>& hits, ClCsv& csv) {
    for (const Hit_t& hit : hits)
        csv.Row({std::to_string(structure.type), std::to_string(structure.handle), std::to_string(structure.instance),
                 structure.title, hit.group, hit.item.key, hit.item.value});
}

void ShowJson(const Structure_t& structure, const std::vector<Hit_t>& hits, ClJson& json) {
    for (const Hit_t& hit : hits) {
        json.BeginObject();
        WriteStructureMembers(json, structure);
        if (!hit.group.empty()) json.Member("group", hit.group);
        json.Name("item");
        json.Pair(hit.item.key, hit.item.value);
        json.FinishObject();
    }
}

}  // namespace

int RunFind(const Arguments_t& arguments) {
    Source_t source;
    std::string formatName = "text", text;
    std::vector<std::string> typeNames;
    std::vector<Option_t> options = source.FleetOptions();
    options.push_back({"text", "TEXT", "What keys or values must hold", &text, true});
    options.push_back({"--type", "TYPES", kTypeHelp, &typeNames, false, 't'});
    options.push_back({"--format", "FORMAT", "text (for people), json, ndjson or csv", &formatName});
    int exitCode = kExitDone;
    Format_t format;
    std::vector<uint8_t> types;
    if (!ParseCommandLine(kFindUsage, options, arguments, &exitCode) || !source.Check(kFindUsage, &exitCode) ||
        !ChooseFormat(kFindUsage, formatName, kFindFormats, &format, &exitCode) ||
        !CheckFleet(kFindUsage, source, format, &exitCode) || !ChooseTypes(kFindUsage, typeNames, &types, &exitCode))
        return exitCode;
    if (types.empty()) types = AllTypes(false);
    ClOutput output;
    ClJson json(output);
    ClCsv csv(output, source.IsFleet());
    bool isFound = false;
    exitCode = RunOnTables(source, format, kFindUsage.trouble, json, [&](ClTable& table) {
        const auto find = [&](const auto& show) { isFound |= FindText(table, types, text, show); };
        if (format == Format_t::kText) {
            ClColumns columns(output);
            find([&](const Structure_t& structure, const std::vector<Hit_t>& hits) {
                ShowText(structure, hits, columns);
            });
        } else if (format == Format_t::kCsv) {
            csv.SetImage(table.Name());
            csv.ItemHead();
            find([&](const Structure_t& structure, const std::vector<Hit_t>& hits) { ShowCsv(structure, hits, csv); });
        } else {
            json.BeginObject();
            WriteTableMembers(json, table);
            json.Name("hits");
            json.BeginList();
            find(
                [&](const Structure_t& structure, const std::vector<Hit_t>& hits) { ShowJson(structure, hits, json); });
            json.FinishList();
            json.FinishObject();
            json.Finish();
        }
        return kExitDone;
    });
    if (!output.Finish()) return kFindUsage.trouble;
    return exitCode == kExitDone && !isFound ? kExitNo : exitCode;
}

int RunGet(const Arguments_t& arguments) {
    Source_t source;
    std::string typeName, key, instanceName;
    std::vector<Option_t> options = source.Options();
    options.push_back({"type", "TYPE", "The structure's type, as --type takes it elsewhere", &typeName, true});
    options.push_back({"key", "KEY", "The item's key, in whatever case", &key, true});
    options.push_back({"--instance", "N", "Only the N-th structure of the type, from 1", &instanceName});
    int exitCode = kExitDone;
    std::vector<uint8_t> types;
    uint64_t instance = 0;
    if (!ParseCommandLine(kGetUsage, options, arguments, &exitCode) || !source.CheckOne(kGetUsage, &exitCode) ||
        !ChooseTypes(kGetUsage, {&typeName, 1}, &types, &exitCode))
        return exitCode;
    if (!instanceName.empty() && (!ParseNumber(instanceName, UINT32_MAX, &instance) || instance == 0)) {
        SayBadUsage(kGetUsage, "--instance: '" + instanceName + "' is no number from 1 on", &exitCode);
        return exitCode;
    }
    ClOutput output;
    exitCode = ForEachTable(source, kGetUsage.trouble, [&](ClTable& table) {
        bool isFound = false;
        VisitStructures(table.Package(), types, [&](const Structure_t& structure) {
            if (instance != 0 && structure.instance != instance) return;
            for (size_t index = structure.firstItem; index < structure.EndItem(); index++) {
                const ShownItem_t item = structure.Item(index);
                if (item.opensGroup || !EqualsIgnoringCase(item.key, Trimmed(key))) continue;
                output << Printable(item.value) << "\n";
                isFound = true;
            }
        });
        if (isFound) return kExitDone;
        SayError(table.Name(), "type " + typeName + " has no such item here; try quorlin --type " + typeName);
        return kExitNo;
    });
    return output.Finish() ? exitCode : kGetUsage.trouble;
}
