// Reads table images from files and memory, for SetImageMachine.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "Packages/FERROXExternal/StructureStore/Machine.h"
#include "Packages/Format/TableFile.h"

// The bytes of an image, and the table in them.
struct Image_t {
    std::vector<uint8_t> bytes;
    ImageSource_t source = {};
    TableForm_t form = TableForm_t::kAny;
    bool isCompressed = false;
    bool checksumsFit = true;
    uint16_t structures = 0;  // what the entry point states: how many, and the size of the largest; 0 for nothing
    uint16_t largest = 0;
    uint32_t missing = 0;  // bytes by which the table is shorter than its form says

    // Returns the form in words, such as "table, compressed with gzip".
    std::string FormText() const;
    // Returns a warning for the user, such as that the table is cut short; empty if there is none.
    std::string Remark() const;
};

// Finds the table in `bytes`, which may be compressed. On entry, `image->source` has what the form may lack: the
// processor signature, and the version of a bare table. `as` sets the form; with kAny the content decides. Status  1;
// 5: `error` says what is wrong and what to try, without the file's name
status_t ImageFromBytes(std::vector<uint8_t> bytes, TableForm_t as, Image_t* image, std::string* error);
// The same from a file, or from a folder with the files smbios_entry_point and DMI. The path is UTF-8.
status_t ReadImage(const std::string& path, TableForm_t as, Image_t* image, std::string* error);
// The same from a stream, up to its end.
status_t ReadImage(std::FILE* stream, TableForm_t as, Image_t* image, std::string* error);

// Reads what OpenFile or OpenPlainFile opened, at most `most` bytes and one more, which shows that it is larger; closes
// it. Returns 0 or an errno, that of the opening if `file` is null.
int ReadAndClose(std::FILE* file, size_t most, std::vector<uint8_t>* bytes);
