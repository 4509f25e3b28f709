// quorlin dump: a table into a file.
#include "Packages/OS/Program.h"
#include "Tools/quorlin/Commands.h"
#include "Tools/quorlin/Output.h"
#include "Tools/quorlin/Table.h"

namespace {

class ClDump : public ClCommand {
  public:
    std::vector<Option_t> Options() override {
        std::vector<Option_t> options = m_source.OptionsForOne();
        options.push_back({"file", "FILE", "The new file; - for standard output", &m_path, true});
        return options;
    }

    int Run() override {
        m_source.CheckOne();
        return ForEachTable(m_source, kDumpCommand.trouble, [&](ClTable& table) {
            const std::vector<uint8_t> dump = MakeDump(table.Bytes(), table.Major(), table.Minor());
            return WriteFileOrStream(m_path, dump) ? kExitDone : kDumpCommand.trouble;
        });
    }

  private:
    Source_t m_source;
    std::string m_path;
};

}  // namespace

constexpr Command_t kDumpCommand = {
    .name = "dump",
    .summary = "writes a table into a new file",
    .description =
        "Writes a table into a new file, after an entry point, as this program and the system's other tools read it. "
        "Only its owner can read the file, as tables contain serial numbers. An existing file is never overwritten.",
    .footer =
        "Example: quorlin dump machine.bin\n"
        "Exit codes: 0 done, 1 no table, or the file can't be written, 2 bad usage.",
    .trouble = kExitNoTable,
    .make = MakeCommand<ClDump>,
};
