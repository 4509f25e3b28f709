// Requests for a processor's registers: model-specific registers, CPUID, the non-turbo frequency.
#include "Packages/FERROXExternal/FERROXLib/Sources/WinFERROX.h"
#include "Packages/OS/Processors.h"

#define TRACE(function, level, ...) FERROX_TRACE("MSRRW", function, level, __VA_ARGS__)

status_t OSGetCPULibVersion(uint32_t* version) {
    return AskVersion(kRequestCPULibVersion, "OSGetCPULibVersion", version);
}

static status_t SendMSR(RequestCode_t code, const char* function, MSRRecord_t* record) {
    DWORD returned = 0;
    const BOOL sent = SendRequest(code, record, sizeof(*record), &returned);
    if (!sent) {
        TRACE(function, kError, "ERROR in %s ret =  %d Bytes Returned%ld", function, sent, static_cast<long>(returned));
    }
    return sent ? kSuccess : 0;
}

status_t OSReadMSR(MSRRecord_t* record) { return SendMSR(kRequestReadMSR, "OSReadMSR", record); }

status_t OSWriteMSR(MSRRecord_t* record) { return SendMSR(kRequestWriteMSR, "OSWriteMSR", record); }

status_t OSReadCPUID(uint32_t processor, CPUIDRecord_t* record) {
    const uint32_t processors = os_GetProcessorCount();
    TRACE("OSReadCPUID", kInfo, "Number of logical processors : %d", static_cast<int>(processors));
    if (processor >= processors && processor != kAnyProcessor) return kBadValue;
    if (record == nullptr) return kNullPointer;

    CPUIDRequest_t request = {};
    request.Cpu = processor;
    request.Registers = *record;
    DWORD returned = 0;
    const BOOL sent = SendRequest(kRequestReadCPUID, &request, sizeof(request), &returned);
    if (!sent) {
        TRACE("OSReadCPUID", kError, "ERROR in OSReadCPUID ret =  %dBytes Returned%ld", sent,
              static_cast<long>(returned));
        return 0;
    }
    *record = request.Registers;
    return kSuccess;
}

status_t OSCalcNonTurbo(NonTurboRecord_t* record) {
    DWORD returned = 0;
    const BOOL sent = SendRequest(kRequestNonTurbo, record, sizeof(*record), &returned);
    if (!sent) {
        TRACE("OSCalcNonTurbo", kError, "ERROR in OSDriverCalcNonTurbo ret =  %dBytes Returned%ld", sent,
              static_cast<long>(returned));
        return kFailure;
    }
    return kSuccess;
}
