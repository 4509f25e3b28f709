#include "Packages/OS/Program.h"

#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdlib>

#include "Packages/OS/ConfigFile.h"
#include "Packages/OS/OS.h"
#include "Packages/OS/Windows/Windows.h"

#include <shellapi.h>

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
    int count = 0;
    wchar_t** wide = CommandLineToArgvW(GetCommandLineW(), &count);
    if (wide == nullptr) return {argv, argv + argc};
    std::vector<std::string> arguments;
    for (int place = 0; place < count; place++) arguments.push_back(ToUtf8(wide[place]));
    LocalFree(wide);
    return arguments;
}

std::FILE* OpenFile(const std::string& path, const char* mode) {
    // The file's bytes are wanted as they are, whatever the mode says of text.
    return _wfopen(ToWide(path).c_str(), (ToWide(mode) + L"b").c_str());
}

std::FILE* CreateNewFile(const std::string& path) {
    const int file = _wopen(ToWide(path).c_str(), _O_WRONLY | _O_CREAT | _O_EXCL | _O_BINARY, _S_IREAD | _S_IWRITE);
    return file < 0 ? nullptr : _fdopen(file, "wb");
}

bool IsFolder(const std::string& path) {
    const DWORD attributes = GetFileAttributesW(ToWide(path).c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

bool IsThere(const std::string& path) { return GetFileAttributesW(ToWide(path).c_str()) != INVALID_FILE_ATTRIBUTES; }

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

// Who may write to the working folder of a privileged process is settled by the folder's own access list.
FILE* OpenConfigFile(const char* path) { return os_fopen(path, "r"); }

FILE* os_fopen(const char* path, const char* mode) {
    return path == nullptr || mode == nullptr ? nullptr : std::fopen(path, mode);
}
