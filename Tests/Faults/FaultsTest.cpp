// Makes every allocation fail in turn. The result is a status or fewer items, but no crash, exception or leak, and
// everything works again afterwards.
#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <new>
#include <string>
#include <vector>

#include "CInterface/quorlin_c.h"
#include "Packages/Debug/DebugInternal.h"
#include "Packages/FERROXExternal/StructureStore/StoreHost.h"
#include "Packages/Format/TableFile.h"
#include "Packages/OS/OS.h"
#include "Packages/Sample/Sample.h"
#include "Sources/Quorlin.h"

namespace {

// Linked with --wrap for malloc, calloc, realloc and free, so all calls come here, but not the C library's own.
std::atomic<size_t> live = 0;  // blocks
size_t made = 0;               // since a number was chosen
size_t failsAt = 0;            // the number of the allocation that fails, from 1; 0: none
bool isForGood = false;        // all after it fail too
bool hasFailed = false;

bool Fails() {
    if (failsAt == 0) return false;
    made++;
    const bool fails = isForGood ? made >= failsAt : made == failsAt;
    hasFailed |= fails;
    return fails;
}

void* Counted(void* block) {
    live += block != nullptr;
    return block;
}

}  // namespace

extern "C" {
void* __real_malloc(size_t size);
void* __real_calloc(size_t count, size_t size);
void* __real_realloc(void* block, size_t size);
void __real_free(void* block);
void* __wrap_malloc(size_t size);
void* __wrap_calloc(size_t count, size_t size);
void* __wrap_realloc(void* block, size_t size);
void __wrap_free(void* block);

void* __wrap_malloc(size_t size) { return Fails() ? nullptr : Counted(__real_malloc(size)); }
void* __wrap_calloc(size_t count, size_t size) { return Fails() ? nullptr : Counted(__real_calloc(count, size)); }
void* __wrap_realloc(void* block, size_t size) {
    if (Fails()) return nullptr;
    void* moved = __real_realloc(block, size);
    return block == nullptr ? Counted(moved) : moved;
}
void __wrap_free(void* block) {
    live -= block != nullptr;
    __real_free(block);
}
}

// The forms for arrays call these. A sanitizer has its own; the library allocates no arrays.
void* operator new(size_t size, const std::nothrow_t&) noexcept { return __wrap_malloc(size); }
void* operator new(size_t size) {
    void* block = __wrap_malloc(size);
    if (block == nullptr) throw std::bad_alloc();
    return block;
}
void operator delete(void* block) noexcept { __wrap_free(block); }
void operator delete(void* block, size_t) noexcept { __wrap_free(block); }
void operator delete(void* block, const std::nothrow_t&) noexcept { __wrap_free(block); }

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
        const size_t count = GetParam().run();
        if (trace != nullptr) DebugResetForTest();
        return count;
    }

    void FailEach(bool forGood) {
        isForGood = forGood;
        Run();  // makes what is allocated once and kept
        const size_t whole = Run();
        ASSERT_GT(whole, 0u);
        const size_t before = live;
        hasFailed = true;
        for (size_t number = 1; hasFailed; number++) {
            hasFailed = false;
            made = 0;
            failsAt = number;
            const size_t count = Run();
            failsAt = 0;
            ASSERT_LE(count, whole) << "allocation " << number;
            ASSERT_FALSE(StoreIsUp()) << "allocation " << number;
            // Memory that a library keeps for its next use is freed after that use.
            ASSERT_EQ(Run(), whole) << "after allocation " << number;
            ASSERT_EQ(live, before) << "after allocation " << number;
        }
    }
};

TEST_P(Faults, OneAllocationFails) { FailEach(false); }
TEST_P(Faults, MemoryIsOutForGood) { FailEach(true); }

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
