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
    return true;
}

// Some file systems notice only now that they are full; others don't support fsync.
static bool Sync(int file) { return fsync(file) == 0 || errno == EINVAL; }

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
    if (!WriteAll(file.Get(), bytes, size) || !Sync(file.Get())) return Made_t::kNo;
    const std::string itself = "/proc/self/fd/" + std::to_string(file.Get());
    return LinkResult(linkat(AT_FDCWD, itself.c_str(), AT_FDCWD, path.c_str(), AT_SYMLINK_FOLLOW) == 0);
}

// Keeps signals from being delivered to this thread.
class ClNoSignals {
  public:
    ClNoSignals() {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &m_before);
    }
    ~ClNoSignals() {
        const int problem = errno;
        pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
        errno = problem;
    }
    ClNoSignals(const ClNoSignals&) = delete;
    ClNoSignals& operator=(const ClNoSignals&) = delete;

  private:
    sigset_t m_before;
};

// Removes a name, even after an exception.
class ClTemporaryName {
  public:
    explicit ClTemporaryName(const std::string& name) : m_name(name) {}
    ~ClTemporaryName() {
        const int problem = errno;
        unlink(m_name.c_str());
        errno = problem;
    }
    ClTemporaryName(const ClTemporaryName&) = delete;
    ClTemporaryName& operator=(const ClTemporaryName&) = delete;

  private:
    const std::string& m_name;
};

// Writes the file with a temporary name, which is removed before any signal but SIGKILL is delivered. `write` writes
// its bytes, and `name` gives it its own name.
template <class Write, class Name>
static Made_t CreateNamed(const std::string& path, mode_t mode, Write write, Name name) {
    const ClNoSignals noSignals;
    std::string temporary = FolderOf(path) + ".quorlin-XXXXXX";
    Made_t made = Made_t::kNo;
    const ClDescriptor file(MoveAbove(mkostemp(temporary.data(), O_CLOEXEC)));
    if (file.IsOpen()) {
        const ClTemporaryName removed(temporary);
        // File systems without modes refuse to set one.
        const bool isSet = fchmod(file.Get(), mode) == 0 || errno == EPERM;
        if (isSet && write(file.Get()) && Sync(file.Get())) made = name(temporary.c_str());
    }
    return made;
}

bool CreateWholeFile(const std::string& path, const void* bytes, size_t size) {
    // Makes a write beyond the limit of file sizes fail instead of killing the process.
    const auto before = std::signal(SIGXFSZ, SIG_IGN);
    Made_t made = CreateNameless(path, bytes, size);
    if (made == Made_t::kNotThisWay)
        made = CreateNamed(
            path, S_IRUSR | S_IWUSR, [&](int file) { return WriteAll(file, bytes, size); },
            [&path](const char* temporary) {
                // link and renameat2 don't replace files. Some file systems support only one of them.
                const Made_t linked = LinkResult(link(temporary, path.c_str()) == 0);
                if (linked != Made_t::kNotThisWay) return linked;
                return LinkResult(renameat2(AT_FDCWD, temporary, AT_FDCWD, path.c_str(), RENAME_NOREPLACE) == 0);
            });
    std::signal(SIGXFSZ, before);
    return made == Made_t::kYes;
}

