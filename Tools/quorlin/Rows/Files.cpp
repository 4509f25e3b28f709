#include "Tools/quorlin/Rows/Files.h"

#include "Tools/quorlin/Formats/CsvPieces.h"

ClRowFiles::ClRowFiles(const std::string& path) : m_folder(path) {
    File_t columns = {m_folder.AddFile("columns.csv"), "dataset,column,type"};
    columns.text += kCsvLineEnd;
    for (const size_t dataset : AllDatasets()) {
        const std::string name = NameOfDataset(dataset);
        File_t& file = m_files[dataset];
        file.number = m_folder.AddFile(name + ".csv");
        for (const DatasetColumn_t& column : ColumnsOf(dataset)) {
            file.text.append(file.text.empty() ? "" : ",").append(column.name);
            columns.text.append(name).append(",").append(column.name).append(",").append(SqlName(column.type));
            columns.text += kCsvLineEnd;
        }
        file.text += kCsvLineEnd;
    }
    Flush(columns);
}

void ClRowFiles::EndRow(size_t dataset) {
    m_files[dataset].text += kCsvLineEnd;
    FlushWhenFull(dataset);
}

void ClRowFiles::FlushWhenFull(size_t dataset) {
    if (File_t& file = m_files[dataset]; file.text.size() >= kBlock) Flush(file);
}

void ClRowFiles::Flush(File_t& file) {
    m_folder.Append(file.number, {reinterpret_cast<const uint8_t*>(file.text.data()), file.text.size()});
    file.text.clear();
}

bool ClRowFiles::Finish() {
    for (const size_t dataset : AllDatasets()) Flush(m_files[dataset]);
    return m_folder.Finish();
}
