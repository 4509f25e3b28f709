// The configuration: parses the lines of debug.conf into entries, and applies entries to handles. Docs/Trace.md
// describes the file.
#include <cstring>
#include <string_view>

#include "Packages/Debug/DebugInternal.h"
#include "Packages/OS/ConfigFile.h"
#include "Packages/OS/Memory.h"
#include "Packages/OS/OS.h"

static constexpr size_t kPieceSize = 256;  // 255 characters and a NUL; longer lines are read in pieces of this size
static constexpr size_t kNameSize = 64;    // 63 characters and a NUL; longer names are cut
static constexpr const char* kGlobal = "Global";

// Bits of DebugConfEntry::SetMask: the keys that were set.
static constexpr uint32_t kSetTraceType = 1;
static constexpr uint32_t kSetOutputType = 2;
static constexpr uint32_t kSetTraceFormatType = 4;
static constexpr uint32_t kSetDebugFlagsType = 8;
static constexpr uint32_t kSetFileName = 16;
static constexpr uint32_t kSetSyncFlag = 32;

// The settings of one package.
struct DebugConfEntry {
    char PackageName[kNameSize];
    uint32_t SetMask;
    int32_t TraceType;
    int32_t OutputType;
    uint32_t TraceFormatType;
    uint32_t DebugFlagsType;  // kFlagFlush, kFlagLocked...
    uint8_t SyncFlag;
    FILE* Stream;  // the log file, opened for the first handle that needs it
    char FileName[kNameSize];
};

static ContainerHandle_t DebugConfList = nullptr;
static bool GlobalSeen = false;   // cleared by DebugForgetConfig only, because the file isn't read again
static bool isHostsText = false;  // whether the configuration is a host's text, not the file
const char* debugConfigRefusal = nullptr;

// Values: rows of tokens, two letters each, without separators.

struct Token_t {
    char name[3];
    uint32_t bits;
};

static constexpr Token_t kTraceTypes[] = {
    {"En", kEntry    },
    {"In", kInfo     },
    {"Pa", kParams   },
    {"Wa", kWarning  },
    {"Er", kError    },
    {"Ex", kExit     },
    {"Al", kAllLevels},
};
static constexpr Token_t kOutputTypes[] = {
    {"Co", kConsoleOutput },
    {"Fi", kFileOutput    },
    {"In", kInternalOutput},
    {"Al", kAllOutputs    },
};
static constexpr Token_t kTraceFormats[] = {
    {"Fn", kFormatFunction},
    {"Ln", kFormatLine    },
    {"Ti", kFormatTime    },
    {"Td", kFormatTags    },
    {"Al", kAllFormats    },
};
static constexpr Token_t kDebugFlags[] = {
    {"Sy", kFlagFlush       },
    {"Lo", kFlagLocked      },
    {"Tr", kFlagThreaded    },
    {"Lg", kFlagLogToPackage},
    {"Al", kAllFlags        },
};

// Reads the bits of a row of tokens. "No" clears the bits of the tokens before it. Returns false for an unknown token.
template <size_t Count>
static bool ReadTokens(const Token_t (&tokens)[Count], std::string_view row, uint32_t* bits) {
    *bits = 0;
    for (; !row.empty(); row.remove_prefix(2)) {
        if (row.size() < 2) return false;
        const std::string_view name = row.substr(0, 2);
        const Token_t* token = tokens;
        while (token != tokens + Count && name != token->name) token++;
        if (name == "No")
            *bits = 0;
        else if (token != tokens + Count)
            *bits |= token->bits;
        else
            return false;
    }
    return true;
}

// Keys: each function stores its value in the entry, and returns false if the value is bad.

static bool ReadTraceType(std::string_view value, DebugConfEntry* entry) {
    uint32_t bits = 0;
    if (!ReadTokens(kTraceTypes, value, &bits)) return false;
    entry->TraceType = static_cast<int32_t>(bits);
    return true;
}

static bool ReadOutputType(std::string_view value, DebugConfEntry* entry) {
    uint32_t bits = 0;
    if (!ReadTokens(kOutputTypes, value, &bits)) return false;
    entry->OutputType = static_cast<int32_t>(bits);
    return true;
}

static bool ReadTraceFormatType(std::string_view value, DebugConfEntry* entry) {
    return ReadTokens(kTraceFormats, value, &entry->TraceFormatType);
}

