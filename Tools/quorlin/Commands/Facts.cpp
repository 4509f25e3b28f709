// quorlin facts: what a table says by the newest level of the standard.
#include <algorithm>

#include "Packages/Format/Structures.h"
#include "Tools/quorlin/Commands.h"
#include "Tools/quorlin/Formats.h"
#include "Tools/quorlin/Rows/Rows.h"
#include "Tools/quorlin/Types.h"

namespace {

constexpr List_t kList = {.name = "structures", .columns = kFactColumns};

bool HasAny(const FactStructure_t& structure) {
    bool isFound = false;
    structure.ForEach([&](const ClFacts&, const Fact_t&) { isFound = true; });
    return isFound;
}

class ClFactsCommand : public ClCommand {
  public:
    std::vector<Option_t> Options() override {
        std::vector<Option_t> options = m_source.OptionsForMany();
        options.push_back({"file", "FILE", "Images to read, as --image takes them", &m_source.images});
        options.push_back(TypeOption(&m_typeNames));
        options.push_back({"--handle", "H", "Only the structures of handle H: 17, 0x11 or 11h", &m_handleText});
        options.push_back({"--key", "KEY", "Only facts with this key, such as memory_size; may be given more than once",
                           &m_choice.keys});
        options.push_back(
            {"--full", nullptr, "In JSON, units, states, bytes, offsets and sources as well", &m_choice.isFull});
        options.push_back({"--where", nullptr, "In text, offsets, bytes and states as well", &m_choice.showsWhere});
        options.push_back({"--absent", nullptr, "Also the fields that a structure is too short for", &m_listsAbsent});
        options.push_back(m_format.Option());
        options.push_back({"--rows", "DIR", "Write all tables into a new folder, as CSV files of typed rows", &m_rows});
        return options;
    }

    int Run() override {
        m_source.Check();
        if (!m_rows.empty()) {
            CheckRows();
            return WriteRows(m_source, m_rows);
        }
        m_format.Check(m_source);
        CheckFactKeys(m_choice.keys);
        const std::vector<uint8_t> types = TypesByName(m_typeNames);
        const bool takesAnyHandle = m_handleText.empty();
        const uint16_t handle = takesAnyHandle ? uint16_t{0} : ParseHandle(m_handleText);
        return WriteTables(m_source, m_format.Chosen(), kList, kFactsCommand.trouble,
                           [&](ClTable& table, ClWriter& writer) {
                               const std::span<const uint8_t> bytes = table.Bytes();
                               const ClHandles handles(bytes);
                               const FactOptions_t options = {
                                   .version = table.Version(),
                                   .handles = &handles,
                                   .listsAbsent = m_listsAbsent,
                               };
                               uint32_t counts[256] = {};
                               for (const TableStructure_t& structure : ClWalk(bytes)) {
                                   const uint32_t instance = ++counts[structure.Type()];
                                   if (!types.empty() && std::ranges::find(types, structure.Type()) == types.end())
                                       continue;
                                   if (!takesAnyHandle && structure.Handle() != handle) continue;
                                   const auto offset = static_cast<uint32_t>(structure.data - bytes.data());
                                   const FactStructure_t shown = {structure, instance, offset, options, m_choice};
                                   if (m_choice.keys.empty() || HasAny(shown)) writer.Facts(shown);
                                   if (!writer.GoesOn()) break;
                               }
                               return kExitDone;
                           });
    }

  private:
    // Rows have all facts, whatever else is wanted.
    void CheckRows() const {
        if (m_format.IsGiven() || !m_typeNames.empty() || !m_handleText.empty() || !m_choice.keys.empty() ||
            m_choice.isFull || m_choice.showsWhere || m_listsAbsent)
            throw BadUsage_t{"--rows takes no --type, --handle, --key, --full, --where, --absent and --format"};
    }

    Source_t m_source;
    std::vector<std::string> m_typeNames;
    std::string m_handleText;
    FactChoice_t m_choice;
    bool m_listsAbsent = false;
    std::string m_rows;
    ClFormatOption m_format{kFactLists};
};

}  // namespace

constexpr Command_t kFactsCommand = {
    .name = "facts",
    .summary = "typed values with units, by the newest level of the standard",
    .description =
        "Shows what a table says by the newest level of the SMBIOS standard: numbers in their unit, words of codes, "
        "and "
        "whether a value is one or a filler.",
    .footer =
        "Example: quorlin facts --type 17 --key memory_size --format json\n"
        "Exit codes: 0 done, 1 no table or an unreadable one, 2 bad usage.",
    .trouble = kExitNoTable,
    .make = MakeCommand<ClFactsCommand>,
};
