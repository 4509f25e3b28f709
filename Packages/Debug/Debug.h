// Trace lines, written through named handles. A trace call has no effect on its caller: nothing tests its result.
// Without a configuration a handle writes nothing.
//
// Format     A line is a newline, a header, one blank, and the message. The handle's format turns parts of the header
// off:
//                "\n --> " " Fn:" function " Ln:" line " TS:" milliseconds " " message
//            The header is cut after 99 characters and the message after 255. No newline follows.
// Null       All operations take a null handle and return 4.
// Status     Operations on a handle also return 2 if no open handle has its name. Further statuses are listed with each
//            operation.
// Ownership  Handles are shared by name and counted; the last DebugLibExit of a name destroys the handle. Streams given
//            to a setter stay the caller's. Streams that the configuration opened are closed with the last handle.
// Threads    Several threads at once may open and close handles, and trace through one. Their lines come in any order;
//            a line stays in one piece if the stream functions see to it. A setter must not run at the same time as
//            another setter or a trace call on the same handle.
#pragma once

#include <cstdint>
#include <cstdio>

#include "Packages/OS/Export.h"
#include "Packages/OS/Status.h"

struct DebugRecord_t;
struct NamedLock_t;
using DebugHandle_t = DebugRecord_t*;  // opaque to hosts

// Levels, one bit each. A line may have several.
inline constexpr uint32_t kEntry = 1;
inline constexpr uint32_t kInfo = 2;
inline constexpr uint32_t kParams = 4;
inline constexpr uint32_t kWarning = 8;
inline constexpr uint32_t kError = 16;
inline constexpr uint32_t kExit = 32;
inline constexpr uint32_t kErrorExit = kError | kExit;  // an error that ends the function
inline constexpr uint32_t kAllLevels = 63;

// Outputs of a handle. Lines go to the internal output only if another output is on too. Default: console.
inline constexpr uint32_t kConsoleOutput = 1;
inline constexpr uint32_t kFileOutput = 2;
inline constexpr uint32_t kInternalOutput = 4;
inline constexpr uint32_t kAllOutputs = 7;

// Parts of the header. Default: all.
inline constexpr uint32_t kFormatFunction = 1;
inline constexpr uint32_t kFormatLine = 2;
inline constexpr uint32_t kFormatTime = 4;
inline constexpr uint32_t kFormatTags = 8;  // the level tags
inline constexpr uint32_t kAllFormats = 15;

// Flags for DebugSetFlag and DebugSetAllFlags, one per call.
inline constexpr uint32_t kFlagFlush = 1;         // flush the package stream after every line; default off
inline constexpr uint32_t kFlagLocked = 2;        // setters refuse to change the handle; default off
inline constexpr uint32_t kFlagThreaded = 4;      // stored, but has no effect; default off
inline constexpr uint32_t kFlagLogToPackage = 8;  // write to the package stream at all; default on
inline constexpr uint32_t kAllFlags = 15;

// Writes a line to the console or the internal output. Called with the format "%s %s", the header and the message.
using DebugPrintFunction_t = int (*)(const char* format, ...);
// Writes a line to the package stream or the global stream. Called likewise.
using DebugFileFunction_t = int (*)(FILE* stream, const char* format, ...);
// Receives messages without their header. `level` has the levels of the line that the callback mask has too; `message`
// is valid during the call; `size` is the size of its buffer.
using DebugCallback_t = void (*)(uint32_t level, const char* message, uint32_t size);

