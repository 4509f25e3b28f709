// One handle from several threads. Built with the thread sanitizer this also shows that none of them races.
#include <algorithm>
#include <atomic>
#include <sstream>
#include <thread>

#include "Packages/Container/Container.h"
#include "Tests/Packages/Debug/TraceFixture.h"

using Threads = ClTraceTest;

TEST_F(Threads, OpenHandlesAndContainersAndWriteWholeLines) {
    constexpr int kThreads = 4, kLines = 500;
    DebugHandle_t handle = Open("Shared");
    std::FILE* stream = std::fopen("shared.log", "wb");
    EXPECT_EQ(DebugSetPackageStream(handle, stream), kSuccess);
    handle->OutputType = kFileOutput;
    handle->TraceMask = kEntry;
    handle->TraceFormat = kFormatFunction;
    std::vector<std::string> expected;
    std::vector<std::thread> threads;
    std::atomic<int> done = 0;
    for (int t = 0; t < kThreads; ++t) {
        for (int i = 0; i < kLines; ++i)
            expected.push_back(" Fn:Run thread " + std::to_string(t) + " line " + std::to_string(i));
        threads.emplace_back([&done, handle, t] {
            for (int i = 0; i < kLines; ++i) {
                DebugHandle_t often = nullptr, own = nullptr;
                ContainerParams_t params = {"Threads", kPlainList, kInt32Data, 0, nullptr, nullptr};
                ContainerHandle_t list = nullptr;
                const bool isOpen = DebugLibInit("Often", &often) == kSuccess &&
                                    DebugLibInit(std::to_string(t).c_str(), &own) == kSuccess &&
                                    InitContainer(&params, &list, 0) == kSuccess;
                QUORLIN_TRACE(handle, "", "Run", kEntry, "thread %d line %d", t, i);
                QUORLIN_TRACE(often, "", "Run", kInfo, "not to be seen");
                const bool isClosed = isOpen && UnInitContainer(list) == kSuccess && DebugLibExit(own) == kSuccess &&
                                      DebugLibExit(often) == kSuccess;
                done += isClosed;
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(done, kThreads * kLines);
    CloseAll();
    std::fclose(stream);
    std::istringstream file(ReadFile("shared.log"));
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);) lines.push_back(line);
    expected.emplace_back();  // a line begins with its newline
    std::ranges::sort(lines);
    std::ranges::sort(expected);
    EXPECT_EQ(lines, expected);
}
