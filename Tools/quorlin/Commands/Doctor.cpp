// quorlin doctor: which ways to this machine's data are open, and why the others aren't.
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <new>

#include "Packages/FERROXExternal/FERROXLib/FERROXLib.h"
#include "Packages/FERROXExternal/FERROXLib/Obstacles.h"
#include "Packages/FERROXExternal/StructureStore/StoreHost.h"
#include "Packages/OS/FirmwareTables.h"
#include "Packages/OS/OS.h"
#include "Packages/OS/Processors.h"
#include "Packages/OS/Program.h"
#include "Tools/quorlin/Causes.h"
#include "Tools/quorlin/Commands.h"
#include "Tools/quorlin/Formats.h"
#include "Tools/quorlin/Trace.h"

namespace {

constexpr Column_t kColumns[] = {
    {"thing"}, {"title"},   {"first_processor"}, {"last_processor"}, {"works"},
    {"cause"}, {"problem"}, {"detail"},          {"advice"},
};
constexpr List_t kList = {.name = "things", .columns = kColumns};

// A block of four bytes for an operation of the hardware library.
struct Word_t {
    uint32_t size = 4;
    uint8_t bytes[4] = {};

    DataBuffer_t* Buffer() { return reinterpret_cast<DataBuffer_t*>(this); }
};
static_assert(sizeof(Word_t) == sizeof(DataBuffer_t) + 4);

// Reads the SMBIOS table; the detail is its version and size. An empty one is none.
template <typename Method>
status_t ReadTable(Method method, std::string* detail) {
    uint8_t entry[kEntryBufferSize] = {}, dmiEntry[kDMIEntryBufferSize] = {};
    SMBIOSTableImage_t* image = nullptr;
    const status_t status = method(entry, dmiEntry, &image);
    if (status != kSuccess) return status;
    const std::unique_ptr<SMBIOSTableImage_t, void (*)(void*)> release(image, os_FreeBlock);
    if (image->Length == 0) return kFailure;
    *detail = "SMBIOS " + std::to_string(entry[6]) + "." + std::to_string(entry[7]) + ", " +
              std::to_string(image->Length) + " bytes";
    return kSuccess;
}

// An obstacle to an operation that failed.
Finding_t WhyFailed(Way_t way, uint32_t processor, status_t status) {
    Finding_t finding = FindObstacle(way, processor);
    if (finding.obstacle == Obstacle_t::kNone)
        finding = {Obstacle_t::kOther, WhyNoAnswer(status, Refusal_t::kOther, "").problem};
    return finding;
}

Finding_t TryFirmwareTable() {
    std::string detail;
    const status_t status = ReadTable(osGetStructuresDataEFI, &detail);
    if (status == kNoMemory) throw std::bad_alloc();
    return status == kSuccess ? Finding_t{Obstacle_t::kNone, detail} : WhyFailed(Way_t::kFirmwareTable, 0, status);
}

// By a method that reads memory.
template <typename Method>
Finding_t TryTableInMemory(Way_t way, Method method) {
    MemoryEnd_t end = MemoryEnd_t::kUnreadable;
    std::string detail;
    const auto read = [&](uint8_t* entry, uint8_t* dmiEntry, SMBIOSTableImage_t** image) {
        end = method(entry, dmiEntry, image);
        return end == MemoryEnd_t::kFound ? kSuccess : kFailure;
    };
    const status_t status = ReadTable(read, &detail);
    if (status == kSuccess) return {Obstacle_t::kNone, detail};
    if (end == MemoryEnd_t::kNoRoom) throw std::bad_alloc();
    if (end == MemoryEnd_t::kNoAnchors || end == MemoryEnd_t::kNoEntryPoint) return {ObstacleOf(end), ""};
    Finding_t ofWay = FindObstacle(way, 0);
    if (ofWay.obstacle != Obstacle_t::kNone) return ofWay;
    if (end == MemoryEnd_t::kElsewhere) return {ObstacleOf(end), ""};
    Finding_t ofRAM = FindObstacle(Way_t::kRAM, 0);
    return ofRAM.obstacle == Obstacle_t::kStrictMemory ? ofRAM : WhyFailed(way, 0, status);
}

Finding_t TryACPI() {
    const std::vector<uint32_t> tables = os_ListACPITables();
    char name[5] = "";
    uint32_t size = 0;
    if (!tables.empty()) std::memcpy(name, &tables.front(), sizeof tables.front());
    const status_t status = tables.empty() ? kFailure : GetACPITableEx(name, nullptr, &size);
    if (status != kSuccess || size == 0) return WhyFailed(Way_t::kACPI, 0, status);
    return {Obstacle_t::kNone, std::to_string(tables.size()) + (tables.size() == 1 ? " table" : " tables")};
}

Finding_t TryMemory() {
    constexpr uint64_t kBIOSArea = 0xF0000;
    Word_t word;
    word.size = 1;
    const status_t status = HasBIOSArea() ? GetSystemTables(kBIOSArea, 0, word.Buffer()) : kNotSupported;
    return status == kSuccess ? Finding_t{} : WhyFailed(Way_t::kMemory, 0, status);
}

// The vendor of the first function. Any user may read that, but not what comes after the first 64 bytes.
Finding_t TryPCI() {
    Word_t word;
    const status_t status = PCIRead(0, 0, word.Buffer());
    if (status != kSuccess) return WhyFailed(Way_t::kPCI, 0, status);
    if (word.bytes[0] == 0xFF && word.bytes[1] == 0xFF) return {Obstacle_t::kNoPCI, ""};
    Finding_t finding = FindObstacle(Way_t::kPCI, 0);
    char vendor[16];
    std::snprintf(vendor, sizeof vendor, "vendor %02X%02Xh", word.bytes[1], word.bytes[0]);
    if (finding.obstacle == Obstacle_t::kNone) finding.detail = vendor;
    return finding;
}

// Without MCFG, the library would write a line of its own.
Finding_t TryExtendedPCI() {
    constexpr uint32_t kFirst = 256, kMCFG = 'M' | 'C' << 8 | 'F' << 16 | 'G' << 24;
    Word_t word;
    const bool hasMap = os_GetFirmwareTable(kACPIProvider, kMCFG, nullptr, 0, nullptr) != 0;
    const status_t status = hasMap ? PCIExRead(0, kFirst, word.Buffer()) : kFailure;
    if (status != kSuccess) return WhyFailed(Way_t::kExtendedPCI, 0, status);
    const bool isThere = std::ranges::any_of(word.bytes, [](uint8_t byte) { return byte != 0xFF; });
    return {isThere ? Obstacle_t::kNone : Obstacle_t::kNoExtended, ""};
}

Finding_t TryMSR(uint32_t processor) {
    constexpr uint32_t kTimeStampCounter = 0x10;
    MSRRecord_t record = {0, processor, kTimeStampCounter, 0, 0};
    const status_t status = ReadMSR(&record);
    return status == kSuccess ? Finding_t{} : WhyFailed(Way_t::kMSR, processor, status);
}

// The processor's maker. If the instruction ran elsewhere for this processor, the detail is how.
Finding_t TryCPUID(uint32_t processor) {
    CPUIDRecord_t record = {};
    const status_t status = ReadCPUID(processor, &record);
    if (status != kSuccess) return WhyFailed(Way_t::kCPUID, processor, status);
    std::string detail = FindObstacle(Way_t::kCPUID, processor).detail;
    if (detail.empty())
        for (const uint32_t part : {record.Ebx, record.Edx, record.Ecx})
            detail.append(reinterpret_cast<const char*>(&part), sizeof part);
    return {Obstacle_t::kNone, detail};
}

Finding_t TryNewFiles() {
    const int error = WhyNoNewFiles();
    const Obstacle_t obstacle = error == 0        ? Obstacle_t::kNone
                                : error == EROFS  ? Obstacle_t::kReadOnly
                                : error == ENOSYS ? Obstacle_t::kNotHere
                                : error == EACCES ? Obstacle_t::kForeignFolder
                                                  : Obstacle_t::kOther;
    return {obstacle, error == 0 || error == ENOSYS ? "" : std::strerror(error)};
}

// Goes the way as far as that has no effects, or asks whether it could be gone.
Finding_t Try(Way_t way, uint32_t processor) {
    switch (way) {
        case Way_t::kFirmwareTable: return TryFirmwareTable();
        case Way_t::kACPI: return TryACPI();
        case Way_t::kScan: return TryTableInMemory(way, ScanMemory);
        case Way_t::kByAddress: return TryTableInMemory(way, ReadByAddress);
        case Way_t::kMemory: return TryMemory();
        case Way_t::kPCI: return TryPCI();
        case Way_t::kExtendedPCI: return TryExtendedPCI();
        case Way_t::kMSR: return TryMSR(processor);
        case Way_t::kCPUID: return TryCPUID(processor);
        case Way_t::kNewFiles: return TryNewFiles();
        default: return FindObstacle(way, processor);
    }
}

// How a thing is looked at.
enum Traits_t : uint8_t {
    kPlain = 0,
    kTable = 1,     // gives an SMBIOS table
    kForEach = 2,   // asked for each processor
    kOpen = 4,      // by an operation of the hardware library, which has to be open
    kOptional = 8,  // left out on systems that don't have it
};

struct Thing_t {
    char name[16];
    char title[48];
    Way_t way;
    int traits;

