#include "Tools/quorlin/Trace.h"

#include "Packages/Debug/Debug.h"

// The program's own handle. With the last handle its configuration goes for good, and each table opens and closes
// those of the libraries: this one stays open between them.
static DebugHandle_t traceHandle = nullptr;

bool BeginTrace(const Usage_t& usage, const std::string& spec, int* exitCode) {
    if (!spec.empty() && DebugUseConfigText(spec.c_str()) != kSuccess)
        return SayBadUsage(usage, "--trace: '" + spec + "' is no setting like Global:TraceType<ErWa>", exitCode);
    DebugLibInit("quorlin", &traceHandle);  // where it can't be had, a run goes on without trace
    return true;
}

void EndTrace() {
    DebugLibExit(traceHandle);
    traceHandle = nullptr;
}
