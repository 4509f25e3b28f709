// Rows of many images, and runs that don't come to their end.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>

#include "Tests/Support/Images.h"
#include "Tests/Support/Linux/Processes.h"

namespace {

namespace fs = std::filesystem;

// A new folder of the test's own.
std::string Folder() {
    const std::string folder = testing::TempDir() + "rows-of-many";
    fs::remove_all(folder);
    fs::create_directory(folder);
    return folder;
}

// A list of all generated images, `times` times.
std::string ListOf(const std::string& folder, int times) {
    std::string names;
    for (const TableImage_t& image : GeneratedImages()) {
        const std::string name = folder + "/" + image.name;
        std::ofstream(name, std::ios::binary)
            .write(reinterpret_cast<const char*>(image.bytes.data()), static_cast<std::streamsize>(image.bytes.size()));
        names += name + "\n";
    }
    std::ofstream list(folder + "/list");
    for (; times != 0; times--) list << names;
    return folder + "/list";
}

ProgramRun_t RunWithLimit(const std::string& folder, int times, __rlimit_resource resource, rlim_t most) {
    const std::string list = ListOf(folder, times);
    return RunPrepared({QUORLIN_PROGRAM, "facts", "--rows", folder + "/rows", "--image-list", list}, [&] {
        const rlimit limit = {most, most};
        if (setrlimit(resource, &limit) != 0) _exit(99);
    });
}

// An image takes about 4 KB, which must not add up.
TEST(Rows, OfThousandsTakeLittleMemory) {
    const std::string folder = Folder();
    const rlim_t most = IsSanitized() ? RLIM_INFINITY : rlim_t{10} << 20;
    const ProgramRun_t run = RunWithLimit(folder, 300, RLIMIT_AS, most);
    EXPECT_EQ(run.exitCode, 0) << run.errors;
    const std::string machines = ReadWholeFile(folder + "/rows/machines.csv");
    EXPECT_EQ(static_cast<size_t>(std::ranges::count(machines, '\n')), 1 + 300 * GeneratedImages().size());
}

// The run stops at the first write that fails, long before the end of its list.
TEST(Rows, AreAbsentIfTheyDontFit) {
    const std::string folder = Folder();
    const ProgramRun_t run = RunWithLimit(folder, 20000, RLIMIT_FSIZE, 100 << 10);
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_NE(run.errors.find("File too large; try another name or place"), run.errors.npos) << run.errors;
    const auto left = std::distance(fs::directory_iterator(folder), fs::directory_iterator());
    EXPECT_EQ(static_cast<size_t>(left), GeneratedImages().size() + 1);  // and the list
}

// While it waits for names.
TEST(Rows, AreAbsentAfterCtrlC) {
    const std::string folder = Folder();
    int names[2];
    ASSERT_EQ(pipe2(names, O_CLOEXEC), 0);
    const pid_t child = fork();
    if (child == 0) {
        dup2(names[0], STDIN_FILENO);
        execl(QUORLIN_PROGRAM, "quorlin", "facts", "--rows", (folder + "/rows").c_str(), "--image-list", "-", nullptr);
        _exit(127);
    }
    // The temporary folder, which has its files.
    const auto hasBegun = [&] {
        const fs::directory_iterator begun(folder);
        return begun != fs::directory_iterator() && fs::exists(begun->path() / "memory_device.csv");
    };
    for (int tries = 0; tries < 1000 && !hasBegun(); tries++) usleep(10000);
    EXPECT_TRUE(hasBegun());
    kill(child, SIGINT);
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGINT) << status;
    EXPECT_TRUE(fs::is_empty(folder));
    close(names[0]);
    close(names[1]);
}

}  // namespace
