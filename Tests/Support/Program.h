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

// Sets the checksums of the entry point that a dump begins with.
void SetChecksums(std::vector<uint8_t>& dump);
// A dump as the program makes it, but with the table's address `address`, which the checksums don't count, and the
// table at `tableOffset`.
std::vector<uint8_t> DumpOf(const std::vector<uint8_t>& table, uint8_t major, uint8_t minor, uint64_t address = 32,
                            size_t tableOffset = 32);
