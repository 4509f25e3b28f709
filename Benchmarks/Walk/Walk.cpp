// Opens and walks an image again and again, for counts of what an opening and a walk cost:
//   quorlin_walk c|package IMAGE OPENINGS WALKS
// "c" opens a handle of the C interface and reads all items by quorlin_next, WALKS times for each opening. "package"
// does the same with a package and GetNextItem, which can walk once. Prints the nanoseconds of processor time for each
// opening after the first.
#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <iostream>
#include <string>
#include <string_view>

#include "CInterface/quorlin_c.h"
#include "Packages/FERROXExternal/StructureStore/ImageFile.h"
#include "Packages/FERROXExternal/StructureStore/Machine.h"
#include "Sources/Quorlin.h"

namespace {

// These open, walk and close. They return the number of items with text and one more, or 0 on failure.

size_t UseHandle(const char* path, long walks) {
    quorlin_table* table = nullptr;
    if (quorlin_open_file(path, nullptr, &table) != QUORLIN_OK) return 0;
    size_t count = 1;
    for (quorlin_item item; walks > 0; walks--) {
        quorlin_rewind(table);
        while (quorlin_next(table, &item) == QUORLIN_OK) count += static_cast<size_t>(item.value[0] != '\0');
    }
    quorlin_close(table);
    return count;
}

size_t UsePackage(const char* path, long walks) {
    Image_t image;
    std::string text;
    if (ReadImage(path, TableForm_t::kAny, &image, &text) != kSuccess) return 0;
    if (SetImageMachine(&image.source) != kSuccess) return 0;
    BaseAbstraction* package = CreateSmbiosPackage();
    size_t count = package->Initialize() == kSuccess ? 1 : 0;
    while (walks > 0 && package->GetNextItem(text) == kSuccess) count += static_cast<size_t>(text[0] != '\0');
    package->UnInitialize();
    DestroySmbiosPackage(package);
    return count;
}

double Seconds() { return static_cast<double>(std::clock()) / CLOCKS_PER_SEC; }

}  // namespace

int main(int argc, char** argv) {
    if (argc != 5) return 2;
    const auto use = argv[1] == std::string_view("c") ? UseHandle : UsePackage;
    const long openings = std::atol(argv[3]), walks = std::atol(argv[4]);
    const size_t count = use(argv[2], walks);
    const double begin = Seconds();
    for (long opening = 1; opening < openings; opening++)
        if (use(argv[2], walks) != count) return 1;
    const double nanoseconds = (Seconds() - begin) * 1e9;
    std::cout << nanoseconds / static_cast<double>(std::max(openings - 1, 1L)) << '\n';
    return count == 0 ? 1 : 0;
}
