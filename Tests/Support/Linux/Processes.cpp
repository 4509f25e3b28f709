#include "Tests/Support/Linux/Processes.h"

#include <fcntl.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sched.h>
#include <sys/mman.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <iterator>

// Defined by the compiler in coverage builds.
extern "C" [[gnu::weak]] void __gcov_dump();
bool HasCoverage() { return __gcov_dump != nullptr; }
void SaveCoverage() {
    if (HasCoverage()) __gcov_dump();
}

int InChild(const std::function<int()>& body) {
    const uid_t user = geteuid();
    const pid_t process = fork();
    if (process == 0) {
        const int result = body();
        if (geteuid() == user) SaveCoverage();  // another user can't write the files
        _exit(result);
    }
    int status = 0;
    waitpid(process, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

ProgramRun_t RunPrepared(const std::vector<std::string>& words, const std::function<void()>& prepare) {
    const int output = memfd_create("output", MFD_CLOEXEC), errors = memfd_create("errors", MFD_CLOEXEC);
    const int result = InChild([&] {
        std::vector<char*> arguments;
        for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
        arguments.push_back(nullptr);
        const int input = open("/dev/null", O_RDONLY | O_CLOEXEC);
        dup2(input, STDIN_FILENO);
        dup2(output, STDOUT_FILENO);
        dup2(errors, STDERR_FILENO);
        alarm(60);
        prepare();
        execv(arguments[0], arguments.data());
        return 127;
    });
    const auto text = [](int file) {
        std::string bytes(static_cast<size_t>(lseek(file, 0, SEEK_END)), '\0');
        if (pread(file, bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size())) bytes = "(unreadable)";
        close(file);
        return bytes;
    };
    return {result, text(output), text(errors)};
}

bool BecomeNobody() {
    constexpr unsigned kNobody = 65534;
    return setgroups(0, nullptr) == 0 && setresgid(kNobody, kNobody, kNobody) == 0 &&
           setresuid(kNobody, kNobody, kNobody) == 0;
}

void ForbidCall(const SystemCall_t& call, uint32_t action) {
    sock_filter code[] = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, call.call, 0, 3),
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS,
                 static_cast<uint32_t>(offsetof(seccomp_data, args) + call.argument * sizeof(uint64_t))),
        BPF_JUMP(static_cast<uint16_t>(BPF_JMP | BPF_K | (call.bits != 0 ? BPF_JSET : BPF_JGE)), call.bits, 0, 1),
        BPF_STMT(BPF_RET | BPF_K, action),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    };
    const sock_fprog filter = {std::size(code), code};
    if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 || prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) != 0)
        _exit(99);
}

// As root the tests have their own mounts.
static bool hasOwnMounts = false;
class ClOwnMounts : public testing::Environment {
  public:
    void SetUp() override {
        hasOwnMounts = unshare(CLONE_NEWNS) == 0 && mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
    }
};
static testing::Environment* const ownMounts = testing::AddGlobalTestEnvironment(new ClOwnMounts);

ClFolderOver::ClFolderOver(const char* path, const char* options) : m_path(path) {
    EXPECT_TRUE(hasOwnMounts && mount("none", path, "tmpfs", 0, options) == 0) << path;
}

ClFolderOver::~ClFolderOver() {
    if (hasOwnMounts) umount2(m_path.c_str(), MNT_DETACH);
}

bool ClFolderOver::IsPossible() { return hasOwnMounts; }

void ClFolderOver::Write(const std::string& name, const std::string& bytes) const {
    namespace fs = std::filesystem;
    const fs::path path = m_path + "/" + name;
    fs::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << bytes;
    fs::permissions(path, fs::perms::owner_read | fs::perms::owner_write);
}
