// Trace handles, their settings, and their output. The configuration is in DebugConfig.cpp.
#include <cinttypes>
#include <cstddef>
#include <mutex>

#include "Packages/Debug/DebugInternal.h"
#include "Packages/OS/Memory.h"
#include "Packages/OS/OS.h"

// Whether a configuration was read. It is read once in a process; closing handles doesn't change this.
enum class ConfigState_t { NotRead, Read, Failed };

static constexpr size_t kHeaderSize = 100;
static constexpr size_t kMessageSize = 256;  // 255 characters and a NUL
static constexpr size_t kMessageBufferSize = 281;

// Guards the handles and the configuration. Trace calls don't take it.
static std::mutex guard;
static ContainerHandle_t DebugHandleList = nullptr;
static ContainerHandle_t DebugSyncList = nullptr;  // lives as long as DebugHandleList; always empty
static ConfigState_t ConfigState = ConfigState_t::NotRead;
static LibVersion_t LibVersion = {};
status_t (*debugClock)(uint64_t* milliseconds) = os_GetTimestampMs;

// The default output functions of a handle. Console lines are flushed, so that they are in order with what the host
// writes by other means, and the last line before a crash is seen.
QUORLIN_PRINTF_LIKE(1, 2) static int PrintToConsole(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const int length = std::vprintf(format, arguments);
    va_end(arguments);
    std::fflush(stdout);
    return length;
}

QUORLIN_PRINTF_LIKE(2, 3) static int PrintToStream(FILE* stream, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const int length = std::vfprintf(stream, format, arguments);
    va_end(arguments);
    return length;
}

static int32_t CompareHandles(const void* first, const void* second) {
    return Fold(
        os_strcmp(static_cast<const DebugRecord_t*>(first)->Name, static_cast<const DebugRecord_t*>(second)->Name));
}

static int32_t ComparePointers(const void* first, const void* second) { return first == second ? 0 : 1; }

status_t CreateList(const char* name, ContainerCompare_t compare, ContainerHandle_t* list) {
    ContainerParams_t params = {};
    os_strncpy(params.ListName, name, sizeof params.ListName - 1);
    params.ContainerType = kPlainList;
    params.DataType = kOwnData;
    params.CompareFunction = compare;
    return InitContainer(&params, list, 0);
}

// Returns the open handle with this name, or null.
static DebugRecord_t* FindHandle(const char* name) {
    return FindEntry<DebugRecord_t>(DebugHandleList,
                                    [name](const DebugRecord_t& record) { return os_strcmp(record.Name, name) == 0; });
}

// Opening and closing.

// Returns a record with the defaults and without a lock; null if out of memory.
static DebugRecord_t* NewRecord(const char* name) {
    const size_t nameSize = size_t{os_strlen(name)} + 1;
    const size_t size = offsetof(DebugRecord_t, Name) + nameSize;
    // At least the size of the type, which has padding after Name.
    const size_t allocated = size < sizeof(DebugRecord_t) ? sizeof(DebugRecord_t) : size;
    void* block = os_malloc(allocated);
    if (block == nullptr) return nullptr;
    os_memset(block, allocated, 0, allocated);
    os_memcpy(static_cast<char*>(block) + offsetof(DebugRecord_t, Name), nameSize, name, nameSize);

    auto* record = static_cast<DebugRecord_t*>(block);
    record->ConsoleFunction = PrintToConsole;
    record->FileFunction = PrintToStream;
    record->CallbackMask = kAllLevels;
    record->OutputType = kConsoleOutput;
    record->RefCount = 1;
    record->Flags = kLogToPackageStream;
    record->TraceFormat = kAllFormats;
    return record;
}

static void ReadConfigOnce() {
    if (ConfigState != ConfigState_t::NotRead) return;
    ConfigState = DebugReadConfig() == kSuccess ? ConfigState_t::Read : ConfigState_t::Failed;
}

