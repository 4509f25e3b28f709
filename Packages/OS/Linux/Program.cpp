#include "Packages/OS/Program.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>

#include "Packages/OS/Linux/Descriptor.h"

std::vector<std::string> ProgramArguments(int argc, char** argv) { return {argv, argv + argc}; }

std::FILE* OpenFile(const std::string& path, const char* mode) { return OpenStreamAbove(path.c_str(), mode); }

std::FILE* OpenPlainFile(const std::string& path) {
    struct stat facts;
    if (lstat(path.c_str(), &facts) != 0) return nullptr;
    if (S_ISREG(facts.st_mode)) {
        ClDescriptor file(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY);
        if (!file.IsOpen()) return nullptr;
        // The name may have been replaced since it was looked at.
        if (fstat(file.Get(), &facts) == 0 && S_ISREG(facts.st_mode)) return file.OpenStream("r");
    }
    errno = EINVAL;
    return nullptr;
}

static bool WriteAll(int file, const void* bytes, size_t size) {
    const auto* next = static_cast<const char*>(bytes);
    while (size != 0) {
        const ssize_t written = write(file, next, size);
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return false;
        next += written;
        size -= static_cast<size_t>(written);
    }
    // Some file systems notice only now that they are full; others don't support fsync.
    return fsync(file) == 0 || errno == EINVAL;
}

// Returns the folder of a path with its last slash; "./" if it has none.
static std::string FolderOf(const std::string& path) {
    const size_t slash = path.rfind('/');
    return slash == path.npos ? "./" : path.substr(0, slash + 1);
}

enum class Made_t { kYes, kNo, kNotThisWay };

static Made_t LinkResult(bool isLinked) {
    return isLinked ? Made_t::kYes : errno == EEXIST ? Made_t::kNo : Made_t::kNotThisWay;
}

// Uses a file without a name, which vanishes if the process dies.
static Made_t CreateNameless(const std::string& path, const void* bytes, size_t size) {
    const ClDescriptor file(FolderOf(path).c_str(), O_TMPFILE | O_WRONLY, S_IRUSR | S_IWUSR);
    if (!file.IsOpen()) return Made_t::kNotThisWay;
    if (!WriteAll(file.Get(), bytes, size)) return Made_t::kNo;
    const std::string itself = "/proc/self/fd/" + std::to_string(file.Get());
    return LinkResult(linkat(AT_FDCWD, itself.c_str(), AT_FDCWD, path.c_str(), AT_SYMLINK_FOLLOW) == 0);
}

// Uses a temporary name, which is removed before any signal but SIGKILL is delivered.
static Made_t CreateNamed(const std::string& path, const void* bytes, size_t size) {
    sigset_t all, before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    std::string temporary = FolderOf(path) + ".quorlin-XXXXXX";
    Made_t made = Made_t::kNo;
    const ClDescriptor file(MoveAbove(mkostemp(temporary.data(), O_CLOEXEC)));
    if (file.IsOpen()) {
        // link and renameat2 don't replace files. Some file systems support only one of them.
        if (WriteAll(file.Get(), bytes, size)) made = LinkResult(link(temporary.c_str(), path.c_str()) == 0);
        if (made == Made_t::kNotThisWay)
            made = LinkResult(renameat2(AT_FDCWD, temporary.c_str(), AT_FDCWD, path.c_str(), RENAME_NOREPLACE) == 0);
        const int problem = errno;
        unlink(temporary.c_str());
        errno = problem;
    }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return made;
}

bool CreateWholeFile(const std::string& path, const void* bytes, size_t size) {
    // Makes a write beyond the limit of file sizes fail instead of killing the process.
    const auto before = std::signal(SIGXFSZ, SIG_IGN);
    Made_t made = CreateNameless(path, bytes, size);
    if (made == Made_t::kNotThisWay) made = CreateNamed(path, bytes, size);
    std::signal(SIGXFSZ, before);
    return made == Made_t::kYes;
}

// Writes a new file into a folder.
static bool WriteInFolder(int folder, const NewFile_t& file) {
    const ClDescriptor opened(
        MoveAbove(openat(folder, file.name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR)));
    return opened.IsOpen() && WriteAll(opened.Get(), file.bytes.data(), file.bytes.size());
}

// Gives the folder its name without replacing another. Some file systems can't rename so, and there rename replaces an
// empty folder alone.
static bool RenameFolder(const std::string& from, const std::string& to) {
    if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return true;
    if (errno != EINVAL && errno != ENOSYS) return false;
    struct stat facts;
    if (lstat(to.c_str(), &facts) == 0) {
        errno = EEXIST;
        return false;
    }
    return std::rename(from.c_str(), to.c_str()) == 0;
}

// The temporary folder is removed before any signal but SIGKILL is delivered.
bool CreateWholeFolder(const std::string& path, std::span<const NewFile_t> files) {
    sigset_t all, before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    const auto beforeLimit = std::signal(SIGXFSZ, SIG_IGN);
    std::string name = path;
    while (name.size() > 1 && name.ends_with('/')) name.pop_back();
    std::string temporary = FolderOf(name) + ".quorlin-XXXXXX";
    bool isWhole = false;
    if (mkdtemp(temporary.data()) != nullptr) {
        const ClDescriptor folder(temporary.c_str(), O_RDONLY | O_DIRECTORY);
        isWhole = folder.IsOpen();
        for (const NewFile_t& file : files) isWhole = isWhole && WriteInFolder(folder.Get(), file);
        isWhole = isWhole && (fsync(folder.Get()) == 0 || errno == EINVAL) && RenameFolder(temporary, name);
        if (!isWhole) {
            const int problem = errno;
            for (const NewFile_t& file : files) unlinkat(folder.Get(), file.name.c_str(), 0);
            rmdir(temporary.c_str());
            errno = problem;
        }
    }
    const int problem = errno;
    // A signal that is blocked waits even if it is ignored, so it must be delivered before it isn't ignored any more.
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    std::signal(SIGXFSZ, beforeLimit);
    errno = problem;
    return isWhole;
}

bool IsFolder(const std::string& path) {
    struct stat facts = {};
    return stat(path.c_str(), &facts) == 0 && S_ISDIR(facts.st_mode);
}

bool IsThere(const std::string& path) { return access(path.c_str(), F_OK) == 0; }

int WhyNoNewFiles() { return access(".", W_OK | X_OK) == 0 ? 0 : errno; }

// O_PATH opens a descriptor that can't be read or written. It needs no rights and works in any root folder.
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

const char* AdviceForRights() { return geteuid() == 0 ? nullptr : "try as root"; }

bool WriteStandardOutput(const char* bytes, size_t size) {
    while (size != 0) {
        const ssize_t written = write(STDOUT_FILENO, bytes, size);
        if (written < 0 && errno == EINTR) continue;
        if (written < 0 && errno == EAGAIN) {
            // Another process that shares the stream made it non-blocking.
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

std::string KernelVersion() {
    utsname system;
    if (uname(&system) != 0) return {};
    return std::string(system.sysname).append(" ").append(system.release);
}

const char* FirmwareKind() {
    if (IsThere("/sys/firmware/efi")) return "UEFI";
    return IsThere("/sys/firmware") ? "BIOS" : nullptr;
}

std::FILE* OpenPciNames() {
    for (const char* path : {"/usr/share/misc/pci.ids", "/usr/share/hwdata/pci.ids"})
        if (std::FILE* file = OpenFile(path, "r"); file != nullptr) return file;
    return nullptr;
}
