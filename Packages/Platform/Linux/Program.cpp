#include "Packages/Platform/Program.h"

#include <unistd.h>

#include <cerrno>

std::vector<std::string> ProgramArguments(int argc, char** argv) { return {argv, argv + argc}; }

std::FILE* OpenFile(const std::string& path, const char* mode) { return std::fopen(path.c_str(), mode); }

void PrepareStandardOutput() {}

bool IsStandardOutputTerminal() { return isatty(STDOUT_FILENO) == 1; }

bool WriteStandardOutput(const char* bytes, size_t size) {
    while (size != 0) {
        const ssize_t written = write(STDOUT_FILENO, bytes, size);
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return false;
        bytes += written;
        size -= static_cast<size_t>(written);
    }
    return true;
}
