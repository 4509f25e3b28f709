// Prints the size of an ACPI table of this machine: acpi NAME, for example acpi MCFG. Needs the rights to read it.
#include <cstdio>

#include "Packages/FERROXExternal/FERROXLib/FERROXLib.h"
#include "Packages/OS/OS.h"

int main(int argc, char** argv) {
    if (argc != 2) return 2;
    DataBuffer_t* table = nullptr;
    const status_t status = GetACPITable(argv[1], &table);
    if (status != kSuccess) {
        std::fprintf(stderr, "%s: not available (status %u)\n", argv[1], status);
        return 1;
    }
    std::printf("%s: %u bytes\n", argv[1], table->Size);
    os_FreeBlock(table);  // the library's block: this program's own free() may belong to another heap
    return 0;
}
