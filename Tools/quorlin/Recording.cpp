#include "Tools/quorlin/Recording.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "Packages/Analysis/RedactMachine.h"
#include "Packages/FERROXExternal/StructureStore/Machine.h"
#include "Packages/FERROXExternal/StructureStore/Record.h"
#include "Packages/OS/OS.h"
#include "Packages/OS/OSServices.h"
#include "Packages/OS/Processors.h"
#include "Packages/OS/Program.h"
#include "Packages/OS/SystemFacts.h"
#include "Tools/quorlin/Causes.h"
#include "Tools/quorlin/Key.h"
#include "Tools/quorlin/Output.h"

namespace {

struct RegisterRow_t {
    uint32_t number;
    enum Maker_t : uint8_t { kAll, kIntel, kAMD } maker;
};
constexpr RegisterRow_t kRegisters[] = {
#define REGISTER(number, name, maker) {number, RegisterRow_t::k##maker},
#include "Tools/quorlin/Registers.inc"
#undef REGISTER
};

constexpr uint32_t kMostProcessors = kAnyProcessor;  // that have numbers of their own

struct Buffer_t {
    DataBuffer_t head = {0};
    std::array<uint8_t, 4096> bytes = {};
};

const char* WhyRefused() {
    switch (LastRefusal()) {
        case Refusal_t::kRights: return "the user lacks the rights";
        case Refusal_t::kNotRecorded: return "it wasn't recorded";
        case Refusal_t::kNoDriver: return "the driver isn't installed";
        case Refusal_t::kArchitecture: return "this architecture doesn't have it";
        default: return "the system refuses it";
    }
}

class ClRecorder {
  public:
    explicit ClRecorder(const RecordingOptions_t& options) : m_options(options) {}

    RecordedHardware_t Run() {
        ReadFacts();
        ReadTables();
        NoteRefusal(Refusal_t::kOther);
        m_isOpen = FERROXInitialize() == kSuccess;
        if (!m_isOpen) {
            Unread("hardware", WhyRefused());
            EndFailedStart();
        }
        ReadProcessors();
        if (m_isOpen) {
            ReadVersions();
            ReadFunctions();
            ReadRegisters();
            FERROXTerminate();
        }
        return std::move(m_record);
    }

  private:
    // The first reason is kept: those of a replayed machine are its own.
    void Unread(std::string_view what, std::string_view why) {
        std::vector<Unread_t>& unread = m_record.facts.unread;
        if (std::ranges::find(unread, what, &Unread_t::what) == unread.end())
            unread.push_back({std::string(what), std::string(why)});
    }
    void Recorded(RecordFile_t file) { m_record.facts.files.push_back({kRecordFiles[file], {}}); }

    // Of a replayed machine, not of the one that replays it.
    void ReadFacts() {
        m_options.progress("the system");
        MachineFacts_t& facts = m_record.facts;
        if (const Record_t* const replayed = ReplayedRecord(); replayed != nullptr) {
            facts = replayed->hardware.facts;
            facts.files.clear();
            facts.versions.clear();
            facts.segments.clear();
            return;
        }
        const auto text = [](status_t (*get)(char**)) {
            char* block = nullptr;
            std::string copy = get(&block) == kSuccess ? block : "";
            os_FreeBlock(block);
            return copy;
        };
        facts.system = text(os_GetOSName);
        facts.host = text(os_GetMachineName);
        facts.kernel = KernelVersion();
        if (const char* const kind = FirmwareKind(); kind != nullptr) facts.firmware = kind;
        if (const uint32_t count = os_GetProcessorCount(); count != 0) facts.processors = count;
        uint64_t memory = 0;
        if (os_GetMemorySize(&memory) == kSuccess) facts.memory = memory;
        facts.known = ReadSystemFacts();
        if (facts.known.memoryMap.empty())
            Unread("memory map",
                   AdviceForRights() != nullptr ? "the user lacks the rights" : "the system doesn't tell it");
    }

