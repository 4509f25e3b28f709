// Named trace handles, and the one call that writes a line through them. A trace call never changes what its caller
// does: nothing tests its result, and with no configuration a handle is silent.
//
// Shape      A line is a newline, a header whose parts the handle's format switches, one blank, and the message:
//                "\n --> " " Fn:" function " Ln:" line " TS:" milliseconds " " message
//            The header is cut at 99 characters and the message at 255. No newline ends a line.
// Null       A null handle is allowed everywhere and gives 4.
// Status     For a handle: 4 null handle; 2 no open handle has its name. What else an operation gives is told there.
// Ownership  Handles are shared by name and counted. Streams handed to a setter stay the caller's; streams that the
//            configuration opened are closed with the last handle. A handle is dead after its last DebugLibExit.
// Threads    Any number at once may open and close handles, and trace through one: lines may follow in any order, each
//            whole as far as the stream functions keep it so. The setters of a handle are for one thread at a time,
//            while no other traces through it.
#pragma once

#include <cstdint>
#include <cstdio>

#include "Packages/OS/Export.h"
#include "Packages/OS/Status.h"

struct DebugRecord_t;
struct NamedLock_t;
using DebugHandle_t = DebugRecord_t*;  // a host sees only the pointer

// Levels: each one bit, combined as in kErrorExit.
inline constexpr uint32_t kEntry = 1;
inline constexpr uint32_t kInfo = 2;
inline constexpr uint32_t kParams = 4;
inline constexpr uint32_t kWarning = 8;
inline constexpr uint32_t kError = 16;
inline constexpr uint32_t kExit = 32;
inline constexpr uint32_t kErrorExit = kError | kExit;  // an error that ends the function
inline constexpr uint32_t kAllLevels = 63;

// Outputs of a handle. The internal output is served only beside one of the others. Default: console.
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

// What DebugSetFlag and DebugSetAllFlags switch, one at a call.
inline constexpr uint32_t kFlagFlush = 1;         // flush the package stream after every line; default off
inline constexpr uint32_t kFlagLocked = 2;        // settings refuse changes; default off
inline constexpr uint32_t kFlagThreaded = 4;      // kept, and without effect; default off
inline constexpr uint32_t kFlagLogToPackage = 8;  // write to the package stream at all; default on
inline constexpr uint32_t kAllFlags = 15;

// What writes console and internal lines, called with the format "%s %s", the header and the message.
using DebugPrintFunction_t = int (*)(const char* format, ...);
// What writes to the package's and the global stream, called likewise.
using DebugFileFunction_t = int (*)(FILE* stream, const char* format, ...);
// What gets messages without their header: those levels of the line that the callback mask holds, the message, which
// is valid during the call, and the size of the buffer that holds it.
using DebugCallback_t = void (*)(uint32_t level, const char* message, uint32_t size);

