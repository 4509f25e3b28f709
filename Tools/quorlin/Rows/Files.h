// The new folder of the row form: a CSV file for each dataset, written in blocks.
#pragma once

#include <string>
#include <string_view>

#include "Packages/OS/Program.h"
#include "Tools/quorlin/Rows/Datasets.h"

class ClRowFiles {
  public:
    // Creates the folder under a temporary name, with the header lines and columns.csv.
    explicit ClRowFiles(const std::string& path);

    // Where the next row of a dataset is appended; EndRow ends it.
    std::string& Row(size_t dataset) { return m_files[dataset].text; }
    void EndRow(size_t dataset);
    // Writes what a row has so far if it is long.
    void FlushWhenFull(size_t dataset);
    // Writes what is left and gives the folder its name. False on failure; Problem then tells why.
    bool Finish();
    // The errno of the first failure, after which more rows are useless, or 0.
    int Problem() const { return m_folder.Problem(); }

  private:
    static constexpr size_t kBlock = 16u << 10;

    struct File_t {
        size_t number;
        std::string text;
    };
    void Flush(File_t& file);

    ClNewFolder m_folder;
    File_t m_files[kDatasets];
};
