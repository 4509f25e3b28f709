#include "Packages/OS/Program.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>

#include "Packages/OS/Linux/Descriptor.h"

std::vector<std::string> ProgramArguments(int argc, char** argv) { return {argv, argv + argc}; }

std::FILE* OpenFile(const std::string& path, const char* mode) { return OpenStreamAbove(path.c_str(), mode); }

std::FILE* CreateNewFile(const std::string& path) {
    const int file = OpenAbove(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, S_IRUSR | S_IWUSR);
    return file < 0 ? nullptr : fdopen(file, "w");
}

bool IsFolder(const std::string& path) {
    struct stat facts = {};
    return stat(path.c_str(), &facts) == 0 && S_ISDIR(facts.st_mode);
}

bool IsThere(const std::string& path) { return access(path.c_str(), F_OK) == 0; }

// O_PATH gives a descriptor that can neither be read nor written, in any root and without rights.
void PrepareStandardStreams() {
    int file;
    do file = open("/", O_PATH);
    while (file >= 0 && file <= STDERR_FILENO);
    if (file >= 0) close(file);
    std::signal(SIGPIPE, SIG_IGN);
}

bool IsStandardOutputTerminal() { return isatty(STDOUT_FILENO) == 1; }

bool IsStandardErrorTerminal() { return isatty(STDERR_FILENO) == 1; }

size_t TerminalWidth() {
    winsize size = {};
    return ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

bool WriteStandardOutput(const char* bytes, size_t size) {
    while (size != 0) {
        const ssize_t written = write(STDOUT_FILENO, bytes, size);
        if (written < 0 && errno == EINTR) continue;
        if (written < 0 && errno == EAGAIN) {
            // Whoever shares the stream has made it one that doesn't wait.
            pollfd output = {STDOUT_FILENO, POLLOUT, 0};
            if (poll(&output, 1, -1) < 0 && errno != EINTR) return false;
            continue;
        }
        if (written < 0) return false;
        bytes += written;
        size -= static_cast<size_t>(written);
    }
    return true;
}