// If the first handle fails, the lists and the configuration stay for the next one: the file isn't read again.
status_t DebugLibInit(const char* name, DebugHandle_t* handle) {
    if (name == nullptr || handle == nullptr) return kNullPointer;
    *handle = nullptr;
    const std::lock_guard hold(guard);
    LibVersion = {"02", "00", "0", "1001"};

    status_t status = kSuccess;
    if (DebugHandleList == nullptr) status = CreateList("DebugHandleList", CompareHandles, &DebugHandleList);
    if (status != kSuccess) return status;
    if (DebugRecord_t* shared = FindHandle(name)) {
        if (shared->RefCount == UINT16_MAX) return kFailure;  // one more would overflow to 0
        shared->RefCount++;
        *handle = shared;
        return kSuccess;
    }
    if (DebugSyncList == nullptr) status = CreateList("DebugSyncList", ComparePointers, &DebugSyncList);
    if (status != kSuccess) return status;
    ReadConfigOnce();

    DebugRecord_t* record = NewRecord(name);
    if (record == nullptr) return kNoMemory;
    record->Lock = os_OpenNamedLock(name);
    if (record->Lock == nullptr) {
        os_free(record);
        return kFailure;
    }
    if (ConfigState == ConfigState_t::Read) status = DebugApplyConfig(record);
    if (status == kSuccess) status = Insert(DebugHandleList, record);
    if (status != kSuccess) {
        os_CloseNamedLock(record->Lock);
        os_free(record);
        return status;
    }
    *handle = record;
    return kSuccess;
}

// Releases what the first handle set up, in reverse order.
static status_t ReleaseLibrary() {
    const status_t sync = UnInitContainer(DebugSyncList);
    DebugSyncList = nullptr;
    const status_t config = DebugFreeConfig();
    const status_t handles = UnInitContainer(DebugHandleList);
    DebugHandleList = nullptr;
    return sync == kSuccess && config == kSuccess && handles == kSuccess ? kSuccess : kFailure;
}

status_t DebugLibExit(DebugHandle_t handle) {
    if (handle == nullptr) return kNullPointer;
    const std::lock_guard hold(guard);
    DebugRecord_t* record = FindHandle(handle->Name);
    if (record == nullptr) return kFailure;
    if (--record->RefCount > 0) return kSuccess;

    os_CloseNamedLock(record->Lock);
    if (DeleteByData(DebugHandleList, record) != kSuccess) return kFailure;
    os_free(record);
    void* other = nullptr;
    return RetrieveFromIndex(DebugHandleList, &other, 0) == kSuccess ? kSuccess : ReleaseLibrary();
}

status_t GetDebugLibVersion(LibVersion_t* version) {
    if (version == nullptr) return kNullPointer;
    const std::lock_guard hold(guard);
    *version = LibVersion;
    return kSuccess;
}

status_t DebugUseConfigText(const char* text) {
    if (text == nullptr) return kNullPointer;
    const std::lock_guard hold(guard);
    if (ConfigState != ConfigState_t::NotRead) return kFailure;
    const status_t status = DebugReadConfigText(text);
    if (status == kSuccess)
        ConfigState = ConfigState_t::Read;
    else
        DebugForgetConfig();
    return status;
}

const char* DebugWhyConfigRefused() {
    const std::lock_guard hold(guard);
    return debugConfigRefusal;
}

void DebugResetForTest() {
    DebugForgetConfig();
    ConfigState = ConfigState_t::NotRead;
}

// Output.

// A header under construction. Cut if too long.
struct Header_t {
    char text[kHeaderSize] = "";
    size_t length = 0;

    void Add(const char* more) {
        for (; *more != '\0' && length < kHeaderSize - 1; more++) text[length++] = *more;
        text[length] = '\0';
    }
};

struct LevelTag_t {
    uint32_t level;
    char tag[12];
};

