#include "Packages/FERROXExternal/StructureStore/ImageFile.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "Packages/OS/Program.h"

namespace {

status_t Fail(std::string_view problem, std::string* error) {
    *error = problem;
    return kFailure;
}

// Reads at most `most` bytes and one more, which shows that the file is too large. Returns 0 or an errno.
int ReadStream(std::FILE* file, size_t most, std::vector<uint8_t>* bytes) {
    uint8_t block[32u << 10];
    size_t wanted, got;
    bytes->clear();
    do {
        wanted = std::min(sizeof block, most + 1 - bytes->size());
        got = std::fread(block, 1, wanted, file);
        bytes->insert(bytes->end(), block, block + got);
    } while (got == wanted && bytes->size() <= most);
    return std::ferror(file) != 0 ? errno : 0;
}

int ReadFile(const std::string& path, std::vector<uint8_t>* bytes) {
    return ReadAndClose(OpenFile(path, "r"), kMostFileBytes, bytes);
}

// Returns advice for a file that the user may not read.
std::string AdviceForAccess() {
    const char* rights = AdviceForRights();
    return (rights != nullptr ? std::string(rights) + ", or with" : "try") + " a copy that you may read";
}

status_t Take(const TableFound_t& found, Image_t* image, std::string* error) {
    if (!found.isFound) return Fail(found.problem, error);
    image->source.table = found.table.data();
    image->source.length = static_cast<uint32_t>(found.table.size());
    if (found.major != 0 || found.minor != 0) {
        image->source.major = found.major;
        image->source.minor = found.minor;
    }
    image->form = found.form;
    image->missing = found.missing;
    image->checksumsFit = found.checksumsFit;
    image->structures = found.structures;
    image->largest = found.largest;
    return kSuccess;
}

status_t ReadFolder(const std::string& path, Image_t* image, std::string* error) {
    std::vector<uint8_t> point, table;
    const int pointProblem = ReadFile(path + "/smbios_entry_point", &point);
    const int tableProblem = ReadFile(path + "/DMI", &table);
    if (pointProblem == EACCES || tableProblem == EACCES)
        return Fail("its files may not be read; " + AdviceForAccess(), error);
    if (pointProblem != 0 || tableProblem != 0)
        return Fail("a folder without smbios_entry_point and DMI; try a file with a dump", error);
    image->bytes = std::move(table);
    image->isCompressed = false;
    return Take(FindTableInFolder(point, image->bytes), image, error);
}

}  // namespace

int ReadAndClose(std::FILE* file, size_t most, std::vector<uint8_t>* bytes) {
    if (file == nullptr) return errno;
    std::setvbuf(file, nullptr, _IONBF, 0);
    const int problem = ReadStream(file, most, bytes);
    std::fclose(file);
    return problem;
}

std::string Image_t::FormText() const {
    return std::string(NameOfForm(form)) + (isCompressed ? ", compressed with gzip" : "");
}

std::string Image_t::Remark() const {
    if (missing == 0) return {};
    return "truncated: " + std::to_string(source.length) + " of " + std::to_string(uint64_t{source.length} + missing) +
           " table bytes; showing what is there";
}

status_t ImageFromBytes(std::vector<uint8_t> bytes, TableForm_t as, Image_t* image, std::string* error) {
    image->isCompressed = IsCompressed(bytes);
    if (!image->isCompressed) {
        image->bytes = std::move(bytes);
    } else if (const char* problem = Inflate(bytes, &image->bytes)) {
        return Fail(problem, error);
    }
    return Take(FindTable(image->bytes, as), image, error);
}

status_t ReadImage(std::FILE* stream, TableForm_t as, Image_t* image, std::string* error) {
    if (as == TableForm_t::kFolder) return Fail("a stream; --as sysfs takes a folder", error);
    std::vector<uint8_t> bytes;
    if (const int problem = ReadStream(stream, kMostFileBytes, &bytes); problem != 0)
        return Fail(std::strerror(problem), error);
    return ImageFromBytes(std::move(bytes), as, image, error);
}

status_t ReadImage(const std::string& path, TableForm_t as, Image_t* image, std::string* error) {
    if (as == TableForm_t::kFolder) return ReadFolder(path, image, error);
    std::vector<uint8_t> bytes = std::move(image->bytes);  // reuses its block when images are read one by one
    const int problem = ReadFile(path, &bytes);
    if (problem == 0) return ImageFromBytes(std::move(bytes), as, image, error);
    // Reading a folder as a file fails, with an errno that depends on the system.
    if (problem == EISDIR || IsFolder(path)) {
        if (as == TableForm_t::kAny) return ReadFolder(path, image, error);
        return Fail("a folder; try it with --as sysfs", error);
    }
    const std::string advice = problem == EACCES   ? AdviceForAccess()
                               : problem == ENOENT ? "try another name"
                                                   : "try another file";
    return Fail(std::strerror(problem) + ("; " + advice), error);
}
