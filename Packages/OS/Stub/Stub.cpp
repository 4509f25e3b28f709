// A system that has only the standard library: it reads files, writes standard output, and refuses everything else. It
// shows what a port has to implement, and CI builds it.
#include <cerrno>
#include <filesystem>
#include <system_error>

#include "Packages/OS/ConfigFile.h"
#include "Packages/OS/CrashFilter.h"
#include "Packages/OS/FirmwareTables.h"
#include "Packages/OS/Hmac.h"
#include "Packages/OS/MemoryMap.h"
#include "Packages/OS/OS.h"
#include "Packages/OS/OSServices.h"
#include "Packages/OS/Processors.h"
#include "Packages/OS/Program.h"
#include "Packages/OS/SystemFacts.h"

// ---- A program's files and streams

std::vector<std::string> ProgramArguments(int argc, char** argv) { return {argv, argv + argc}; }

FILE* os_fopen(const char* path, const char* mode) {
    return path == nullptr || mode == nullptr ? nullptr : std::fopen(path, mode);
}

std::FILE* OpenFile(const std::string& path, const char* mode) { return std::fopen(path.c_str(), mode); }
std::FILE* OpenPlainFile(const std::string& path) { return std::fopen(path.c_str(), "r"); }

// Writes to a temporary name. `name` gives the file its own.
template <class Name>
static bool MakeWholeFile(const std::string& path, const WritePieces_t& write, Name name) {
    const std::string temporary = path + ".quorlin";
    std::FILE* file = std::fopen(temporary.c_str(), "wbx");
    if (file == nullptr) return false;
    std::error_code problem;
    bool isWritten = true;
    write([&](const void* bytes, size_t size) {
        isWritten = isWritten && std::fwrite(bytes, 1, size, file) == size;
        return isWritten;
    });
    if (std::fclose(file) != 0 || !isWritten)
        problem = std::make_error_code(std::errc::io_error);
    else
        name(temporary, problem);
    std::remove(temporary.c_str());
    errno = problem.value();
    return !problem;
}

// Creates a link, which never replaces a file.
bool CreateWholeFile(const std::string& path, const void* bytes, size_t size) {
    const auto write = [&](const AppendBytes_t& append) { append(bytes, size); };
    return MakeWholeFile(path, write, [&path](const std::string& temporary, std::error_code& problem) {
        std::filesystem::create_hard_link(temporary, path, problem);
    });
}

bool ReplaceWholeFile(const std::string& path, const WritePieces_t& write) {
    std::error_code ignored;
    const std::filesystem::file_status status = std::filesystem::symlink_status(path, ignored);
    if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status)) {
        errno = EEXIST;
        return false;
    }
    return MakeWholeFile(path, write, [&path](const std::string& temporary, std::error_code& problem) {
        std::filesystem::rename(temporary, path, problem);
    });
}

struct ClNewFolder::State_t {
    std::string name, temporary;
    std::vector<std::FILE*> files;
    int problem = 0;
    bool isWhole = false;
};

ClNewFolder::ClNewFolder(const std::string& path) : m_state(new State_t{path, path + ".quorlin", {}}) {
    std::error_code problem;
    if (!std::filesystem::create_directory(m_state->temporary, problem)) m_state->problem = EEXIST;
}

ClNewFolder::~ClNewFolder() {
    for (std::FILE* file : m_state->files)
        if (file != nullptr) std::fclose(file);
    std::error_code ignored;
    if (!m_state->isWhole) std::filesystem::remove_all(m_state->temporary, ignored);
}

size_t ClNewFolder::AddFile(const std::string& name) {
    m_state->files.push_back(std::fopen((m_state->temporary + "/" + name).c_str(), "wbx"));
    if (m_state->files.back() == nullptr) m_state->problem = EIO;
    return m_state->files.size() - 1;
}

bool ClNewFolder::Append(size_t file, std::span<const uint8_t> bytes) {
    if (m_state->problem == 0 && std::fwrite(bytes.data(), 1, bytes.size(), m_state->files[file]) != bytes.size())
        m_state->problem = EIO;
    return m_state->problem == 0;
}