static bool ReadDebugFlagsType(std::string_view value, DebugConfEntry* entry) {
    return ReadTokens(kDebugFlags, value, &entry->DebugFlagsType);
}

// `name` has kNameSize bytes.
static void CopyName(std::string_view from, char* name) {
    const size_t length = from.copy(name, kNameSize - 1);
    name[length] = '\0';
}

static bool ReadFileName(std::string_view value, DebugConfEntry* entry) {
    CopyName(value, entry->FileName);
    return true;
}

static bool ReadSyncFlag(std::string_view value, DebugConfEntry* entry) {
    entry->SyncFlag = value == "Y" ? 1 : 0;
    return true;
}

struct Key_t {
    const char* name;
    uint32_t setBit;
    bool (*read)(std::string_view value, DebugConfEntry* entry);
};

static constexpr Key_t kKeys[] = {
    {"TraceType",       kSetTraceType,       ReadTraceType      },
    {"OutputType",      kSetOutputType,      ReadOutputType     },
    {"TraceFormatType", kSetTraceFormatType, ReadTraceFormatType},
    {"DebugFlagsType",  kSetDebugFlagsType,  ReadDebugFlagsType },
    {"FileName",        kSetFileName,        ReadFileName       },
    {"SyncFlag",        kSetSyncFlag,        ReadSyncFlag       }, // allowed everywhere, but used in Global only
};

// Lines.

static int32_t CompareEntries(const void* first, const void* second) {
    return Fold(std::strncmp(static_cast<const DebugConfEntry*>(first)->PackageName,
                             static_cast<const DebugConfEntry*>(second)->PackageName, kNameSize));
}

static DebugConfEntry* FindPackage(std::string_view package) {
    const std::string_view name = package.substr(0, kNameSize - 1);
    return FindEntry<DebugConfEntry>(DebugConfList,
                                     [name](const DebugConfEntry& entry) { return name == entry.PackageName; });
}

static status_t AddPackage(std::string_view package, DebugConfEntry** out) {
    void* block = os_malloc(sizeof(DebugConfEntry));
    if (block == nullptr) return kNoMemory;
    os_memset(block, sizeof(DebugConfEntry), 0, sizeof(DebugConfEntry));
    auto* entry = static_cast<DebugConfEntry*>(block);
    CopyName(package, entry->PackageName);
    const status_t status = Insert(DebugConfList, entry);
    if (status != kSuccess) {
        os_free(block);
        return status;
    }
    *out = entry;
    return kSuccess;
}

static status_t StoreSetting(std::string_view package, std::string_view key, std::string_view value) {
    if (package == kGlobal) GlobalSeen = true;
    DebugConfEntry* entry = FindPackage(package);
    if (entry == nullptr) {
        const status_t status = AddPackage(package, &entry);
        if (status != kSuccess) return status;
    }
    for (const Key_t& row : kKeys) {
        if (key != row.name) continue;
        if (row.setBit == kSetFileName && HasForeignRights()) return kNotSupported;
        if (!row.read(value, entry)) return kFailure;
        entry->SetMask |= row.setBit;
        return kSuccess;
    }
    return kFailure;
}

// Moves the part of `*text` before the first `delimiter` to `*part`, and drops the delimiter. False if there is none.
static bool TakeUpTo(char delimiter, std::string_view* text, std::string_view* part) {
    const size_t length = text->find(delimiter);
    if (length == std::string_view::npos) return false;
    *part = text->substr(0, length);
    text->remove_prefix(length + 1);
    return true;
}

// Parses a line: Package:Key<Value>, a comment, a header, or an empty line.
static status_t ReadLine(std::string_view line) {
    if (line.empty() || line == "[GLOBAL]" || line == "[PACKAGES]" || line.front() == '#') return kSuccess;
    std::string_view package, key, value;
    if (!TakeUpTo(':', &line, &package) || !TakeUpTo('<', &line, &key) || !TakeUpTo('>', &line, &value))
        return kFailure;
    return StoreSetting(package, key, value);
}

// Removes all white space from a NUL-terminated text, in place.
static std::string_view RemoveWhiteSpace(char* text) {
    size_t length = 0;
    for (const char* from = text; *from != '\0'; from++)
        if (std::strchr(" \t\n\v\f\r", *from) == nullptr) text[length++] = *from;
    return {text, length};
}

