// The embedded sample is walked by its bytes alone, with none of the library's reading.
#include "Packages/Sample/Sample.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <span>
#include <vector>

namespace {

struct Structure_t {
    std::span<const uint8_t> formatted;

    uint8_t Type() const { return formatted[0]; }
    uint16_t Word(size_t offset) const { return static_cast<uint16_t>(formatted[offset] | formatted[offset + 1] << 8); }
    uint16_t Handle() const { return Word(2); }
    bool Holds(size_t offset) const { return offset + 1 < formatted.size(); }
};

// The structures up to the first one that isn't well-formed; `rest` is what stays behind them.
std::vector<Structure_t> Walk(std::span<const uint8_t> table, size_t* rest) {
    std::vector<Structure_t> structures;
    while (table.size() >= 6 && table[1] >= 4 && table[1] + 2U <= table.size()) {
        const Structure_t structure{table.first(table[1])};
        std::span<const uint8_t> area = table.subspan(table[1]);
        if (area[0] == 0) area = area.subspan(1);  // no strings: two NULs all the same
        while (!area.empty() && area[0] != 0) {
            const auto end = std::find(area.begin(), area.end(), uint8_t{0});
            area = {end == area.end() ? end : end + 1, area.end()};
        }
        if (area.empty() || area[0] != 0) break;
        table = area.subspan(1);
        structures.push_back(structure);
    }
    *rest = table.size();
    return structures;
}

class Sample : public ::testing::Test {
  protected:
    size_t m_rest = 0;
    const std::vector<Structure_t> m_structures = Walk(SampleTable(), &m_rest);
};

TEST_F(Sample, IsWellFormedAndSmall) {
    EXPECT_EQ(m_rest, 0U);
    ASSERT_FALSE(m_structures.empty());
    EXPECT_EQ(m_structures.back().Type(), 127);
    EXPECT_LT(SampleTable().size(), 14U * 1024) << "the host program reads all of it at each start";

    std::map<uint16_t, int> handles;
    for (const Structure_t& s : m_structures) EXPECT_EQ(++handles[s.Handle()], 1) << "handle " << s.Handle();
}

TEST_F(Sample, HoldsSeveralStructuresOfEachType) {
    std::map<int, int> count;
    for (const Structure_t& s : m_structures) ++count[s.Type()];
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
    for (const Structure_t& s : m_structures) types[s.Handle()] = s.Type();
    for (const auto& field : kFields) {
        for (const Structure_t& s : m_structures) {
            if (s.Type() != field.type || !s.Holds(field.offset)) continue;
            const uint16_t handle = s.Word(field.offset);
            if (handle >= 0xFFFE) continue;  // none
            ASSERT_TRUE(types.contains(handle)) << "type " << +field.type << " names " << handle;
            EXPECT_TRUE(field.named == 0 || types[handle] == field.named)
                << "type " << +field.type << " names " << handle;
        }
    }
}

TEST_F(Sample, ArraysHaveAsManyMemoryDevicesAsTheySay) {
    std::map<uint16_t, int> devices;
    for (const Structure_t& s : m_structures) {
        if (s.Type() == 17) ++devices[s.Word(0x04)];
    }
    for (const Structure_t& s : m_structures) {
        if (s.Type() != 16) continue;
        EXPECT_EQ(s.Word(0x0D), devices[s.Handle()]) << "array " << s.Handle();
    }
}

}  // namespace
