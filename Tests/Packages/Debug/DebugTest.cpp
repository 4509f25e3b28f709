// Handles, their settings, and the lines that they write.
#include <cinttypes>
#include <cstring>
#include <optional>

#include "Packages/OS/OS.h"
#include "Tests/Packages/Debug/TraceFixture.h"

static std::string internalText, calledWith;

static void Callback(uint32_t level, const char* message, uint32_t size) {
    calledWith = std::to_string(level) + " " + std::to_string(size) + " " + message;
}

// The log files that a host opens itself.
struct Streams_t {
    std::FILE *package = std::fopen("package.log", "w"), *global = std::fopen("global.log", "w");
    explicit Streams_t(DebugHandle_t handle) {
        EXPECT_EQ(DebugSetPackageStream(handle, package), kSuccess);
        EXPECT_EQ(DebugSetGlobalStreamAll(global), kSuccess);
    }
    ~Streams_t() {
        std::fclose(package);
        std::fclose(global);
    }
};

class ClDebug : public ClTraceTest {
  protected:
    static constexpr auto PrintInternal = PrintTo<&internalText>;
};

TEST_F(ClDebug, AFreshHandleHasItsDefaultsAndIsSilent) {
    DebugHandle_t handle = Open("A");
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(handle->CallbackMask, 63u);  // the other masks: see the test of the configuration's tokens
    EXPECT_EQ(DebugTrace(handle, "", "F", 1, 63, "m"), kSuccess);
    EXPECT_EQ(Printed(), "");

    // The default console is standard output.
    ASSERT_EQ(DebugLibInit("B", &handle), kSuccess);
    handle->TraceMask = kInfo;
    handle->TraceFormat = kFormatTags;
    testing::internal::CaptureStdout();
    DebugTrace(handle, "", "F", 1, kInfo, "%s", "m");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "\n Info  m");
    EXPECT_EQ(DebugLibExit(handle), kSuccess);
}

TEST_F(ClDebug, HeaderHasThePartsThatTheFormatNames) {
    const struct {
        const char* what;
        uint32_t format, level, line;
        uint64_t mask;
        const char *function, *text;
    } kCases[] = {
        {"nothing",               0,  1,  7,          63, "Fun",   "\n m"                                        },
        {"tags",                  8,  1,  7,          63, "Fun",   "\n -->  m"                                   },
        {"function",              1,  1,  7,          63, "Fun",   "\n Fn:Fun m"                                 },
        {"no function",           1,  1,  7,          63, nullptr, "\n Fn: m"                                    },
        {"line",                  2,  1,  7,          63, "Fun",   "\n Ln:7 m"                                   },
        {"line of six digits",    2,  1,  4294967295, 63, "Fun",   "\n Ln:429496 m"                              },
        {"all but the time",      11, 32, 12,         63, "Fun",   "\n <--  Fn:Fun Ln:12 m"                      },
        {"order of the tags",     8,  63, 7,          63, "Fun",   "\n Info  PARAM  WARN  **ERROR**  -->  <--  m"},
        {"tags in the mask only", 8,  48, 7,          16, "Fun",   "\n **ERROR**  m"                             },
        {"unknown level bits",    8,  66, 7,          63, "Fun",   "\n Info  m"                                  },
    };
    DebugHandle_t handle = Open("A");
    for (const auto& c : kCases) {
        handle->TraceFormat = c.format;
        handle->TraceMask = c.mask;
        DebugTrace(handle, "file", c.function, c.line, c.level, "m");
        EXPECT_EQ(Printed(), c.text) << c.what;
    }

    handle->TraceFormat = kFormatFunction | kFormatLine;
    DebugTrace(handle, "file", std::string(200, 'f').c_str(), 7, kInfo, "m");
    EXPECT_EQ(Printed(), "\n Fn:" + std::string(94, 'f') + " m");  // 99 characters, and the line number is lost
    handle->TraceFormat = 0;
    for (const size_t length : {255u, 256u, 5000u}) {
        DebugTrace(handle, "", "F", 1, kInfo, "%s", std::string(length, 'x').c_str());
        EXPECT_EQ(Printed(), "\n " + std::string(255, 'x')) << length;
    }
}

