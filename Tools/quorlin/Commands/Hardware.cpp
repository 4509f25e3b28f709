// quorlin hw: the operations of the hardware library.
#include <algorithm>
#include <cstdio>
#include <cstring>

#include "Packages/FERROXExternal/FERROXLib/HardwareServices.h"
#include "Packages/FERROXExternal/StructureStore/Record.h"
#include "Packages/Format/Ascii.h"
#include "Packages/OS/Memory.h"
#include "Packages/OS/OS.h"
#include "Tools/quorlin/Causes.h"
#include "Tools/quorlin/Commands.h"
#include "Tools/quorlin/Output.h"
#include "Tools/quorlin/Source.h"
#include "Tools/quorlin/Text.h"
#include "Tools/quorlin/Trace.h"

namespace {

constexpr uint64_t kMostBytes = 1u << 20;  // that one call reads

// What an operation returns instead of the library's status: its arguments are bad, or it has already reported an
// error.
constexpr status_t kBadUsage = 0xFFFFFFFF, kReported = 0xFFFFFFFE;

// A header with the size, and that many bytes.
class ClBuffer {
  public:
    explicit ClBuffer(uint32_t size) : m_block(sizeof(DataBuffer_t) + size) { Get()->Size = size; }
    ClBuffer(uint32_t size, uint64_t value) : ClBuffer(size) {
        std::memcpy(Get()->Data(), &value, std::min<size_t>(size, sizeof value));
    }
    DataBuffer_t* Get() { return reinterpret_cast<DataBuffer_t*>(m_block.data()); }
    std::span<const uint8_t> Bytes() { return {Get()->Data(), Get()->Size}; }

  private:
    std::vector<uint8_t> m_block;
};

// Keeps the hardware library open after Open.
class ClHardware {
  public:
    ClHardware() = default;
    ~ClHardware() {
        if (m_isOpen) FERROXTerminate();
    }
    ClHardware(const ClHardware&) = delete;
    ClHardware& operator=(const ClHardware&) = delete;
    // False with a line on standard error.
    bool Open() {
        const status_t status = FERROXInitialize();
        m_isOpen = status == kSuccess;
        if (m_isOpen) return true;
        const Cause_t cause = WhyNoStart(status, LastRefusal(), "try hw acpi or hw segments, which need no driver");
        EndFailedStart();
        SayError("this machine", cause.Text());
        return false;
    }

  private:
    bool m_isOpen = false;
};

// What the command line asks for, and where results go.
struct Request_t {
    Request_t(std::span<const std::string> theWords, ClOutput& theOutput) : words(theWords), output(theOutput) {}

    std::span<const std::string> words;  // the operation's arguments
    uint32_t cpu = kAnyProcessor;
    bool writes = false;
    uint64_t value = 0;  // to be written
    std::string out;
    ClOutput& output;
    std::string problem;                           // what is wrong with the words, for kBadUsage
    const char* advice = "try quorlin hw --help";  // after a failure
    ClHardware hardware;