bool ClNewFolder::Finish() {
    for (std::FILE* file : m_state->files)
        if (m_state->problem == 0 && std::fflush(file) != 0) m_state->problem = EIO;
    if (m_state->problem == 0 && IsThere(m_state->name)) m_state->problem = EEXIST;
    if (m_state->problem != 0) return false;
    std::error_code problem;
    std::filesystem::rename(m_state->temporary, m_state->name, problem);
    m_state->problem = problem.value();
    m_state->isWhole = !problem;
    return m_state->isWhole;
}

int ClNewFolder::Problem() const { return m_state->problem; }

bool IsThere(const std::string& path) {
    std::error_code ignored;
    return std::filesystem::exists(path, ignored);
}

bool IsFolder(const std::string& path) {
    std::error_code ignored;
    return std::filesystem::is_directory(path, ignored);
}

int WhyNoNewFiles() { return ENOSYS; }

void PrepareStandardStreams() {}

bool IsStandardOutputTerminal() { return false; }

bool IsStandardErrorTerminal() { return false; }

size_t TerminalWidth() { return 0; }

const char* AdviceForRights() { return nullptr; }

std::string KernelVersion() { return {}; }

const char* FirmwareKind() { return nullptr; }

std::FILE* OpenPciNames() { return nullptr; }

bool WriteStandardOutput(const char* bytes, size_t size) {
    return std::fwrite(bytes, 1, size, stdout) == size && std::fflush(stdout) == 0;
}

bool HasForeignRights() { return false; }

// The owner of a file is unknown, so none is accepted.
std::FILE* OpenConfigFile(const char*, const char** refusal) {
    *refusal = nullptr;
    return nullptr;
}

std::FILE* OpenLogFile(const char* path, bool) { return std::fopen(path, "w"); }

// ---- The machine

uint32_t os_GetFirmwareTable(uint32_t, uint32_t, void*, uint32_t, bool* refused) {
    if (refused != nullptr) *refused = false;
    return 0;
}

std::vector<uint32_t> os_ListACPITables() { return {}; }

bool os_ReadACPITable(uint32_t, uint32_t, std::vector<uint8_t>*, bool* refused) {
    *refused = false;
    return false;
}

status_t os_GetEntryAddresses(EntryAddresses_t*, bool* refused) {
    *refused = false;
    return kNotSupported;
}

bool os_IsMemory(uint64_t, uint64_t) { return false; }

uint32_t os_GetProcessorCount() { return 0; }

bool os_ReadCPUID(uint32_t registers[4]) {
    for (int place = 0; place < 4; ++place) registers[place] = 0;
    return false;
}

void os_SetCrashFilter(CrashFilter_t) {}

void os_WriteCrashText(const char*, size_t) {}

// ---- Services for hosts

status_t os_StartProcess(const char*, const char* const*, const char* const*, ProcessRecord_t*) {
    return kNotSupported;
}

status_t os_StartProcessDetached(const char*, const char* const*) { return kFailure; }

status_t os_KillProcess(ProcessRecord_t*) { return kNotSupported; }

status_t os_WaitProcess(ProcessRecord_t*) { return kNotSupported; }

status_t os_SetThreadAffinity(uint32_t) { return kFailure; }

status_t os_GetProcessorAffinity(uint32_t, GroupAffinity_t*) { return kFailure; }

status_t os_GetLocalTime(LocalTime_t*) { return kFailure; }

status_t os_FindFiles(const char*, char***, uint32_t*) { return kFailure; }

status_t os_ReadRegistryString(void*, const char*, const char*, char**, void*) { return kNotSupported; }

status_t os_GetOSName(char**) { return kNotSupported; }

status_t os_GetMachineName(char**) { return kNotSupported; }

status_t os_GetMemorySize(uint64_t*) { return kFailure; }

status_t os_GetCurrentDirectory(char**) { return kFailure; }

SystemFacts_t ReadSystemFacts() { return {}; }

// ---- Cryptography

struct ClHmacKey::State_t {};
ClHmacKey::ClHmacKey(std::span<const uint8_t>) {}
ClHmacKey::~ClHmacKey() = default;
bool ClHmacKey::Compute(std::span<const uint8_t>, std::span<uint8_t, 32>) const { return false; }

bool os_Sha256(std::span<const uint8_t>, std::span<uint8_t, 32>) { return false; }

bool os_FillRandom(std::span<uint8_t>) { return false; }