    bool Is(Traits_t trait) const { return (traits & trait) != 0; }
};

constexpr Thing_t kThings[] = {
    {"table",        "SMBIOS table from the system",            Way_t::kFirmwareTable, kTable                    },
    {"entry-point",  "SMBIOS entry point",                      Way_t::kEntryPoint,    kOptional                 },
    {"acpi",         "ACPI tables",                             Way_t::kACPI,          kPlain                    },
    {"service",      "Driver's service",                        Way_t::kService,       kOptional                 },
    {"driver",       "Driver",                                  Way_t::kDriver,        kOptional                 },
    {"scan",         "SMBIOS table by the scan of memory",      Way_t::kScan,          kTable | kOpen            },
    {"efi",          "SMBIOS table by UEFI firmware's address", Way_t::kByAddress,     kTable | kOpen | kOptional},
    {"memory",       "Memory of the firmware",                  Way_t::kMemory,        kOpen                     },
    {"ram",          "Memory of the system",                    Way_t::kRAM,           kOptional                 },
    {"pci",          "PCI configuration space",                 Way_t::kPCI,           kOpen                     },
    {"pci-extended", "PCI configuration space above 256 bytes", Way_t::kExtendedPCI,   kOpen                     },
    {"ports",        "I/O ports",                               Way_t::kPorts,         kPlain                    },
    {"msr",          "Model-specific registers",                Way_t::kMSR,           kForEach | kOpen          },
    {"cpuid",        "CPUID",                                   Way_t::kCPUID,         kForEach | kOpen          },
    {"new-files",    "New files in this folder",                Way_t::kNewFiles,      kPlain                    },
};

// Keeps a trial of the hardware library.
class ClTrial {
  public:
    ClTrial() = default;
    ~ClTrial() {
        if (m_isBegun) EndTrial();
    }
    ClTrial(const ClTrial&) = delete;
    ClTrial& operator=(const ClTrial&) = delete;
    void Begin(bool startsDriver) {
        m_isBegun = true;
        m_isOpen = BeginTrial(startsDriver) == kSuccess;
    }
    bool IsOpen() const { return m_isOpen; }