// In the order in which a header shows them.
static constexpr LevelTag_t kLevelTags[] = {
    {kInfo,    " Info "     },
    {kParams,  " PARAM "    },
    {kWarning, " WARN "     },
    {kError,   " **ERROR** "},
    {kEntry,   " --> "      },
    {kExit,    " <-- "      },
};

static Header_t MakeHeader(const DebugRecord_t& record, const char* function, uint32_t line, uint32_t level) {
    Header_t header;
    header.Add("\n");
    if (record.TraceFormat & kFormatTags) {
        for (const LevelTag_t& row : kLevelTags)
            if (row.level & level & record.TraceMask) header.Add(row.tag);
    }
    if (record.TraceFormat & kFormatFunction) {
        header.Add(" Fn:");
        header.Add(function != nullptr ? function : "");
    }
    if (record.TraceFormat & kFormatLine) {
        char digits[7];
        os_snprintf(digits, sizeof digits, 6, "%" PRIu32, line);
        header.Add(" Ln:");
        header.Add(digits);
    }
    if (record.TraceFormat & kFormatTime) {
        uint64_t milliseconds = 0;
        char digits[21] = "NA";
        if (debugClock(&milliseconds) == kSuccess) os_snprintf(digits, sizeof digits, 20, "%" PRIu64, milliseconds);
        header.Add(" TS:");
        header.Add(digits);
    }
    return header;
}

static void WriteToStream(const DebugRecord_t& record, FILE* stream, bool flush, const char* header,
                          const char* message) {
    if (record.FileFunction == nullptr || stream == nullptr) return;
    record.FileFunction(stream, "%s %s", header, message);
    if (flush && record.FileFunction == PrintToStream) std::fflush(stream);
}

// Not inlined in DebugTrace, where its buffers would cost every call whose level is off.
[[gnu::noinline]] static void WriteLine(const DebugRecord_t& record, const char* function, uint32_t line,
                                        uint32_t level, const char* format, va_list arguments) {
    const Header_t header = MakeHeader(record, function, line, level);
    char message[kMessageBufferSize];
    os_vsnprintf(message, kMessageSize, format, arguments);

    if (record.Callback != nullptr && (record.CallbackMask & level) != 0)
        record.Callback(static_cast<uint32_t>(record.CallbackMask & level), message, kMessageBufferSize);
    if (!DebugReachesOutputs(record, level)) return;

    if ((record.OutputType & kConsoleOutput) && record.ConsoleFunction != nullptr)
        record.ConsoleFunction("%s %s", header.text, message);
    if (record.OutputType & kFileOutput) {
        if (record.Flags & kLogToPackageStream)
            WriteToStream(record, record.PackageStream, record.Flags & kFlushPackageStream, header.text, message);
        WriteToStream(record, record.GlobalStream, record.Flags & kFlushGlobalStream, header.text, message);
    }
    if ((record.OutputType & kInternalOutput) && record.InternalFunction != nullptr)
        record.InternalFunction("%s %s", header.text, message);
}

status_t DebugTrace(DebugHandle_t handle, const char* /*sourceFile*/, const char* function, uint32_t line,
                    uint32_t level, const char* format, ...) {
    if (handle == nullptr) return kNullPointer;
    if (!DebugIsOn(handle, level)) return kSuccess;
    va_list arguments;
    va_start(arguments, format);
    WriteLine(*handle, function, line, level, format, arguments);
    va_end(arguments);
    return kSuccess;
}

// Settings.

// Returns 1 if the handle is open, otherwise the status for the caller.
static status_t DebugIsValidHandle(DebugHandle_t handle) {
    if (handle == nullptr) return kNullPointer;
    const std::lock_guard hold(guard);
    return FindHandle(handle->Name) != nullptr ? kSuccess : kBadValue;
}

// Returns 1 if setters may change the handle, otherwise the status for the caller.
static status_t CheckUnlocked(DebugHandle_t handle) {
    const status_t status = DebugIsValidHandle(handle);
    if (status != kSuccess) return status;
    return handle->Flags & kLocked ? kBadValue : kSuccess;
}

