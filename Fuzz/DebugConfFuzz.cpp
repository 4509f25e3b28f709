// Reads any bytes as debug.conf, once from a stream and once as a host's text. Both must return the same status.
#include <cstdio>

#include "Fuzz/Fuzz.h"
#include "Packages/Debug/DebugInternal.h"

static status_t ReadAsStream(const std::string& bytes) {
    FILE* stream = fmemopen(const_cast<char*>(bytes.data()), bytes.size(), "r");
    if (stream == nullptr) return kFailure;
    const status_t status = DebugReadConfigStream(stream);
    std::fclose(stream);
    DebugResetForTest();
    return status;
}

// No handle takes a bit from the text that isn't in the known masks.
static void OpenHandles() {
    DebugHandle_t handles[4] = {};
    const char* const names[4] = {"A", "FERROX", "Global", ""};
    for (size_t i = 0; i < 4; i++) {
        Require(DebugLibInit(names[i], &handles[i]) == kSuccess);
        Require((handles[i]->TraceMask & ~uint64_t{kAllLevels}) == 0);
        Require((handles[i]->OutputType & ~uint64_t{kAllOutputs}) == 0);
        Require((handles[i]->TraceFormat & ~kAllFormats) == 0);
    }
    for (DebugHandle_t handle : handles) Require(DebugLibExit(handle) == kSuccess);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    const status_t status = bytes.empty() ? kSuccess : ReadAsStream(bytes);
    Require(status == kSuccess || status == kFailure);

    // Unlike a file, a text ends at its first NUL, and ';' ends a line.
    const bool isText = bytes.find('\0') == std::string::npos && bytes.find(';') == std::string::npos;
    const status_t textStatus = DebugUseConfigText(bytes.c_str());
    if (isText) Require(textStatus == status);
    if (textStatus == kSuccess && !NamesAFile(bytes)) OpenHandles();
    DebugResetForTest();
    return 0;
}
