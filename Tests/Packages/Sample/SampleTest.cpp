// The embedded sample: well-formed, of all types, and with handles that fit.
#include "Packages/Sample/Sample.h"

#include <gtest/gtest.h>

#include <map>
#include <span>
#include <vector>

#include "Packages/Format/Structures.h"

namespace {

uint16_t Word(const TableStructure_t& structure, size_t offset) {
    return static_cast<uint16_t>(structure.data[offset] | structure.data[offset + 1] << 8);
}

// The structures up to the first one that isn't well-formed; `rest` is what stays behind them.
std::vector<TableStructure_t> Walk(std::span<const uint8_t> table, size_t* rest) {
    std::vector<TableStructure_t> structures;
    while (BeginsWithStructure(table)) {
        structures.push_back(StructureAt(table.data(), static_cast<uint32_t>(table.size()), 0));
        table = table.subspan(structures.back().size);
    }
    *rest = table.size();
    return structures;
}

class Sample : public ::testing::Test {
  protected:
    size_t m_rest = 0;
    const std::vector<TableStructure_t> m_structures = Walk(SampleTable(), &m_rest);
};

TEST_F(Sample, IsWellFormedAndSmall) {
    EXPECT_EQ(m_rest, 0U);
    ASSERT_FALSE(m_structures.empty());
    EXPECT_EQ(m_structures.back().Type(), 127);
    EXPECT_LT(SampleTable().size(), 14U * 1024) << "the host program reads all of it at each start";

    std::map<uint16_t, int> handles;
    for (const TableStructure_t& s : m_structures) EXPECT_EQ(++handles[s.Handle()], 1) << "handle " << s.Handle();
}

TEST_F(Sample, HoldsSeveralStructuresOfEachType) {
    std::map<int, int> count;
    for (const TableStructure_t& s : m_structures) ++count[s.Type()];
    for (int type = 0; type <= 42; ++type) EXPECT_GE(count[type], 2) << "type " << type;
    for (const int type : {126, 130, 131, 221, 222}) EXPECT_GE(count[type], 2) << "type " << type;
    EXPECT_EQ(count[148], 3) << "one of each layout";
    EXPECT_EQ(count[127], 1);
}

TEST_F(Sample, HandleFieldsNameStructuresOfTheRightType) {
    const struct {
        uint8_t type;
        size_t offset;
        uint8_t named;  // 0: any type
    } kFields[] = {
        {2,  0x0B, 3 }, // chassis of a board
        {4,  0x1A, 7 }, // caches of a processor
        {4,  0x1C, 7 },
        {4,  0x1E, 7 },
        {16, 0x0B, 18}, // error of a memory array
        {17, 0x04, 16}, // array and error of a memory device
        {17, 0x06, 18},
        {19, 0x0C, 16}, // array of an address range
        {20, 0x0C, 17}, // device and range of a device's addresses
        {20, 0x0E, 19},
        {27, 0x04, 28}, // temperature probe of a fan
        {35, 0x05, 34}, // device, component and threshold
        {35, 0x07, 0 },
        {35, 0x09, 36},
        {39, 0x10, 26}, // voltage probe, fan and current probe of a power supply
        {39, 0x12, 27},
        {39, 0x14, 29},
    };
    std::map<uint16_t, uint8_t> types;
    for (const TableStructure_t& s : m_structures) types[s.Handle()] = s.Type();
    for (const auto& field : kFields) {
        for (const TableStructure_t& s : m_structures) {
            if (s.Type() != field.type || field.offset + 2U > s.Length()) continue;
            const uint16_t handle = Word(s, field.offset);
            if (handle >= 0xFFFE) continue;  // none
            EXPECT_TRUE(types.contains(handle) && (field.named == 0 || types[handle] == field.named))
                << "type " << +field.type << " names " << handle;
        }
    }
}

TEST_F(Sample, ArraysHaveAsManyMemoryDevicesAsTheySay) {
    std::map<uint16_t, int> devices;
    for (const TableStructure_t& s : m_structures) {
        if (s.Type() == 17) ++devices[Word(s, 0x04)];
    }
    for (const TableStructure_t& s : m_structures) {
        if (s.Type() != 16) continue;
        EXPECT_EQ(Word(s, 0x0D), devices[s.Handle()]) << "array " << s.Handle();
    }
}

}  // namespace
