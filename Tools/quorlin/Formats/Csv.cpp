// CSV by RFC 4180, with a header line.
#include <charconv>

#include "Tools/quorlin/Formats.h"
#include "Tools/quorlin/Formats/CsvPieces.h"

namespace {

class ClCsvWriter : public ClWriter {
  public:
    // With several tables a first column names the row's.
    ClCsvWriter(ClOutput& output, bool hasMany) : ClWriter(output), m_hasMany(hasMany) {}

    void Begin(const List_t& list, const Members_t& members) override {
        m_columns = list.columns.size();
        if (!members.empty()) m_image = members.front().second;
        if (m_hasHeader) return;
        m_hasHeader = true;
        std::string& text = m_output.Text();
        if (m_hasMany) text += "image,";
        for (const Column_t& column : list.columns)
            text.append(&column == list.columns.data() ? "" : ",").append(column.name);
        text += kCsvLineEnd;
    }

    void Row(std::initializer_list<Cell_t> cells, std::span<const Row_t> inner) override {
        if (inner.empty()) PutRow(cells, {});
        for (const Row_t& row : inner) PutRow(row, cells);
    }

  private:
    // `outer` has the cells for the empty ones of `cells`.
    void PutRow(std::span<const Cell_t> cells, std::span<const Cell_t> outer) {
        if (m_hasMany) {
            AppendCsvCell(m_output.Text(), m_image);
            m_output.Text() += ',';
        }
        for (size_t column = 0; column < m_columns; column++) {
            if (column != 0) m_output.Text() += ',';
            if (column < cells.size() && cells[column].index() != 0)
                Put(cells[column]);
            else if (column < outer.size())
                Put(outer[column]);
        }
        m_output << kCsvLineEnd;
    }

    void Put(const Cell_t& cell) {
        if (const auto* text = std::get_if<std::string_view>(&cell)) {
            AppendCsvCell(m_output.Text(), *text);
        } else if (const auto* number = std::get_if<uint64_t>(&cell)) {
            char digits[20];
            m_output.Text().append(digits, std::to_chars(digits, std::end(digits), *number).ptr);
        } else if (const auto* truth = std::get_if<bool>(&cell)) {
            m_output.Text() += *truth ? "true" : "false";
        }
    }

    bool m_hasMany, m_hasHeader = false;
    std::string_view m_image;
    size_t m_columns = 0;
};

std::unique_ptr<ClWriter> Make(ClOutput& output, bool hasMany) {
    return std::make_unique<ClCsvWriter>(output, hasMany);
}

}  // namespace

constexpr Format_t kCsvFormat = {
    .name = {"csv"},
    .contents = kAnyContent,
    .takesMany = true,
    .reportsErrors = false,
    .isSweep = false,
    .make = Make,
};
