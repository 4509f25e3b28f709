// quorlin show: the items of a table.
#include "Packages/OS/Memory.h"
#include "Packages/OS/OS.h"
#include "Packages/OS/Program.h"
#include "Tools/quorlin/Columns.h"
#include "Tools/quorlin/Commands.h"
#include "Tools/quorlin/Csv.h"
#include "Tools/quorlin/Json.h"
#include "Tools/quorlin/Model.h"
#include "Tools/quorlin/Table.h"
#include "Tools/quorlin/Text.h"

constexpr Usage_t kShowUsage = {
    "quorlin",
    "Shows what a machine's SMBIOS table says, structure by structure: this machine's, or a table image's.",
    "Commands (quorlin COMMAND --help tells more):\n"
    "  show   what these options say; also without the word\n"
    "  types  the structure types of a table, with counts\n"
    "  find   the items that hold a text\n"
    "  get    the bare values of a key, for scripts\n"
    "  diff   what differs between two tables\n"
    "  dump   a table into a new file\n"
    "  raw    the bytes and strings of structures\n"
    "  check  what is wrong with a table\n"
    "  hw     reads hardware: CPUID, PCI, memory, registers, ACPI\n"
    "\n"
    "Example: quorlin table.bin --type processor,memory\n"
    "Exit codes: 0 done, 1 no table or an unreadable one, 2 bad usage.",
    kExitNoTable,
};

namespace {

constexpr Format_t kFormats[] = {Format_t::kText, Format_t::kJson, Format_t::kNdjson, Format_t::kCsv, Format_t::kLines};

// Each item as the library gives it.
void ShowLines(Quorlin& package, std::span<const uint8_t> types, ClOutput& output) {
    const bool isTerminal = IsStandardOutputTerminal();
    const Quorlin::Visit_t show = [&](const uint8_t*, const ClItemList& items) {
        for (size_t index = 0; index < items.Size() && !output.Failed(); index++) {
            if (isTerminal) {
                std::string line;
                Quorlin::AppendLine(items[index], line);
                output << Printable(line) << "\n";
            } else {
                Quorlin::AppendLine(items[index], output.Text());
                output.Text() += '\n';
                output.FlushWhenFull();
            }
        }
        return !output.Failed();
    };
    package.VisitTypes(types, show);
}

void ShowText(const Structure_t& structure, ClColumns& columns) {
    if (const std::string heading = structure.Heading(); !heading.empty()) columns.Heading(heading);
    size_t indent = 2;
    for (size_t index = structure.firstItem; index < structure.EndItem(); index++) {
        const ShownItem_t item = structure.Item(index);
        if (!item.opensGroup) {
            columns.Pair(item.key, item.value);
            continue;
        }
        columns.Finish(indent);
        columns.Line(2, item.key);
        indent = 4;
    }
    columns.Finish(indent);
}

// Tells of structures that a sweep leaves out and that have items all the same.
void TellOfLeftOut(ClOutput& output, ClColumns& columns) {
    for (const TypeRow_t& row : TypeRows()) {
        uint8_t** records = nullptr;
        uint32_t count = 0;
        if (row.sweep != Sweep_t::kOnDemand) continue;
        if (GetSMBIOSStrutureFrom(row.type, 0, &records, &count) != kSuccess || count == 0) continue;
        os_free(records);
        const std::string type = std::to_string(row.type);
        output << "\n";
        columns.Line(0, "Not shown: " + std::to_string(count) + (count == 1 ? " structure" : " structures") +
                            " of type " + type + ", firmware versions; see them with --type " + type);
    }
}

void WriteItems(const Structure_t& structure, ClJson& json) {
    bool inGroup = false;
    const auto finishGroup = [&] {
        if (!inGroup) return;
        json.FinishList();
        json.FinishObject();
    };
    json.BeginList();
    for (size_t index = structure.firstItem; index < structure.EndItem(); index++) {
        const ShownItem_t item = structure.Item(index);
        if (!item.opensGroup) {
            json.Pair(item.key, item.value);
            continue;
        }
        finishGroup();
        inGroup = true;
        json.BeginObject();
        if (json.Member("group", item.key)) {
            json.Name("replaced");
            json.Truth(true);
        }
        json.Name("items");
        json.BeginList();
    }
    finishGroup();
    json.FinishList();
}

// What takes the place of the items of a structure that has none of its own.
void WriteBytesAndStrings(const Structure_t& structure, ClJson& json) {
    json.Member("bytes", HexDigits(structure.Bytes()));
    json.Name("strings");
    json.BeginList();
    bool isReplaced = false;
    for (size_t index = structure.firstItem + 1; index < structure.EndItem(); index++)
        isReplaced |= json.Text(structure.Item(index).value);
    json.FinishList();
    if (isReplaced) {
        json.Name("replaced");
        json.Truth(true);
    }
}

void ShowJson(ClTable& table, std::span<const uint8_t> types, Format_t format, ClJson& json) {
    json.BeginObject();
    WriteTableMembers(json, table);
    json.Name("structures");
    json.BeginList();
    VisitStructures(table.Package(), types, [&](const Structure_t& structure) {
        if (format == Format_t::kJson) json.Break();
        json.BeginObject();
        WriteStructureMembers(json, structure);
        if (structure.isUndecoded) {
            WriteBytesAndStrings(structure, json);
        } else {
            json.Name("items");
            WriteItems(structure, json);
        }
        json.FinishObject();
    });
    json.FinishList();
    json.FinishObject();
    json.Finish();
}

void ShowCsv(const Structure_t& structure, ClCsv& csv) {
    std::string_view group;
    const std::string type = std::to_string(structure.type), handle = std::to_string(structure.handle),
                      instance = std::to_string(structure.instance);
    for (size_t index = structure.firstItem; index < structure.EndItem(); index++) {
        const ShownItem_t item = structure.Item(index);
        if (item.opensGroup)
            group = item.key;
        else
            csv.Row({type, handle, instance, structure.title, group, item.key, item.value});
    }
}

}  // namespace

