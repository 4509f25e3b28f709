// quorlin dump and quorlin raw: a table's bytes, into a file and for people's eyes.
#include <algorithm>
#include <cstdio>

#include "Packages/Format/Structures.h"
#include "Packages/OS/Program.h"
#include "Tools/quorlin/Commands.h"
#include "Tools/quorlin/Model.h"
#include "Tools/quorlin/Output.h"
#include "Tools/quorlin/Standard.h"
#include "Tools/quorlin/Table.h"
#include "Tools/quorlin/Text.h"

constexpr Usage_t kDumpUsage = {
    "quorlin dump",
    "Writes a table into a new file, behind an entry point, as this program and the system's other tools read it. The "
    "file is its owner's alone to read, as tables hold serial numbers. A file that exists is left as it is.",
    "Example: quorlin dump machine.bin\n"
    "Exit codes: 0 done, 1 no table, or a file that can't be made, 2 bad usage.",
    kExitNoTable,
};

constexpr Usage_t kRawUsage = {
    "quorlin raw",
    "Shows the bytes and the strings of a table's structures.",
    "Example: quorlin raw --type 17\n"
    "Exit codes: 0 done, 1 no such structure, 2 bad usage, no table or an unreadable one.",
    kExitTrouble,
};

namespace {

void ShowRaw(const TableStructure_t& structure, uint32_t offset, ClOutput& output) {
    char place[24];
    std::snprintf(place, sizeof place, "%Xh", offset);
    const size_t length = std::min<size_t>(structure.Length(), structure.size);
    output << "Handle " << HandleText(structure.Handle()) << ", type " << std::to_string(structure.Type()) << " ("
           << NameOfType(structure.Type()) << "), " << std::to_string(structure.size) << " bytes at offset " << place
           << "\n";
    ShowBytes({structure.data, length}, output);
    const std::string_view area(reinterpret_cast<const char*>(structure.data) + length, structure.size - length);
    unsigned number = 1;
    for (size_t begin = 0; begin < area.size() && area[begin] != '\0'; number++) {
        const std::string_view text = area.substr(begin, area.find('\0', begin) - begin);
        output << "  String " << std::to_string(number) << ": " << Printable(text) << "\n";
        begin += text.size() + 1;
    }
}

}  // namespace

int RunDump(const Arguments_t& arguments) {
    Source_t source;
    std::string path;
    std::vector<Option_t> options = source.Options();
    options.push_back({"file", "FILE", "The file to make; - for standard output", &path, true});
    int exitCode = kExitDone;
    if (!ParseCommandLine(kDumpUsage, options, arguments, &exitCode) || !source.CheckOne(kDumpUsage, &exitCode))
        return exitCode;
    return ForEachTable(source, kDumpUsage.trouble, [&](ClTable& table) {
        const std::vector<uint8_t> dump = MakeDump(table.Bytes(), table.Major(), table.Minor());
        if (path != kStandardStream) return WriteNewFile(path, dump) ? kExitDone : kDumpUsage.trouble;
        ClOutput output;
        output << std::string_view(reinterpret_cast<const char*>(dump.data()), dump.size());
        return output.Finish() ? kExitDone : kDumpUsage.trouble;
    });
}

int RunRaw(const Arguments_t& arguments) {
    Source_t source;
    std::string handleName;
    std::vector<std::string> typeNames;
    std::vector<Option_t> options = source.Options();
    options.push_back({"--type", "TYPES", kTypeHelp, &typeNames, false, 't'});
    options.push_back({"--handle", "H", "Only the structures of handle H: 17, 0x11 or 11h", &handleName});
    int exitCode = kExitDone;
    std::vector<uint8_t> types;
    uint64_t handle = 0;
    if (!ParseCommandLine(kRawUsage, options, arguments, &exitCode) || !source.CheckOne(kRawUsage, &exitCode) ||
        !ChooseTypes(kRawUsage, typeNames, &types, &exitCode))
        return exitCode;
    if (!handleName.empty() && !ParseHandle(kRawUsage, handleName, &handle, &exitCode)) return exitCode;
    ClOutput output;
    exitCode = ForEachTable(source, kRawUsage.trouble, [&](ClTable& table) {
        const std::span<const uint8_t> bytes = table.Bytes();
        bool isFirst = true;
        for (const TableStructure_t& structure : ClWalk(bytes)) {
            if (!types.empty() && std::ranges::find(types, structure.Type()) == types.end()) continue;
            if (!handleName.empty() && structure.Handle() != handle) continue;
            if (!isFirst) output << "\n";
            isFirst = false;
            ShowRaw(structure, static_cast<uint32_t>(structure.data - bytes.data()), output);
        }
        if (isFirst) SayError(table.Name(), "no such structure; try quorlin types");
        return isFirst ? kExitNo : kExitDone;
    });
    return output.Finish() ? exitCode : kRawUsage.trouble;
}
