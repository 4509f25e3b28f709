// Each item on a line of its own, as the library gives it.
#include "Packages/OS/Program.h"
#include "Tools/quorlin/Formats.h"
#include "Tools/quorlin/Text.h"

namespace {

class ClLinesWriter : public ClWriter {
  public:
    explicit ClLinesWriter(ClOutput& output) : ClWriter(output), m_isTerminal(IsStandardOutputTerminal()) {}

    void Begin(const List_t&, const Members_t&) override {}
    void Row(std::initializer_list<Cell_t>, std::span<const Row_t>) override {}  // there are only structures

    void Structure(const Structure_t& structure) override {
        for (size_t index = 0; index < structure.items.Size() && !m_output.Failed(); index++) {
            if (m_isTerminal) {
                std::string line;
                Quorlin::AppendLine(structure.items[index], line);
                m_output << Printable(line) << "\n";
            } else {
                Quorlin::AppendLine(structure.items[index], m_output.Text());
                m_output.Text() += '\n';
                m_output.FlushWhenFull();
            }
        }
    }

  private:
    bool m_isTerminal;
};

std::unique_ptr<ClWriter> Make(ClOutput& output, bool) { return std::make_unique<ClLinesWriter>(output); }

}  // namespace

constexpr Format_t kLinesFormat = {
    .name = {"lines", "one item a line"},
    .contents = kStructures,
    .takesMany = false,
    .reportsErrors = false,
    .isSweep = true,
    .make = Make,
};