  private:
    bool m_isBegun = false, m_isOpen = false;
};

class ClDoctor : public ClCommand {
  public:
    std::vector<Option_t> Options() override {
        return {
            {"--try-driver", nullptr, "On Windows, start the driver meanwhile; its service is put back afterwards",
             &m_triesDriver},
            m_format.Option(),
            TraceOption(&m_trace),
        };
    }

    int Run() override {
        BeginTrace(m_trace);
        ClOutput output;
        const std::unique_ptr<ClWriter> writer = m_format.Chosen().make(output, false);
        writer->Begin(kList, {});
        bool hasTable = false;
        {
            ClTrial trial;
            for (const Thing_t& thing : kThings) {
                // The driver's service is asked before anything starts it.
                if (thing.way == Way_t::kDriver) trial.Begin(m_triesDriver);
                hasTable |= Show(thing, trial, *writer);
            }
        }
        writer->End();
        return output.Finish() && hasTable ? kExitDone : kExitNo;
    }

  private:
    static Finding_t Look(const Thing_t& thing, uint32_t processor, bool isOpen) {
        if (processor >= kAnyProcessor) return {Obstacle_t::kNoNumber, ""};
        if (thing.Is(kOpen) && !isOpen) return WhyFailed(thing.way, processor, kFailure);
        return Try(thing.way, processor);
    }

