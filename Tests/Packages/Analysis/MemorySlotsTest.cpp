#include "Packages/Analysis/MemorySlots.h"

#include <gtest/gtest.h>

#include "Tests/Support/Structures.h"

namespace {

TEST(MemorySlots, PlacesAsFirmwareNamesThem) {
    const struct {
        const char *locator, *bank, *owner, *channel;
    } kCases[] = {
        {"DIMM A1",                    "CPU0 chan 5",              "CPU0",         "5"},
        {"CPU1_DIMM_G0",               "NODE 2",                   "CPU1",         "G"},
        {"P1-DIMM1A",                  "P0_Node0_Channel2_Dimm0",  "P0, Node0",    "2"}, // the bank has the channel
        {"Bottom-Slot 1(left)",        "Controller0ChannelADimm0", "Controller0",  "A"},
        {"Controller1-ChannelA-DIMM0", "BANK 0",                   "Controller1",  "A"},
        {"P2_DIMME1",                  "NODE 3",                   "P2",           "E"},
        {"DIMM 0",                     "P0 CHANNEL B",             "P0",           "B"},
        {"DDR5-A2",                    "BANK 0",                   "",             "A"},
        {"DIMM5",                      "Node1/Bank1/MemCard1",     "Node1, Card1", "" },
        {"PROC 2 DIMM 9",              "",                         "PROC 2",       "" },
        {"DIMM_A",                     "BANK_1",                   "",             "" }, // names a slot
        {"RAM slot #0",                "RAM slot #0",              "",             "" },
        {"\xFF\xFE channel",           "CPU",                      "",             "" },
        {"",                           "",                         "",             "" },
    };
    for (const auto& c : kCases)
        EXPECT_EQ(PlaceOfSlot(c.locator, c.bank), (SlotPlace_t{c.owner, c.channel})) << c.locator;
}

// A module of 4 GiB for the array 10h, with a speed and a configured speed.
ClStructureBuilder Module(uint16_t handle, const char* part) {
    ClStructureBuilder module(17, 0x22, handle);
    module.Word(4, 0x10).Word(6, 0xFFFE).Word(0x0C, 4096).Byte(0x12, 0x1A).Word(0x15, 3200).Word(0x20, 3200);
    return module.String(0x1A, part);
}

TEST(MemorySlots, StatesComeFromSizeSpeedErrorsAndNeighbours) {
    using enum MemorySlotState_t;
    const std::vector<uint8_t> table = TableOf({
        ClStructureBuilder(16, 0x0F, 0x10).Byte(5, 3).Dword(7, 0x4000000),
        ClStructureBuilder(18, 0x17, 0x30).Byte(4, 4),  // a bad read
        ClStructureBuilder(18, 0x17, 0x31).Byte(4, 3),  // no error
        Module(1, "P"),
        Module(2, "P "),
        Module(3, "Q"),
        Module(4, "P").Word(0x0C, 8192).Word(0x20, 2933),
        Module(5, "P").Word(0x20, 0),
        Module(6, "P").Word(6, 0x30),
        Module(7, "P").Word(6, 0x31),
        Module(8, "P").Word(0x0C, 0xFFFF),
        Module(9, "P").Word(0x0C, 0),
        ClStructureBuilder(17, 0x22, 10).Word(4, 0x10).Word(6, 0xFFFE),
        Module(11, "P").Word(4, 0x77),
    });
    const std::vector<MemoryArray_t> arrays = MemoryArraysOf(table, {});
    ASSERT_EQ(arrays.size(), 2u);
    EXPECT_EQ(arrays[0].capacity, 64ull << 30);
    const std::vector<MemorySlot_t>& slots = arrays[0].slots;
    constexpr MemorySlotState_t kStates[] = {kInstalled, kInstalled, kMismatched, kMismatched, kDisabled,
                                             kError,     kInstalled, kError,      kDisabled,   kEmpty};
    ASSERT_EQ(slots.size(), std::size(kStates));
    for (size_t i = 0; i < slots.size(); i++) EXPECT_EQ(slots[i].state, kStates[i]) << i;
    EXPECT_TRUE(slots[2].otherPart && !slots[2].otherSize);
    EXPECT_TRUE(slots[3].otherSize && slots[3].otherSpeed && !slots[3].otherPart);
    // The slot whose array isn't there.
    ASSERT_EQ(arrays[1].slots.size(), 1u);
    EXPECT_EQ(arrays[1].structure.Type(), 17);
}

}  // namespace
