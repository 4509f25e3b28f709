#include "Tools/quorlin/Causes.h"

#include "Packages/FERROXExternal/StructureStore/Record.h"
#include "Packages/OS/FirmwareTables.h"
#include "Packages/OS/Program.h"
#include "Tools/quorlin/Output.h"

namespace {

// Advises more rights only to a process that lacks them.
Cause_t LacksRights(const char* problem, const char* other) {
    const char* rights = AdviceForRights();
    return {problem, rights != nullptr ? rights : other};
}

// Texts in place, as pointers to them would have to be relocated at each start.
struct ObstacleText_t {
    char word[20], problem[72], advice[104];
};
constexpr ObstacleText_t kObstacles[] = {
#define OBSTACLE(name, word, problem, advice) {word, problem, advice},
#include "Packages/FERROXExternal/FERROXLib/Obstacles.inc"
#undef OBSTACLE
};

const ObstacleText_t& TextOf(Obstacle_t obstacle) { return kObstacles[static_cast<size_t>(obstacle)]; }

Cause_t CPUIDFails(const char* other) { return {"its driver fails at the CPUID instruction", other}; }

Cause_t WhyFirmwareFails() {
    constexpr char kElse[] = "try --sample, --image FILE";
    bool refused = false;
    if (os_GetFirmwareTable(kSMBIOSProvider, 0, nullptr, 0, &refused) == 0 && refused)
        return LacksRights("the system refuses to give its SMBIOS table", kElse);
    return {"no SMBIOS table here", kElse};
}

const char* WordsOf(status_t status) {
    switch (status) {
        case 0: return "the request was refused";
        case kBadValue: return "an argument is out of range";
        case kNoMemory: return "out of memory";
        case kNullPointer: return "nothing found";
        case kNotSupported: return "not available on this system or under its hypervisor";
        default: return "the operation failed, or this machine has no such thing";
    }
}

}  // namespace

std::string Cause_t::Text() const {
    std::string text = problem + "; " + advice;
    if (lacksAccess && ReplayedRecord() == nullptr) text += ", or quorlin doctor";
    return text;
}

std::string_view WordOf(Obstacle_t obstacle) { return TextOf(obstacle).word; }

Cause_t CauseOf(Obstacle_t obstacle) {
    const ObstacleText_t& text = TextOf(obstacle);
    return obstacle == Obstacle_t::kRights ? LacksRights(text.problem, text.advice)
                                           : Cause_t{text.problem, text.advice};
}

Obstacle_t ObstacleOf(MemoryEnd_t end) {
    switch (end) {
        case MemoryEnd_t::kNoAnchors: return Obstacle_t::kNoAnchors;
        case MemoryEnd_t::kNoAddresses: return Obstacle_t::kNoAddresses;
        case MemoryEnd_t::kNoEntryPoint: return Obstacle_t::kNoEntryPoint;
        case MemoryEnd_t::kElsewhere: return Obstacle_t::kNoMap;
        default: return Obstacle_t::kOther;
    }
}

Cause_t WhyNoStart(status_t status, Refusal_t refusal, const char* other) {
    if (status == kNotSupported) return {"no access to hardware on this system", other};
    if (status != kFailure) return CPUIDFails(other);  // the hypervisor test, which alone gives other statuses
    switch (refusal) {
        case Refusal_t::kNoDriver: return {TextOf(Obstacle_t::kNoDriver).problem, other};
        case Refusal_t::kRights: return LacksRights("the system refuses to start its driver", other);
        default: return {TextOf(Obstacle_t::kDriverFails).problem, other};
    }
}

Cause_t WhyNoTable(const Steps_t& steps, const char* other) {
    if (steps.start && *steps.start != kSuccess) return WhyNoStart(*steps.start, steps.refusal, other);
    if (steps.cpuid && *steps.cpuid != kSuccess) return CPUIDFails(other);
    if (steps.firmware == kNoMemory || steps.firmware == kSuccess || steps.memory == MemoryEnd_t::kNoRoom ||
        steps.memory == MemoryEnd_t::kFound)
        return {"out of memory", "try again with more, or a smaller table", false};
    if (steps.firmware || !steps.memory) return WhyFirmwareFails();
    if (*steps.memory == MemoryEnd_t::kNoArea) return {"this architecture has no BIOS area to scan", other, false};
    if (const Obstacle_t obstacle = ObstacleOf(*steps.memory); obstacle != Obstacle_t::kOther)
        return {TextOf(obstacle).problem, other};
    return steps.refusal == Refusal_t::kRights ? LacksRights("the system refuses to give its memory", other)
                                               : Cause_t{"its memory can't be read", other};
}

Cause_t WhyNoAnswer(status_t status, Refusal_t refusal, const char* other) {
    const bool isRefusal = (status == 0 || status == kFailure) && refusal == Refusal_t::kRights;
    const bool lacksAccess = status == 0 || status == kFailure || status == kNotSupported;
    const bool isMissing = (status == kFailure || status == kNotSupported) && refusal == Refusal_t::kNotRecorded;
    const bool isForeign = status == kNotSupported && refusal == Refusal_t::kArchitecture;
    Cause_t cause = isMissing   ? Cause_t{"the record doesn't have it", "try the machine itself", false}
                    : isForeign ? Cause_t{TextOf(Obstacle_t::kArchitecture).problem, "try an x86 machine", false}
                    : isRefusal ? LacksRights("the system refuses it", other)
                                : Cause_t{WordsOf(status), other, lacksAccess};
    cause.problem += " (status " + std::to_string(status) + ")";
    return cause;
}
