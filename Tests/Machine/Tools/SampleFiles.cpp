// Writes each structure of the embedded sample into a file for an emulator's firmware, and all of them into the file
// `table`, the expected beginning of the guest's table. Leaves out the End-of-Table structure, which the emulator adds,
// and all processors but two, as the emulator requires one for each socket.
//
//     sample_files FOLDER     prints the emulator's options for the files, one on each line
#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

#include "Packages/Format/Structures.h"
#include "Packages/Sample/Sample.h"

int main(int argc, char** argv) {
    if (argc != 2) return 2;
    const std::string folder = std::string(argv[1]) + "/";
    const std::span<const uint8_t> sample = SampleTable();
    std::ofstream whole(folder + "table", std::ios::binary);
    int written = 0, processors = 0;
    for (uint32_t offset = 0; offset < sample.size();) {
        const TableStructure_t structure = StructureAt(sample.data(), static_cast<uint32_t>(sample.size()), offset);
        if (structure.size == 0 || structure.Type() == 127) break;
        offset += structure.size;
        if (structure.Type() == 4 && ++processors > 2) continue;
        const std::string path = folder + "structure-" + std::to_string(written++);
        std::ofstream one(path, std::ios::binary);
        one.write(reinterpret_cast<const char*>(structure.data), structure.size);
        whole.write(reinterpret_cast<const char*>(structure.data), structure.size);
        if (!one.flush()) return 1;
        std::printf("-smbios\nfile=%s\n", path.c_str());
    }
    return whole.flush() && written != 0 ? 0 : 1;
}