    void ReadTables() {
        m_options.progress("ACPI tables");
        const HardwareServices_t& hardware = CurrentHardware();
        NoteRefusal(Refusal_t::kOther);
        const std::vector<uint32_t> numbers =
            hardware.ListACPITables != nullptr ? hardware.ListACPITables() : std::vector<uint32_t>();
        if (LastRefusal() == Refusal_t::kNotRecorded) return Unread("ACPI tables", WhyRefused());
        m_record.facts.leftOut.clear();  // of a replayed machine, which lists them
        std::vector<std::string> names;
        for (const uint32_t number : numbers) {
            AcpiTable_t table = {
                {reinterpret_cast<const char*>(&number), sizeof number},
                {                                      }
            };
            const auto place = static_cast<uint32_t>(std::ranges::count(names, table.name));
            names.push_back(table.name);
            bool refused = false;
            if (IsLicenceKey(table.name) && !m_options.withLicenceKeys)
                LeaveOut(table.name, "it holds a licence key");
            else if (!IsAcpiName(table.name))
                LeaveOut(table.name, "its name isn't four visible characters");
            else if (!hardware.ReadACPITable(number, place, &table.bytes, &refused) || table.bytes.empty())
                LeaveOut(table.name, refused     ? "the user lacks the rights"
                                     : place > 0 ? "the system gives only the first of this name"
                                                 : "the system refuses it");
            else
                m_record.tables.push_back(std::move(table));
        }
        Recorded(kAcpiRecord);
    }

    static bool IsLicenceKey(std::string_view name) { return name == "MSDM" || name == "SLIC"; }

    void LeaveOut(const std::string& name, std::string_view why) {
        m_record.facts.leftOut.push_back(name);
        Unread("ACPI table " + name, why);
    }

    // ---- CPUID

    // Without the hardware library, by the instruction on each processor.
    status_t Read(uint32_t processor, uint32_t leaf, uint32_t subleaf, CpuidLeaf_t* row) const {
        CPUIDRecord_t record = {0, leaf, 0, subleaf, 0};
        const status_t status =
            m_isOpen ? ReadCPUID(processor, &record) : ThisMachineWithoutDriver()->ReadCPUID(processor, &record);
        *row = {leaf, subleaf, record.Eax, record.Ebx, record.Ecx, record.Edx};
        return status;
    }

    void ReadProcessors() {
        if (m_record.facts.known.IsArm64()) return;  // ARM64 has none
        const uint64_t count = m_record.facts.processors.value_or(0);
        for (uint32_t processor = 0; processor < std::min<uint64_t>(count, kMostProcessors); processor++) {
            m_options.progress(std::string("CPUID of processor ") + std::to_string(processor));
            CpuidLeaves_t leaves;
            if ((!m_isOpen && os_SetThreadAffinity(processor) != kSuccess) || !ReadLeaves(processor, &leaves)) break;
            m_record.processors.push_back(std::move(leaves));
        }
        if (const size_t done = m_record.processors.size(); done == 0 || done < count)
            Unread("CPUID from processor " + std::to_string(done) + " on",
                   done == kMostProcessors ? "the hardware library numbers 256 processors" : WhyRefused());
        if (!m_record.processors.empty()) Recorded(kCpuidRecord);
    }

    // Each range of leaves begins with its last one.
    bool ReadLeaves(uint32_t processor, CpuidLeaves_t* leaves) const {
        constexpr uint32_t kBasic = 0, kMostInRange = 0xFF, kSignature = 1;
        CpuidLeaf_t first;
        for (const uint32_t begin : {kBasic, 0x40000000u, 0x80000000u, 0x80860000u, 0xC0000000u}) {
            if (Read(processor, begin, 0, &first) != kSuccess) {
                if (begin != kBasic) continue;
                return false;
            }
            const uint32_t last = first.eax;
            if (begin != kBasic && (last < begin || last - begin > kMostInRange)) continue;
            if (begin == 0x40000000u && !HasHypervisor(*leaves)) continue;
            for (uint32_t leaf = begin; leaf <= begin + std::min(last - begin, kMostInRange); leaf++)
                if (!ReadSubleaves(processor, leaf, leaves)) return false;
        }
        return std::ranges::find(*leaves, kSignature, &CpuidLeaf_t::leaf) != leaves->end();
    }

    static bool HasHypervisor(const CpuidLeaves_t& leaves) {
        const auto found = std::ranges::find(leaves, 1u, &CpuidLeaf_t::leaf);
        return found != leaves.end() && found->ecx >> 31 != 0;
    }

