// quorlin show: the items of a table.
#include "Packages/OS/OS.h"
#include "Packages/Platform/Program.h"
#include "Tools/quorlin/Columns.h"
#include "Tools/quorlin/Commands.h"
#include "Tools/quorlin/Csv.h"
#include "Tools/quorlin/Json.h"
#include "Tools/quorlin/Model.h"
#include "Tools/quorlin/Table.h"
#include "Tools/quorlin/Text.h"

namespace {

constexpr Usage_t kUsage = {
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
    "Example: quorlin --image table.bin --type 4 --type 17\n"
    "Exit codes: 0 done, 1 no table or an unreadable one, 2 bad usage.",
};

constexpr Format_t kFormats[] = {Format_t::kText, Format_t::kJson, Format_t::kNdjson, Format_t::kCsv, Format_t::kLines};

// Each item as the library gives it.
void ShowLines(Quorlin& package, std::span<const uint8_t> types, ClOutput& output) {
    for (const uint8_t type : types) package.GetTypes(type);
    const bool isTerminal = IsStandardOutputTerminal();
    const uint32_t count = package.GetItemCount();
    for (uint32_t index = 0; index < count && !output.Failed(); index++) {
        if (isTerminal) {
            std::string line;
            Quorlin::AppendLine(package.Item(index), line);
            output << Printable(line) << "\n";
        } else {
            Quorlin::AppendLine(package.Item(index), output.Text());
            output.Text() += '\n';
            output.FlushWhenFull();
        }
    }
}

void ShowText(const ClModel& model, ClColumns& columns) {
    for (const Structure_t& structure : model.Structures()) {
        if (!structure.heading.empty()) columns.Heading(structure.heading);
        size_t indent = 2;
        for (uint32_t index = structure.firstItem; index < structure.endItem; index++) {
            const Item_t item = model.Item(index);
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
}

// Tells of structures that a sweep leaves out and that have items all the same.
void TellOfLeftOut(ClOutput& output) {
    constexpr uint8_t kOnDemand = 148;
    uint8_t** records = nullptr;
    uint32_t count = 0;
    if (GetSMBIOSStrutureFrom(kOnDemand, 0, &records, &count) != kSuccess || count == 0) return;
    os_free(records);
    output << "\nNot shown: " << std::to_string(count) << (count == 1 ? " structure" : " structures")
           << " of type 148, firmware versions; see them with --type 148\n";
}

void WriteItems(const ClModel& model, const Structure_t& structure, ClJson& json) {
    bool inGroup = false;
    const auto finishGroup = [&] {
        if (!inGroup) return;
        json.FinishList();
        json.FinishObject();
    };
    json.BeginList();
    for (uint32_t index = structure.firstItem; index < structure.endItem; index++) {
        const Item_t item = model.Item(index);
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

void ShowJson(const ClModel& model, const ClTable& table, Format_t format, ClJson& json) {
    json.BeginObject();
    WriteTableMembers(json, table);
    json.Name("structures");
    json.BeginList();
    for (const Structure_t& structure : model.Structures()) {
        if (format == Format_t::kJson) json.Break();
        json.BeginObject();
        WriteStructureMembers(json, structure);
        json.Name("items");
        WriteItems(model, structure, json);
        json.FinishObject();
    }
    json.FinishList();
    json.FinishObject();
    json.Finish();
}

void ShowCsv(const ClModel& model, ClOutput& output) {
    ClCsv csv(output);
    csv.Row({"type", "handle", "instance", "title", "group", "key", "value"});
    for (const Structure_t& structure : model.Structures()) {
        std::string_view group;
        const std::string type = std::to_string(structure.type), handle = std::to_string(structure.handle),
                          instance = std::to_string(structure.instance);
        for (uint32_t index = structure.firstItem; index < structure.endItem; index++) {
            const Item_t item = model.Item(index);
            if (item.opensGroup)
                group = item.key;
            else
                csv.Row({type, handle, instance, structure.title, group, item.key, item.value});
        }
    }
}

}  // namespace

int RunShow(const Arguments_t& arguments) {
    Source_t source;
    std::string formatName = "text";
    std::vector<std::string> typeNames;
    std::vector<Option_t> options = source.Options();
    options.push_back({"--type", "N", "Only structures of type N (0 to 254); may be given more than once", &typeNames});
    options.push_back(
        {"--format", "FORMAT", "text (for people), json, ndjson, csv, or lines (one item a line)", &formatName});
    bool wantsVersion = false;
    options.push_back({"--version", nullptr, "Print the version", &wantsVersion});
    int exitCode = kExitDone;
    Format_t format;
    std::vector<uint8_t> types;
    if (!ParseCommandLine(kUsage, options, arguments, &exitCode)) return exitCode;
    ClOutput output;
    if (wantsVersion) {
        output << "quorlin " QUORLIN_VERSION "\n";
        return output.Finish() ? kExitDone : kExitNoTable;
    }
    if (!source.Check(kUsage, &exitCode) || !ChooseFormat(kUsage, formatName, kFormats, &format, &exitCode) ||
        !CheckFleet(kUsage, source, format, &exitCode) || !ChooseTypes(kUsage, typeNames, &types, &exitCode))
        return exitCode;
    if (types.empty()) types = SweptTypes();
    ClJson json(output);
    exitCode = RunOnTables(source, format, kExitNoTable, json, [&](ClTable& table) {
        if (format == Format_t::kLines) {
            ShowLines(table.Package(), types, output);
            return kExitDone;
        }
        const ClModel model(table.Package(), types);
        if (format == Format_t::kText) {
            ClColumns columns(output);
            ShowText(model, columns);
            if (typeNames.empty()) TellOfLeftOut(output);
        } else if (format == Format_t::kCsv) {
            ShowCsv(model, output);
        } else {
            ShowJson(model, table, format, json);
        }
        return kExitDone;
    });
    return output.Finish() ? exitCode : kExitNoTable;
}
