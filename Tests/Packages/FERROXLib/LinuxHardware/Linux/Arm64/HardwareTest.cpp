// What the architecture doesn't have is refused, and doesn't keep the package from its table.
#include "Packages/FERROXExternal/FERROXLib/HardwareServices.h"
#include "Packages/FERROXExternal/StructureStore/Machine.h"
#include "Packages/OS/Processors.h"
#include "Tests/Packages/FERROXLib/LinuxHardware/Hardware.h"

namespace {

TEST_F(Hardware, WhatTheArchitectureLacksIsRefused) {
    ClBuffer port(1);
    MSRRecord_t msr = {0, 0, 0x10, 1, 2};
    CPUIDRecord_t cpuid = {0, 1, 2, 3, 4};
    NonTurboRecord_t timer = {0, 0xE7, 0, {5}};
    for (const status_t status :
         {ReadWakeupTimer(0x80, port.Get()), ConfigureWakeUpTimer(0x80, port.Get()), ReadMSR(&msr), WriteMSR(&msr),
          ReadCPUID(kAnyProcessor, &cpuid), ReadCPUID(0, &cpuid), CalcFreqNonTurbo(&timer)}) {
        EXPECT_EQ(status, kNotSupported);
        EXPECT_EQ(LastRefusal(), Refusal_t::kArchitecture);
    }
    EXPECT_EQ(Text(port), "\xEE");
    EXPECT_TRUE(msr.HiContent == 1 && msr.LoContent == 2 && cpuid.Eax == 1 && timer.Result[0] == 5);
}

TEST_F(Hardware, TheMachinesSignatureIsZero) {
    for (const MachineServices_t* machine : {ThisMachine(), ThisMachineByScan(), ThisMachineWithoutDriver()}) {
        CPUIDRecord_t record = {0, 1, 0, 0, 9};
        EXPECT_EQ(machine->ReadCPUID(kAnyProcessor, &record), kSuccess);
        EXPECT_TRUE(record.Eax == 0 && record.Ebx == 0 && record.Ecx == 0 && record.Edx == 0);
    }
    uint32_t registers[4] = {1, 2, 3, 4};
    EXPECT_FALSE(os_ReadCPUID(registers));
    EXPECT_EQ(registers[3], 0u);
}

}  // namespace