int RunShow(const Arguments_t& arguments) {
    Source_t source;
    std::string formatName = "text";
    std::vector<std::string> typeNames;
    std::vector<Option_t> options = source.FleetOptions();
    options.push_back({"file", "FILE", "Images to read, as --image takes them", &source.images});
    options.push_back({"--type", "TYPES", kTypeHelp, &typeNames, false, 't'});
    options.push_back(
        {"--format", "FORMAT", "text (for people), json, ndjson, csv, or lines (one item a line)", &formatName});
    bool wantsVersion = false;
    options.push_back({"--version", nullptr, "Print the version", &wantsVersion});
    int exitCode = kExitDone;
    Format_t format;
    std::vector<uint8_t> types;
    if (!ParseCommandLine(kShowUsage, options, arguments, &exitCode)) return exitCode;
    ClOutput output;
    if (wantsVersion) {
        output << "quorlin " QUORLIN_VERSION "\n";
        return output.Finish() ? kExitDone : kShowUsage.trouble;
    }
    if (!source.Check(kShowUsage, &exitCode) || !ChooseFormat(kShowUsage, formatName, kFormats, &format, &exitCode) ||
        !CheckFleet(kShowUsage, source, format, &exitCode) || !ChooseTypes(kShowUsage, typeNames, &types, &exitCode))
        return exitCode;
    if (types.empty()) types = format == Format_t::kLines ? SweptTypes() : AllTypes(false);
    ClJson json(output);
    ClCsv csv(output, source.IsFleet());
    exitCode = RunOnTables(source, format, kShowUsage.trouble, json, [&](ClTable& table) {
        if (format == Format_t::kLines) {
            ShowLines(table.Package(), types, output);
        } else if (format == Format_t::kText) {
            ClColumns columns(output);
            VisitStructures(table.Package(), types,
                            [&](const Structure_t& structure) { ShowText(structure, columns); });
            if (typeNames.empty()) TellOfLeftOut(output, columns);
        } else if (format == Format_t::kCsv) {
            csv.SetImage(table.Name());
            csv.ItemHead();
            VisitStructures(table.Package(), types, [&](const Structure_t& structure) { ShowCsv(structure, csv); });
        } else {
            ShowJson(table, types, format, json);
        }
        return kExitDone;
    });
    return output.Finish() ? exitCode : kShowUsage.trouble;
}