TEST_F(ClDebug, TimeIsTheClockOrNA) {
    static status_t clockStatus;
    DebugHandle_t handle = Open("A");
    handle->TraceFormat = kFormatTime;
    handle->TraceMask = kInfo;
    for (const auto& [status, text] : {
             std::pair(kSuccess, "\n TS:18446744073709551615 m"), {kFailure, "\n TS:NA m"}
    }) {
        clockStatus = status;
        const auto clock =
            std::exchange(debugClock, [](uint64_t* milliseconds) { return *milliseconds = UINT64_MAX, clockStatus; });
        DebugTrace(handle, "", "F", 1, kInfo, "m");
        debugClock = clock;
        EXPECT_EQ(Printed(), text);
    }
}

TEST_F(ClDebug, CallbackWorksWhileOutputsAreOff) {
    const struct {
        const char* what;
        uint64_t traceMask, outputType, callbackMask;
        uint32_t level;
        const char *calledWith, *printed;
    } kCases[] = {
        {"no output mask",        0,  1, 63, 48, "48 281 m 5", ""      },
        {"no output",             63, 0, 63, 2,  "2 281 m 5",  ""      },
        {"both",                  2,  1, 63, 2,  "2 281 m 5",  "\n m 5"},
        {"the callback's levels", 0,  1, 16, 48, "16 281 m 5", ""      },
        {"other levels",          48, 1, 2,  48, "",           "\n m 5"},
    };
    DebugHandle_t handle = Open("A");
    handle->TraceFormat = 0;
    ASSERT_EQ(DebugSetCallback(handle, Callback), kSuccess);
    for (const auto& c : kCases) {
        handle->TraceMask = c.traceMask;
        handle->OutputType = c.outputType;
        DebugSetCallbackMask(handle, c.callbackMask);
        calledWith.clear();
        EXPECT_EQ(DebugTrace(handle, "", "F", 1, c.level, "m %d", 5), kSuccess) << c.what;
        EXPECT_EQ(calledWith, c.calledWith) << c.what;
        EXPECT_EQ(Printed(), c.printed) << c.what;
    }
    ASSERT_EQ(DebugSetCallback(handle, nullptr), kSuccess);
    calledWith.clear();
    DebugTrace(handle, "", "F", 1, kError, "m");
    EXPECT_EQ(calledWith, "");
}

TEST_F(ClDebug, EachOutputGetsTheLineThatItsBitAsksFor) {
    const struct {
        uint64_t outputType;
        uint32_t flags;
        const char *console, *internal, *package, *global;
    } kCases[] = {
        {0, 8,  "",     "",     "",     ""    },
        {1, 8,  "\n m", "",     "",     ""    },
        {2, 8,  "",     "",     "\n m", "\n m"},
        {2, 0,  "",     "",     "",     "\n m"}, // LogToPackageStream is off
        {4, 8,  "",     "",     "",     ""    }, // the internal output needs another output, too
        {5, 8,  "\n m", "\n m", "",     ""    },
        {6, 8,  "",     "\n m", "\n m", "\n m"},
        {7, 24, "\n m", "\n m", "\n m", "\n m"},
    };
    for (const auto& c : kCases) {
        DebugHandle_t handle = Open("A");
        std::optional<Streams_t> streams(handle);
        ASSERT_EQ(DebugSetInternalFunction(handle, PrintInternal), kSuccess);
        handle->TraceFormat = 0;
        handle->TraceMask = kInfo;
        handle->OutputType = c.outputType;
        handle->Flags = c.flags;
        internalText.clear();
        DebugTrace(handle, "", "F", 1, kInfo, "m");
        streams.reset();
        EXPECT_EQ(Printed(), c.console) << c.outputType;
        EXPECT_EQ(internalText, c.internal) << c.outputType;
        EXPECT_EQ(ReadFile("package.log"), c.package) << c.outputType;
        EXPECT_EQ(ReadFile("global.log"), c.global) << c.outputType;
        CloseAll();
    }
}

TEST_F(ClDebug, FlushingShowsALineAtOnce) {
    DebugHandle_t handle = Open("A");
    const Streams_t streams(handle);
    DebugSetTraceMask(handle, kInfo, true);
    DebugSetTraceFormat(handle, kAllFormats, false);
    DebugSetOutputType(handle, kFileOutput, true);
    DebugTrace(handle, "", "F", 1, kInfo, "1");
    // A line that isn't flushed may have reached the file in part, but not as a whole.
    EXPECT_NE(ReadFile("package.log"), "\n 1");
    DebugSetFlag(handle, kFlagFlush, true);
    DebugTrace(handle, "", "F", 1, kInfo, "2");
    EXPECT_EQ(ReadFile("package.log"), "\n 1\n 2");
    EXPECT_NE(ReadFile("global.log"), "\n 1\n 2");
    DebugSetGlobalFlush(true);
    DebugTrace(handle, "", "F", 1, kInfo, "3");
    EXPECT_EQ(ReadFile("global.log"), "\n 1\n 2\n 3");
}

