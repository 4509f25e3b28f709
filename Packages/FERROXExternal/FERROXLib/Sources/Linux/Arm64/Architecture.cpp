// What this architecture doesn't have: ports, model-specific registers, CPUID, and an area of the BIOS.
#include <cerrno>

#include "Packages/FERROXExternal/FERROXLib/Sources/Linux/LinuxFERROX.h"
#include "Packages/FERROXExternal/FERROXLib/Sources/Linux/Ports.h"

namespace {

status_t NotHere(const char* function) {
    Refused(function, "this architecture doesn't have it");
    NoteRefusal(Refusal_t::kArchitecture);
    return kNotSupported;
}

}  // namespace

bool ArchitectureHas(Way_t way) {
    switch (way) {
        case Way_t::kScan:
        case Way_t::kMemory:
        case Way_t::kPorts:
        case Way_t::kMSR:
        case Way_t::kCPUID: return false;
        default: return true;
    }
}

bool ClPorts::Open(uint32_t, uint32_t) {
    errno = ENOSYS;
    return false;
}

ClPorts::~ClPorts() = default;

status_t OSReadPort(uint16_t, DataBuffer_t*) { return NotHere("OSReadPort"); }

status_t OSWritePort(uint16_t, DataBuffer_t*) { return NotHere("OSWritePort"); }

status_t OSReadMSR(MSRRecord_t*) { return NotHere("OSReadMSR"); }

status_t OSWriteMSR(MSRRecord_t*) { return NotHere("OSWriteMSR"); }

status_t OSReadCPUID(uint32_t, CPUIDRecord_t*) { return NotHere("OSReadCPUID"); }

status_t OSCalcNonTurbo(NonTurboRecord_t*) { return NotHere("OSCalcNonTurbo"); }
