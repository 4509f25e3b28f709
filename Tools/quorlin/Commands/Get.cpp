// quorlin get: values by a keyword, or by their key.
#include <algorithm>

#include "Tools/quorlin/Commands.h"
#include "Tools/quorlin/FactTexts.h"
#include "Tools/quorlin/Keywords.h"
#include "Tools/quorlin/Output.h"
#include "Tools/quorlin/Structures.h"
#include "Tools/quorlin/Table.h"
#include "Tools/quorlin/Text.h"
#include "Tools/quorlin/Types.h"

namespace {

class ClGet : public ClCommand {
  public:
    std::vector<Option_t> Options() override {
        std::vector<Option_t> options = m_source.OptionsForOne();
        m_choices.assign(KeywordChoices().begin(), KeywordChoices().end());
        m_choices.insert(m_choices.end(), TypeWords().begin(), TypeWords().end());
        m_help = "A keyword, or the structure's type, as --type takes it elsewhere. Keywords: " + KeywordList();
        options.push_back({.name = "keyword|type",
                           .typeName = "WORD",
                           .help = m_help.c_str(),
                           .target = &m_word,
                           .required = true,
                           .choices = m_choices,
                           .takesOthers = true});
        options.push_back({"key", "KEY", "After a type: an item's key, in any case, or a fact's key", &m_key});
        options.push_back({"--instance", "N", "Only the N-th structure of the type, from 1", &m_instanceText});
        return options;
    }

    int Run() override {
        m_source.CheckOne();
        const bool isKeyword = IsKeyword(m_word);
        if (m_key.empty() && !isKeyword) throw BadUsage_t{"'" + m_word + "' is not a keyword; for a type, add a key"};
        if (isKeyword && (!m_key.empty() || !m_instanceText.empty()))
            throw BadUsage_t{"a keyword takes no key and no --instance"};
        if (isKeyword) return PrintKeyword(m_source, m_word);
        const std::vector<uint8_t> types = TypesByName({&m_word, 1});
        if (!m_instanceText.empty() && (!ParseNumber(m_instanceText, UINT32_MAX, &m_instance) || m_instance == 0))
            throw BadUsage_t{"--instance: '" + m_instanceText + "' is not a number from 1 on"};
        ClOutput output;
        const int exitCode = ForEachTable(m_source, kGetCommand.trouble, [&](ClTable& table) {
            if (PrintItems(table, types, output) || PrintFacts(table, types, output)) return kExitDone;
            SayError(table.Name(),
                     "type " + m_word + " has no such item or fact here; try quorlin facts --type " + m_word);
            return kExitNo;
        });
        return output.Finish() ? exitCode : kGetCommand.trouble;
    }

  private:
    bool PrintItems(ClTable& table, const std::vector<uint8_t>& types, ClOutput& output) const {
        bool isFound = false;
        VisitStructures(table.Package(), types, [&](const Structure_t& structure) {
            if (m_instance != 0 && structure.instance != m_instance) return true;
            for (size_t index = structure.firstItem; index < structure.EndItem(); index++) {
                const ShownItem_t item = structure.Item(index);
                if (item.opensGroup || !EqualsIgnoringCase(item.key, Trimmed(m_key))) continue;
                output << Printable(item.value) << "\n";
                isFound = true;
            }
            return !output.Failed();
        });
        return isFound;
    }

    // Prints facts that are values, in their unit.
    bool PrintFacts(ClTable& table, const std::vector<uint8_t>& types, ClOutput& output) const {
        const ClHandles handles(table.Bytes());
        const FactOptions_t options = {.version = table.Version(), .handles = &handles};
        bool isFound = false;
        uint32_t counts[256] = {};
        for (const TableStructure_t& structure : ClWalk(table.Bytes())) {
            const uint32_t instance = ++counts[structure.Type()];
            if (std::ranges::find(types, structure.Type()) == types.end()) continue;
            if (m_instance != 0 && instance != m_instance) continue;
            ClFacts facts(structure, options);
            while (facts.Next()) {
                if (facts->Key() != m_key || !facts->IsValue() || facts->kind == FactKind_t::kList) continue;
                output << Printable(PlainValue(facts, *facts)) << "\n";
                isFound = true;
            }
        }
        return isFound;
    }

    Source_t m_source;
    std::string m_word, m_key, m_instanceText;
    uint64_t m_instance = 0;  // 0 for all
    std::vector<Choice_t> m_choices;
    std::string m_help;
};

}  // namespace

constexpr Command_t kGetCommand = {
    .name = "get",
    .summary = "the bare values of a keyword or a key, for scripts",
    .description =
        "Prints the values of a keyword, or of a key of a type, one a line and nothing else. A key that no item has is "
        "a fact's, such as memory_size; facts that aren't values are left out.",
    .footer =
        "Example: quorlin get system-serial-number\n"
        "Example: quorlin get 1 \"Serial Number\"\n"
        "Example: quorlin get 17 memory_size\n"
        "Exit codes: 0 done, 1 no such value, 2 bad usage, no table or an unreadable one.",
    .trouble = kExitTrouble,
    .make = MakeCommand<ClGet>,
};