TEST_F(ClDebug, AHandleOpenedTwiceLivesUntilItsSecondExit) {
    DebugHandle_t other = Open("B"), first = nullptr, second = nullptr;
    ASSERT_EQ(DebugLibInit("A", &first), kSuccess);
    ASSERT_EQ(DebugLibInit("A", &second), kSuccess);
    EXPECT_EQ(first, second);
    EXPECT_EQ(DebugLibExit(first), kSuccess);
    EXPECT_EQ(DebugSetTraceMask(second, 1, true), kSuccess);
    EXPECT_EQ(DebugLibExit(second), kSuccess);

    // A handle with the largest count of references takes no more.
    other->RefCount = UINT16_MAX;
    EXPECT_EQ(DebugLibInit("B", &second), kFailure);
    EXPECT_EQ(second, nullptr);
    other->RefCount = 1;
}

TEST_F(ClDebug, NullAndUnknownHandlesAreRefused) {
    DebugHandle_t handle = nullptr;
    for (const status_t status : {DebugLibInit(nullptr, &handle), DebugLibInit("A", nullptr), DebugLibExit(nullptr),
                                  DebugTrace(nullptr, "", "F", 1, 63, "m"), GetDebugLibVersion(nullptr),
                                  DebugDumpValues(nullptr, 1, "", 1, "", "", 0)})
        EXPECT_EQ(status, kNullPointer);
    DebugRecord_t unknown = {};
    EXPECT_EQ(DebugLibExit(&unknown), kFailure);
    EXPECT_EQ(DebugSetTraceMask(&unknown, 1, true), kBadValue);
    EXPECT_EQ(DebugDumpValues(&unknown, 1, "", 1, "", "", 1), kBadValue);
    EXPECT_EQ(DebugSetAllTraceMask(63, true), kSuccess);  // of no handles
}

// What a setter does to a locked handle.
enum class Locked_t { Refused, PassedOver, Changed };

