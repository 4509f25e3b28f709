// What -s prints, compared with the system's table printer.
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <sstream>
#include <utility>

#include "Tests/Support/Linux/Processes.h"

namespace {

namespace fs = std::filesystem;

TEST(Keywords, PrintWhatTheSystemsTablePrinterPrints) {
    const fs::path images = QUORLIN_SOURCE_DIR "/../shared/tables";
    const std::string printer = "/usr/sbin/dmidecode";
    if (!fs::exists(images)) GTEST_SKIP() << "no images of real machines here";
    if (!fs::exists(printer)) GTEST_SKIP() << "dmidecode isn't installed";
    std::vector<std::string> keywords;
    std::istringstream list(RunPrepared({printer, "-s"}).errors);
    for (std::string line; std::getline(list, line);)
        if (line.starts_with("  ")) keywords.push_back(line.substr(2));
    ASSERT_GE(keywords.size(), 26u);
    // Its family is a code that the standard doesn't assign, and that the printer guesses.
    const std::pair<std::string, std::string> unlike = {"dell-precision-390.bin", "processor-family"};
    for (const fs::directory_entry& entry : fs::directory_iterator(images)) {
        if (entry.path().extension() != ".bin") continue;
        const std::string image = entry.path().string(), name = entry.path().filename().string();
        for (const std::string& keyword : keywords) {
            if (std::pair(name, keyword) == unlike) continue;
            EXPECT_EQ(RunPrepared({QUORLIN_PROGRAM, "-s", keyword, "--image", image}).output,
                      RunPrepared({printer, "--from-dump", image, "-s", keyword}).output)
                << keyword << " of " << name;
        }
    }
}

}  // namespace