// Parses pieces of at most kPieceSize bytes until `nextPiece` returns false or a piece is bad.
template <typename NextPiece>
static status_t ReadPieces(NextPiece nextPiece) {
    if (DebugConfList != nullptr) return kSuccess;
    status_t status = CreateList("DebugConfList", CompareEntries, &DebugConfList);
    char piece[kPieceSize];
    while (status == kSuccess && nextPiece(piece)) status = ReadLine(RemoveWhiteSpace(piece));
    return status;
}

status_t DebugReadConfigStream(FILE* stream) {
    isHostsText = false;
    return ReadPieces([stream](char* piece) { return std::fgets(piece, kPieceSize, stream) != nullptr; });
}

status_t DebugReadConfigText(const char* text) {
    isHostsText = true;
    return ReadPieces([&text](char* piece) {
        if (*text == '\0') return false;
        size_t length = std::strcspn(text, "\n;");
        const bool whole = length < kPieceSize;
        if (!whole) length = kPieceSize - 1;
        os_strncpy(piece, text, length);
        text += length;
        if (whole && *text != '\0') text++;  // the separator
        return true;
    });
}

status_t DebugReadConfig() {
    FILE* file = OpenConfigFile("debug.conf", &debugConfigRefusal);
    if (file == nullptr) return kSuccess;
    const status_t status = DebugReadConfigStream(file);
    std::fclose(file);
    return status;
}

// Settings of a handle.

static status_t OpenLog(DebugConfEntry* entry, FILE** stream) {
    if ((entry->SetMask & kSetFileName) == 0) return kSuccess;
    if (entry->Stream == nullptr) entry->Stream = OpenLogFile(entry->FileName, isHostsText);
    if (entry->Stream == nullptr) return kFailure;
    *stream = entry->Stream;
    return kSuccess;
}

static void ApplyEntry(const DebugConfEntry& entry, DebugRecord_t* record) {
    if (entry.SetMask & kSetTraceType) record->TraceMask = static_cast<uint64_t>(entry.TraceType);
    if (entry.SetMask & kSetOutputType) record->OutputType = static_cast<uint64_t>(entry.OutputType);
    if (entry.SetMask & kSetTraceFormatType) record->TraceFormat = entry.TraceFormatType;
    if (entry.SetMask & kSetDebugFlagsType) {
        SetBits(&record->Flags, kFlushPackageStream, (entry.DebugFlagsType & kFlagFlush) != 0);
        SetBits(&record->Flags, kLocked, (entry.DebugFlagsType & kFlagLocked) != 0);
        SetBits(&record->Flags, kThreadedOutput, (entry.DebugFlagsType & kFlagThreaded) != 0);
        SetBits(&record->Flags, kLogToPackageStream, (entry.DebugFlagsType & kFlagLogToPackage) != 0);
    }
}

status_t DebugApplyConfig(DebugHandle_t handle) {
    if (handle == nullptr) return kNullPointer;
    DebugConfEntry* own = FindPackage(handle->Name);
    DebugConfEntry* global = FindPackage(kGlobal);
    if (GlobalSeen && global == nullptr) return kFailure;
    if (own != nullptr) {
        if (OpenLog(own, &handle->PackageStream) != kSuccess) return kFailure;
        ApplyEntry(*own, handle);
    }
    if (global != nullptr) {
        if (OpenLog(global, &handle->GlobalStream) != kSuccess) return kFailure;
        ApplyEntry(*global, handle);
        if (global->SetMask & kSetSyncFlag) SetBits(&handle->Flags, kFlushGlobalStream, global->SyncFlag != 0);
    }
    return kSuccess;
}

status_t DebugFreeConfig() {
    if (DebugConfList == nullptr) return kSuccess;
    status_t status = kSuccess;
    void* data = nullptr;
    while (status == kSuccess && RetrieveFromIndex(DebugConfList, &data, 0) == kSuccess) {
        auto* entry = static_cast<DebugConfEntry*>(data);
        if (entry->Stream != nullptr) std::fclose(entry->Stream);
        entry->Stream = nullptr;
        if (DeleteByData(DebugConfList, entry) == kSuccess)
            os_free(entry);
        else
            status = kFailure;
    }
    if (UnInitContainer(DebugConfList) != kSuccess) status = kFailure;
    DebugConfList = nullptr;
    return status;
}

status_t DebugForgetConfig() {
    GlobalSeen = false;
    debugConfigRefusal = nullptr;
    return DebugFreeConfig();
}
