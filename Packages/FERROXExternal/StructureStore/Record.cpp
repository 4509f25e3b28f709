#include "Packages/FERROXExternal/StructureStore/Record.h"

#include <array>
#include <cstring>
#include <memory>
#include <new>

#include "Packages/FERROXExternal/StructureStore/StoreHost.h"
#include "Packages/Format/TextLines.h"
#include "Packages/OS/Hmac.h"

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
    if (ImageFromBytes(std::move(bytes), TableForm_t::kDump, &record->table, &problem) == kSuccess) return {};
    return problem.substr(0, problem.find(';'));
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
    if (const int problem = ReadBytes(folder + "/" + kMachineJson, kMostTextBytes, &bytes); problem != 0) {
        *error = std::string("not a record, as its ").append(kMachineJson).append(" can't be read: ");
        error->append(std::strerror(problem)).append("; try a folder that quorlin record wrote");
        return kFailure;
    }
    const std::string problem = ParseMachineJson(TextOf(bytes), &record->hardware.facts);
    if (!problem.empty()) return Fail(kMachineJson, problem, error);
    for (const RecordedFile_t& file : record->hardware.facts.files) {
        if (const int code = ReadBytes(folder + "/" + file.name, kMostTextBytes, &bytes); code != 0)
            return Fail(file.name, std::strerror(code), error);
        std::array<uint8_t, 32> hash;
        if (!os_Sha256(bytes, hash)) return Fail(file.name, "the system has no SHA-256", error);
        if (HexOf(hash) != file.sha256)
            return Fail(file.name, std::string("not the file that ").append(kMachineJson).append(" describes"), error);
        const std::string damage = Parse(RecordFileByName(file.name), std::move(bytes), record);
        if (!damage.empty()) return Fail(file.name, damage, error);
    }
    return kSuccess;
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
