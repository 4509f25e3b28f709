// quorlin show: the items of a table.
#include "Packages/OS/Memory.h"
#include "Packages/OS/OS.h"
#include "Sources/Types.h"
#include "Tools/quorlin/Commands.h"
#include "Tools/quorlin/Formats.h"
#include "Tools/quorlin/Keywords.h"
#include "Tools/quorlin/Types.h"

namespace {

constexpr List_t kList = {.name = "structures", .columns = kItemColumns};

// Says how many structures have items but are shown only when asked for.
void SayLeftOut(ClColumns& people) {
    for (const TypeRow_t& row : TypeRows()) {
        uint8_t** records = nullptr;
        uint32_t count = 0;
        if (row.sweep != Sweep_t::kOnDemand) continue;
        if (GetSMBIOSStrutureFrom(row.type, 0, &records, &count) != kSuccess || count == 0) continue;
        os_free(records);
        const std::string type = std::to_string(row.type);
        people.Line(0, "");
        std::string line = "Not shown: " + std::to_string(count);
        line.append(count == 1 ? " structure" : " structures").append(" of type ").append(type);
        people.Line(0, line.append(", firmware versions; see them with --type ").append(type));
    }
}

class ClShow : public ClCommand {
  public:
    std::vector<Option_t> Options() override {
        std::vector<Option_t> options = m_source.OptionsForMany();
        options.push_back({"file", "FILE", "Images to read, as --image takes them", &m_source.images});
        options.push_back(TypeOption(&m_typeNames));
        options.push_back(m_format.Option());
        options.push_back({.name = "--string",
                           .typeName = "KEYWORD",
                           .help = "Only the value of a keyword, like quorlin get",
                           .target = &m_keyword,
                           .letter = 's',
                           .choices = KeywordChoices()});
        options.push_back({"--version", nullptr, "Print the version", &m_wantsVersion});
        return options;
    }

    int Run() override {
        if (m_wantsVersion) {
            ClOutput output;
            output << "quorlin " QUORLIN_VERSION "\n";
            return output.Finish() ? kExitDone : kShowCommand.trouble;
        }
        if (!m_keyword.empty()) {
            if (!m_typeNames.empty() || m_format.IsGiven()) throw BadUsage_t{"-s takes no --type and no --format"};
            m_source.CheckOne();
            return PrintKeyword(m_source, m_keyword);
        }
        m_source.Check();
        m_format.Check(m_source);
        const Format_t& format = m_format.Chosen();
        const Which_t which = format.isSweep ? Which_t::kDecoded : Which_t::kAll;
        std::vector<uint8_t> types = TypesByName(m_typeNames);
        if (types.empty()) types = format.isSweep ? SweptTypes() : AllTypes(false);
        return WriteTables(m_source, format, kList, kShowCommand.trouble, [&](ClTable& table, ClWriter& writer) {
            VisitStructures(
                table.Package(), types,
                [&](const Structure_t& structure) {
                    writer.Structure(structure);
                    return writer.GoesOn();
                },
                which);
            if (ClColumns* people = writer.People(); people != nullptr && m_typeNames.empty()) SayLeftOut(*people);
            return kExitDone;
        });
    }

  private:
    Source_t m_source;
    std::vector<std::string> m_typeNames;
    std::string m_keyword;
    ClFormatOption m_format{kStructures};
    bool m_wantsVersion = false;
};

}  // namespace

constexpr Command_t kShowCommand = {
    .name = "show",
    .summary = "the items of a table; the default command",
    .description = "Shows the SMBIOS table of this machine, or of a table image, structure by structure.",
    .footer =
        "Example: quorlin table.bin --type processor,memory\n"
        "Exit codes: 0 done, 1 no table or an unreadable one, 2 bad usage.",
    .trouble = kExitNoTable,
    .make = MakeCommand<ClShow>,
};
