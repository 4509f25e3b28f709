// Writes the sample into a file, as a bare table: WriteSample FILE.
#include <fstream>

#include "Packages/Sample/Sample.h"

int main(int argc, char** argv) {
    if (argc < 2) return 1;
    std::ofstream file(argv[1], std::ios::binary);
    const auto table = SampleTable();
    file.write(reinterpret_cast<const char*>(table.data()), static_cast<std::streamsize>(table.size()));
    return file.good() ? 0 : 1;
}
