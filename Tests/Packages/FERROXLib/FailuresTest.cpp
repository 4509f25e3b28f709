// Packages and the C interface read this machine's table while each call to the platform fails in turn.
#include "CInterface/quorlin_c.h"
#include "Packages/FERROXExternal/StructureStore/Machine.h"
#include "Packages/Sample/Sample.h"
#include "Sources/Quorlin.h"
#include "Tests/Packages/FERROXLib/Library.h"

namespace {

using Failures = ClMachineTest;

std::span<const uint8_t> Table() { return SampleTable().first(900); }

// Puts the table where the first access method finds it.
void PutTableInFirmware() {
    const auto table = Table();
    std::vector<uint8_t> answer = {0, 3, 0, 0, 0, 0, 0, 0};
    answer.insert(answer.end(), table.begin(), table.end());
    Machine().tables["RSMB"] = answer;
}

// Puts the table where the second access method finds it. One entry point is in the second block of the scan.
void PutTableInMemory() {
    PutEntry(0xF0000);
    PutDMI(0xF1000, Table().size());
    uint64_t address = kTable;
    for (const uint8_t byte : Table()) Machine().memory[address++] = byte;
}

// Returns the number of items that a package has; 0 if it can't be opened.
uint32_t ReadPackage() {
    auto* package = static_cast<Quorlin*>(CreateSmbiosPackage());
    const uint32_t items = package->Initialize() == kSuccess ? package->GetItemCount() : 0;
    package->UnInitialize();
    DestroySmbiosPackage(package);
    return items;
}

// The same for the C interface, which is told to use the driver.
uint32_t ReadTable() {
    quorlin_options options = {};
    options.size = sizeof options;
    options.use_driver = 1;
    quorlin_table* table = nullptr;
    quorlin_open_machine(&options, &table);
    const auto items = static_cast<uint32_t>(quorlin_count(table));
    quorlin_close(table);
    return items;
}

// True for calls that the library can do without.
bool GoesOnWithout(const std::string& call) {
    static const std::set<std::string> kCalls = {"InitializeSecurityDescriptor#1", "SetSecurityDescriptorDacl#1",
                                                 "OpenSCManagerA#1", "OpenServiceA#1"};
    return kCalls.contains(call) || call.starts_with("DebugLibInit");
}

}  // namespace

TEST_F(Failures, OfAnyCallUnderAHost) {
    const struct {
        const char* what;
        bool inFirmware, inMemory, hasOther;  // another process has the driver running
        uint32_t (*read)();
    } kMachines[] = {
        {"first method",    true,  false, false, ReadPackage},
        {"second method",   false, true,  false, ReadPackage},
        {"both",            true,  true,  false, ReadPackage},
        {"another process", false, true,  true,  ReadPackage},
        {"C interface",     false, true,  false, ReadTable  },
    };
    for (const auto& machine : kMachines) {
        const auto start = [&machine] {
            NewMachine();
            if (machine.inFirmware) PutTableInFirmware();
            if (machine.inMemory) PutTableInMemory();
            if (machine.hasOther) Machine().OtherProcess(1);
        };
        start();
        ASSERT_EQ(SetMachine(ThisMachine()), kSuccess);
        machine.read();  // opens the trace handles that the C interface keeps
        start();
        const std::string before = Machine().State();
        const uint32_t whole = machine.read();
        ASSERT_GT(whole, 100u) << machine.what;
        const size_t calls = Machine().calls.size();
        ASSERT_GT(calls, 20u) << machine.what;
        for (size_t number = 1; number <= calls; ++number) {
            start();
            Machine().failCall = number;
            const uint32_t items = machine.read();
            Machine().failCall = 0;
            ASSERT_GE(Machine().calls.size(), number);
            const std::string failed = Machine().calls[number - 1];
            SCOPED_TRACE(std::string(machine.what) + ", " + failed);
            // The whole table or nothing; the whole table if the library can do without the call.
            EXPECT_TRUE(items == whole || (items == 0 && !GoesOnWithout(failed))) << items;
            // Closing that couldn't take the lock changes nothing: a second attempt succeeds.
            EXPECT_TRUE(FERROXTerminate() == kFailure || items == whole);
            const int traceHandlesLeft = Machine().traceHandles;
            if (machine.read == ReadPackage) EndFailedStart();  // the C interface ends it itself
            // Only a driver that couldn't be stopped or removed stays.
            const bool mayStay = items == whole && Machine().Open().starts_with("section view ");
            EXPECT_TRUE(mayStay || Machine().State() == before) << Machine().State();
            EXPECT_FALSE(Machine().mutexHeld);
            // The next host reads everything and leaves the machine as it was.
            EXPECT_EQ(machine.read(), whole);
            EXPECT_EQ(Machine().State(), before);
            EXPECT_EQ(Machine().traceHandles, traceHandlesLeft);
            EXPECT_EQ(Machine().badCloses, 0);
        }
    }
    NewMachine();
}
