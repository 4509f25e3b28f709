// Writes the generated table images into an existing folder, as NAME.bin: write_images FOLDER.
#include <fstream>

#include "Tests/Support/Images.h"

int main(int argc, char** argv) {
    if (argc != 2) return 2;
    for (const TableImage_t& image : GeneratedImages()) {
        std::ofstream file(std::string(argv[1]) + "/" + image.name + ".bin", std::ios::binary);
        file.write(reinterpret_cast<const char*>(image.bytes.data()), static_cast<std::streamsize>(image.bytes.size()));
        if (!file.flush()) return 1;
    }
    return 0;
}
