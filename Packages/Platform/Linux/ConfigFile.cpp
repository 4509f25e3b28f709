#include "Packages/Platform/ConfigFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

static bool IsObeyed(const struct stat& file) {
    if (!S_ISREG(file.st_mode)) return false;
    if (geteuid() != 0) return true;
    return file.st_uid == 0 && (file.st_mode & (S_IWGRP | S_IWOTH)) == 0;
}

FILE* OpenConfigFile(const char* path) {
    // Without O_NONBLOCK a pipe of that name would be waited for. The opened file is asked, not its name, which may
    // have changed hands since.
    const int descriptor = open(path, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (descriptor < 0) return nullptr;
    struct stat file;
    FILE* stream = fstat(descriptor, &file) == 0 && IsObeyed(file) ? fdopen(descriptor, "r") : nullptr;
    if (stream == nullptr) close(descriptor);
    return stream;
}
