// Makes every allocation fail in turn. The result is a status or fewer items, but no crash, exception or leak, and
// everything works again afterwards.
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "CInterface/quorlin_c.h"
#include "Packages/Debug/DebugInternal.h"
#include "Packages/FERROXExternal/StructureStore/StoreHost.h"
#include "Packages/Format/TableFile.h"
#include "Packages/OS/OS.h"
#include "Packages/Sample/Sample.h"
#include "Sources/Quorlin.h"
#include "Tests/Faults/Allocations.h"

namespace {

// Returns a count of items or bytes, which is lower, or 0, if memory runs out.
using Scenario_t = std::function<size_t()>;

// Reads all items both ways. Retries once after an allocation failed, and stops at the second failure.
size_t ReadItems(Quorlin& package) {
    size_t read = 0;
    std::string line;
    for (int refused = 0; refused < 2;) {
        const status_t status = package.GetNextItem(line);
        if (status == kFailure) break;
        if (status == kSuccess)
            read++;
        else
            refused++;
    }
    for (uint32_t index = 0; index < package.GetItemCount(); index++)
        EXPECT_LE(package.GetItemValue(index).size(), 4096u);
    return read;
}

// Calls every operation of a package.
size_t UsePackage(uint32_t signature) {
    const std::span<const uint8_t> table = SampleTable();
    const ImageSource_t source = {table.data(), static_cast<uint32_t>(table.size()), 3, 0, signature};
    EXPECT_EQ(SetImageMachine(&source), kSuccess);
    auto* package = static_cast<Quorlin*>(CreateSmbiosPackage());
    if (package == nullptr) return 0;
    size_t items = 0;
    if (package->Initialize() == kSuccess) {
        package->GetTypes(148);
        EXPECT_EQ(package->GetItemByName({}), kBadValue);
        items = ReadItems(*package);
        EXPECT_LE(items, package->GetItemCount());
    }
    package->UnInitialize();
    EXPECT_EQ(package->GetItemCount(), 0u);
    DestroySmbiosPackage(package);
    return items;
}

// Uses the store without a package.
size_t UseStore() {
    const std::span<const uint8_t> table = SampleTable();
    const ImageSource_t source = {table.data(), static_cast<uint32_t>(table.size()), 3, 0, 0};
    EXPECT_EQ(SetImageMachine(&source), kSuccess);
    uint8_t entry[kEntryBufferSize] = {};
    if (LibSMBIOSInit(entry) != kSuccess) return 0;
    size_t bytes = 0;
    uint8_t** records = nullptr;
    uint8_t count = 0;
    if (GetSMBIOSStruture(17, &records, &count) == kSuccess) {
        bytes += count;
        os_FreeBlock(records);
    }
    SMBIOSTableImage_t* image = nullptr;
    if (GetSMBIOSDump(entry, &image) == kSuccess) {
        bytes += image->Length;
        os_FreeBlock(image);
    }
    EXPECT_EQ(LibSMBIOSExit(), kSuccess);
    return bytes;
}

// Opens a file's bytes through the C interface.
size_t UseCInterface(const std::vector<uint8_t>& bytes) {
    quorlin_table* table = nullptr;
    const quorlin_status status = quorlin_open_memory(bytes.data(), bytes.size(), nullptr, &table);
    if (status != QUORLIN_OK) {
        EXPECT_EQ(table, nullptr);
        EXPECT_STRNE(quorlin_last_error(), "");
        return 0;
    }
    const size_t items = quorlin_count(table);
    quorlin_close(table);
    return items;
}

const std::vector<uint8_t> kSampleDump = MakeDump(SampleTable(), 3, 0);

// A bare table of one OEM string in a gzip file, as one stored block.
const std::vector<uint8_t> kCompressed = {0x1F, 0x8B, 0x08, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x03, 0x01,
                                          0x08, 0x00, 0xF7, 0xFF, 0x0B, 0x05, 0x01, 0x00, 0x01, 0x61, 0x00,
                                          0x00, 0x4F, 0xF9, 0x85, 0x50, 0x08, 0x00, 0x00, 0x00};

struct Case_t {
    const char* what;
    Scenario_t run;
    const char* trace;  // trace settings, or null
};

class Faults : public testing::TestWithParam<Case_t> {
  protected:
    size_t Run() {
        const char* trace = GetParam().trace;
        if (trace != nullptr) DebugUseConfigText(trace);
        const size_t came = GetParam().run();
        if (trace != nullptr) DebugResetForTest();
        return came;
    }

    void FailEach(Failing_t failing) {
        Run();  // makes what is allocated once and kept
        const size_t whole = Run();
        ASSERT_GT(whole, 0u);
        const size_t before = LiveBlocks();
        bool failed = true;
        for (size_t number = 1; failed; number++) {
            FailAllocation(number, failing);
            const size_t came = Run();
            failed = EndOfFailing();
            ASSERT_LE(came, whole) << "allocation " << number;
            ASSERT_FALSE(StoreIsUp()) << "allocation " << number;
            // Memory that a library keeps for its next use is freed after that use.
            ASSERT_EQ(Run(), whole) << "after allocation " << number;
            ASSERT_EQ(LiveBlocks(), before) << "after allocation " << number;
        }
    }
};

TEST_P(Faults, OneAllocationFails) { FailEach(Failing_t::kOnce); }
TEST_P(Faults, MemoryIsOutForGood) { FailEach(Failing_t::kForGood); }

constexpr const char* kTrace = "Global:SyncFlag<Y>;Global:OutputType<Fi>;Quorlin:TraceType<ErWa>;FERROX:TraceType<Al>";

const Scenario_t kPackage = [] { return UsePackage(0x506C0); };
const Scenario_t kOtherFamily = [] { return UsePackage(0x706A0); };
const Scenario_t kDump = [] { return UseCInterface(kSampleDump); };
const Scenario_t kPacked = [] { return UseCInterface(kCompressed); };

const Case_t kCases[] = {
    {"Package",     kPackage,     nullptr},
    {"OtherFamily", kOtherFamily, nullptr},
    {"Traced",      kPackage,     kTrace },
    {"Store",       UseStore,     nullptr},
    {"CInterface",  kDump,        nullptr},
    {"Compressed",  kPacked,      nullptr},
};

INSTANTIATE_TEST_SUITE_P(Cases, Faults, testing::ValuesIn(kCases), [](const auto& each) { return each.param.what; });

}  // namespace