TEST_F(ClDebug, EachSetterChangesItsHandlesOrRefuses) {
#define CALL(...) []([[maybe_unused]] DebugHandle_t h) -> status_t { return __VA_ARGS__; }
#define SETTER(function, locked, good, bad, status) \
    { #function, locked, #good[1] == 'h', CALL(function good), CALL(function bad), status }
#define SETTER_OF_ANYTHING(function, locked, good) \
    { #function, locked, #good[1] == 'h', CALL(function good), nullptr, kSuccess }
    using enum Locked_t;
    const struct {
        const char* what;
        Locked_t locked;
        bool ofOneHandle;
        status_t (*good)(DebugHandle_t h);  // changes a fresh handle
        status_t (*bad)(DebugHandle_t h);   // has an argument that is refused with `badStatus`; may be null
        status_t badStatus;
    } kCases[] = {
        SETTER(DebugSetTraceMask, Refused, (h, 63, true), (h, 64, true), kBadValue),
        SETTER(DebugSetOutputType, Refused, (h, 6, true), (h, 8, true), kBadValue),
        SETTER(DebugSetTraceFormat, Refused, (h, 4, false), (h, 16, true), kBadValue),
        SETTER(DebugSetFlag, Changed, (h, 1, true), (h, 64, true), kBadValue),
        SETTER_OF_ANYTHING(DebugSetCallback, Refused, (h, Callback)),
        SETTER_OF_ANYTHING(DebugSetCallbackMask, Refused, (h, 0)),
        SETTER(DebugSetConsoleFunction, Refused, (h, PrintInternal), (h, nullptr), kNullPointer),
        SETTER(DebugSetFileFunction, Refused, (h, std::fprintf), (h, nullptr), kNullPointer),
        SETTER(DebugSetInternalFunction, Refused, (h, PrintInternal), (h, nullptr), kNullPointer),
        SETTER(DebugSetPackageStream, Refused, (h, stderr), (h, nullptr), kNullPointer),
        SETTER(DebugSetAllTraceMask, PassedOver, (63, true), (64, true), kBadValue),
        SETTER(DebugSetAllOutputType, PassedOver, (6, true), (8, true), kBadValue),
        SETTER(DebugSetAllTraceFormat, PassedOver, (4, false), (16, true), kBadValue),
        SETTER(DebugSetGlobalStreamAll, PassedOver, (stderr), (nullptr), kNullPointer),
        SETTER(DebugSetAllFlags, Changed, (1, true), (16, true), kBadValue),
        SETTER_OF_ANYTHING(DebugSetGlobalFlush, Changed, (true)),
    };
    for (const auto& c : kCases) {
        DebugHandle_t handle = Open("A");
        DebugRecord_t fresh;
        std::memcpy(&fresh, handle, sizeof fresh);  // with its padding
        const auto changed = [&] { return std::memcmp(&fresh, handle, sizeof fresh) != 0; };
        EXPECT_TRUE(!c.ofOneHandle || c.good(nullptr) == kNullPointer) << c.what;
        EXPECT_TRUE(c.bad == nullptr || c.bad(handle) == c.badStatus) << c.what;
        EXPECT_FALSE(changed()) << c.what;
        EXPECT_EQ(c.good(handle), kSuccess) << c.what;
        EXPECT_TRUE(changed()) << c.what;

        std::memcpy(handle, &fresh, sizeof fresh);
        handle->Flags |= kLocked;
        EXPECT_EQ(c.good(handle), c.locked == Refused ? kBadValue : kSuccess) << c.what;
        handle->Flags &= ~kLocked;
        EXPECT_EQ(changed(), c.locked == Changed) << c.what;
        CloseAll();
    }
}

TEST_F(ClDebug, MaskSettersSwitchTheirBitsAlone) {
    DebugHandle_t handle = Open("A"), other = Open("B");
    DebugSetTraceMask(handle, 0xFFFF'FFFF'0000'0031, true);
    EXPECT_EQ(handle->TraceMask, 0x31u);
    DebugSetAllTraceMask(0x11, false);
    EXPECT_EQ(handle->TraceMask, 0x20u);
    DebugSetAllOutputType(2, true);
    EXPECT_EQ(handle->OutputType, 3u);
    EXPECT_EQ(other->OutputType, 3u);
    DebugSetTraceFormat(handle, 5, false);
    EXPECT_EQ(handle->TraceFormat, 10u);
    EXPECT_EQ(other->TraceFormat, 15u);
}

TEST_F(ClDebug, FlagSettersChangeTheFirstThatMatches) {
    const struct {
        uint32_t which;
        bool on;
        status_t oneStatus;
        uint32_t one;  // Flags from 8 on
        status_t allStatus;
        uint32_t all;
    } kCases[] = {
        {15, true,  1, 9,  1, 9 }, // flush is first with both
        {14, true,  1, 8,  1, 12},
        {6,  true,  1, 24, 1, 12}, // one: threaded
        {12, true,  1, 8,  1, 24},
        {8,  false, 1, 0,  1, 0 },
        {48, true,  1, 8,  2, 8 }, // bits that one accepts and that name no flag
        {64, true,  2, 8,  2, 8 },
    };
    DebugHandle_t handle = Open("A");
    for (const auto& c : kCases) {
        handle->Flags = 8;
        EXPECT_EQ(DebugSetFlag(handle, c.which, c.on), c.oneStatus) << c.which;
        EXPECT_EQ(handle->Flags, c.one) << c.which;
        handle->Flags = 8;
        EXPECT_EQ(DebugSetAllFlags(c.which, c.on), c.allStatus) << c.which;
        EXPECT_EQ(handle->Flags, c.all) << c.which;
    }
}

TEST_F(ClDebug, DumpShowsGroupsOfEight) {
    DebugHandle_t handle = Open("A");
    handle->TraceFormat = kFormatFunction | kFormatLine;
    handle->TraceMask = kParams;
    const uint8_t data[] = {0x00, 0x01, 0x7F, 0x80, 0xFF, 0x10, 0x20, 0x30, 0xAB, 0xCD};
    EXPECT_EQ(DebugDumpValues(handle, kParams, data, sizeof data, "file", "Fun", 3), kSuccess);
    char expected[512];
    std::snprintf(expected, sizeof expected,
                  "\n Fn: Ln:0 %29s--------------------Values------------------"
                  "\n Fn:Fun Ln:3  Pos  0x%016" PRIxPTR
                  ":  0x00 0x01 0x7f 0x80 0xff 0x10 0x20 0x30 "
                  "\n Fn:Fun Ln:3  Pos  0x%016" PRIxPTR ":  0xab 0xcd       ",
                  "", reinterpret_cast<uintptr_t>(data), reinterpret_cast<uintptr_t>(data) + 8);
    EXPECT_EQ(Printed(), expected);

    EXPECT_EQ(DebugDumpValues(handle, kParams, nullptr, 1, "", "", 0), kNullPointer);
}
