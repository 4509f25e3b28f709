#include "Fuzz/Platform.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <utility>

#include "Packages/Debug/DebugInternal.h"
#include "Packages/FERROXExternal/FERROXLib/Obstacles.h"
#include "Packages/OS/Program.h"
#include "Packages/OS/Status.h"

Platform_t platform;

std::FILE* OpenFile(const std::string& path, const char*) {
    const auto file = platform.files.find(path);
    if (file != platform.files.end() && !file->second.empty())
        return fmemopen(file->second.data(), file->second.size(), "r");
    errno = path == "secret" ? EACCES : ENOENT;
    return nullptr;
}
std::FILE* OpenPlainFile(const std::string& path) { return OpenFile(path, "r"); }
bool CreateWholeFile(const std::string&, const void*, size_t) {
    errno = EEXIST;
    return false;
}
bool ReplaceWholeFile(const std::string&, const WritePieces_t& write) {
    write([](const void*, size_t) { return true; });
    return true;
}
struct ClNewFolder::State_t {};
ClNewFolder::ClNewFolder(const std::string&) { platform.folder.clear(); }
ClNewFolder::~ClNewFolder() = default;
size_t ClNewFolder::AddFile(const std::string& name) {
    platform.folder.push_back({name, ""});
    return platform.folder.size() - 1;
}
bool ClNewFolder::Append(size_t file, std::span<const uint8_t> bytes) {
    platform.folder[file].second.append(bytes.begin(), bytes.end());
    return true;
}
bool ClNewFolder::Finish() { return true; }
int ClNewFolder::Problem() const { return 0; }
bool IsFolder(const std::string& path) {
    const auto inside = platform.files.lower_bound(path + "/");
    return inside != platform.files.end() && inside->first.starts_with(path + "/");
}
bool IsThere(const std::string& path) { return platform.files.contains(path) || IsFolder(path); }
int WhyNoNewFiles() { return EROFS; }
void PrepareStandardStreams() {}
bool IsStandardOutputTerminal() { return platform.terminalWidth != 0; }
bool IsStandardErrorTerminal() { return false; }
size_t TerminalWidth() { return platform.terminalWidth; }
const char* AdviceForRights() { return "try as root"; }
bool WriteStandardOutput(const char* bytes, size_t size) {
    platform.output.append(bytes, size);
    return true;
}

std::string KernelVersion() { return "Linux"; }
const char* FirmwareKind() { return nullptr; }
std::FILE* OpenPciNames() { return nullptr; }

// The linker replaces FERROXInitialize by this (--wrap), so that no input reaches the hardware.
extern "C" status_t __wrap_FERROXInitialize();
extern "C" status_t __wrap_FERROXInitialize() { return kFailure; }

// Neither does doctor reach it, which says these things of it.
Finding_t FindObstacle(Way_t way, uint32_t processor) {
    constexpr uint32_t kObstacles = 30;  // not more than there are
    return {static_cast<Obstacle_t>((static_cast<uint32_t>(way) + processor) % kObstacles),
            "a \x1B[31mdetail, \"quoted\""};
}
status_t BeginTrial(bool) { return kFailure; }
void EndTrial() {}

int RunOnPlatform(const Arguments_t& arguments) {
    platform.output.clear();
    char* errors = nullptr;
    size_t size = 0;
    std::FILE* const usual = std::exchange(stderr, open_memstream(&errors, &size));
    const int exitCode = RunProgram(arguments);
    std::fclose(std::exchange(stderr, usual));
    platform.errors.assign(errors, size);
    std::free(errors);
    Require(exitCode >= 0 && exitCode <= 2);
    return exitCode;
}

// A run that finds no table closes the table of the last run and its trace.
void EndRuns() {
    RunProgram({"--image", "none"});
    DebugResetForTest();
}
