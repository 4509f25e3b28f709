#include "Tools/quorlin/Table.h"

#include <algorithm>
#include <new>

#include "Packages/CrashReport/CrashReport.h"
#include "Packages/FERROXExternal/StructureStore/Record.h"
#include "Packages/FERROXExternal/StructureStore/StoreHost.h"
#include "Packages/OS/Memory.h"
#include "Packages/OS/OS.h"
#include "Packages/OS/Program.h"
#include "Packages/Sample/Sample.h"
#include "Tools/quorlin/Causes.h"
#include "Tools/quorlin/NameList.h"
#include "Tools/quorlin/Output.h"
#include "Tools/quorlin/Progress.h"
#include "Tools/quorlin/Recover.h"

namespace {

constexpr uint8_t kNoSweep = 127;  // a preset type, so that a package decodes only what it is asked for

// The machine that is brought up, and what its operations did, which the store doesn't report.
MachineServices_t watched = {};
Steps_t steps;

status_t OpenWatched() {
    steps.start = watched.FERROXInitialize();
    if (*steps.start == kSuccess) return kSuccess;
    steps.refusal = LastRefusal();
    EndFailedStart();
    return *steps.start;
}

status_t ByFirmware(uint8_t* entry, uint8_t* dmiEntry, SMBIOSTableImage_t** image) {
    if (watched.osGetStructuresDataEFI != osGetStructuresDataEFI) return kFailure;
    steps.firmware = osGetStructuresDataEFI(entry, dmiEntry, image);
    return *steps.firmware;
}

bool ReadsByAddress() { return watched.osGetStructuresDataNonEFI == osGetStructuresDataByAddress; }

// The method that is tried last.
status_t ByMemory(uint8_t* entry, uint8_t* dmiEntry, SMBIOSTableImage_t** image) {
    if (!ReadsByAddress() && watched.osGetStructuresDataNonEFI != osGetStructuresDataNonEFI) return kFailure;
    steps.memory = (ReadsByAddress() ? ReadByAddress : ScanMemory)(entry, dmiEntry, image);
    steps.refusal = LastRefusal();
    return *steps.memory == MemoryEnd_t::kFound ? kSuccess : kFailure;
}

status_t ReadWatchedCPUID(uint32_t processor, CPUIDRecord_t* record) {
    steps.cpuid = watched.ReadCPUID(processor, record);
    return *steps.cpuid;
}

// Why this machine gives no table, and what to try.
Cause_t WhyNotThisMachine(const Source_t& source) {
    const char* other = source.ReadsMemory() ? "try without --method"
                        : source.driver      ? "try --no-driver"
                                             : "try --sample, --image FILE";
    if (ReadsByAddress() && steps.start == kNotSupported)
        return {"this system doesn't show the address of its firmware's table", other};
    return WhyNoTable(steps, other);
}

}  // namespace

bool ClTable::BringUp() {
    BaseAbstraction* created = CreateSmbiosPackageForKovr(kNoSweep);
    if (created == nullptr) throw std::bad_alloc();
    m_package.reset(static_cast<Quorlin*>(created));
    if (m_package->BringUp() == kSuccess) return true;
    Close();
    return false;
}

bool ClTable::UseSample(const Source_t& source) {
    const std::span<const uint8_t> table = SampleTable();
    m_image.source = {table.data(), static_cast<uint32_t>(table.size()), 3, 0, source.signature};
    m_isSample = true;
    m_name = "sample";
    return SetImageMachine(&m_image.source) == kSuccess;
}

void ClTable::AddRemark(const std::string& text) {
    if (text.empty()) return;
    if (!m_remark.empty()) m_remark += "; ";
    m_remark += text;
}

// With --recover, makes the table what can be read of it. m_image must point to the whole table.
void ClTable::UseRecovered(const Source_t& source) {
    if (!source.recover) return;
    Recovered_t recovered = RecoverTable({m_image.source.table, m_image.source.length});
    AddRemark(recovered.Remark());
    m_recovered = std::move(recovered.table);
    m_image.source.table = m_recovered.data();
    m_image.source.length = static_cast<uint32_t>(m_recovered.size());
}