    bool Number(size_t word, uint64_t least, uint64_t most, uint64_t* number) {
        if (ParseNumber(words[word], most, number) && *number >= least) return true;
        problem = "'" + words[word] + "' is not a number from " + std::to_string(least) + " to " + std::to_string(most);
        return false;
    }
    // The size of what is read or written.
    bool Size(size_t word, uint64_t most, uint64_t* size) {
        if (!Number(word, 1, most, size)) return false;
        if (!writes || *size >= sizeof value || value >> (8 * *size) == 0) return true;
        problem = "--write: the value is larger than " + words[word] + " bytes";
        return false;
    }
    // Call once all words are understood.
    bool Open() { return hardware.Open(); }
};

void ShowHex(std::span<const uint8_t> bytes, ClOutput& output) {
    char text[4];
    for (const uint8_t& byte : bytes) {
        std::snprintf(text, sizeof text, &byte == bytes.data() ? "%02x" : " %02x", byte);
        output << text;
    }
    output << "\n";
}

status_t DoCPUID(Request_t& request) {
    uint64_t leaf, subleaf = 0;
    if (!request.Number(0, 0, UINT32_MAX, &leaf)) return kBadUsage;
    if (request.words.size() > 1 && !request.Number(1, 0, UINT32_MAX, &subleaf)) return kBadUsage;
    if (!request.Open()) return kReported;
    CPUIDRecord_t record = {};
    record.Eax = static_cast<uint32_t>(leaf);
    record.Ecx = static_cast<uint32_t>(subleaf);
    const status_t status = ReadCPUID(request.cpu, &record);
    if (status != kSuccess) return status;
    char text[64];
    std::snprintf(text, sizeof text, "eax %08x ebx %08x ecx %08x edx %08x\n", record.Eax, record.Ebx, record.Ecx,
                  record.Edx);
    request.output << text;
    return kSuccess;
}

// "SEG:BUS:DEV.FN", all hexadecimal.
bool ParsePlace(std::string_view text, uint64_t* segment, uint64_t* bus, uint64_t* device, uint64_t* function) {
    const size_t first = text.find(':'), second = text.find(':', first + 1), dot = text.rfind('.');
    if (first == text.npos || second == text.npos || dot == text.npos || dot < second) return false;
    return ParseHex(text.substr(0, first), 0xFFFF, segment) &&
           ParseHex(text.substr(first + 1, second - first - 1), 0xFF, bus) &&
           ParseHex(text.substr(second + 1, dot - second - 1), 31, device) &&
           ParseHex(text.substr(dot + 1), 7, function);
}

status_t DoPCI(Request_t& request) {
    constexpr uint64_t kLegacySpace = 256, kWholeSpace = 4096;
    uint64_t segment, bus, device, function;
    if (!ParsePlace(request.words[0], &segment, &bus, &device, &function)) {
        request.problem = "'" + request.words[0] + "' is not a PCI function like 0000:00:03.0";
        return kBadUsage;
    }
    uint64_t offset, size;
    if (!request.Number(1, 0, kWholeSpace - 1, &offset) || !request.Size(2, kWholeSpace - offset, &size))
        return kBadUsage;
    if (!request.Open()) return kReported;
    const auto location = static_cast<uint32_t>(segment << 16 | function << 13 | device << 8 | bus);
    ClBuffer buffer(static_cast<uint32_t>(size));
    const auto read = offset + size <= kLegacySpace ? PCIRead : PCIExRead;
    const status_t status = read(location, static_cast<uint32_t>(offset), buffer.Get());
    if (status == kSuccess) ShowHex(buffer.Bytes(), request.output);
    return status;
}

status_t DoMemory(Request_t& request) {
    uint64_t address, size;
    if (!request.Number(0, 0, UINT64_MAX, &address) || !request.Size(1, request.writes ? 8 : kMostBytes, &size))
        return kBadUsage;
    if (!request.Open()) return kReported;
    ClBuffer buffer(static_cast<uint32_t>(size), request.value);
    if (request.writes) return PCIMMIOWriteStored(address, 0, buffer.Get());
    const status_t status = GetSystemTables(address, 0, buffer.Get());
    if (status == kSuccess) ShowBytes(buffer.Bytes(), request.output);
    return status;
}

// Whether the word before a register's number, read or write, agrees with --write.
bool HasDirection(Request_t& request) {
    const std::string& word = request.words[0];
    if (word == (request.writes ? "write" : "read")) return true;
    request.problem = word == "write"  ? std::string("write needs --write VALUE and --yes-write-hardware")
                      : word == "read" ? std::string("read and --write exclude each other")
                                       : "'" + word + "' is neither read nor write";
    return false;
}

status_t DoMSR(Request_t& request) {
    uint64_t number;
    if (!HasDirection(request) || !request.Number(1, 0, UINT32_MAX, &number)) return kBadUsage;
    if (!request.Open()) return kReported;
    MSRRecord_t record = {};
    record.Cpu = request.cpu == kAnyProcessor ? 0 : request.cpu;
    record.Msr = static_cast<uint32_t>(number);
    record.HiContent = static_cast<uint32_t>(request.value >> 32);
    record.LoContent = static_cast<uint32_t>(request.value);
    if (request.writes) return WriteMSR(&record);
    const status_t status = ReadMSR(&record);
    if (status != kSuccess) return status;
    char text[24];
    std::snprintf(text, sizeof text, "%08x%08x\n", record.HiContent, record.LoContent);
    request.output << text;
    return kSuccess;
}

status_t DoPort(Request_t& request) {
    uint64_t port, size;
    if (!HasDirection(request) || !request.Number(1, 0, UINT16_MAX, &port) || !request.Size(2, 4, &size))
        return kBadUsage;
    if (size == 3) {
        request.problem = "SIZE of a port must be 1, 2 or 4";
        return kBadUsage;
    }
    if (!request.Open()) return kReported;
    ClBuffer buffer(static_cast<uint32_t>(size), request.value);
    if (request.writes) return ConfigureWakeUpTimer(static_cast<uint16_t>(port), buffer.Get());
    const status_t status = ReadWakeupTimer(static_cast<uint16_t>(port), buffer.Get());
    if (status == kSuccess) ShowHex(buffer.Bytes(), request.output);
    return status;
}

// Lists the tables' names and sizes. Of tables with the same name the operations read the first.
status_t ListACPITables(Request_t& request) {
    NoteRefusal(Refusal_t::kOther);
    const auto list = CurrentHardware().ListACPITables;
    std::vector<uint32_t> tables = list != nullptr ? list() : std::vector<uint32_t>();
    if (tables.empty()) {
        SayError("hw acpi", LastRefusal() == Refusal_t::kNotRecorded
                                ? "the record doesn't have the ACPI tables; try the machine itself"
                                : "this system shows no ACPI tables; try quorlin doctor");
        return kReported;
    }
    request.output << "Table  Bytes\n";
    while (!tables.empty()) {
        char name[5] = "", text[64];
        std::memcpy(name, &tables.front(), sizeof tables.front());
        const size_t count = std::erase(tables, uint32_t{tables.front()});
        uint32_t size = 0;
        const bool isShown = GetACPITableEx(name, nullptr, &size) == kSuccess;
        // The firmware chose the name, which may contain control characters.
        std::replace_if(
            name, name + 4, [](char letter) { return !IsPrintableAscii(letter); }, '?');
        std::snprintf(text, sizeof text, "%-5s %6s", name, isShown ? std::to_string(size).c_str() : "-");
        request.output << text << (count > 1 ? "  the first of " + std::to_string(count) : "") << "\n";
    }
    return kSuccess;
}

status_t DoACPI(Request_t& request) {
    if (request.words.empty()) {
        request.problem = "--out needs the name of a table";
        return request.out.empty() ? ListACPITables(request) : kBadUsage;
    }
    request.advice = "try quorlin hw acpi, which lists the tables";
    DataBuffer_t* table = nullptr;
    status_t status = GetACPITable(request.words[0].c_str(), &table);
    if (status != kSuccess) return status;
    const std::span<const uint8_t> bytes(table->Data(), table->Size);
    if (request.out.empty())
        ShowBytes(bytes, request.output);
    else if (!WriteNewFile(request.out, bytes))
        status = kReported;
    os_free(table);
    return status;
}

status_t DoSegments(Request_t& request) {
    std::vector<SegBusInfo_t> segments(kMaxSegments);
    const status_t status = GetSegBusInfo(segments.data());
    if (status != kSuccess) return status;
    request.output << "Segment  Buses  Configuration space\n";
    char text[64];
    for (uint32_t place = 0; place < segments[0].SegmentCount; place++) {
        const SegBusInfo_t& segment = segments[place];
        const uint32_t number = segment.Segment, first = segment.StartBus, last = segment.EndBus;
        std::snprintf(text, sizeof text, "   %04x  %02x-%02x  0x%llx\n", number, first, last,
                      static_cast<unsigned long long>(segment.BaseAddress));
        request.output << text;
    }
    return kSuccess;
}

status_t DoVersions(Request_t& request) {
    if (!request.Open()) return kReported;
    LibVersion_t library = {};
    status_t status = GetFERROXLibVersion(&library);
    if (status != kSuccess) return status;
    request.output << "Library  " << library.Major << "." << library.Minor << "." << library.Revision << "."
                   << library.Build << "\n";
    const struct {
        const char* name;
        status_t (*get)(uint32_t* version);
    } kOthers[] = {
        {"Driver   ", GetFERROXDriverVersion},
        {"PCI      ", GetPCILibVersion      },
        {"I/O      ", GetIOLibVersion       },
        {"CPU      ", GetCPULibVersion      },
    };
    for (const auto& other : kOthers) {
        uint32_t version = 0;
        status = other.get(&version);
        if (status != kSuccess) return status;
        request.output << other.name << std::to_string(version >> 16) << "." << std::to_string(version & 0xFFFF)
                       << "\n";
    }
    return kSuccess;
}

struct Operation_t {
    char name[12];
    size_t leastWords, mostWords;  // after the name
    bool canWrite, takesCpu, takesOut;
    status_t (*run)(Request_t& request);
};
constexpr Operation_t kOperations[] = {
    {"cpuid",    1, 2, false, true,  false, DoCPUID   },
    {"pci",      3, 3, false, false, false, DoPCI     },
    {"mem",      2, 2, true,  false, false, DoMemory  },
    {"msr",      2, 2, true,  true,  false, DoMSR     },
    {"port",     3, 3, true,  false, false, DoPort    },
    {"acpi",     0, 1, false, false, true,  DoACPI    },
    {"segments", 0, 0, false, false, false, DoSegments},
    {"versions", 0, 0, false, false, false, DoVersions},
};

constexpr Choice_t kDirections[] = {{"read"}, {"write"}};

class ClHw : public ClCommand {
  public:
    std::vector<Option_t> Options() override {
        std::vector<Option_t> options;
        for (const Operation_t& operation : kOperations)
            std::ranges::copy(operation.name, m_names.emplace_back(Choice_t{""}).word);
        options.push_back({.name = "operation",
                           .typeName = "OPERATION",
                           .help = "The operation",
                           .target = &m_name,
                           .required = true,
                           .choices = m_names});
        options.push_back({.name = "argument",
                           .typeName = "ARGUMENT",
                           .help = "What the operation needs",
                           .target = &m_words,
                           .choices = kDirections,
                           .takesOthers = true,
                           .after = "msr port"});
        options.push_back({"--cpu", "N", "Processor number, from 0 (by default any for cpuid, 0 for msr)", &m_cpuText});
        options.push_back({"--out", "FILE", "Write an ACPI table into this new file", &m_out});
        options.push_back({"--write", "VALUE", "Write VALUE instead of reading", &m_valueText});
        options.push_back({"--yes-write-hardware", nullptr, "Confirm that the hardware is to be written", &m_yes});
        options.push_back(ReplayOption(&m_replay));
        options.push_back(TraceOption(&m_trace));
        return options;
    }

