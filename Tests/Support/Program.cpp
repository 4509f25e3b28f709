#include "Tests/Support/Program.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>

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

std::vector<uint8_t> DumpOf(const std::vector<uint8_t>& table, uint8_t major, uint8_t minor, uint64_t address,
                            size_t tableOffset) {
    std::vector<uint8_t> dump(tableOffset);
    const auto length = static_cast<uint32_t>(table.size());
    if (major >= 3) {
        std::memcpy(dump.data(), "_SM3_", 5);
        dump[6] = 0x18;
        dump[7] = major;
        dump[8] = minor;
        std::memcpy(&dump[0x0C], &length, 4);
        std::memcpy(&dump[0x10], &address, 8);
    } else {
        std::memcpy(dump.data(), "_SM_", 4);
        dump[5] = 0x1F;
        dump[6] = major;
        dump[7] = minor;
        std::memcpy(&dump[0x10], "_DMI_", 5);
        std::memcpy(&dump[0x16], &length, 2);
        std::memcpy(&dump[0x18], &address, 4);
    }
    dump.insert(dump.end(), table.begin(), table.end());
    return dump;
}
