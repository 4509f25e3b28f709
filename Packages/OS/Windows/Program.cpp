#include "Packages/OS/Program.h"

#include <fcntl.h>
#include <io.h>

#include <cerrno>
#include <cstdlib>
#include <utility>

#include "Packages/OS/OS.h"
#include "Packages/OS/OSServices.h"
#include "Packages/OS/Windows/OwnerAccess.h"
#include "Packages/OS/Windows/Windows.h"

// The C runtime's parser of the command line, in UTF-16. The shell's needs a DLL that takes longer to load than this
// program.
extern "C" __declspec(dllimport) int __wgetmainargs(int* count, wchar_t*** arguments, wchar_t*** environment,
                                                    int expandsWildcards, int* startInfo);

static std::string ToUtf8(const wchar_t* text) {
    const int size = WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);
    if (size <= 0) return {};
    std::string utf8(static_cast<size_t>(size), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text, -1, utf8.data(), size, nullptr, nullptr);
    utf8.pop_back();
    return utf8;
}

static std::wstring ToWide(const std::string& text) {
    const int size = MultiByteToWideChar(CP_UTF8, 0, text.c_str(), -1, nullptr, 0);
    if (size <= 0) return {};
    std::wstring wide(static_cast<size_t>(size), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, text.c_str(), -1, wide.data(), size);
    wide.pop_back();
    return wide;
}

std::vector<std::string> ProgramArguments(int argc, char** argv) {
    int count = 0, startInfo = 0;
    wchar_t **wide = nullptr, **environment = nullptr;
    if (__wgetmainargs(&count, &wide, &environment, 0, &startInfo) < 0 || wide == nullptr) return {argv, argv + argc};
    std::vector<std::string> arguments;
    for (int place = 0; place < count; place++) arguments.push_back(ToUtf8(wide[place]));
    return arguments;
}

std::FILE* OpenFile(const std::string& path, const char* mode) {
    // Always binary, whatever the mode says.
    return _wfopen(ToWide(path).c_str(), (ToWide(mode) + L"b").c_str());
}

// Folders hold no devices or pipes.
std::FILE* OpenPlainFile(const std::string& path) { return OpenFile(path, "r"); }

// Returns the system's last error as an errno.
static int LastErrno() {
    switch (GetLastError()) {
        case ERROR_FILE_EXISTS:
        case ERROR_ALREADY_EXISTS: return EEXIST;
        case ERROR_FILE_NOT_FOUND:
        case ERROR_PATH_NOT_FOUND:
        case ERROR_INVALID_NAME:
        case ERROR_BAD_PATHNAME: return ENOENT;
        case ERROR_ACCESS_DENIED:
        case ERROR_SHARING_VIOLATION: return EACCES;
        case ERROR_WRITE_PROTECT: return EROFS;
        case ERROR_DISK_FULL:
        case ERROR_HANDLE_DISK_FULL: return ENOSPC;
        default: return EIO;
    }
}

static bool WriteAll(HANDLE file, const void* bytes, size_t size) {
    const auto* next = static_cast<const char*>(bytes);
    while (size != 0) {
        DWORD written = 0;
        if (!WriteFile(file, next, static_cast<DWORD>(size < 1u << 20 ? size : 1u << 20), &written, nullptr))
            return false;
        next += written;
        size -= written;
    }
    return true;
}

// Sets whether the file is deleted when its handle is closed, however the process ends.
static bool SetTemporary(HANDLE file, bool isTemporary) {
    FILE_DISPOSITION_INFO disposition = {isTemporary};
    return SetFileInformationByHandle(file, FileDispositionInfo, &disposition, sizeof disposition) != 0;
}

// A name in the same folder that nothing else has.
static std::wstring TemporaryName(const std::wstring& name) {
    return name.substr(0, name.find_last_of(L"/\\:") + 1) + L".quorlin-" + std::to_wstring(GetCurrentProcessId()) +
           L"-" + std::to_wstring(GetTickCount());
}

