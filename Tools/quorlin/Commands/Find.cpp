// quorlin find: items by what they say.
#include "Tools/quorlin/Commands.h"
#include "Tools/quorlin/Formats.h"
#include "Tools/quorlin/Text.h"
#include "Tools/quorlin/Types.h"

namespace {

constexpr List_t kList = {.name = "hits", .columns = kItemColumns};

// Writes the items that contain `text`; returns whether there was one.
bool FindText(ClTable& table, std::span<const uint8_t> types, std::string_view text, ClWriter& writer) {
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
        if (!hits.empty()) {
            isFound = true;
            writer.Hits(structure, hits);
        }
        return writer.GoesOn();
    });
    return isFound;
}

class ClFind : public ClCommand {
  public:
    std::vector<Option_t> Options() override {
        std::vector<Option_t> options = m_source.OptionsForMany();
        options.push_back({"text", "TEXT", "What keys or values contain", &m_text, true});
        options.push_back(TypeOption(&m_typeNames));
        options.push_back(m_format.Option());
        return options;
    }

    int Run() override {
        m_source.Check();
        m_format.Check(m_source);
        std::vector<uint8_t> types = TypesByName(m_typeNames);
        if (types.empty()) types = AllTypes(false);
        bool isFound = false;
        const int exitCode = WriteTables(m_source, m_format.Chosen(), kList, kFindCommand.trouble,
                                         [&](ClTable& table, ClWriter& writer) {
                                             isFound |= FindText(table, types, m_text, writer);
                                             return kExitDone;
                                         });
        return exitCode == kExitDone && !isFound ? kExitNo : exitCode;
    }

  private:
    Source_t m_source;
    std::string m_text;
    std::vector<std::string> m_typeNames;
    ClFormatOption m_format{kTableRows};
};

}  // namespace

constexpr Command_t kFindCommand = {
    .name = "find",
    .summary = "the items that contain a text",
    .description = "Finds the items whose key or value contains a text, in any case, and shows their structures.",
    .footer =
        "Example: quorlin find serial\n"
        "Exit codes: 0 found, 1 not found, 2 bad usage, no table or an unreadable one.",
    .trouble = kExitTrouble,
    .make = MakeCommand<ClFind>,
};