bool ClTable::OpenImage(const Source_t& source, const std::string& path) try {
    m_isImage = true;
    const bool isStream = path == kStandardStream;
    m_name = isStream ? "standard input" : path;
    m_image.source = {nullptr, 0, source.major, source.minor, source.signature};
    const status_t status =
        isStream ? ReadImage(stdin, source.as, &m_image, &m_error) : ReadImage(path, source.as, &m_image, &m_error);
    if (status != kSuccess) return false;
    AddRemark(m_image.Remark());
    UseRecovered(source);
    return SetImageMachine(&m_image.source) == kSuccess;
} catch (const std::bad_alloc&) {
    m_error = kOutOfMemory;
    return false;
}

bool ClTable::BringUpWatched(const MachineServices_t& machine) {
    watched = machine;
    steps = {};
    const MachineServices_t services = {OpenWatched, machine.FERROXTerminate, ByFirmware, ByMemory, ReadWatchedCPUID};
    return SetMachine(&services) == kSuccess && BringUp();
}

// The recorded machine takes this one's place.
bool ClTable::BringUpRecord(const Source_t& source) {
    m_isRecord = true;
    if (ReplayRecord(source.replay, &m_error) != kSuccess) return false;
    if (BringUp()) return true;
    m_error = WhyNoTable(*ReplayedRecord());
    return false;
}

// With its driver first, and without it where the driver fails, unless the user chose.
bool ClTable::BringUpThisMachine(const Source_t& source) {
    if (!source.noDriver) {
        MachineServices_t machine = source.method == "scan"  ? *ThisMachineByScan()
                                    : source.method == "efi" ? *ThisMachineByEfi()
                                                             : *ThisMachine();
        if (source.method == "firmware")
            machine.osGetStructuresDataNonEFI = ThisMachineWithoutDriver()->osGetStructuresDataNonEFI;
        if (BringUpWatched(machine)) return true;
        if (source.driver || source.ReadsMemory() || !steps.FailedAtDriver()) return false;
        if (source.verbose) SayError(m_name, WhyNotThisMachine(source).problem + "; trying without it");
    }
    return BringUpWatched(*ThisMachineWithoutDriver());
}

bool ClTable::OpenThisMachine(const Source_t& source) {
    m_name = "this machine";
    const bool isReplay = !source.replay.empty();
    if (isReplay ? BringUpRecord(source) : BringUpThisMachine(source)) {
        GetSMBIOSVersion(&m_version[0], &m_version[1]);
        if (!source.recover) return true;
        // The same table as an image, as far as it can be read.
        CPUIDRecord_t cpuid = {};
        cpuid.Eax = 1;
        CurrentMachine()->ReadCPUID(kAnyProcessor, &cpuid);
        const std::span<const uint8_t> bytes = Bytes();
        m_image.bytes.assign(bytes.begin(), bytes.end());
        m_image.source = {m_image.bytes.data(), static_cast<uint32_t>(m_image.bytes.size()), Major(), Minor(),
                          cpuid.Eax};
        Close();
        UseRecovered(source);
        return SetImageMachine(&m_image.source) == kSuccess;
    }
    if (isReplay) {
        m_name = source.replay;
        return false;
    }
    if (source.sampleIfNone) {
        SayError(m_name, WhyNotThisMachine(source).problem + "; showing the embedded sample");
        if (UseSample(source)) return true;
    }
    m_error = WhyNotThisMachine(source).Text();
    return false;
}

bool ClTable::Open(const Source_t& source, const std::string* path) {
    Close();
    InstallCrashReport();  // here, as not every command brings up a package
    m_isImage = m_isSample = m_isRecord = false;
    m_error.clear();
    m_remark.clear();
    const bool isOpen = path != nullptr ? OpenImage(source, *path)
                        : source.sample ? UseSample(source)
                                        : OpenThisMachine(source);
    if (!isOpen) return false;
    if (m_isImage || m_isSample || source.recover) {
        m_version[0] = m_image.source.major;
        m_version[1] = m_image.source.minor;
    }
    const bool saysCut = m_isImage && m_image.missing != 0;
    if (const TableFacts_t facts = StoreIsUp() ? *FactsOfTable() : FactsOf(Bytes());
        facts.brokenAt != TableFacts_t::kNowhere && !source.recover && !(saysCut && facts.isCut))
        AddRemark(facts.Remark() + ", so what comes after it may be made up; try --recover");
    if (source.verbose) SayError(m_name, "read " + Form());
    return true;
}