    // A leaf that reads the same for the first sub-leaves has none, and gets one row. Others get at least two, and are
    // read up to the first sub-leaf after the last that says something. Returns false if one can't be read.
    bool ReadSubleaves(uint32_t processor, uint32_t leaf, CpuidLeaves_t* leaves) const {
        constexpr uint32_t kMostSubleaves = 64;
        CpuidLeaves_t rows;
        size_t count = 2;
        for (uint32_t subleaf = 0; subleaf < kMostSubleaves; subleaf++) {
            CpuidLeaf_t row;
            if (Read(processor, leaf, subleaf, &row) != kSuccess) {
                if (ReplayedRecord() == nullptr) return false;
                break;  // the record ends here
            }
            rows.push_back(row);
            if (row.eax != 0 || row.ebx != 0) count = rows.size() + 1;
            if (rows.size() == 3 && IsSame(rows[0], rows[1]) && IsSame(rows[0], rows[2])) {
                count = 1;
                break;
            }
        }
        std::ranges::copy(std::span(rows).first(std::min(count, rows.size())), std::back_inserter(*leaves));
        return true;
    }
    static bool IsSame(const CpuidLeaf_t& first, const CpuidLeaf_t& second) {
        return first.eax == second.eax && first.ebx == second.ebx && first.ecx == second.ecx && first.edx == second.edx;
    }

    // ---- The rest, for which the hardware library is open

    void ReadVersions() {
        for (const auto get : {GetFERROXDriverVersion, GetPCILibVersion, GetIOLibVersion, GetCPULibVersion}) {
            uint32_t version = 0;
            if (get(&version) != kSuccess) return m_record.facts.versions.clear();
            m_record.facts.versions.push_back(version);
        }
    }

    static status_t ReadSpace(uint32_t location, uint32_t offset, uint32_t size, Buffer_t* buffer) {
        buffer->head.Size = size;
        return (offset + size <= 256 ? PCIRead : PCIExRead)(location, offset, &buffer->head);
    }
    static bool IsOnes(std::span<const uint8_t> bytes) {
        return std::ranges::all_of(bytes, [](uint8_t byte) { return byte == 0xFF; });
    }

    void ReadFunctions() {
        std::vector<uint32_t> segments = {0};
        const bool hasMap = std::ranges::find(m_record.tables, "MCFG", &AcpiTable_t::name) != m_record.tables.end();
        if (std::vector<SegBusInfo_t> all(kMaxSegments); hasMap && GetSegBusInfo(all.data()) == kSuccess)
            for (uint32_t place = 0; place < all[0].SegmentCount; place++)
                segments.push_back(all[place].Segment & 0xFFFF);
        std::ranges::sort(segments);
        segments.erase(std::unique(segments.begin(), segments.end()), segments.end());
        // Under a hypervisor, and without a map, the library refuses extended space.
        m_readsExtended = hasMap && (m_record.processors.empty() ? m_record.facts.known.IsArm64()
                                                                 : !HasHypervisor(m_record.processors[0]));
        m_record.facts.hasExtendedSpace = true;
        for (const uint32_t segment : segments)
            if (ReadSegment(segment)) m_record.facts.segments.push_back(segment);
        if (!m_record.facts.segments.empty()) Recorded(kPciRecord);
    }

    // Functions of which the first isn't there are sought on buses that have others, for virtual functions.
    bool ReadSegment(uint32_t segment) {
        constexpr uint32_t kBuses = 256, kDevices = 32, kFunctions = 8;
        for (uint32_t bus = 0; bus < kBuses; bus++) {
            m_options.progress("PCI segment " + std::to_string(segment) + ", bus " + std::to_string(bus));
            std::vector<PciFunction_t> found;
            for (const bool isFirst : {true, false}) {
                if (!isFirst && found.empty()) continue;
                for (uint32_t device = 0; device < kDevices; device++) {
                    for (uint32_t function = isFirst ? 0 : 1; function < (isFirst ? 1 : kFunctions); function++) {
                        const uint32_t location = segment << 16 | function << 13 | device << 8 | bus;
                        if (!ReadFunction(location, &found)) {
                            Unread(
                                "PCI segment " + std::to_string(segment) + " from bus " + std::to_string(bus) + " on",
                                WhyRefused());
                            return false;
                        }
                    }
                }
            }
            std::ranges::sort(found, {}, [](const PciFunction_t& each) { return PciOrder(each.location); });
            std::ranges::move(found, std::back_inserter(m_record.functions));
        }
        return true;
    }

