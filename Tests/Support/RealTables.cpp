#include "Tests/Support/RealTables.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "Packages/Format/TableFile.h"

namespace {

std::vector<RealTable_t> ReadAll() {
    std::vector<RealTable_t> all;
    const std::filesystem::path folder = QUORLIN_SOURCE_DIR "/../shared/tables";
    if (!std::filesystem::exists(folder)) return all;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        if (entry.path().extension() != ".bin") continue;
        std::ifstream file(entry.path(), std::ios::binary);
        const std::vector<uint8_t> bytes{std::istreambuf_iterator<char>(file), {}};
        const TableFound_t found = FindTable(bytes, TableForm_t::kAny);
        all.push_back({
            entry.path().stem().string(),
            {found.table.begin(), found.table.end()},
            static_cast<uint16_t>(found.major << 8 | found.minor)
        });
    }
    std::ranges::sort(all, {}, &RealTable_t::name);
    return all;
}

}  // namespace

const std::vector<RealTable_t>& RealTables() {
    static const std::vector<RealTable_t> all = ReadAll();
    return all;
}