    // Shows what is found of a thing; processors that follow each other with the same finding as one. Returns whether
    // it gives a table.
    static bool Show(const Thing_t& thing, const ClTrial& trial, ClWriter& writer) {
        const uint32_t count = thing.Is(kForEach) ? os_GetProcessorCount() : 1;
        Finding_t shown = Look(thing, 0, trial.IsOpen());
        uint32_t first = 0;
        for (uint32_t processor = 1; processor < count; processor++) {
            Finding_t finding = Look(thing, processor, trial.IsOpen());
            if (finding == shown) continue;
            Write(thing, first, processor - 1, shown, writer);
            first = processor;
            shown = std::move(finding);
        }
        Write(thing, first, std::max(count, 1u) - 1, shown, writer);
        return thing.Is(kTable) && shown.obstacle == Obstacle_t::kNone;
    }

    static void Write(const Thing_t& thing, uint64_t first, uint64_t last, const Finding_t& finding, ClWriter& writer) {
        if (thing.Is(kOptional) && finding.obstacle == Obstacle_t::kNotHere) return;
        const bool works = finding.obstacle == Obstacle_t::kNone;
        const Cause_t cause = CauseOf(finding.obstacle);
        if (ClColumns* people = writer.People(); people != nullptr) {
            std::string title = thing.title, result = cause.problem;
            if (thing.Is(kForEach)) title.append(first == last ? ", processor " : ", processors ");
            if (thing.Is(kForEach)) title.append(std::to_string(first));
            if (thing.Is(kForEach) && first != last) title.append("-").append(std::to_string(last));
            if (!finding.detail.empty()) result.append(" (").append(finding.detail).append(")");
            people->Line(0, title.append(": ").append(result));
            if (!cause.advice.empty()) people->Line(4, cause.advice);
            return;
        }
        Cell_t firstCell, lastCell;
        if (thing.Is(kForEach)) firstCell = first, lastCell = last;
        writer.Row({thing.name, thing.title, firstCell, lastCell, works,
                    works ? Cell_t{} : Cell_t{WordOf(finding.obstacle)}, works ? Cell_t{} : Cell_t{cause.problem},
                    Given(finding.detail), Given(cause.advice)});
    }

    static Cell_t Given(std::string_view text) { return text.empty() ? Cell_t{} : Cell_t{text}; }

    std::string m_trace;
    bool m_triesDriver = false;
    ClFormatOption m_format{kTableRows};
};

}  // namespace

constexpr Command_t kDoctorCommand = {
    .name = "doctor",
    .summary = "what of this machine can be read, and why the rest can't",
    .description =
        "Looks at each way to what this machine has: SMBIOS and ACPI tables, memory, PCI configuration space, ports, "
        "model-specific registers, CPUID, and on Windows the driver. Says for each whether it works, or why it doesn't "
        "and what would help. Changes nothing. Takes no image and no record.",
    .footer =
        "Example: quorlin doctor --format json\n"
        "Exit codes: 0 an SMBIOS table can be read, 1 it can't, 2 bad usage.",
    .trouble = kExitNo,
    .make = MakeCommand<ClDoctor>,
};
