// Files, and checks of who could have written them.
#include <fcntl.h>
#include <sys/auxv.h>
#include <sys/stat.h>

#include <cerrno>
#include <charconv>
#include <climits>
#include <cstring>
#include <string_view>

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

// AT_SECURE also covers capabilities of the program's file.
bool HasForeignRights() { return getuid() != geteuid() || getgid() != getegid() || getauxval(AT_SECURE) != 0; }

namespace {

// Whether root or the effective user owns the file. kAnyUser is every user that a user namespace doesn't map.
bool IsOwnerTrusted(const struct stat& file) {
    constexpr uid_t kRoot = 0, kAnyUser = 65534;
    return file.st_uid == kRoot || (file.st_uid == geteuid() && file.st_uid != kAnyUser);
}

// An access control list that lets other users write shows in the group's rights.
bool CanOthersWrite(const struct stat& file) { return (file.st_mode & (S_IWGRP | S_IWOTH)) != 0; }

const char* WhyNotObeyed(const struct stat& file) {
    if (HasForeignRights()) return "this process has rights that its user doesn't have";
    if (!S_ISREG(file.st_mode)) return "it is no plain file";
    if (!IsOwnerTrusted(file)) return "another user owns it";
    if (CanOthersWrite(file)) return "others can write it";
    return nullptr;
}

// Checks the file's folder and all folders above it, up to the root folder. A folder that is its own parent doesn't end
// the search: another user's file system could fake that.
const char* WhyNotReached(const char* path) {
    constexpr const char* kUnknown = "its folder can't be examined";
    constexpr char kAbove[] = "/..";
    const char* slash = std::strrchr(path, '/');
    char place[PATH_MAX] = ".";
    size_t length = slash == nullptr ? 1 : static_cast<size_t>(slash + 1 - path);
    if (length >= sizeof place) return kUnknown;
    if (slash != nullptr) std::memcpy(place, path, length);
    struct stat root, here;
    if (stat("/", &root) != 0) return kUnknown;
    for (bool isAbove = false; stat(place, &here) == 0; isAbove = true) {
        if (!IsOwnerTrusted(here)) return "another user owns its folder, or one above";
        // In a sticky folder others can't rename files of this user or root.
        if (CanOthersWrite(here) && !(isAbove && (here.st_mode & S_ISVTX) != 0))
            return "others can write its folder, or one above";
        if (here.st_dev == root.st_dev && here.st_ino == root.st_ino) return nullptr;
        if (length + sizeof kAbove > sizeof place) break;
        std::memcpy(place + length, kAbove, sizeof kAbove);
        length += sizeof kAbove - 1;
    }
    return kUnknown;
}

// Returns the descriptor that the name means, or -1. The names are links, which OpenLogFile doesn't follow.
int StreamOfName(std::string_view path) {
    constexpr std::string_view kDescriptors = "/dev/fd/";
    if (path == "/dev/stdout") return STDOUT_FILENO;
    if (path == "/dev/stderr") return STDERR_FILENO;
    int number = -1;
    if (path.starts_with(kDescriptors))
        std::from_chars(path.data() + kDescriptors.size(), path.data() + path.size(), number);
    return number;
}

}  // namespace

FILE* OpenConfigFile(const char* path, const char** refusal) {
    // O_NONBLOCK keeps open from waiting for a pipe. The checks use the open file, because its name may be replaced
    // meanwhile.
    ClDescriptor file(path, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY);
    *refusal = nullptr;
    if (!file.IsOpen()) {
        if (errno != ENOENT) *refusal = errno == ELOOP ? "it is a link" : "it can't be read";
        return nullptr;
    }
    struct stat facts;
    *refusal = fstat(file.Get(), &facts) != 0 ? "it can't be read" : WhyNotObeyed(facts);
    if (*refusal == nullptr) *refusal = WhyNotReached(path);
    return *refusal == nullptr ? file.OpenStream("r") : nullptr;
}

FILE* OpenLogFile(const char* path, bool deviceToo) {
    if (const int stream = StreamOfName(path); deviceToo && stream >= 0)
        return ClDescriptor(fcntl(stream, F_DUPFD_CLOEXEC, STDERR_FILENO + 1)).OpenStream("w");
    // No O_TRUNC: only a plain file is emptied.
    ClDescriptor file(path, O_WRONLY | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY, S_IRUSR | S_IWUSR);
    struct stat facts;
    if (!file.IsOpen() || fstat(file.Get(), &facts) != 0) return nullptr;
    const bool isDevice = S_ISCHR(facts.st_mode) || S_ISFIFO(facts.st_mode);
    if (!(S_ISREG(facts.st_mode) ? ftruncate(file.Get(), 0) == 0 : deviceToo && isDevice)) return nullptr;
    return fcntl(file.Get(), F_SETFL, 0) == 0 ? file.OpenStream("w") : nullptr;
}