void ClTable::Close() {
    os_free(m_dump);
    m_dump = nullptr;
    ClosePackage();
}

void ClTable::ClosePackage() {
    if (m_package == nullptr) return;
    m_package->UnInitialize();
    // A package takes a table of version 0.0 for none, and leaves the store up.
    if (StoreIsUp()) LibSMBIOSExit();
    DestroySmbiosPackageForKovr(m_package.release());
}

void ClTable::CloseLargePackage() {
    constexpr size_t kLarge = 256u << 10;
    if (Bytes().size() > kLarge) ClosePackage();
}

std::span<const uint8_t> ClTable::Bytes() {
    if (m_isImage || m_isSample) return {m_image.source.table, m_image.source.length};
    uint8_t entry[kEntryBufferSize] = {};
    if (m_dump == nullptr && GetSMBIOSDump(entry, &m_dump) != kSuccess) return {};
    return {m_dump->Data(), m_dump->Length};
}

std::string ClTable::Form() const {
    std::string form = m_isSample         ? std::string("the embedded sample")
                       : m_isImage        ? "as " + m_image.FormText()
                       : m_isRecord       ? std::string("from its record")
                       : !steps.memory    ? std::string("by the system's firmware-table call")
                       : ReadsByAddress() ? std::string("at the address that its firmware gave")
                                          : std::string("by the scan of its memory");
    form += ", SMBIOS " + VersionText();
    if (m_isImage || m_isSample) form += ", " + std::to_string(m_image.source.length) + " table bytes";
    return form;
}

int ForEachTable(const Source_t& source, int trouble, const std::function<int(ClTable&)>& work,
                 const std::function<void(const ClTable&)>& failed, bool* isComplete) {
    // Never destroyed: freeing the last image piece by piece would be a good part of a short run.
    static ClTable& table = *new ClTable;
    int exitCode = kExitDone;
    const auto one = [&](const std::string* path) {
        if (table.Open(source, path)) {
            exitCode = std::max(exitCode, work(table));
            if (table.HadTooManyItems()) {
                SayError(table.Name(),
                         "its groups and lists give more items than a table of its size may; the rest is left out; "
                         "try check");
                exitCode = std::max(exitCode, kExitNoTable);
            }
            if (table.IsThisMachine()) table.Close();
        } else {
            failed(table);
            exitCode = std::max(exitCode, trouble);
        }
    };
    if (!source.IsFleet() && source.images.empty()) {
        one(nullptr);
        return exitCode;
    }
    ClProgress progress(source.IsFleet());
    ClNameList names(source.imageList);
    if (progress.IsShown()) {
        const size_t listed = names.Count();
        if (listed != 0 || source.imageList.empty()) progress.SetTotal(source.images.size() + listed);
    }
    for (const std::string& path : source.images) {
        one(&path);
        progress.Step();
    }
    if (source.imageList.empty()) return exitCode;
    for (std::string name; names.Next(&name);) {
        one(&name);
        progress.Step();
    }
    if (names.Problem().empty()) return exitCode;
    if (isComplete != nullptr) *isComplete = false;
    SayError(source.imageList, names.Problem() + "; try another list, or - to give the names on standard input");
    return trouble;
}

int ForEachTable(const Source_t& source, int trouble, const std::function<int(ClTable&)>& work) {
    return ForEachTable(
        source, trouble,
        [&](ClTable& table) {
            if (!table.Remark().empty()) SayError(table.Name(), table.Remark());
            return work(table);
        },
        [](const ClTable& table) { SayError(table.Name(), table.Error()); });
}
