// Table images in files.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "Packages/FERROXExternal/StructureStore/Machine.h"

// An image in memory: the file's bytes, and where in them the table stands.
struct Image_t {
    std::vector<uint8_t> bytes;
    ImageSource_t source = {};
};

// Reads `path` into `image`: a dump that begins with an entry point, or a bare table of the SMBIOS version given in
// image->source. False, with a line on standard error, for a file that can't be read or is neither.
bool ReadImage(const std::string& path, Image_t* image);
