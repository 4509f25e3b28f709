// The forms of table files: recognised ones, forced ones, and the dumps that the library makes.
#include "Packages/Format/TableFile.h"

#include <gtest/gtest.h>

#include <tuple>

#include "Packages/Format/EntryPoint.h"
#include "Tests/Support/Program.h"
#include "Tests/Support/Structures.h"

namespace {

using Bytes_t = std::vector<uint8_t>;
using enum TableForm_t;

const Bytes_t kTable = TableOf({ClStructureBuilder(1, 0x1B), ClStructureBuilder(126, 4).Strings({"a"})});

Bytes_t With(Bytes_t bytes, size_t more) {
    bytes.resize(bytes.size() + more, 9);
    return bytes;
}

// The system's answer, whose header states `length` for the bytes after it.
Bytes_t Answer(uint8_t method, uint8_t major, uint32_t length, const Bytes_t& behind) {
    Bytes_t answer = {method, major, 4, 0, static_cast<uint8_t>(length), static_cast<uint8_t>(length >> 8), 0, 0};
    for (const uint8_t byte : behind) answer.push_back(byte);
    return answer;
}

const Bytes_t kNothing, kCutPoint = {'_', 'S', 'M', '_', 0};

const auto kSize = static_cast<uint32_t>(kTable.size());
const Bytes_t kDump32 = DumpOf(kTable, 3, 2, 32), kAnswer = Answer(0, 3, kSize, kTable),
              kLongAnswer = Answer(1, 2, kSize, With(kTable, 1)), kCutAnswer = Answer(0, 2, kSize + 7, kTable),
              kOddAnswer = Answer(7, 9, 2, Bytes_t(2)), kHeadAlone = Answer(0, 3, 100, kNothing),
              kPointAlone = DumpOf(kNothing, 3, 0, 32), kText = Bytes_t(500, 'a'), kNoise = Bytes_t(9, 0xAA),
              kHugeTable = Bytes_t((4u << 20) + 1, 1), kHugeFile = Bytes_t(kMostFileBytes + 1, 1);

TEST(TableFile, RecognisesAFormByItsContent) {
    const struct {
        const char* what;
        Bytes_t bytes;
        TableForm_t as, form;
        uint8_t major;
        uint32_t missing;
    } kCases[] = {
        {"bare",           kTable,      kAny,           kBareTable,     0, 0},
        {"dump, _SM3_",    kDump32,     kAny,           kDump,          3, 0},
        {"answer",         kAnswer,     kAny,           kWindowsAnswer, 3, 0},
        {"answer, longer", kLongAnswer, kAny,           kWindowsAnswer, 2, 0},
        {"answer, cut",    kCutAnswer,  kAny,           kWindowsAnswer, 2, 7},
        {"forced table",   kNoise,      kBareTable,     kBareTable,     0, 0},
        {"forced answer",  kOddAnswer,  kWindowsAnswer, kWindowsAnswer, 9, 0},
    };
    for (const auto& c : kCases) {
        const TableFound_t found = FindTable(c.bytes, c.as);
        ASSERT_TRUE(found.isFound) << c.what << ": " << found.problem;
        EXPECT_EQ(found.form, c.form) << c.what;
        EXPECT_EQ(found.major, c.major) << c.what;
        EXPECT_EQ(found.missing, c.missing) << c.what;
        if (c.as == kAny) {
            EXPECT_EQ(Bytes_t(found.table.begin(), found.table.end()), kTable) << c.what;
        }
    }
}

TEST(TableFile, RefusesOtherFiles) {
    const struct {
        Bytes_t bytes;
        TableForm_t as;
        const char* says;
    } kCases[] = {
        {kNothing,    kBareTable,     "empty"      },
        {kText,       kAny,           "not a table"},
        {kHeadAlone,  kAny,           "not a table"},
        {kHeadAlone,  kWindowsAnswer, "truncated"  },
        {kTable,      kDump,          "entry point"},
        {kTable,      kFolder,        "folder"     },
        {kCutPoint,   kAny,           "truncated"  },
        {kPointAlone, kAny,           "truncated"  },
        {kHugeTable,  kBareTable,     "4 MiB"      },
        {kHugeFile,   kDump,          "4 MiB"      },
    };
    for (const auto& c : kCases) {
        const TableFound_t found = FindTable(c.bytes, c.as);
        EXPECT_FALSE(found.isFound) << c.says;
        EXPECT_NE(found.problem.find(c.says), found.problem.npos) << found.problem;
    }
}

TEST(TableFile, FolderHasEntryPointAndTable) {
    Bytes_t point = DumpOf(kTable, 2, 7, 0xF0000);
    point.resize(31);
    const TableFound_t found = FindTableInFolder(point, kTable);
    EXPECT_TRUE(found.isFound);
    EXPECT_EQ(found.form, kFolder);
    EXPECT_EQ(found.major, 2);
    EXPECT_EQ(found.table.size(), kTable.size());
    EXPECT_FALSE(FindTableInFolder(kTable, kTable).isFound);
    EXPECT_FALSE(FindTableInFolder(point, {}).isFound);
    const Bytes_t promisesMuch = DumpOf(kHugeTable, 3, 2, 0);
    EXPECT_FALSE(FindTableInFolder({promisesMuch.data(), 24}, kHugeTable).isFound);
}

TEST(TableFile, DumpHasAValidEntryPoint) {
    const Bytes_t largeTable(0x10000, 1);
    const std::tuple<Bytes_t, uint8_t, bool> kCases[] = {
        {kTable,     2, false},
        {kTable,     3, true },
        {largeTable, 2, true },
    };
    for (const auto& [table, major, is64] : kCases) {
        const Bytes_t dump = MakeDump(table, major, 7);
        EntryPoint_t point;
        ASSERT_TRUE(ParseEntryPoint(dump.data(), dump.size(), &point));
        EXPECT_TRUE(point.checksumsFit);
        EXPECT_EQ(point.lengthIsBound, is64);
        EXPECT_EQ(point.tableAddress, kTableOffset);
        EXPECT_EQ(point.tableLength, table.size());
        const TableFound_t found = FindTable(dump, kAny);
        EXPECT_EQ(std::pair(found.major, found.minor), std::pair(major, uint8_t{7}));
        EXPECT_EQ(Bytes_t(found.table.begin(), found.table.end()), table);
    }
    // The counts of an _SM_ entry point: three structures with the end, the largest of 1Bh bytes and a double NUL.
    const Bytes_t dump = MakeDump(kTable, 2, 8);
    EXPECT_EQ(dump[0x1C], 3);
    EXPECT_EQ(dump[8], 0x1B + 2);
    EXPECT_EQ(dump[0x1E], 0x28);
}

// "quorlin\n", compressed; checksum and length are at the end.
const Bytes_t kCompressed = {0x1F, 0x8B, 0x08, 0,    0,    0,    0,    0,    0,    0xFF, 0x2B, 0x2C, 0xCD, 0x2F,
                             0xCA, 0xC9, 0xCC, 0xE3, 0x02, 0x00, 0xE8, 0xA8, 0x65, 0xEC, 0x08, 0,    0,    0};

TEST(TableFile, DecompressesWholeFilesOnly) {
    Bytes_t inflated;
    EXPECT_FALSE(IsCompressed(kTable));
    ASSERT_TRUE(IsCompressed(kCompressed));
    ASSERT_STREQ(Inflate(kCompressed, &inflated), nullptr);
    EXPECT_EQ(std::string(inflated.begin(), inflated.end()), "quorlin\n");
    for (size_t size = 3; size < kCompressed.size(); size++)
        EXPECT_NE(Inflate({kCompressed.data(), size}, &inflated), nullptr) << size;
}

}  // namespace
