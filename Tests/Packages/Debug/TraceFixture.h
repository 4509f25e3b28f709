// A fixture with an empty working folder, no trace handle and no configuration, and what a handle prints.
#pragma once

#include <gtest/gtest.h>

#include <cstdarg>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "Packages/Debug/DebugInternal.h"

class ClTraceTest : public testing::Test {
  protected:
    void SetUp() override {
        m_home = std::filesystem::current_path();
        const testing::TestInfo* test = testing::UnitTest::GetInstance()->current_test_info();
        m_folder = std::filesystem::temp_directory_path() /
                   (std::string("quorlin-") + test->test_suite_name() + "-" + test->name());
        std::filesystem::remove_all(m_folder);
        std::filesystem::create_directory(m_folder);
        std::filesystem::current_path(m_folder);
        DebugResetForTest();
        m_printed.clear();
    }

    void TearDown() override {
        CloseAll();
        DebugResetForTest();
        std::filesystem::current_path(m_home);
        std::filesystem::remove_all(m_folder);
    }

    // Opens a handle that prints into Printed(). Null when it could not be opened.
    DebugHandle_t Open(const char* name) {
        DebugHandle_t handle = nullptr;
        if (DebugLibInit(name, &handle) != kSuccess) return nullptr;
        handle->ConsoleFunction = PrintTo<&m_printed>;
        m_open.push_back(handle);
        return handle;
    }

    void CloseAll() {
        for (DebugHandle_t handle : m_open) EXPECT_EQ(DebugLibExit(handle), kSuccess);
        m_open.clear();
    }

    // What was printed since the last call.
    static std::string Printed() { return std::exchange(m_printed, {}); }

    // A configuration file that any process may obey.
    static void WriteConfig(const std::string& text) {
        WriteFile("debug.conf", text);
        using std::filesystem::perms;
        std::filesystem::permissions("debug.conf", perms::owner_read | perms::owner_write);
    }

    static void WriteFile(const char* path, const std::string& text) { std::ofstream(path, std::ios::binary) << text; }

    static std::string ReadFile(const char* path) {
        std::ifstream file(path);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    template <std::string* kText>
    static int PrintTo(const char* format, ...) {
        char text[1024];
        va_list arguments;
        va_start(arguments, format);
        const int length = std::vsnprintf(text, sizeof text, format, arguments);
        va_end(arguments);
        *kText += text;
        return length;
    }

  private:
    inline static std::string m_printed;
    std::filesystem::path m_home, m_folder;
    std::vector<DebugHandle_t> m_open;
};
