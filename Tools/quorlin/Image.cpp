#include "Tools/quorlin/Image.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "Packages/FERROXExternal/StructureStore/StoreParts.h"
#include "Packages/Format/EntryPoint.h"
#include "Packages/Platform/Program.h"
#include "Tools/quorlin/Output.h"

namespace {

constexpr size_t kMostBytes = 64u << 20;  // far above any table
constexpr size_t kUsualTableOffset = 32;  // in dumps whose entry point keeps the table's physical address

bool ReadFile(const std::string& path, std::vector<uint8_t>* bytes) {
    std::FILE* file = OpenFile(path, "r");
    if (file == nullptr) {
        const char* advice = errno == EACCES ? "; try as root, or with a copy that you may read" : "";
        SayError(path, std::string(std::strerror(errno)) + advice);
        return false;
    }
    std::setvbuf(file, nullptr, _IONBF, 0);
    size_t size = 0;
    do {
        bytes->resize(size + (32u << 10));
        size += std::fread(bytes->data() + size, 1, bytes->size() - size, file);
    } while (size == bytes->size() && size <= kMostBytes);
    bytes->resize(size);
    const int error = std::ferror(file) != 0 ? errno : 0;
    std::fclose(file);
    if (error != 0)
        SayError(path, std::strerror(error));
    else if (size > kMostBytes)
        SayError(path, "larger than 64 MiB, so not a table; try the file that holds the dump");
    return error == 0 && size <= kMostBytes;
}

// A bare table begins with a structure: a header, its formatted area, and strings up to a double NUL.
bool BeginsWithStructure(const std::vector<uint8_t>& bytes) {
    const TableStructure_t first = StructureAt(bytes.data(), static_cast<uint32_t>(bytes.size()), 0);
    if (first.size == 0 || first.Length() < 4 || first.size < first.Length() + 2u) return false;
    return first.data[first.size - 2] == 0 && first.data[first.size - 1] == 0;
}

}  // namespace

bool ReadImage(const std::string& path, Image_t* image) {
    if (!ReadFile(path, &image->bytes)) return false;
    const std::vector<uint8_t>& bytes = image->bytes;
    ImageSource_t& source = image->source;
    EntryPoint_t point;
    if (ParseEntryPoint(bytes.data(), bytes.size(), &point)) {
        // An address that lies in the file, behind the entry point, is an offset.
        const bool isOffset = point.tableAddress >= point.size && point.tableAddress < bytes.size();
        const size_t offset = isOffset ? static_cast<size_t>(point.tableAddress) : kUsualTableOffset;
        if (offset >= bytes.size()) {
            SayError(path, "truncated: the file ends before its table; dump it anew");
            return false;
        }
        const size_t atHand = bytes.size() - offset;
        source.table = bytes.data() + offset;
        source.length = static_cast<uint32_t>(point.tableLength < atHand ? point.tableLength : atHand);
        source.major = point.major;
        source.minor = point.minor;
        // The length of an _SM3_ entry point is an upper bound, that of an older one is exact.
        if (point.tableLength > atHand && !point.lengthIsBound)
            SayError(path, "truncated: " + std::to_string(atHand) + " of " + std::to_string(point.tableLength) +
                               " table bytes; showing what is there");
        return true;
    }
    if (bytes.empty())
        SayError(path, "empty; try a file that holds a dump");
    else if (bytes.size() >= 4 &&
             (std::memcmp(bytes.data(), "_SM_", 4) == 0 || std::memcmp(bytes.data(), "_SM3", 4) == 0))
        SayError(path, "truncated: the file ends within its entry point; dump it anew");
    else if (!BeginsWithStructure(bytes))
        SayError(path, "not a table: neither an entry point nor a structure at its begin; try a dump or a bare table");
    else {
        source.table = bytes.data();
        source.length = static_cast<uint32_t>(bytes.size());
        return true;
    }
    return false;
}
