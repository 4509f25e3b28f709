// Files, and which of them may be obeyed.
#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>

#include "Packages/OS/ConfigFile.h"
#include "Packages/OS/Linux/Descriptor.h"
#include "Packages/OS/OS.h"

int MoveAbove(int file) {
    if (file < 0 || file > STDERR_FILENO) return file;
    const int above = fcntl(file, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    const int problem = errno;
    close(file);
    errno = problem;
    return above;
}

int OpenAbove(const char* path, int flags, mode_t mode) { return MoveAbove(open(path, flags | O_CLOEXEC, mode)); }

std::FILE* OpenStreamAbove(const char* path, const char* mode) {
    std::FILE* stream = std::fopen(path, mode);
    if (stream == nullptr || fileno(stream) > STDERR_FILENO) return stream;
    const int above = fcntl(fileno(stream), F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    std::fclose(stream);
    return above < 0 ? nullptr : fdopen(above, mode);
}

FILE* os_fopen(const char* path, const char* mode) {
    return path == nullptr || mode == nullptr ? nullptr : OpenStreamAbove(path, mode);
}

static bool IsObeyed(const struct stat& file) {
    if (!S_ISREG(file.st_mode)) return false;
    if (geteuid() != 0) return true;
    return file.st_uid == 0 && (file.st_mode & (S_IWGRP | S_IWOTH)) == 0;
}

FILE* OpenConfigFile(const char* path) {
    // Without O_NONBLOCK a pipe of that name would be waited for. The opened file is asked, not its name, which may
    // have changed hands since.
    ClDescriptor file(path, O_RDONLY | O_NONBLOCK | O_NOCTTY);
    struct stat facts;
    if (!file.IsOpen() || fstat(file.Get(), &facts) != 0 || !IsObeyed(facts)) return nullptr;
    FILE* stream = fdopen(file.Get(), "r");
    if (stream != nullptr) file.Release();
    return stream;
}