    int Run() override {
        const Operation_t& operation =
            *std::ranges::find_if(kOperations, [&](const Operation_t& each) { return m_name == each.name; });
        ClOutput output;
        Request_t request(m_words, output);
        CheckOptions(operation, request);
        BeginTrace(m_trace);
        if (std::string problem; !m_replay.empty() && ReplayRecord(m_replay, &problem) != kSuccess) {
            SayError(m_replay, problem);
            return kExitNo;
        }
        const status_t status = operation.run(request);
        if (status == kBadUsage) throw BadUsage_t{request.problem};
        const bool isWritten = output.Finish();
        if (status != kSuccess && status != kReported)
            SayError("hw " + m_name, WhyNoAnswer(status, LastRefusal(), request.advice).Text());
        return status == kSuccess && isWritten ? kExitDone : kExitNo;
    }

  private:
    void CheckOptions(const Operation_t& operation, Request_t& request) const {
        if (m_words.size() < operation.leastWords || m_words.size() > operation.mostWords)
            throw BadUsage_t{m_name + " takes other arguments"};
        if (!m_cpuText.empty() && !operation.takesCpu) throw BadUsage_t{m_name + " doesn't take --cpu"};
        if (!m_out.empty() && !operation.takesOut) throw BadUsage_t{m_name + " doesn't take --out"};
        uint64_t cpu = kAnyProcessor;
        if (!m_cpuText.empty() && !ParseNumber(m_cpuText, kAnyProcessor - 1, &cpu))
            throw BadUsage_t{"--cpu: '" + m_cpuText + "' is not a processor number"};
        request.cpu = static_cast<uint32_t>(cpu);
        request.out = m_out;
        request.writes = !m_valueText.empty();
        if (request.writes && !operation.canWrite) throw BadUsage_t{m_name + " can't write"};
        if (request.writes && !ParseNumber(m_valueText, UINT64_MAX, &request.value))
            throw BadUsage_t{"--write: '" + m_valueText + "' is not a number"};
        if (request.writes != m_yes) throw BadUsage_t{"writing needs both --write VALUE and --yes-write-hardware"};
    }

