// Child processes, and the library as it is loaded into a process and unloaded.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <vector>

#include "CInterface/quorlin_c.h"
#include "Packages/FERROXExternal/StructureStore/Machine.h"
#include "Packages/OS/OSServices.h"
#include "Sources/Quorlin.h"
#include "Tests/Support/Linux/Processes.h"

namespace {

TEST(Process, DetachedOneLeavesNoZombie) {
    const int result = InChild([] {
        EXPECT_EQ(os_StartProcessDetached("/bin/true", nullptr), kSuccess);
        EXPECT_EQ(os_StartProcessDetached("/no/such/program", nullptr), kFailure);
        EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
        EXPECT_EQ(errno, ECHILD);
        return HasFailure() ? 1 : 0;
    });
    EXPECT_EQ(result, 0);
}

// ---- The library, loaded and unloaded

std::string HandlersAndStack() {
    std::string all;
    for (const int number : {SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGTRAP}) {
        struct sigaction action = {};
        sigaction(number, nullptr, &action);
        all += std::to_string(reinterpret_cast<uintptr_t>(action.sa_handler)) + ' ';
    }
    stack_t stack = {};
    sigaltstack(nullptr, &stack);
    return all + std::to_string(reinterpret_cast<uintptr_t>(stack.ss_sp)) + ' ' + std::to_string(stack.ss_flags);
}

template <class Function_t>
Function_t* Find(void* library, const char* name) {
    return reinterpret_cast<Function_t*>(dlsym(library, name));
}

// A package installs a crash report with a signal stack; the C interface installs nothing.
TEST(Library, IsGoneAfterEachOfAThousandLoads) {
    if (IsSanitized()) GTEST_SKIP() << "a sanitizer keeps the library, and handlers of its own";
    const std::vector<uint8_t> dump = DumpOf({0, 5, 1, 0, 9, 0, 0, 127, 4, 2, 0, 0, 0}, 3, 0, 32);
    const int result = InChild([&] {
        const std::string before = HandlersAndStack();
        for (int round = 0; round < 1000; ++round) {
            void* library = dlopen(QUORLIN_LIBRARY, RTLD_NOW);
            if (library == nullptr) return 1;
            const auto open = Find<decltype(quorlin_open_memory)>(library, "quorlin_open_memory");
            const auto close = Find<decltype(quorlin_close)>(library, "quorlin_close");
            const auto use = Find<decltype(SetImageMachine)>(library, "SetImageMachine");
            const auto create = Find<decltype(CreateSmbiosPackage)>(library, "CreateSmbiosPackage");
            const auto destroy = Find<decltype(DestroySmbiosPackage)>(library, "DestroySmbiosPackage");
            quorlin_table* table = nullptr;
            if (open(dump.data(), dump.size(), nullptr, &table) != QUORLIN_OK) return 2;
            close(table);
            if (HandlersAndStack() != before) return 10;  // the C interface installs no handlers
            const ImageSource_t image = {dump.data() + 32, static_cast<uint32_t>(dump.size() - 32), 3, 0, 0};
            if (use(&image) != kSuccess) return 3;
            BaseAbstraction* package = create();
            if (package->Initialize() != kSuccess || HandlersAndStack() == before) return 4;
            if (package->UnInitialize() != kSuccess) return 5;
            destroy(package);
            if (dlclose(library) != 0) return 6;
        }
        if (ReadWholeFile("/proc/self/maps").find("libquorlin") != std::string::npos) return 7;
        return HandlersAndStack() == before ? 0 : 8;
    });
    EXPECT_EQ(result, 0);
}

}  // namespace
