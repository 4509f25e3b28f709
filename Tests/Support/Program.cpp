#include "Tests/Support/Program.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>

#include "Packages/Format/EntryPoint.h"
#include "Packages/Format/TableFile.h"
#include "Packages/OS/Program.h"

std::string ReadWholeFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::string WriteFile(const std::string& name, const std::vector<uint8_t>& bytes) {
    const std::string path = testing::TempDir() + name;
    std::FILE* file = OpenFile(path, "w");  // unlike std::ofstream, takes UTF-8 names on Windows
    // An empty vector may have a null pointer, which std::fwrite doesn't allow.
    if (file == nullptr || (!bytes.empty() && std::fwrite(bytes.data(), 1, bytes.size(), file) != bytes.size()))
        ADD_FAILURE() << "cannot write " << path;
    if (file != nullptr) std::fclose(file);
    return path;
}

ProgramRun_t RunQuorlin(const std::string& arguments) {
    const std::string out = testing::TempDir() + "quorlin.out", err = testing::TempDir() + "quorlin.err";
    const int status = std::system((QUORLIN_PROGRAM " " + arguments + " >" + out + " 2>" + err).c_str());
    // On POSIX systems the exit code is in the second byte.
    return {status > 255 ? status >> 8 : status, ReadWholeFile(out), ReadWholeFile(err)};
}

static void SetChecksum(std::vector<uint8_t>& bytes, size_t begin, size_t size, size_t place) {
    for (size_t at = begin; at < begin + size; at++)
        if (at != place) bytes[place] = static_cast<uint8_t>(bytes[place] - bytes[at]);
}

void SetChecksums(std::vector<uint8_t>& dump) {
    const bool is64 = dump[3] == '3';
    dump[is64 ? 5 : 4] = dump[is64 ? 5 : 0x15] = 0;
    if (!is64) SetChecksum(dump, kDMIPartOffset, kEntryPointSize32 - kDMIPartOffset, 0x15);
    SetChecksum(dump, 0, is64 ? kEntryPointSize64 : kEntryPointSize32, is64 ? 5 : 4);
}

std::vector<uint8_t> DumpOf(const std::vector<uint8_t>& table, uint8_t major, uint8_t minor, uint64_t address,
                            size_t tableOffset) {
    std::vector<uint8_t> dump = MakeDump(table, major, minor);
    const bool is64 = dump[3] == '3';
    for (size_t place = 0; place < (is64 ? 8 : 4); place++)
        dump[(is64 ? 0x10 : 0x18) + place] = static_cast<uint8_t>(address >> 8 * place);
    dump.insert(dump.begin() + kTableOffset, tableOffset - kTableOffset, 0);
    return dump;
}