// Writes a temporary file in the same folder, where a rename makes no copy, and renames it.
static bool MakeWholeFile(const std::string& path, const WritePieces_t& write, SECURITY_ATTRIBUTES* attributes,
                          DWORD howToRename) {
    const std::wstring name = ToWide(path);
    const std::wstring temporary = TemporaryName(name);
    const HANDLE file = CreateFileW(temporary.c_str(), GENERIC_WRITE | DELETE, 0, attributes, CREATE_NEW,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        errno = LastErrno();
        return false;
    }
    int problem = 0;
    const auto step = [&problem](bool isDone) {
        if (problem == 0 && !isDone) problem = LastErrno();
        return problem == 0;
    };
    if (step(SetTemporary(file, true)))
        write([&](const void* bytes, size_t size) { return problem == 0 && step(WriteAll(file, bytes, size)); });
    const bool isWhole = problem == 0 && step(FlushFileBuffers(file)) && step(SetTemporary(file, false));
    CloseHandle(file);
    if (isWhole && step(MoveFileExW(temporary.c_str(), name.c_str(), howToRename))) return true;
    DeleteFileW(temporary.c_str());
    errno = problem;
    return false;
}

bool CreateWholeFile(const std::string& path, const void* bytes, size_t size) {
    ClOwnerAccess access;
    SECURITY_ATTRIBUTES* const attributes = access.Attributes();
    const auto write = [&](const AppendBytes_t& append) { append(bytes, size); };
    if (attributes != nullptr) return MakeWholeFile(path, write, attributes, 0);
    errno = LastErrno();
    return false;
}

// Who can read the file is up to its folder.
bool ReplaceWholeFile(const std::string& path, const WritePieces_t& write) {
    const DWORD attributes = GetFileAttributesW(ToWide(path).c_str());
    constexpr DWORD kNotPlain = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT | FILE_ATTRIBUTE_DEVICE;
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & kNotPlain) != 0) {
        errno = EEXIST;
        return false;
    }
    return MakeWholeFile(path, write, nullptr, MOVEFILE_REPLACE_EXISTING);
}

struct ClNewFolder::State_t {
    struct File_t {
        std::wstring name;
        HANDLE handle;
    };

    ~State_t() { Close(); }
    void Close() {
        for (File_t& file : files)
            if (file.handle != INVALID_HANDLE_VALUE) CloseHandle(std::exchange(file.handle, INVALID_HANDLE_VALUE));
    }
    void Remove() {
        Close();
        for (const File_t& file : files) DeleteFileW(file.name.c_str());
        RemoveDirectoryW(temporary.c_str());
    }
    // Keeps the errno of the first step that failed. Returns whether all steps were done.
    bool Step(bool isDone) {
        if (!isDone && problem == 0) problem = LastErrno();
        return problem == 0;
    }

    std::wstring name, temporary;
    ClOwnerAccess access;
    std::vector<File_t> files;
    int problem = 0;
};

static ClNewFolder::State_t* newFolder = nullptr;
static SRWLOCK newFolderLock = SRWLOCK_INIT;

class ClNewFolderLock {
  public:
    ClNewFolderLock() { AcquireSRWLockExclusive(&newFolderLock); }
    ~ClNewFolderLock() { ReleaseSRWLockExclusive(&newFolderLock); }
    ClNewFolderLock(const ClNewFolderLock&) = delete;
    ClNewFolderLock& operator=(const ClNewFolderLock&) = delete;
};

// For Ctrl-C and its like, in a thread of its own. Keeps the lock, so that nothing more is written until the process
// ends.
static BOOL WINAPI EndWithoutFolder(DWORD) {
    AcquireSRWLockExclusive(&newFolderLock);
    if (newFolder != nullptr) newFolder->Remove();
    return FALSE;
}

ClNewFolder::ClNewFolder(const std::string& path) : m_state(std::make_unique<State_t>()) {
    const ClNewFolderLock lock;
    State_t& state = *m_state;
    state.name = ToWide(path);
    while (state.name.size() > 1 && (state.name.back() == L'/' || state.name.back() == L'\\')) state.name.pop_back();
    state.temporary = TemporaryName(state.name);
    SECURITY_ATTRIBUTES* const attributes = state.access.Attributes();
    if (!state.Step(attributes != nullptr && CreateDirectoryW(state.temporary.c_str(), attributes) != 0)) return;
    newFolder = &state;
    SetConsoleCtrlHandler(EndWithoutFolder, TRUE);
}

// Leaves the folder as it is.
static void LetGo() {
    SetConsoleCtrlHandler(EndWithoutFolder, FALSE);
    newFolder = nullptr;
}

ClNewFolder::~ClNewFolder() {
    const ClNewFolderLock lock;
    if (newFolder == nullptr) return;
    newFolder->Remove();
    LetGo();
}

