// quorlin get: values by their key.
#include "Tools/quorlin/Commands.h"
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
        options.push_back({.name = "type",
                           .typeName = "TYPE",
                           .help = "The structure's type, as --type takes it elsewhere",
                           .target = &m_typeName,
                           .required = true,
                           .choices = TypeWords(),
                           .takesOthers = true});
        options.push_back({"key", "KEY", "The item's key, in any case", &m_key, true});
        options.push_back({"--instance", "N", "Only the N-th structure of the type, from 1", &m_instanceText});
        return options;
    }

    int Run() override {
        m_source.CheckOne();
        const std::vector<uint8_t> types = TypesByName({&m_typeName, 1});
        uint64_t instance = 0;
        if (!m_instanceText.empty() && (!ParseNumber(m_instanceText, UINT32_MAX, &instance) || instance == 0))
            throw BadUsage_t{"--instance: '" + m_instanceText + "' is not a number from 1 on"};
        ClOutput output;
        const int exitCode = ForEachTable(m_source, kGetCommand.trouble, [&](ClTable& table) {
            bool isFound = false;
            VisitStructures(table.Package(), types, [&](const Structure_t& structure) {
                if (instance != 0 && structure.instance != instance) return true;
                for (size_t index = structure.firstItem; index < structure.EndItem(); index++) {
                    const ShownItem_t item = structure.Item(index);
                    if (item.opensGroup || !EqualsIgnoringCase(item.key, Trimmed(m_key))) continue;
                    output << Printable(item.value) << "\n";
                    isFound = true;
                }
                return !output.Failed();
            });
            if (isFound) return kExitDone;
            SayError(table.Name(), "type " + m_typeName + " has no such item here; try quorlin --type " + m_typeName);
            return kExitNo;
        });
        return output.Finish() ? exitCode : kGetCommand.trouble;
    }

  private:
    Source_t m_source;
    std::string m_typeName, m_key, m_instanceText;
};

}  // namespace

constexpr Command_t kGetCommand = {
    .name = "get",
    .summary = "the bare values of a key, for scripts",
    .description = "Prints the values of a key, one a line and nothing else.",
    .footer =
        "Example: quorlin get 1 \"Serial Number\"\n"
        "Exit codes: 0 done, 1 no such value, 2 bad usage, no table or an unreadable one.",
    .trouble = kExitTrouble,
    .make = MakeCommand<ClGet>,
};
