// The embedded sample: well-formed, with all types and unique handles.
#include "Packages/Sample/Sample.h"

#include <gtest/gtest.h>

#include <map>
#include <span>
#include <vector>

#include "Packages/Format/Structures.h"

namespace {

// The structures up to the first malformed one; `rest` is the number of bytes after them.
std::vector<TableStructure_t> Walk(std::span<const uint8_t> table, size_t* rest) {
    std::vector<TableStructure_t> structures;
    while (!table.empty()) {
        const TableStructure_t next = StructureAt(table.data(), static_cast<uint32_t>(table.size()), 0);
        if (next.size == 0 || next.Length() < kHeaderSize || !next.IsWhole()) break;
        structures.push_back(next);
        table = table.subspan(next.size);
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

TEST_F(Sample, HasSeveralStructuresOfEachType) {
    std::map<int, int> count;
    for (const TableStructure_t& s : m_structures) ++count[s.Type()];
    for (int type = 0; type <= 46; ++type) EXPECT_GE(count[type], 2) << "type " << type;
    for (const int type : {126, 130, 131, 221, 222}) EXPECT_GE(count[type], 2) << "type " << type;
    EXPECT_EQ(count[148], 3) << "one of each layout";
    EXPECT_EQ(count[127], 1);
}

}  // namespace