template <typename Change>
static void ForEachHandle(Change change) {
    const std::lock_guard hold(guard);
    FindEntry<DebugRecord_t>(DebugHandleList, [&change](DebugRecord_t& record) {
        change(record);
        return false;
    });
}

template <typename Change>
static void ForEachUnlockedHandle(Change change) {
    ForEachHandle([&change](DebugRecord_t& record) {
        if ((record.Flags & kLocked) == 0) change(record);
    });
}

// These two set or clear the bits of a field that both `mask` and `known` have, in one handle or in all.
template <typename Bits>
static status_t SetMask(DebugHandle_t handle, Bits DebugRecord_t::*field, Bits mask, Bits known, bool on) {
    const status_t status = CheckUnlocked(handle);
    if (status != kSuccess) return status;
    if ((mask & known) == 0) return kBadValue;
    SetBits(&(handle->*field), mask & known, on);
    return kSuccess;
}

template <typename Bits>
static status_t SetMaskInAll(Bits DebugRecord_t::*field, Bits mask, Bits known, bool on) {
    if ((mask & known) == 0) return kBadValue;
    ForEachUnlockedHandle([=](DebugRecord_t& record) { SetBits(&(record.*field), mask & known, on); });
    return kSuccess;
}

// Sets a function or stream that must not be null.
template <typename Pointer>
static status_t SetPointer(DebugHandle_t handle, Pointer DebugRecord_t::*field, Pointer value) {
    const status_t status = CheckUnlocked(handle);
    if (status != kSuccess) return status;
    if (value == nullptr) return kNullPointer;
    handle->*field = value;
    return kSuccess;
}

struct FlagChoice_t {
    uint32_t which;
    uint32_t flag;
};

// The flag setters change the first flag that their argument has. DebugSetFlag and DebugSetAllFlags differ in order.
static constexpr FlagChoice_t kFlagsOfOne[] = {
    {kFlagFlush,        kFlushPackageStream},
    {kFlagLogToPackage, kLogToPackageStream},
    {kFlagThreaded,     kThreadedOutput    },
    {kFlagLocked,       kLocked            },
};
static constexpr FlagChoice_t kFlagsOfAll[] = {
    {kFlagFlush,        kFlushPackageStream},
    {kFlagLocked,       kLocked            },
    {kFlagThreaded,     kThreadedOutput    },
    {kFlagLogToPackage, kLogToPackageStream},
};

// Returns the flag that `which` chooses, or 0.
static uint32_t ChosenFlag(const FlagChoice_t (&choices)[4], uint32_t which) {
    for (const FlagChoice_t& choice : choices)
        if (choice.which & which) return choice.flag;
    return 0;
}

status_t DebugSetTraceMask(DebugHandle_t handle, uint64_t mask, bool on) {
    return SetMask<uint64_t>(handle, &DebugRecord_t::TraceMask, mask, kAllLevels, on);
}

status_t DebugSetOutputType(DebugHandle_t handle, uint64_t mask, bool on) {
    return SetMask<uint64_t>(handle, &DebugRecord_t::OutputType, mask, kAllOutputs, on);
}

status_t DebugSetTraceFormat(DebugHandle_t handle, uint32_t mask, bool on) {
    return SetMask<uint32_t>(handle, &DebugRecord_t::TraceFormat, mask, kAllFormats, on);
}

status_t DebugSetFlag(DebugHandle_t handle, uint32_t which, bool on) {
    const status_t status = DebugIsValidHandle(handle);
    if (status != kSuccess) return status;
    if ((which & 63) == 0) return kBadValue;  // more bits than there are flags
    SetBits(&handle->Flags, ChosenFlag(kFlagsOfOne, which), on);
    return kSuccess;
}

