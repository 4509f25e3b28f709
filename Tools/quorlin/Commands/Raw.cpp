// quorlin raw: the bytes and strings of structures.
#include <algorithm>
#include <cstdio>

#include "Packages/Format/Structures.h"
#include "Packages/Standard/Texts.h"
#include "Sources/Types.h"
#include "Tools/quorlin/Commands.h"
#include "Tools/quorlin/Output.h"
#include "Tools/quorlin/Table.h"
#include "Tools/quorlin/Text.h"
#include "Tools/quorlin/Types.h"

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

class ClRaw : public ClCommand {
  public:
    std::vector<Option_t> Options() override {
        std::vector<Option_t> options = m_source.OptionsForOne();
        options.push_back(TypeOption(&m_typeNames));
        options.push_back({"--handle", "H", "Only the structures of handle H: 17, 0x11 or 11h", &m_handleText});
        return options;
    }

    int Run() override {
        m_source.CheckOne();
        const std::vector<uint8_t> types = TypesByName(m_typeNames);
        const bool takesAnyHandle = m_handleText.empty();
        const uint16_t handle = takesAnyHandle ? uint16_t{0} : ParseHandle(m_handleText);
        ClOutput output;
        const int exitCode = ForEachTable(m_source, kRawCommand.trouble, [&](ClTable& table) {
            const std::span<const uint8_t> bytes = table.Bytes();
            bool isFirst = true;
            for (const TableStructure_t& structure : ClWalk(bytes)) {
                if (!types.empty() && std::ranges::find(types, structure.Type()) == types.end()) continue;
                if (!takesAnyHandle && structure.Handle() != handle) continue;
                if (!isFirst) output << "\n";
                isFirst = false;
                ShowRaw(structure, static_cast<uint32_t>(structure.data - bytes.data()), output);
            }
            if (isFirst) SayError(table.Name(), "no such structure; try quorlin types");
            return isFirst ? kExitNo : kExitDone;
        });
        return output.Finish() ? exitCode : kRawCommand.trouble;
    }

  private:
    Source_t m_source;
    std::string m_handleText;
    std::vector<std::string> m_typeNames;
};

}  // namespace

constexpr Command_t kRawCommand = {
    .name = "raw",
    .summary = "the bytes and strings of structures",
    .description = "Shows the bytes and strings of a table's structures.",
    .footer =
        "Example: quorlin raw --type 17\n"
        "Exit codes: 0 done, 1 no such structure, 2 bad usage, no table or an unreadable one.",
    .trouble = kExitTrouble,
    .make = MakeCommand<ClRaw>,
};