bool ReplaceWholeFile(const std::string& path, const WritePieces_t& write) {
    struct stat facts;
    if (lstat(path.c_str(), &facts) == 0 && !S_ISREG(facts.st_mode)) {
        errno = EEXIST;
        return false;
    }
    const auto before = std::signal(SIGXFSZ, SIG_IGN);
    constexpr mode_t kForAll = S_IRUSR | S_IWUSR | S_IRGRP | S_IROTH;
    const Made_t made = CreateNamed(
        path, kForAll,
        [&write](int file) {
            int problem = 0;
            write([&](const void* bytes, size_t size) {
                if (problem == 0 && !WriteAll(file, bytes, size)) problem = errno;
                return problem == 0;
            });
            errno = problem;
            return problem == 0;
        },
        [&path](const char* temporary) {
            return std::rename(temporary, path.c_str()) == 0 ? Made_t::kYes : Made_t::kNo;
        });
    std::signal(SIGXFSZ, before);
    return made == Made_t::kYes;
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

struct ClNewFolder::State_t {
    struct File_t {
        std::string name;
        int descriptor;
    };

    ~State_t() {
        for (const File_t& file : files) close(file.descriptor);
        close(folder);
    }
    // Only calls that a signal handler may make.
    void Remove() const {
        for (const File_t& file : files) unlinkat(folder, file.name.c_str(), 0);
        rmdir(temporary.c_str());
    }
    // Keeps the errno of the first step that failed. Returns whether all steps were done.
    bool Step(bool isDone) {
        if (!isDone && problem == 0) problem = errno;
        return problem == 0;
    }

    std::string name, temporary;
    int folder = -1;
    std::vector<File_t> files;
    int problem = 0;
};

// Signals that end the process unless it ignores or handles them.
static constexpr int kEnds[] = {SIGHUP,  SIGINT,  SIGQUIT, SIGALRM,   SIGTERM,
                                SIGXCPU, SIGUSR1, SIGUSR2, SIGVTALRM, SIGPROF};
static const ClNewFolder::State_t* newFolder = nullptr;

// Removes the new folder, and ends the process as the signal would have. It interrupts only code that leaves the state
// of the folder alone.
static void EndWithoutFolder(int signal) {
    newFolder->Remove();
    raise(signal);
}

static void SetEnds(void (*from)(int), void (*to)(int)) {
    struct sigaction action = {};
    action.sa_handler = to;
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    sigfillset(&action.sa_mask);
    for (const int signal : kEnds) {
        struct sigaction present;
        if (sigaction(signal, nullptr, &present) == 0 && present.sa_handler == from)
            sigaction(signal, &action, nullptr);
    }
}

ClNewFolder::ClNewFolder(const std::string& path) : m_state(std::make_unique<State_t>()) {
    const ClNoSignals noSignals;
    State_t& state = *m_state;
    state.name = path;
    while (state.name.size() > 1 && state.name.ends_with('/')) state.name.pop_back();
    state.temporary = FolderOf(state.name) + ".quorlin-XXXXXX";
    if (!state.Step(mkdtemp(state.temporary.data()) != nullptr)) return;
    state.folder = OpenAbove(state.temporary.c_str(), O_RDONLY | O_DIRECTORY);
    state.Step(state.folder >= 0);
    newFolder = &state;
    SetEnds(SIG_DFL, EndWithoutFolder);
}

// Leaves the folder as it is.
static void LetGo() {
    SetEnds(EndWithoutFolder, SIG_DFL);
    newFolder = nullptr;
}

ClNewFolder::~ClNewFolder() {
    if (newFolder == nullptr) return;
    const ClNoSignals noSignals;
    newFolder->Remove();
    LetGo();
}

size_t ClNewFolder::AddFile(const std::string& name) {
    const ClNoSignals noSignals;
    State_t& state = *m_state;
    constexpr int kFlags = O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC;
    const int file = state.problem == 0 ? MoveAbove(openat(state.folder, name.c_str(), kFlags, S_IRUSR | S_IWUSR)) : -1;
    state.Step(file >= 0);
    state.files.push_back({name, file});
    return state.files.size() - 1;
}

bool ClNewFolder::Append(size_t file, std::span<const uint8_t> bytes) {
    if (m_state->problem != 0) return false;
    // Makes a write beyond the limit of file sizes fail instead of killing the process.
    const auto before = std::signal(SIGXFSZ, SIG_IGN);
    m_state->Step(WriteAll(m_state->files[file].descriptor, bytes.data(), bytes.size()));
    std::signal(SIGXFSZ, before);
    return m_state->problem == 0;
}

bool ClNewFolder::Finish() {
    State_t& state = *m_state;
    for (const State_t::File_t& file : state.files)
        if (state.problem == 0) state.Step(Sync(file.descriptor));
    if (state.problem != 0 || !state.Step(Sync(state.folder))) return false;
    const ClNoSignals noSignals;
    if (!state.Step(RenameFolder(state.temporary, state.name))) return false;
    LetGo();
    return true;
}

int ClNewFolder::Problem() const { return m_state->problem; }

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