status_t DebugSetCallback(DebugHandle_t handle, DebugCallback_t function) {
    const status_t status = CheckUnlocked(handle);
    if (status == kSuccess) handle->Callback = function;
    return status;
}

status_t DebugSetCallbackMask(DebugHandle_t handle, uint64_t mask) {
    const status_t status = CheckUnlocked(handle);
    if (status == kSuccess) handle->CallbackMask = mask;
    return status;
}

status_t DebugSetConsoleFunction(DebugHandle_t handle, DebugPrintFunction_t function) {
    return SetPointer(handle, &DebugRecord_t::ConsoleFunction, function);
}

status_t DebugSetFileFunction(DebugHandle_t handle, DebugFileFunction_t function) {
    return SetPointer(handle, &DebugRecord_t::FileFunction, function);
}

status_t DebugSetInternalFunction(DebugHandle_t handle, DebugPrintFunction_t function) {
    return SetPointer(handle, &DebugRecord_t::InternalFunction, function);
}

status_t DebugSetPackageStream(DebugHandle_t handle, FILE* stream) {
    return SetPointer(handle, &DebugRecord_t::PackageStream, stream);
}

status_t DebugSetAllTraceMask(uint64_t mask, bool on) {
    return SetMaskInAll<uint64_t>(&DebugRecord_t::TraceMask, mask, kAllLevels, on);
}

status_t DebugSetAllOutputType(uint64_t mask, bool on) {
    return SetMaskInAll<uint64_t>(&DebugRecord_t::OutputType, mask, kAllOutputs, on);
}

status_t DebugSetAllTraceFormat(uint32_t mask, bool on) {
    return SetMaskInAll<uint32_t>(&DebugRecord_t::TraceFormat, mask, kAllFormats, on);
}

status_t DebugSetGlobalStreamAll(FILE* stream) {
    if (stream == nullptr) return kNullPointer;
    ForEachUnlockedHandle([stream](DebugRecord_t& record) { record.GlobalStream = stream; });
    return kSuccess;
}

status_t DebugSetAllFlags(uint32_t which, bool on) {
    const uint32_t flag = ChosenFlag(kFlagsOfAll, which);
    if (flag == 0) return kBadValue;
    ForEachHandle([=](DebugRecord_t& record) { SetBits(&record.Flags, flag, on); });
    return kSuccess;
}

status_t DebugSetGlobalFlush(bool on) {
    ForEachHandle([on](DebugRecord_t& record) { SetBits(&record.Flags, kFlushGlobalStream, on); });
    return kSuccess;
}

// Dump.

static constexpr uint32_t kGroupSize = 8;

status_t DebugDumpValues(DebugHandle_t handle, uint32_t level, const void* data, uint32_t length,
                         const char* sourceFile, const char* function, uint32_t line) {
    if (handle == nullptr || data == nullptr) return kNullPointer;
    const status_t status = DebugIsValidHandle(handle);
    if (status != kSuccess) return status;
    if (!DebugIsOn(handle, level)) return kSuccess;

    DebugTrace(handle, "", "", 0, level, "%29s--------------------Values------------------", "");
    const auto* bytes = static_cast<const uint8_t*>(data);
    for (uint32_t done = 0; done < length;) {
        char address[19];
        os_snprintf(address, sizeof address, 18, "0x%016" PRIxPTR, reinterpret_cast<uintptr_t>(bytes + done));
        char digits[kGroupSize][5] = {};  // empty for bytes after the end
        for (uint32_t i = 0; i < kGroupSize && done < length; i++, done++)
            os_snprintf(digits[i], sizeof digits[i], 4, "0x%02x", bytes[done]);
        DebugTrace(handle, sourceFile, function, line, level, " Pos  %s:  %s %s %s %s %s %s %s %s ", address, digits[0],
                   digits[1], digits[2], digits[3], digits[4], digits[5], digits[6], digits[7]);
    }
    return kSuccess;
}
