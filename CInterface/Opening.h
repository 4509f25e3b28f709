// How handles of the C interface are opened: checks, errors, images, and the one package of the process.
#pragma once

#include <cstddef>
#include <cstring>
#include <mutex>
#include <new>
#include <string>

#include "CInterface/quorlin_c.h"
#include "Packages/FERROXExternal/FERROXLib/HardwareServices.h"
#include "Packages/FERROXExternal/StructureStore/ImageFile.h"
#include "Packages/FERROXExternal/StructureStore/Record.h"
#include "Packages/FERROXExternal/StructureStore/StoreHost.h"
#include "Sources/Quorlin.h"

// Keeps the outcome of an opening for quorlin_last_error. Returns `status`.
quorlin_status KeepOutcome(quorlin_status status);
// Keeps a problem in words, before the outcome.
void KeepProblem(const std::string& problem);

// Calls `function`, which returns a status. No exception leaves the interface.
template <class Function>
quorlin_status Guarded(const Function& function) {
    try {
        return function();
    } catch (const std::bad_alloc&) {
        return QUORLIN_NO_MEMORY;
    } catch (...) {
        return QUORLIN_NO_TABLE;
    }
}

// The size of the options in the first header that had them.
inline constexpr size_t kFirstOptionsSize = offsetof(quorlin_options, type_148) + 1;
static_assert(kFirstOptionsSize == 12);

// Checks the arguments of a function that opens a table, then opens it with the given options or none.
template <class Function>
quorlin_status Opening(bool hasArguments, const quorlin_options* given, const Function& open) {
    KeepProblem({});
    if (!hasArguments) return KeepOutcome(QUORLIN_NULL_POINTER);
    quorlin_options options = {};
    if (given != nullptr) {
        if (given->size != sizeof *given && given->size != kFirstOptionsSize) return KeepOutcome(QUORLIN_BAD_VALUE);
        std::memcpy(&options, given, given->size);
    }
    return KeepOutcome(Guarded([&] { return open(options); }));
}

// Reads an image. NO_IMAGE if it can't be read; quorlin_last_error then says why.
quorlin_status ReadFileImage(const char* path, const quorlin_options& options, Image_t* image);
quorlin_status ReadMemoryImage(const void* bytes, size_t size, const quorlin_options& options, Image_t* image);

// Adds a sentence to a remark.
void AddRemark(std::string* remark, const std::string& text);

// The package of the process while a handle copies from it. Machine and store belong to the process, so there is one at
// a time; others wait. Restores the chosen machine, and leaves the host's crash filter alone.
class ClPackageInUse {
  public:
    ClPackageInUse();
    ClPackageInUse(const ClPackageInUse&) = delete;
    ClPackageInUse& operator=(const ClPackageInUse&) = delete;
    ~ClPackageInUse();
    // Whether the host uses the package interface itself. Nothing may be done then.
    bool IsBusy() const { return m_isBusy; }
    Quorlin* operator->() { return &m_package; }

  private:
    std::unique_lock<std::mutex> m_lock;
    Quorlin m_package;
    bool m_isBusy;
    MachineChoice_t m_chosen = {};
};

// Opens this machine: calls `open` with a function that chooses it, first without the driver, and if there is no table
// and the options ask for it, with the driver. Or the recorded machine that the options name; the hardware library
// stays as it is.
template <class Open>
quorlin_status OpenMachine(const quorlin_options& options, const Open& open) {
    if (options.replay != nullptr) {
        Record_t record;
        std::string problem;
        if (ReadRecord(options.replay, &record, &problem) != kSuccess) {
            KeepProblem(problem);
            return QUORLIN_NO_IMAGE;
        }
        const quorlin_status status = open([&record] { SetRecordedMachine(record); });
        if (status == QUORLIN_NO_TABLE) KeepProblem(WhyNoTable(record));
        return status;
    }
    const quorlin_status status = open([] { SetMachine(ThisMachineWithoutDriver()); });
    if (status != QUORLIN_NO_TABLE || options.use_driver == 0) return status;
    const quorlin_status withDriver = open([] { SetMachine(ThisMachine()); });
    if (withDriver != QUORLIN_OK) EndFailedStart();
    return withDriver;
}
