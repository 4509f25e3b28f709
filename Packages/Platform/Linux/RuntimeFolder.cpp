#include "Packages/Platform/Linux/RuntimeFolder.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

// Looks at the open file, not at its name, so that nothing can be exchanged between the look and the use.
static int KeepIfPrivate(int file, mode_t kind, mode_t forbidden) {
    struct stat found;
    if (file < 0) return -1;
    if (fstat(file, &found) == 0 && (found.st_mode & S_IFMT) == kind && found.st_uid == geteuid() &&
        (found.st_mode & forbidden) == 0)
        return file;
    close(file);
    return -1;
}

int OpenPrivateFolder(const char* path) {
    if (mkdir(path, 0700) != 0 && errno != EEXIST) return -1;
    return KeepIfPrivate(open(path, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC), S_IFDIR, 0077);
}

int OpenPrivateFile(int folder, const char* name) {
    return KeepIfPrivate(openat(folder, name, O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0600), S_IFREG,
                         0022);
}

int OpenRuntimeFolder() {
    const uid_t user = geteuid();
    if (user == 0) return OpenPrivateFolder("/run/quorlin");
    char path[64];
    std::snprintf(path, sizeof path, "/run/user/%u", user);
    const bool hasUserFolder = access(path, F_OK) == 0;
    std::snprintf(path, sizeof path, hasUserFolder ? "/run/user/%u/quorlin" : "/dev/shm/quorlin-%u", user);
    return OpenPrivateFolder(path);
}

bool LockFile(int file, int kind) {
    int result;
    do result = flock(file, kind);
    while (result != 0 && errno == EINTR);
    return result == 0;
}

int ReserveSpace(int file, size_t size) {
    int error;
    do error = posix_fallocate(file, 0, static_cast<off_t>(size));
    while (error == EINTR);
    return error;
}
