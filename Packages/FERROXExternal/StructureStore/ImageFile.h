// Table images in files and in memory, ready for the image machine.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "Packages/FERROXExternal/StructureStore/Machine.h"
#include "Packages/Format/TableFile.h"

// An image: its bytes, and where in them the table stands.
struct Image_t {
    std::vector<uint8_t> bytes;
    ImageSource_t source = {};
    TableForm_t form = TableForm_t::kAny;
    bool isCompressed = false;
    bool checksumsFit = true;
    uint32_t missing = 0;  // table bytes that the form promises and that aren't there

    // "dump", "table, compressed with gzip"
    std::string FormText() const;
    // What a user should hear of an image that is taken; empty if nothing.
    std::string Remark() const;
};

// Fills `image` from bytes in any form, compressed ones too. `image->source` holds what the form doesn't state: the
// processor signature, and the version of a bare table. `as` other than kAny takes the form as said.
// Status  1; 5 with `error` set: what is wrong and what to try, without a file's name
status_t ImageFromBytes(std::vector<uint8_t> bytes, TableForm_t as, Image_t* image, std::string* error);
// The same from a file, or from a folder that holds smbios_entry_point and DMI. The path is UTF-8.
status_t ReadImage(const std::string& path, TableForm_t as, Image_t* image, std::string* error);
// The same from a stream, up to its end.
status_t ReadImage(std::FILE* stream, TableForm_t as, Image_t* image, std::string* error);
