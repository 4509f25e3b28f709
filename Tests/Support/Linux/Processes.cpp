#include "Tests/Support/Linux/Processes.h"

#include <grp.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <signal.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

int InChild(const std::function<int()>& body) {
    const pid_t process = fork();
    if (process == 0) _exit(body());
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
class ClOwnRun : public testing::Environment {
  public:
    void SetUp() override {
        if (unshare(CLONE_NEWNS) == 0 && mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
            mount("none", "/run", "tmpfs", 0, "mode=755") == 0)
            return;
        std::printf("The tests share the system's /run.\n");
    }
};
static testing::Environment* const ownRun = testing::AddGlobalTestEnvironment(new ClOwnRun);
