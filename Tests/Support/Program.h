// Runs the program as a user would, and writes the files that it reads.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

struct ProgramRun_t {
    int exitCode;
    std::string output, errors;
};

// Runs quorlin with these arguments, which the shell splits.
ProgramRun_t RunQuorlin(const std::string& arguments);

// Writes a file into the test's folder and returns its path, which has no blanks.
std::string WriteFile(const std::string& name, const std::vector<uint8_t>& bytes);
std::string ReadWholeFile(const std::string& path);

// A dump: an entry point with the table address `address` (_SM_ of 31 bytes for major 2, _SM3_ of 24 bytes for major
// 3), zeros up to `tableOffset`, and the table.
std::vector<uint8_t> DumpOf(const std::vector<uint8_t>& table, uint8_t major, uint8_t minor, uint64_t address,
                            size_t tableOffset = 32);