size_t ClNewFolder::AddFile(const std::string& name) {
    const ClNewFolderLock lock;
    State_t& state = *m_state;
    const std::wstring path = state.temporary + L"\\" + ToWide(name);
    const HANDLE file = state.problem == 0 ? CreateFileW(path.c_str(), GENERIC_WRITE, 0, state.access.Attributes(),
                                                         CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr)
                                           : INVALID_HANDLE_VALUE;
    state.Step(file != INVALID_HANDLE_VALUE);
    state.files.push_back({path, file});
    return state.files.size() - 1;
}

bool ClNewFolder::Append(size_t file, std::span<const uint8_t> bytes) {
    const ClNewFolderLock lock;
    State_t& state = *m_state;
    return state.problem == 0 && state.Step(WriteAll(state.files[file].handle, bytes.data(), bytes.size()));
}

bool ClNewFolder::Finish() {
    const ClNewFolderLock lock;
    State_t& state = *m_state;
    for (const State_t::File_t& file : state.files)
        if (state.problem == 0) state.Step(FlushFileBuffers(file.handle) != 0);
    if (state.problem != 0) return false;
    state.Close();
    if (!state.Step(MoveFileExW(state.temporary.c_str(), state.name.c_str(), 0) != 0)) return false;
    LetGo();
    return true;
}

int ClNewFolder::Problem() const { return m_state->problem; }

bool IsFolder(const std::string& path) {
    const DWORD attributes = GetFileAttributesW(ToWide(path).c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

bool IsThere(const std::string& path) { return GetFileAttributesW(ToWide(path).c_str()) != INVALID_FILE_ATTRIBUTES; }

int WhyNoNewFiles() {
    constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    const HANDLE folder =
        CreateFileW(L".", FILE_ADD_FILE, kShareAll, nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (folder == INVALID_HANDLE_VALUE) return LastErrno();
    CloseHandle(folder);
    return 0;
}

void PrepareStandardStreams() {
    _setmode(_fileno(stdin), _O_BINARY);
    _setmode(_fileno(stdout), _O_BINARY);
    _setmode(_fileno(stderr), _O_BINARY);
    static const UINT before = GetConsoleOutputCP();
    if (SetConsoleOutputCP(CP_UTF8)) std::atexit([] { SetConsoleOutputCP(before); });
}

bool IsStandardOutputTerminal() { return _isatty(_fileno(stdout)) != 0; }

bool IsStandardErrorTerminal() { return _isatty(_fileno(stderr)) != 0; }

size_t TerminalWidth() {
    CONSOLE_SCREEN_BUFFER_INFO facts;
    if (GetConsoleScreenBufferInfo(GetStdHandle(STD_OUTPUT_HANDLE), &facts) == 0) return 0;
    return static_cast<size_t>(facts.srWindow.Right - facts.srWindow.Left + 1);
}

bool WriteStandardOutput(const char* bytes, size_t size) {
    while (size != 0) {
        const int written = _write(_fileno(stdout), bytes, static_cast<unsigned>(size < 1u << 20 ? size : 1u << 20));
        if (written <= 0) return false;
        bytes += written;
        size -= static_cast<size_t>(written);
    }
    return true;
}

FILE* os_fopen(const char* path, const char* mode) {
    return path == nullptr || mode == nullptr ? nullptr : std::fopen(path, mode);
}

const char* AdviceForRights() {
    HANDLE token = nullptr;
    TOKEN_ELEVATION elevation = {};
    DWORD size = 0;
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token)) return nullptr;
    const bool isKnown = GetTokenInformation(token, TokenElevation, &elevation, sizeof elevation, &size) != FALSE;
    CloseHandle(token);
    return isKnown && elevation.TokenIsElevated == 0 ? "try as administrator" : nullptr;
}

std::string KernelVersion() {
    char* build = nullptr;
    if (os_ReadRegistryString(kLocalMachine, "SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion", "CurrentBuildNumber",
                              &build, nullptr) != kSuccess)
        return {};
    std::string version = "Windows NT build ";
    version += build;
    os_FreeBlock(build);
    return version;
}

// Reads a variable that doesn't exist: the error tells whether the firmware has variables at all.
const char* FirmwareKind() {
    if (GetFirmwareEnvironmentVariableA("", "{00000000-0000-0000-0000-000000000000}", nullptr, 0) != 0) return nullptr;
    return GetLastError() == ERROR_INVALID_FUNCTION ? "BIOS" : "UEFI";
}

std::FILE* OpenPciNames() { return nullptr; }
