// Any arguments of quorlin, one a line. What the program would take from its platform stands here: it reads two files,
// writes none and has no standard output. The driver can't be started.
#include <cerrno>
#include <cstdio>
#include <new>

#include "Fuzz/Fuzz.h"
#include "Packages/Debug/DebugInternal.h"
#include "Packages/Format/TableFile.h"
#include "Packages/OS/Program.h"
#include "Packages/OS/Status.h"
#include "Packages/Sample/Sample.h"
#include "Tools/quorlin/Commands.h"

static std::vector<uint8_t> dump = MakeDump(SampleTable(), 3, 0);
static std::string names = "dump\nnone\n\ntable";

// Images "dump" and "table", and "names", a list of both.
std::FILE* OpenFile(const std::string& path, const char*) {
    const std::span<const uint8_t> table = SampleTable();
    if (path == "dump") return fmemopen(dump.data(), dump.size(), "r");
    if (path == "table") return fmemopen(const_cast<uint8_t*>(table.data()), table.size() / 2, "r");
    if (path == "names") return fmemopen(names.data(), names.size(), "r");
    errno = path == "secret" ? EACCES : ENOENT;
    return nullptr;
}
bool CreateWholeFile(const std::string&, const void*, size_t) {
    errno = EEXIST;
    return false;
}
bool IsFolder(const std::string& path) { return path == "folder"; }
bool IsThere(const std::string& path) { return path == "dump" || path == "folder"; }
void PrepareStandardStreams() {}
bool IsStandardOutputTerminal() { return false; }
bool IsStandardErrorTerminal() { return false; }
size_t TerminalWidth() { return 0; }
const char* AdviceForRights() { return "try as root"; }
bool WriteStandardOutput(const char*, size_t) { return true; }

// The program's links are told to take this one: no input reaches the hardware.
extern "C" status_t __wrap_FERROXInitialize();
extern "C" status_t __wrap_FERROXInitialize() { return kFailure; }

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Arguments_t arguments(1);
    for (const char character : std::string(reinterpret_cast<const char*>(data), size)) {
        if (character == '\n')
            arguments.emplace_back();
        else if (character != '\0')  // which ends an argument everywhere
            arguments.back() += character;
    }
    for (const std::string& argument : arguments)
        if (NamesAFile(argument) || argument == "-") return 0;
    const int exitCode = RunProgram(arguments);
    Require(exitCode >= 0 && exitCode <= 2);
    // A run that finds no table closes the one that is open, and with it its trace.
    RunProgram({"--image", "none"});
    DebugResetForTest();
    return 0;
}