    std::vector<Choice_t> m_names;
    std::string m_name, m_cpuText, m_valueText, m_out, m_replay, m_trace;
    std::vector<std::string> m_words;
    bool m_yes = false;
};

}  // namespace

constexpr Command_t kHardwareCommand = {
    .name = "hw",
    .summary = "reads hardware: CPUID, PCI, memory, registers, ACPI",
    .description =
        "Reads hardware: the CPUID instruction, PCI configuration space, physical memory, model-specific "
        "registers, ports, ACPI tables. Most operations need root or an administrator.",
    .footer =
        "Operations (numbers are decimal, or hexadecimal after 0x):\n"
        "  cpuid LEAF [SUBLEAF]             the four registers; with --cpu N on processor N\n"
        "  pci SEG:BUS:DEV.FN OFFSET SIZE   bytes of configuration space\n"
        "  mem ADDRESS SIZE                 bytes of physical memory\n"
        "  msr read N                       a model-specific register; with --cpu N of processor N\n"
        "  port read PORT SIZE              an I/O port, in one access of SIZE bytes\n"
        "  acpi [NAME]                      the ACPI tables, or one of them; with --out FILE into a new file\n"
        "  segments                         the PCI segments and their configuration spaces\n"
        "  versions                         of this library and of the driver\n"
        "Writing can hang or damage a machine. mem, msr write N and port write PORT SIZE write --write VALUE, and only "
        "with --yes-write-hardware.\n"
        "\n"
        "Example: quorlin hw pci 0000:00:03.0 2 5\n"
        "Exit codes: 0 done, 1 the operation failed, 2 bad usage.",
    .trouble = kExitNo,
    .make = MakeCommand<ClHw>,
};
