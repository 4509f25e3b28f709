#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>

#include "Packages/Platform/Linux/RuntimeFolder.h"
#include "Packages/Platform/Platform.h"
#include "Tests/Packages/Platform/Calls.h"
#include "Tests/Support/Linux/Processes.h"

static const char kName[] = "Global\\QuorlinTestSection";

static HANDLE Create() { return CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, 4, kName); }

static uint32_t* Map(HANDLE section) {
    return static_cast<uint32_t*>(MapViewOfFile(section, FILE_MAP_ALL_ACCESS, 0, 0, 4));
}

static bool IsLeft() {
    const int folder = OpenRuntimeFolder();
    const bool isLeft = faccessat(folder, "section.QuorlinTestSection", F_OK, 0) == 0;
    close(folder);
    return isLeft;
}

TEST(Section, IsOneForAllProcessesAndGoesWithTheLast) {
    HANDLE section = Create();
    ASSERT_NE(section, nullptr) << GetLastError();
    EXPECT_EQ(GetLastError(), ERROR_SUCCESS);
    uint32_t* view = Map(section);
    ASSERT_NE(view, nullptr);
    EXPECT_EQ(*view, 0u);
    *view = 41;
    EXPECT_EQ(InChild([] {
                  HANDLE same = Create();
                  if (GetLastError() != ERROR_ALREADY_EXISTS) return 1;
                  uint32_t* count = Map(same);
                  if (*count != 41) return 2;
                  *count = 42;
                  return UnmapViewOfFile(count) && CloseHandle(same) ? 0 : 3;
              }),
              0);
    EXPECT_EQ(*view, 42u);
    EXPECT_TRUE(CloseHandle(section));
    EXPECT_TRUE(IsLeft()) << "a view holds it";
    EXPECT_TRUE(UnmapViewOfFile(view));
    EXPECT_FALSE(IsLeft());
    EXPECT_EQ(ErrorOf(UnmapViewOfFile(view)), ERROR_INVALID_ADDRESS);
}

TEST(Section, AKilledHolderLeavesTheValueOnlyWhileAnotherHolds) {
    const auto addOne = [] { *Map(Create()) += 1; };
    ClHolder first(addOne), second(addOne);
    first.Kill();
    HANDLE section = Create();
    uint32_t* view = Map(section);
    EXPECT_EQ(*view, 2u);
    second.Kill();
    EXPECT_EQ(*view, 2u);
    UnmapViewOfFile(view);
    CloseHandle(section);
    EXPECT_FALSE(IsLeft());

    ClHolder third(addOne);
    third.Kill();  // nobody is left: what it has written doesn't count
    section = Create();
    EXPECT_EQ(GetLastError(), ERROR_SUCCESS);
    view = Map(section);
    EXPECT_EQ(*view, 0u);
    UnmapViewOfFile(view);
    CloseHandle(section);
}

// A view of what has no memory behind it would end its reader by a signal.
TEST(Section, NeedsRoom) {
    if (!ClFolderOver::IsPossible()) GTEST_SKIP() << "only root can have a /run of its own";
    const ClFolderOver run("/run", "mode=755,size=64k");
    run.Write("full", std::string(65536, 'x'));
    EXPECT_EQ(ErrorOf(Create()), ERROR_DISK_FULL);
    EXPECT_FALSE(IsLeft());
    std::filesystem::remove("/run/full");
    HANDLE section = Create();
    EXPECT_EQ(ErrorOf(section), 0u);
    EXPECT_TRUE(CloseHandle(section));
}

// A host's last destructors may still close what it holds.
TEST(SectionDeathTest, AViewMayBeGivenBackWhenTheProgramHasEnded) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";  // a process that hasn't had a view before
    static uint32_t* view = nullptr;
    const auto end = [] {
        std::atexit([] { _exit(UnmapViewOfFile(view) && !IsLeft() ? 7 : 8); });
        HANDLE section = Create();
        view = Map(section);
        CloseHandle(section);
        std::exit(0);
    };
    EXPECT_EXIT(end(), testing::ExitedWithCode(7), "");
}

TEST(Section, WhatCannotBeIsRefused) {
    const struct {
        const char* what;
        HANDLE file;
        DWORD protection, size;
        const char* name;
        DWORD error;
    } kCases[] = {
        {"of a file",      GetCurrentThread(),   PAGE_READWRITE, 4, kName,         ERROR_NOT_SUPPORTED    },
        {"to be read",     INVALID_HANDLE_VALUE, PAGE_READONLY,  4, kName,         ERROR_INVALID_PARAMETER},
        {"size 0",         INVALID_HANDLE_VALUE, PAGE_READWRITE, 0, kName,         ERROR_INVALID_PARAMETER},
        {"another place",  INVALID_HANDLE_VALUE, PAGE_READWRITE, 4, "Else\\Name",  ERROR_INVALID_NAME     },
        {"a path",         INVALID_HANDLE_VALUE, PAGE_READWRITE, 4, "Global\\a/b", ERROR_INVALID_NAME     },
        {"no name at all", INVALID_HANDLE_VALUE, PAGE_READWRITE, 4, "Global\\",    ERROR_INVALID_NAME     },
    };
    for (const auto& c : kCases) {
        EXPECT_EQ(CreateFileMappingA(c.file, nullptr, c.protection, 0, c.size, c.name), nullptr) << c.what;
        EXPECT_EQ(GetLastError(), c.error) << c.what;
    }
}

TEST(Section, AViewLiesWithinItsSectionAndOneWithoutANameIsNobodyElses) {
    const auto create = [] {
        return CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, 8192, nullptr);
    };
    HANDLE section = create(), other = create();
    const struct {
        DWORD offset;
        SIZE_T size;
        DWORD error;
    } kCases[] = {
        {0,    8192, 0                      },
        {4096, 4096, 0                      },
        {4096, 0,    0                      }, // to its end
        {0,    8193, ERROR_ACCESS_DENIED    },
        {4096, 4097, ERROR_ACCESS_DENIED    },
        {8192, 0,    ERROR_ACCESS_DENIED    },
        {1,    1,    ERROR_INVALID_PARAMETER}, // not at a page
    };
    for (const auto& c : kCases) {
        void* view = MapViewOfFile(section, FILE_MAP_ALL_ACCESS, 0, c.offset, c.size);
        EXPECT_EQ(ErrorOf(view), c.error) << c.offset << " " << c.size;
        if (view == nullptr) continue;
        std::memset(view, 1, 4096);
        EXPECT_TRUE(UnmapViewOfFile(view));
    }
    uint32_t* view = Map(other);
    EXPECT_EQ(*view, 0u);
    EXPECT_TRUE(UnmapViewOfFile(view) && CloseHandle(section) && CloseHandle(other));
}
