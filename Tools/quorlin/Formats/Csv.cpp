// CSV by RFC 4180, with a header line.
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
        if (m_hasMany) m_output << "image,";
        for (const Column_t& column : list.columns)
            m_output << (&column == list.columns.data() ? "" : ",") << column.name;
        m_output << kCsvLineEnd;
    }

    void Row(std::initializer_list<Cell_t> cells, std::span<const Row_t> inner) override {
        if (inner.empty()) PutRow(cells, {});
        for (const Row_t& row : inner) PutRow(row, cells);
    }

    // The cells of kItemColumns. Those that all items of a structure, or of a group, share are made once.
    void Structure(const Structure_t& structure) override {
        m_shared.clear();
        if (m_hasMany) AppendCsvCell(m_shared, m_image), m_shared += ',';
        for (const uint32_t number : {uint32_t{structure.type}, uint32_t{structure.handle}, structure.instance})
            m_shared.append(std::to_string(number)) += ',';
        AppendCsvCell(m_shared, structure.title);
        m_shared += ',';
        const size_t group = m_shared.size();
        m_shared += ',';
        for (size_t index = structure.firstItem; index < structure.EndItem(); index++) {
            const ShownItem_t item = structure.Item(index);
            if (item.opensGroup) {
                m_shared.resize(group);
                AppendCsvCell(m_shared, item.key);
                m_shared += ',';
                continue;
            }
            m_output << m_shared;
            PutText(item.key);
            m_output << ',';
            PutText(item.value);
            m_output << kCsvLineEnd;
        }
    }

  private:
    // `outer` has the cells for the empty ones of `cells`.
    void PutRow(std::span<const Cell_t> cells, std::span<const Cell_t> outer) {
        if (m_hasMany) {
            PutText(m_image);
            m_output << ',';
        }
        for (size_t column = 0; column < m_columns; column++) {
            if (column != 0) m_output << ',';
            if (column < cells.size() && cells[column].index() != 0)
                Put(cells[column]);
            else if (column < outer.size())
                Put(outer[column]);
        }
        m_output << kCsvLineEnd;
    }

    void Put(const Cell_t& cell) {
        if (const auto* text = std::get_if<std::string_view>(&cell))
            PutText(*text);
        else if (const auto* number = std::get_if<uint64_t>(&cell))
            m_output.Number(*number);
        else if (const auto* truth = std::get_if<bool>(&cell))
            m_output << (*truth ? "true" : "false");
    }

    void PutText(std::string_view text) {
        if (m_output.Plain<'"', ','>(Trimmed(text))) return;
        std::string cell;
        AppendCsvCell(cell, text);
        m_output << cell;
    }

    bool m_hasMany, m_hasHeader = false;
    std::string_view m_image;
    size_t m_columns = 0;
    std::string m_shared;  // the cells that rows of a structure share
};

std::unique_ptr<ClWriter> Make(ClOutput& output, bool hasMany) {
    return std::make_unique<ClCsvWriter>(output, hasMany);
}

}  // namespace

constexpr Format_t kCsvFormat = {
    .name = "csv",
    .contents = kAnyContent,
    .takesMany = true,
    .reportsErrors = false,
    .isSweep = false,
    .make = Make,
};
