// quorlin find and quorlin get: items by what they say, and values by their key.
#include "Tools/quorlin/Columns.h"
#include "Tools/quorlin/Commands.h"
#include "Tools/quorlin/Csv.h"
#include "Tools/quorlin/Json.h"
#include "Tools/quorlin/Model.h"
#include "Tools/quorlin/Text.h"

namespace {

constexpr Usage_t kFindUsage = {
    "quorlin find",
    "Finds the items whose key or value holds a text, in whatever case, and shows the structures they stand in.",
    "Example: quorlin find serial\n"
    "Exit codes: 0 found, 1 not found, 2 bad usage, no table or an unreadable one.",
};

constexpr Format_t kFindFormats[] = {Format_t::kText, Format_t::kJson, Format_t::kNdjson, Format_t::kCsv};

// An item, and where it stands.
struct Hit_t {
    const Structure_t* structure;
    std::string_view group;  // empty for an item of no group
    Item_t item;
};

std::vector<Hit_t> FindText(const ClModel& model, std::string_view text) {
    std::vector<Hit_t> hits;
    for (const Structure_t& structure : model.Structures()) {
        std::string_view group;
        for (uint32_t index = structure.firstItem; index < structure.endItem; index++) {
            const Item_t item = model.Item(index);
            if (item.opensGroup) group = item.key;
            if (ContainsIgnoringCase(item.key, text) || ContainsIgnoringCase(item.value, text))
                hits.push_back({&structure, group, item});
        }
    }
    return hits;
}

void ListText(const std::vector<Hit_t>& hits, ClOutput& output) {
    ClColumns columns(output);
    const Structure_t* structure = nullptr;
    for (const Hit_t& hit : hits) {
        if (hit.structure != structure) {
            columns.Finish(2);
            structure = hit.structure;
            columns.Heading(std::string(structure->heading) + ", handle " + HandleText(structure->handle));
        }
        columns.Pair(hit.item.key, hit.item.value);
    }
    columns.Finish(2);
}

void ListCsv(const std::vector<Hit_t>& hits, ClOutput& output) {
    ClCsv csv(output);
    csv.Row({"type", "handle", "instance", "title", "group", "key", "value"});
    for (const Hit_t& hit : hits)
        csv.Row({std::to_string(hit.structure->type), std::to_string(hit.structure->handle),
                 std::to_string(hit.structure->instance), hit.structure->title, hit.group, hit.item.key,
                 hit.item.value});
}

void ListJson(const std::vector<Hit_t>& hits, const ClTable& table, ClJson& json) {
    json.BeginObject();
    WriteTableMembers(json, table);
    json.Name("hits");
    json.BeginList();
    for (const Hit_t& hit : hits) {
        json.BeginObject();
        WriteStructureMembers(json, *hit.structure);
        if (!hit.group.empty()) json.Member("group", hit.group);
        json.Name("item");
        json.Pair(hit.item.key, hit.item.value);
        json.FinishObject();
    }
    json.FinishList();
    json.FinishObject();
    json.Finish();
}

constexpr Usage_t kGetUsage = {
    "quorlin get",
    "Prints the values of a key, one a line and nothing else.",
    "Example: quorlin get 1 \"Serial Number\"\n"
    "Exit codes: 0 done, 1 no such value, 2 bad usage, no table or an unreadable one.",
};

}  // namespace

int RunFind(const Arguments_t& arguments) {
    Source_t source;
    std::string formatName = "text", text;
    std::vector<std::string> typeNames;
    std::vector<Option_t> options = source.Options();
    options.push_back({"text", "TEXT", "What keys or values must hold", &text, true});
    options.push_back({"--type", "N", "Only structures of type N (0 to 254); may be given more than once", &typeNames});
    options.push_back({"--format", "FORMAT", "text (for people), json, ndjson or csv", &formatName});
    int exitCode = kExitDone;
    Format_t format;
    std::vector<uint8_t> types;
    if (!ParseCommandLine(kFindUsage, options, arguments, &exitCode) || !source.Check(kFindUsage, &exitCode) ||
        !ChooseFormat(kFindUsage, formatName, kFindFormats, &format, &exitCode) ||
        !CheckFleet(kFindUsage, source, format, &exitCode) || !ChooseTypes(kFindUsage, typeNames, &types, &exitCode))
        return exitCode;
    if (types.empty()) types = SweptTypes();
    ClOutput output;
    ClJson json(output);
    bool isFound = false;
    exitCode = RunOnTables(source, format, kExitTrouble, json, [&](ClTable& table) {
        const ClModel model(table.Package(), types);
        const std::vector<Hit_t> hits = FindText(model, text);
        isFound |= !hits.empty();
        if (format == Format_t::kText)
            ListText(hits, output);
        else if (format == Format_t::kCsv)
            ListCsv(hits, output);
        else
            ListJson(hits, table, json);
        return kExitDone;
    });
    if (!output.Finish()) return kExitTrouble;
    return exitCode == kExitDone && !isFound ? kExitNo : exitCode;
}

int RunGet(const Arguments_t& arguments) {
    Source_t source;
    std::string typeName, key, instanceName;
    std::vector<Option_t> options = source.Options();
    options.push_back({"type", "TYPE", "The structure type (0 to 254)", &typeName, true});
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
    exitCode = ForEachTable(source, kExitTrouble, [&](ClTable& table) {
        const ClModel model(table.Package(), types);
        bool isFound = false;
        for (const Structure_t& structure : model.Structures()) {
            if (instance != 0 && structure.instance != instance) continue;
            for (uint32_t index = structure.firstItem; index < structure.endItem; index++) {
                const Item_t item = model.Item(index);
                if (item.opensGroup || !EqualsIgnoringCase(item.key, key)) continue;
                output << Printable(item.value) << "\n";
                isFound = true;
            }
        }
        if (isFound) return kExitDone;
        SayError(table.Name(), "type " + typeName + " has no such item here; try quorlin --type " + typeName);
        return kExitNo;
    });
    return output.Finish() ? exitCode : kExitTrouble;
}