extern "C" {
// Opens the handle with this name. If it is open already, shares it and counts one more reference. The first call in a
// process reads the configuration. `*handle` is null unless the status is 1.
// Status  1; 3 out of memory; 4 null argument; 5 no lock, no log file, too many references, or the configuration had a
//         Global entry, which was released with the last handle; or the status of a container operation
QUORLIN_API status_t DebugLibInit(const char* name, DebugHandle_t* handle);

// Releases a reference. The last one of a name destroys the handle, and the last handle releases the library's state.
// Status  1; 4 null handle; 5 no open handle has its name, or something couldn't be released
QUORLIN_API status_t DebugLibExit(DebugHandle_t handle);

// Writes one line. Formats nothing if the level is off and no callback is set. `sourceFile` isn't used.
// Status  1; 4 null handle. Doesn't check that the handle is open.
QUORLIN_API status_t DebugTrace(DebugHandle_t handle, const char* sourceFile, const char* function, uint32_t line,
                                uint32_t level, const char* format, ...) QUORLIN_PRINTF_LIKE(6, 7);

// Writes `length` bytes in hexadecimal: a title line, then a line with an address for each 8 bytes.
// Status  1; 4 null data
QUORLIN_API status_t DebugDumpValues(DebugHandle_t handle, uint32_t level, const void* data, uint32_t length,
                                     const char* sourceFile, const char* function, uint32_t line);

// Returns the library's version; empty before the first DebugLibInit.
// Status  1; 4 null argument
QUORLIN_API status_t GetDebugLibVersion(LibVersion_t* version);

// Reads the configuration from a text instead of the file debug.conf. Settings have the form of the file's lines and
// are separated by ';' or a newline. Must be called at most once, before the first DebugLibInit. On failure nothing
// changes. Status  1; 3 out of memory; 4 null text; 5 a bad setting, or a configuration was read already; 6 the text
// names a log
//         file and the process has rights that its user lacks, as a set-user-ID program has
QUORLIN_API status_t DebugUseConfigText(const char* text);

// Returns why the first DebugLibInit ignored the file debug.conf of the working folder, as a constant text. Null if it
// read the file, or if there is none.
QUORLIN_API const char* DebugWhyConfigRefused();

// Setters of one handle. A locked handle refuses with 2.
//
// These turn the bits of `mask` on or off. 2 if `mask` has no known bit.
QUORLIN_API status_t DebugSetTraceMask(DebugHandle_t handle, uint64_t mask, bool on);    // kAllLevels
QUORLIN_API status_t DebugSetOutputType(DebugHandle_t handle, uint64_t mask, bool on);   // kAllOutputs
QUORLIN_API status_t DebugSetTraceFormat(DebugHandle_t handle, uint32_t mask, bool on);  // kAllFormats
// Turns one flag on or off, of a locked handle too: the first of kFlagFlush, kFlagLogToPackage, kFlagThreaded and
// kFlagLocked that `which` has. 2 if `which` has none of the low 6 bits.
QUORLIN_API status_t DebugSetFlag(DebugHandle_t handle, uint32_t which, bool on);
// A null function removes the callback.
QUORLIN_API status_t DebugSetCallback(DebugHandle_t handle, DebugCallback_t function);
QUORLIN_API status_t DebugSetCallbackMask(DebugHandle_t handle, uint64_t mask);  // replaces the mask; default 63
// 4 for a null function or stream.
QUORLIN_API status_t DebugSetConsoleFunction(DebugHandle_t handle, DebugPrintFunction_t function);
QUORLIN_API status_t DebugSetFileFunction(DebugHandle_t handle, DebugFileFunction_t function);
QUORLIN_API status_t DebugSetInternalFunction(DebugHandle_t handle, DebugPrintFunction_t function);
QUORLIN_API status_t DebugSetPackageStream(DebugHandle_t handle, FILE* stream);

// Setters of all open handles except locked ones. Status 1 even if no handle is open.
QUORLIN_API status_t DebugSetAllTraceMask(uint64_t mask, bool on);
QUORLIN_API status_t DebugSetAllOutputType(uint64_t mask, bool on);
QUORLIN_API status_t DebugSetAllTraceFormat(uint32_t mask, bool on);
QUORLIN_API status_t DebugSetGlobalStreamAll(FILE* stream);  // 4 for a null stream
// These two change locked handles too. `which` as for DebugSetFlag, but in the order kFlagFlush, kFlagLocked,
// kFlagThreaded, kFlagLogToPackage. 2 if it has none of them.
QUORLIN_API status_t DebugSetAllFlags(uint32_t which, bool on);
QUORLIN_API status_t DebugSetGlobalFlush(bool on);  // flush the global stream after every line
}

// The record that a handle points to, in one allocation with its name. Public for DebugIsOn, and for callers that need
// to know whether theirs is the last reference. To change settings, use the setters.
struct DebugRecord_t {
    DebugPrintFunction_t ConsoleFunction;
    DebugPrintFunction_t InternalFunction;
    DebugFileFunction_t FileFunction;
    DebugCallback_t Callback;
    uint64_t CallbackMask;
    FILE* GlobalStream;   // of the configuration's Global entry, or the host's
    FILE* PackageStream;  // of the handle's own entry, or the host's
    uint64_t OutputType;
    uint64_t TraceMask;
    uint16_t RefCount;
    uint32_t Flags;  // bits as in DebugInternal.h
    uint32_t TraceFormat;
    NamedLock_t* Lock;  // with the handle's name; output doesn't take it
    char Name[1];       // NUL-terminated, of any length
};

// Whether a line of this level reaches the console or a file.
inline bool DebugReachesOutputs(const DebugRecord_t& record, uint32_t level) {
    return (record.TraceMask & level) != 0 && (record.OutputType & (kConsoleOutput | kFileOutput)) != 0;
}

// Whether a line of this level has to be formatted. Inline, because nearly every function of the lower libraries traces
// its entry and exit, and tracing is nearly always off.
inline bool DebugIsOn(DebugHandle_t handle, uint32_t level) {
    return handle != nullptr && (handle->Callback != nullptr || DebugReachesOutputs(*handle, level));
}

// Writes one trace line. If the level is off, it costs a test or two: the arguments aren't evaluated.
#define QUORLIN_TRACE(handle, sourceFile, function, level, ...)                             \
    do {                                                                                    \
        if (DebugIsOn((handle), (level)))                                                   \
            DebugTrace((handle), (sourceFile), (function), __LINE__, (level), __VA_ARGS__); \
    } while (false)
