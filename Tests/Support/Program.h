// Runs the host program as a user would, and makes the files that it reads.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

struct ProgramRun_t {
    int exitCode;
    std::string output, errors;
};

// Runs quorlin with these arguments, as the shell splits them.
ProgramRun_t RunQuorlin(const std::string& arguments);

// A file in the test's folder with these bytes; gives its path, without blanks.
std::string WriteFile(const std::string& name, const std::vector<uint8_t>& bytes);
std::string ReadWholeFile(const std::string& path);

// A dump: an entry point (_SM_ of 31 bytes for major 2, _SM3_ of 24 bytes for major 3) that gives `address` as the
// table's, zeros up to `tableOffset`, and the table.
std::vector<uint8_t> DumpOf(const std::vector<uint8_t>& table, uint8_t major, uint8_t minor, uint64_t address,
                            size_t tableOffset = 32);
