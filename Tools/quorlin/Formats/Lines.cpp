// Each item on a line of its own, as the library gives it.
#include "Packages/OS/Program.h"
#include "Tools/quorlin/Formats.h"

namespace {

class ClLinesWriter : public ClWriter {
  public:
    explicit ClLinesWriter(ClOutput& output) : ClWriter(output), m_isTerminal(IsStandardOutputTerminal()) {}

    void Begin(const List_t&, const Members_t&) override {}
    void Row(std::initializer_list<Cell_t>, std::span<const Row_t>) override {}  // there are only structures

    void Structure(const Structure_t& structure) override {
        for (size_t index = 0; index < structure.items.Size() && !m_output.Failed(); index++) {
            const Item_t& item = structure.items[index];
            char* const place = m_output.Room(item.MostLineBytes() + 1);
            char* end = item.PutLine(place);
            if (m_isTerminal) {
                m_output.PutPrintable(std::string(place, end));
                m_output << '\n';
            } else {
                *end++ = '\n';
                m_output.SetEnd(end);
            }
        }
    }

  private:
    bool m_isTerminal;
};

std::unique_ptr<ClWriter> Make(ClOutput& output, bool) { return std::make_unique<ClLinesWriter>(output); }

}  // namespace

constexpr Format_t kLinesFormat = {
    .name = "lines",
    .remark = "one item a line",
    .contents = kStructures,
    .takesMany = false,
    .reportsErrors = false,
    .isSweep = true,
    .make = Make,
};