extern "C" {
// Opens the handle of this name, or shares the one that is open and counts a reference. The first call in a process
// reads the configuration. `*handle` is null unless the status is 1.
// Status  1; 3 no memory; 4 null argument; 5 no lock, no log file, too many references, or the configuration had a
//         Global entry, which has gone with the last handle; a container's status
QUORLIN_API status_t DebugLibInit(const char* name, DebugHandle_t* handle);

// Gives a reference back; the last one of a name ends the handle, and the last handle ends the library's state.
// Status  1; 4 null handle; 5 no open handle has its name, or something could not be released
QUORLIN_API status_t DebugLibExit(DebugHandle_t handle);

// Writes one line. `sourceFile` is not used. Nothing is formatted when the level is off and no callback is set.
// Status  1; 4 null handle. The handle is not looked up.
QUORLIN_API status_t DebugTrace(DebugHandle_t handle, const char* sourceFile, const char* function, uint32_t line,
                                uint32_t level, const char* format, ...) QUORLIN_PRINTF_LIKE(6, 7);

// Writes `length` bytes in hexadecimal: a title line, and a line for each group of 8 with its address.
// Status  1; 2 and 4 as for all handles; 4 null data
QUORLIN_API status_t DebugDumpValues(DebugHandle_t handle, uint32_t level, const void* data, uint32_t length,
                                     const char* sourceFile, const char* function, uint32_t line);

// The library's version, which is empty before the first DebugLibInit.
// Status  1; 4 null argument
QUORLIN_API status_t GetDebugLibVersion(LibVersion_t* version);

// Takes the configuration from a text in place of the file debug.conf, for hosts that offer it as an option. Settings
// are separated by ';' or a newline and are written as the file's lines are. To be called before the first
// DebugLibInit, once. The text is read at once and stays the caller's. On failure nothing has changed.
// Status  1; 3 no memory; 4 null text; 5 a bad setting, or a configuration has been read already; 6 it names a log file,
//         and the process has rights that its user lacks, as a set-user-ID program has
QUORLIN_API status_t DebugUseConfigText(const char* text);

// Why the first DebugLibInit didn't obey the debug.conf of the working folder, in words that live for ever. Null if it
// did, or if there is none.
QUORLIN_API const char* DebugWhyConfigRefused();

// Setters of one handle. A locked handle refuses with 2.
//
// The mask ones switch those bits that `mask` holds; a mask with none that is known gives 2.
QUORLIN_API status_t DebugSetTraceMask(DebugHandle_t handle, uint64_t mask, bool on);    // kAllLevels
QUORLIN_API status_t DebugSetOutputType(DebugHandle_t handle, uint64_t mask, bool on);   // kAllOutputs
QUORLIN_API status_t DebugSetTraceFormat(DebugHandle_t handle, uint32_t mask, bool on);  // kAllFormats
// Works on a locked handle too. Switches one flag: the first that `which` holds of kFlagFlush, kFlagLogToPackage,
// kFlagThreaded, kFlagLocked. A value with no bit of 63 gives 2.
QUORLIN_API status_t DebugSetFlag(DebugHandle_t handle, uint32_t which, bool on);
// A null function turns the callback off.
QUORLIN_API status_t DebugSetCallback(DebugHandle_t handle, DebugCallback_t function);
QUORLIN_API status_t DebugSetCallbackMask(DebugHandle_t handle, uint64_t mask);  // replaces the mask; default 63
// A null function or stream gives 4.
QUORLIN_API status_t DebugSetConsoleFunction(DebugHandle_t handle, DebugPrintFunction_t function);
QUORLIN_API status_t DebugSetFileFunction(DebugHandle_t handle, DebugFileFunction_t function);
QUORLIN_API status_t DebugSetInternalFunction(DebugHandle_t handle, DebugPrintFunction_t function);
QUORLIN_API status_t DebugSetPackageStream(DebugHandle_t handle, FILE* stream);

// Setters of all open handles. Locked handles are left out. Status 1 also when no handle is open.
QUORLIN_API status_t DebugSetAllTraceMask(uint64_t mask, bool on);
QUORLIN_API status_t DebugSetAllOutputType(uint64_t mask, bool on);
QUORLIN_API status_t DebugSetAllTraceFormat(uint32_t mask, bool on);
QUORLIN_API status_t DebugSetGlobalStreamAll(FILE* stream);  // a null stream gives 4
// These two reach locked handles too. The first flag that `which` holds of kFlagFlush, kFlagLocked, kFlagThreaded,
// kFlagLogToPackage is switched; a value with none of them gives 2.
QUORLIN_API status_t DebugSetAllFlags(uint32_t which, bool on);
QUORLIN_API status_t DebugSetGlobalFlush(bool on);  // flush the global stream after every line
}

// What a handle points to: one allocation, with the name at its end. It stands here for DebugIsOn, and for a holder
// that has to know whether its reference is the last one; settings are changed through the setters.
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
    uint32_t Flags;  // DebugInternal.h holds the bits
    uint32_t TraceFormat;
    NamedLock_t* Lock;  // bears the handle's name; no output takes it
    char Name[1];       // as long as it has to be
};

// Whether a line of this level reaches the console or a file.
inline bool DebugReachesOutputs(const DebugRecord_t& record, uint32_t level) {
    return (record.TraceMask & level) != 0 && (record.OutputType & (kConsoleOutput | kFileOutput)) != 0;
}

// Whether a line of this level has to be formatted. Asked without a call, as nearly every function of the lower
// libraries traces its entry and its exit, and nearly always in vain.
inline bool DebugIsOn(DebugHandle_t handle, uint32_t level) {
    return handle != nullptr && (handle->Callback != nullptr || DebugReachesOutputs(*handle, level));
}

// One trace line. When the level is off, this costs a test or two: the arguments are not even computed.
#define QUORLIN_TRACE(handle, sourceFile, function, level, ...)                             \
    do {                                                                                    \
        if (DebugIsOn((handle), (level)))                                                   \
            DebugTrace((handle), (sourceFile), (function), __LINE__, (level), __VA_ARGS__); \
    } while (false)
