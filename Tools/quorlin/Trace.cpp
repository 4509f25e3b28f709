#include "Tools/quorlin/Trace.h"

#include "Packages/Debug/Debug.h"
#include "Tools/quorlin/Output.h"

// The program's own handle. With the last handle its configuration goes for good, and each table opens and closes
// those of the libraries: this one stays open between them.
static DebugHandle_t traceHandle = nullptr;

bool BeginTrace(const Usage_t& usage, const std::string& spec, int* exitCode) {
    const status_t status = spec.empty() ? kSuccess : DebugUseConfigText(spec.c_str());
    if (status == kNotSupported)
        return SayBadUsage(usage, "--trace: no file is written with rights that the user doesn't have", exitCode);
    if (status != kSuccess)
        return SayBadUsage(usage, "--trace: '" + spec + "' is no setting like Global:TraceType<ErWa>", exitCode);
    // Where it can't be had, a run goes on without trace.
    if (DebugLibInit("quorlin", &traceHandle) != kSuccess && !spec.empty())
        SayError("--trace", "its log can't be opened; try a new file, or a plain one that you may write");
    return true;
}

void SayRefusedConfig() {
    if (const char* why = DebugWhyConfigRefused()) SayError("debug.conf", std::string("not obeyed: ") + why);
}

void EndTrace() {
    DebugLibExit(traceHandle);
    traceHandle = nullptr;
}
