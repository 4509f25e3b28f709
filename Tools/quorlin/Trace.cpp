#include "Tools/quorlin/Trace.h"

#include "Packages/Debug/Debug.h"
#include "Tools/quorlin/Output.h"

// The configuration goes with the last open handle, and each table opens and closes the libraries' handles. This one
// stays open between them.
static DebugHandle_t traceHandle = nullptr;

Option_t TraceOption(std::string* spec) {
    return {"--trace", "SPEC", "Trace the libraries, as a debug.conf with this line does", spec};
}

void BeginTrace(const std::string& spec) {
    const status_t status = spec.empty() ? kSuccess : DebugUseConfigText(spec.c_str());
    if (status == kNotSupported) throw BadUsage_t{"--trace: no file is written with rights that the user doesn't have"};
    if (status != kSuccess) throw BadUsage_t{"--trace: '" + spec + "' is not a setting like Global:TraceType<ErWa>"};
    // Without a log the run goes on.
    if (DebugLibInit("quorlin", &traceHandle) != kSuccess && !spec.empty())
        SayError("--trace", "can't open its log; try a new file, or a plain file that you may write");
}

void SayRefusedConfig() {
    if (const char* why = DebugWhyConfigRefused()) SayError("debug.conf", std::string("ignored: ") + why);
}

void EndTrace() {
    DebugLibExit(traceHandle);
    traceHandle = nullptr;
}
