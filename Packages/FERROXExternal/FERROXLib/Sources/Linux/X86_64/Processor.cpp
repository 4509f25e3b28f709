// Processor registers: CPUID through the instruction, and model-specific registers through /dev/cpu/N/msr.
#include <fcntl.h>
#include <sys/io.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>

#include "Packages/FERROXExternal/FERROXLib/Sources/Linux/LinuxFERROX.h"
#include "Packages/FERROXExternal/FERROXLib/Sources/Linux/Ports.h"
#include "Packages/OS/Linux/Descriptor.h"
#include "Packages/OS/Linux/Processors.h"
#include "Packages/OS/Processors.h"

#define TRACE(function, level, ...) FERROX_TRACE("Linux\\Processor", function, level, __VA_ARGS__)

namespace {

// Keeps the calling thread on one processor during its lifetime.
class ClPin {
  public:
    ClPin() = default;
    ClPin(const ClPin&) = delete;
    ClPin& operator=(const ClPin&) = delete;
    ~ClPin() {
        if (m_isPinned) m_before.ApplyToThread();
    }
    // Returns false, with errno set, on failure.
    bool To(int processor) {
        ClProcessorSet one;
        errno = EINVAL;
        m_isPinned = one.Add(processor) && m_before.ReadFromThread() && one.ApplyToThread();
        return m_isPinned;
    }

  private:
    ClProcessorSet m_before;
    bool m_isPinned = false;
};

// Reads or writes bytes of a processor's file. Returns false, with errno set, on failure.
bool MoveInFile(Direction_t direction, int processor, const char* name, uint64_t place, void* data, size_t size) {
    const bool isRead = direction == Direction_t::kRead;
    char path[40];
    std::snprintf(path, sizeof path, "/dev/cpu/%d/%s", processor, name);
    const ClDescriptor file(path, isRead ? O_RDONLY : O_WRONLY);
    if (!file.IsOpen()) return false;
    const auto at = static_cast<off_t>(place);
    const ssize_t moved = isRead ? pread(file.Get(), data, size, at) : pwrite(file.Get(), data, size, at);
    if (moved >= 0) errno = EIO;
    return moved == static_cast<ssize_t>(size);
}

int ProcessorOf(uint32_t number) { return number == kAnyProcessor ? sched_getcpu() : SystemProcessor(number); }

status_t MoveMSR(const char* function, Direction_t direction, MSRRecord_t* record) {
    if (NeedsOpen() != kSuccess) return 0;
    const int processor = ProcessorOf(record->Cpu);
    if (processor < 0) return Refused(function, "no such processor");
    uint64_t value = uint64_t{record->HiContent} << 32 | record->LoContent;
    if (!MoveInFile(direction, processor, "msr", record->Msr, &value, sizeof value)) return Refused(function);
    record->HiContent = static_cast<uint32_t>(value >> 32);
    record->LoContent = static_cast<uint32_t>(value);
    return kSuccess;
}

// Reads CPUID of a processor on which this process may not run.
status_t ReadCPUIDFile(int processor, CPUIDRecord_t* record) {
    uint32_t registers[4];
    const uint64_t place = uint64_t{record->Ecx} << 32 | record->Eax;
    if (!MoveInFile(Direction_t::kRead, processor, "cpuid", place, registers, sizeof registers))
        return Refused("OSReadCPUID");
    *record = {record->Reserved, registers[0], registers[1], registers[2], registers[3]};
    return kSuccess;
}

}  // namespace

status_t OSReadMSR(MSRRecord_t* record) { return MoveMSR("OSReadMSR", Direction_t::kRead, record); }

status_t OSWriteMSR(MSRRecord_t* record) { return MoveMSR("OSWriteMSR", Direction_t::kWrite, record); }

status_t OSReadCPUID(uint32_t processor, CPUIDRecord_t* record) {
    ClPin pin;
    if (processor != kAnyProcessor) {
        const uint32_t processors = os_GetProcessorCount();
        TRACE("OSReadCPUID", kInfo, "Number of logical processors : %d", static_cast<int>(processors));
        if (processor >= processors) return kBadValue;
    }
    if (NeedsOpen() != kSuccess) return 0;
    if (processor != kAnyProcessor && !pin.To(SystemProcessor(processor)))
        return errno == EINVAL ? ReadCPUIDFile(SystemProcessor(processor), record) : Refused("OSReadCPUID");
    uint32_t registers[4] = {record->Eax, record->Ebx, record->Ecx, record->Edx};
    os_ReadCPUID(registers);
    *record = {record->Reserved, registers[0], registers[1], registers[2], registers[3]};
    return kSuccess;
}

// ---- The non-turbo frequency

namespace {

// A register of a processor, and the port of the ACPI power-management timer.
struct Counter_t {
    int processor;
    uint32_t msr;
    uint16_t port;
};

bool ReadCounter(void* context, uint64_t* count) {
    const auto* counter = static_cast<const Counter_t*>(context);
    return MoveInFile(Direction_t::kRead, counter->processor, "msr", counter->msr, count, sizeof *count);
}

bool ReadTimer(void* context, uint64_t* ticks) {
    *ticks = inl(static_cast<const Counter_t*>(context)->port);
    return true;
}

bool ReadClock(void*, uint64_t* nanoseconds) {
    timespec now;
    if (clock_gettime(CLOCK_MONOTONIC, &now) != 0) return false;
    *nanoseconds = static_cast<uint64_t>(now.tv_sec) * 1'000'000'000 + static_cast<uint64_t>(now.tv_nsec);
    return true;
}

}  // namespace

// Measures the rate of a register. That of IA32_MPERF is the non-turbo frequency.
status_t OSCalcNonTurbo(NonTurboRecord_t* record) {
    constexpr char kName[] = "OSCalcNonTurbo";
    const auto failed = [](status_t) { return kFailure; };
    if (NeedsOpen() != kSuccess) return kFailure;
    Counter_t counter = {ProcessorOf(record->Core), record->Msr, static_cast<uint16_t>(record->PMTimerAddress)};
    ClPin pin;
    ClPorts ports;
    if (counter.processor < 0 || !pin.To(counter.processor)) return failed(Refused(kName, "no such processor"));
    Measurement_t measurement = {ReadCounter, ReadClock, &counter, 1'000'000'000, ~uint64_t{0}};
    if (record->PMTimerAddress != 0) {
        if (!ports.Open(record->PMTimerAddress, 4)) return failed(Refused(kName));
        measurement.ReadTimer = ReadTimer;
        measurement.ticksPerSecond = 3'579'545;
        measurement.timerMask = 0xFFFFFF;
    }
    uint64_t perSecond;
    if (!MeasurePerSecond(measurement, &perSecond)) return failed(Refused(kName, "register or timer doesn't count"));
    std::memcpy(record->Result, &perSecond, sizeof record->Result);
    return kSuccess;
}
