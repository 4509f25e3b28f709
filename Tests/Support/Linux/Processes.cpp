#include "Tests/Support/Linux/Processes.h"

#include <grp.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <signal.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

// The compiler's own, in a build that counts.
extern "C" [[gnu::weak]] void __gcov_dump();
void SaveCoverage() {
    if (__gcov_dump != nullptr) __gcov_dump();
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

ClHolder::ClHolder(const std::function<void()>& body) {
    int done[2];
    if (pipe(done) != 0) abort();
    m_process = fork();
    if (m_process == 0) {
        body();
        if (write(done[1], "!", 1) != 1) _exit(1);
        for (;;) pause();
    }
    close(done[1]);
    char answer = 0;
    if (read(done[0], &answer, 1) != 1) ADD_FAILURE() << "the child has died";
    close(done[0]);
}

void ClHolder::Kill() {
    if (m_process == 0) return;
    kill(m_process, SIGKILL);
    waitpid(m_process, nullptr, 0);
    m_process = 0;
}

bool BecomeNobody() {
    constexpr unsigned kNobody = 65534;
    return setgroups(0, nullptr) == 0 && setresgid(kNobody, kNobody, kNobody) == 0 &&
           setresuid(kNobody, kNobody, kNobody) == 0;
}

// As root the tests run with a /run of their own, so that they neither see nor disturb the system's services and
// sections. Where that can't be had they use the user's own, under names that nobody else uses.
static bool hasOwnMounts = false;
class ClOwnRun : public testing::Environment {
  public:
    void SetUp() override {
        hasOwnMounts = unshare(CLONE_NEWNS) == 0 && mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
                       mount("none", "/run", "tmpfs", 0, "mode=755") == 0;
        if (!hasOwnMounts) std::printf("The tests share the system's /run.\n");
    }
};
static testing::Environment* const ownRun = testing::AddGlobalTestEnvironment(new ClOwnRun);

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
