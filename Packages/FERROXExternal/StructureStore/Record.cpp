#include "Packages/FERROXExternal/StructureStore/Record.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <memory>
#include <new>

#include "Packages/FERROXExternal/StructureStore/StoreHost.h"
#include "Packages/Format/TextLines.h"
#include "Packages/OS/Hmac.h"
#include "Packages/OS/Program.h"

namespace {

constexpr char kTryAnother[] = "; try another record";

// Never destroyed, as it may be in use to the end.
const Record_t* replayed = nullptr;

status_t Fail(std::string_view file, std::string_view problem, std::string* error) {
    *error = std::string(file).append(": ").append(problem).append(kTryAnother);
    return kFailure;
}

std::string_view TextOf(const std::vector<uint8_t>& bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

// Reads a file whole. Returns what is wrong; empty if nothing is.
std::string ReadWhole(const std::string& path, size_t most, std::vector<uint8_t>* bytes) {
    const int problem = ReadAndClose(OpenPlainFile(path), most, bytes);
    if (problem == EINVAL) return "a link or a device, not a plain file";
    if (problem != 0) return std::strerror(problem);
    return bytes->size() > most ? "larger than a record may be" : "";
}

// Returns what is wrong with the file's bytes; empty if nothing is.
std::string Parse(RecordFile_t file, std::vector<uint8_t> bytes, Record_t* record) {
    RecordedHardware_t& hardware = record->hardware;
    switch (file) {
        case kAcpiRecord: return ParseAcpiDat(TextOf(bytes), &hardware.tables);
        case kPciRecord: return ParsePciDump(TextOf(bytes), &hardware.functions);
        case kCpuidRecord: return ParseCpuidDump(TextOf(bytes), &hardware.processors);
        case kMsrRecord: return ParseMsrDump(TextOf(bytes), &hardware.registers);
        default: break;
    }
    std::string problem;
    if (ImageFromBytes(std::move(bytes), TableForm_t::kDump, &record->table, &problem) != kSuccess)
        return problem.substr(0, problem.find(';'));
    return record->table.missing == 0 ? "" : "cut short";
}

std::string HexOf(std::span<const uint8_t> bytes) {
    std::string text;
    for (const uint8_t byte : bytes) AppendHex(text, byte, 2);
    return text;
}

}  // namespace

status_t ReadRecord(const std::string& folder, Record_t* record, std::string* error) {
    *record = {};
    std::vector<uint8_t> bytes;
    std::string problem = ReadWhole(folder + "/" + kMachineJson, kMostTextBytes, &bytes);
    if (!problem.empty()) {
        *error = std::string("not a record, as its ").append(kMachineJson).append(" can't be read: ");
        error->append(problem).append("; try a folder that quorlin record wrote");
        return kFailure;
    }
    problem = ParseMachineJson(TextOf(bytes), &record->hardware.facts);
    if (!problem.empty()) return Fail(kMachineJson, problem, error);
    size_t room = kMostTextBytes;  // for all files together
    for (const RecordedFile_t& file : record->hardware.facts.files) {
        problem = ReadWhole(folder + "/" + file.name, room, &bytes);
        if (!problem.empty()) return Fail(file.name, problem, error);
        room -= bytes.size();
        std::array<uint8_t, 32> hash;
        if (!os_Sha256(bytes, hash)) return Fail(file.name, "the system has no SHA-256", error);
        if (HexOf(hash) != file.sha256)
            return Fail(file.name, std::string("not the file that ").append(kMachineJson).append(" describes"), error);
        problem = Parse(RecordFileByName(file.name), std::move(bytes), record);
        if (!problem.empty()) return Fail(file.name, problem, error);
    }
    return kSuccess;
}

std::string WhyNoTable(const Record_t& record) {
    return std::string(record.hardware.Has(kTableRecord) ? "its table can't be shown without CPUID, which it lacks"
                                                         : "the record has no SMBIOS table") +
           kTryAnother;
}

status_t ReplayRecord(const std::string& folder, std::string* error) {
    if (StoreIsUp() || HardwareIsOpen()) {
        *error = "the machine is in use; try before it is opened";
        return kFailure;
    }
    auto record = std::make_unique<Record_t>();
    const status_t status = ReadRecord(folder, record.get(), error);
    if (status != kSuccess) return status;
    SetRecordedMachine(*record);
    UseRecordedHardware(record->hardware);
    delete replayed;
    replayed = record.release();
    return kSuccess;
}

const Record_t* ReplayedRecord() { return replayed; }

status_t SetReplayMachine(const char* path) try {
    std::string error;
    if (path != nullptr) return ReplayRecord(path, &error);
    if (StoreIsUp() || HardwareIsOpen()) return kFailure;
    SetMachine(ThisMachine());
    UseHardware(kThisHardware);
    delete replayed;
    replayed = nullptr;
    return kSuccess;
} catch (const std::bad_alloc&) {
    return kNoMemory;
}