    // Adds the function if it is there. Returns false if that can't be told.
    bool ReadFunction(uint32_t location, std::vector<PciFunction_t>* found) {
        Buffer_t buffer;
        NoteRefusal(Refusal_t::kOther);
        // The status has a zero, even where vendor and device read as ones, as in a virtual function.
        if (ReadSpace(location, 0, 8, &buffer) != kSuccess) return false;
        if (IsOnes(std::span(buffer.bytes).first(8))) return true;
        for (const uint32_t size : {256u, 128u, 64u}) {
            if (ReadSpace(location, 0, size, &buffer) != kSuccess) continue;
            found->push_back({
                location, {buffer.bytes.begin(), buffer.bytes.begin() + size}
            });
            if (size == 256) ReadExtended(found->back());
            return true;
        }
        return true;  // it went away
    }

    void ReadExtended(PciFunction_t& function) {
        if (!m_readsExtended) return;
        Buffer_t buffer;
        const status_t status = ReadSpace(function.location, 256, 4096 - 256, &buffer);
        const std::span<const uint8_t> bytes = std::span(buffer.bytes).first(4096 - 256);
        if (status == 0) m_record.facts.hasExtendedSpace = false;
        if (status == kSuccess && !IsOnes(bytes))
            function.bytes.insert(function.bytes.end(), bytes.begin(), bytes.end());
    }

    bool IsRecorded(const RegisterRow_t& row) const {
        if (row.maker == RegisterRow_t::kAll) return true;
        const CpuidLeaves_t& leaves = m_record.processors[0];
        const bool isIntel = leaves[0].ecx == 0x6C65746E, isAmd = leaves[0].ecx == 0x444D4163;  // "ntel", "cAMD"
        return !HasHypervisor(leaves) && (row.maker == RegisterRow_t::kIntel ? isIntel : isAmd);
    }

    void ReadRegisters() {
        m_options.progress("model-specific registers");
        if (m_record.processors.empty()) return;
        for (const RegisterRow_t& row : kRegisters) {
            if (!IsRecorded(row)) continue;
            for (uint32_t processor = 0; processor < m_record.processors.size(); processor++) {
                MSRRecord_t record = {0, processor, row.number, 0, 0};
                NoteRefusal(Refusal_t::kOther);
                const status_t status = ReadMSR(&record);
                if (LastRefusal() == Refusal_t::kRights) return GiveUpRegisters();
                if (status == kSuccess)
                    m_record.registers.push_back(
                        {row.number, processor, uint64_t{record.HiContent} << 32 | record.LoContent});
                else if (status == 0)
                    m_record.registers.push_back({row.number, processor, std::nullopt});
            }
        }
        if (m_record.registers.empty()) return GiveUpRegisters();
        Recorded(kMsrRecord);
    }

    void GiveUpRegisters() {
        m_record.registers.clear();
        Unread("model-specific registers", WhyRefused());
    }

    const RecordingOptions_t& m_options;
    RecordedHardware_t m_record;
    bool m_isOpen = false, m_readsExtended = false;
};

}  // namespace

RecordedHardware_t ReadHardware(const RecordingOptions_t& options) { return ClRecorder(options).Run(); }

bool RedactHardware(std::span<uint8_t> table, const RedactOptions_t& options, const std::vector<uint8_t>& key,
                    RecordedHardware_t& hardware) {
    MachineFacts_t& facts = hardware.facts;
    facts.isRedacted = true;
    facts.host.clear();
    if (!facts.known.networkAddresses.empty()) {
        facts.known.networkAddresses.clear();
        facts.unread.push_back({"network addresses", "they identify the machine, and were left out"});
    }
    std::erase_if(hardware.tables, [&](const AcpiTable_t& each) {
        if (!IsNamingTable(each.name)) return false;
        facts.leftOut.push_back(each.name);
        facts.unread.push_back({"ACPI table " + each.name, "it identifies the machine, and was left out"});
        return true;
    });
    const bool isDone =
        RedactMachine(table, options, HmacUnder(key), hardware.tables, hardware.functions, hardware.processors);
    if (!isDone) SayError("redact", kNoHmac);
    return isDone;
}
