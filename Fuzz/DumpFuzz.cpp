// Reads any bytes as an image file and decodes the table found in it.
// Input: the form to read it as (1 byte), whether to write the table and read it back (1 byte), the file.
#include "Fuzz/Decode.h"
#include "Packages/FERROXExternal/StructureStore/ImageFile.h"

// A dump must contain the table that it was made of.
static void WriteAndRead(const Image_t& image) {
    const std::span<const uint8_t> table(image.source.table, image.source.length);
    if (table.empty()) return;
    const std::vector<uint8_t> dump = MakeDump(table, image.source.major, image.source.minor);
    const TableFound_t found = FindTable(dump, TableForm_t::kAny);
    Require(found.isFound && found.form == TableForm_t::kDump && found.checksumsFit && found.missing == 0);
    Require(found.major == image.source.major && found.minor == image.source.minor);
    Require(std::ranges::equal(found.table, table));
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    ClInput input(data, size);
    const auto as = static_cast<TableForm_t>(input.Take<uint8_t>() % 5);
    const bool writes = (input.Take<uint8_t>() & 1) != 0;
    Image_t image;
    image.source = {nullptr, 0, 3, 0, 0x506C0};
    std::string error;
    if (ImageFromBytes(input.Rest(), as, &image, &error) != kSuccess) {
        Require(!error.empty());
        return 0;
    }
    Require(image.source.table >= image.bytes.data());
    Require(image.source.table + image.source.length <= image.bytes.data() + image.bytes.size());
    Require((image.missing == 0) == image.Remark().empty());
    if (writes) WriteAndRead(image);
    DecodeTable(image.source);
    return 0;
}
