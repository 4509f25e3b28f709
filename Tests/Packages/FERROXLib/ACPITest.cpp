// ACPI tables, PCI segments, and the extended configuration space that they locate.
#include "Packages/OS/FirmwareTables.h"
#include "Packages/OS/OS.h"
#include "Tests/Packages/FERROXLib/Library.h"

namespace {

using ACPI = ClLibraryTest;

}  // namespace

TEST_F(ACPI, ListOfTables) {
    EXPECT_EQ(os_ListACPITables(), std::vector<uint32_t>{});
    Machine().tables["FACP"] = {1};
    Machine().tables["APIC"] = {2};
    Machine().tables["RSMB"] = {3};
    EXPECT_EQ(os_ListACPITables(), (std::vector<uint32_t>{0x43495041, 0x50434146}));
}

TEST_F(ACPI, TableIntoANewBlockOrTheCallersBuffer) {
    Machine().tables["FACP"] = {1, 2, 3, 4, 5};
    const struct {
        const char *what, *name;
        std::deque<UINT> sizes;  // that the two queries return; the second one has the bytes
        status_t newBlock;
        uint32_t newSize, room;
        status_t ownBuffer;
        uint32_t ownSize;
        const char* text;
    } kCases[] = {
        {"exact",         "FACP",  {},     1, 5, 5, 1, 5,  "01 02 03 04 05"   },
        {"room to spare", "FACP",  {},     1, 5, 6, 1, 5,  "01 02 03 04 05 ee"},
        {"one byte less", "FACP",  {},     1, 5, 4, 2, 5,  "ee ee ee ee"      },
        {"gone",          "FACP",  {5, 0}, 1, 0, 5, 1, 0,  "ee ee ee ee ee"   },
        {"shrunk",        "FACP",  {5, 4}, 1, 4, 5, 1, 4,  "01 02 03 04 ee"   },
        {"grown",         "FACP",  {4, 5}, 5, 9, 4, 2, 5,  "ee ee ee ee"      },
        {"no table",      "SSDT",  {},     5, 9, 2, 5, 0,  "ee ee"            },
        {"three letters", "FAC",   {},     2, 9, 2, 2, 99, "ee ee"            },
        {"five letters",  "FACPX", {},     2, 9, 2, 2, 99, "ee ee"            },
    };
    for (const auto& c : kCases) {
        DataBuffer_t* table = nullptr;
        Machine().tableAnswers = c.sizes;
        EXPECT_EQ(GetACPITable(c.name, &table), c.newBlock) << c.what;
        EXPECT_EQ(table == nullptr ? 9 : table->Size, c.newSize) << c.what;
        EXPECT_TRUE(c.newSize != 5 || Hex({table->Data(), 5}) == "01 02 03 04 05") << c.what;
        os_FreeBlock(table);
        ClBuffer buffer(c.room);
        uint32_t size = 99;
        Machine().tableAnswers = c.sizes;
        EXPECT_EQ(GetACPITableEx(c.name, buffer.Get(), &size), c.ownBuffer) << c.what;
        EXPECT_EQ(size, c.ownSize) << c.what;
        EXPECT_EQ(Text(buffer), c.text) << c.what;
    }
    for (const char* line : {" OSGetACPITable  ACPI table Name not correct Status = 0x2",
                             "Error in reading ACPI SSDT table", " OSGetACPITable Status = 0x2"})
        EXPECT_TRUE(Machine().Traced(16, line)) << line;
    DataBuffer_t* table = nullptr;
    ClScriptedWindows::failAllocationOf = 9;
    EXPECT_EQ(GetACPITable("FACP", &table), kNoMemory);
    ClScriptedWindows::failAllocationOf = 0;
    uint32_t size = 0;
    EXPECT_EQ(GetACPITableEx("FACP", nullptr, &size), kSuccess);
    EXPECT_EQ(size, 5u);
}

TEST_F(ACPI, SegmentsOfMCFG) {
    const SegmentEntry_t kSegment = {0x12345678ABCDE000, 0x0102, 3, 0x7F};
    const struct {
        const char* what;
        size_t entries;   // in the table
        uint32_t length;  // that its header states; 0 for the true one
        status_t status;
        uint32_t count;
    } kCases[] = {
        {"two",                         2,   0,       1, 2  },
        {"none",                        0,   0,       5, 0  },
        {"a broken entry",              2,   75,      1, 1  },
        {"a length below 44",           1,   43,      5, 0  },
        {"a length beyond the table",   1,   0x10000, 1, 1  },
        {"256",                         256, 0,       1, 256},
        {"more than there are numbers", 300, 0,       1, 256},
    };
    for (const auto& c : kCases) {
        Machine().tables["MCFG"] = MCFG(std::vector(c.entries, kSegment), c.length);
        // Without spare entries, so that the sanitizers detect one too many.
        std::vector<SegBusInfo_t> segments(std::max(c.count, 1u));
        uint32_t count = 99;
        EXPECT_EQ(OSGetSegBusInfoWithCount(segments.data(), &count), c.status) << c.what;
        EXPECT_EQ(count, c.count) << c.what;
        if (c.count == 0) continue;
        const SegBusInfo_t& last = segments[c.count - 1];
        EXPECT_EQ((std::vector<uint64_t>{last.Segment, last.StartBus, last.EndBus, last.BaseAddress}),
                  (std::vector<uint64_t>{0x0102, 3, 0x7F, kSegment.base}))
            << c.what;
        EXPECT_EQ(uint32_t{last.SegmentCount}, c.count) << c.what;
    }
    SegBusInfo_t segment = {};
    Machine().tables["MCFG"] = {'M', 'C', 'F', 'G', 0xFF, 0xFF};  // the header is cut
    EXPECT_EQ(GetSegBusInfo(&segment), kFailure);
    EXPECT_TRUE(Machine().Traced(2, "Total Number of segments = 256"));
    EXPECT_TRUE(
        Machine().Traced(48, "OSGetSegBusInfo: No PCI segment found. This might not be a Selvane based system!!\n"));
}

TEST_F(ACPI, SegmentsThatCannotBeRead) {
    SegBusInfo_t segment = {};
    uint32_t count = 99;
    testing::internal::CaptureStdout();
    EXPECT_EQ(OSGetSegBusInfoWithCount(&segment, &count), kFailure);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Error getting ACPI table size\n");
    Machine().tables["MCFG"] = MCFG(std::vector<SegmentEntry_t>(1));
    Machine().tableAnswers = {44, 44, 60};  // larger at the third query
    EXPECT_EQ(OSGetSegBusInfoWithCount(&segment, &count), kBadValue);
    EXPECT_TRUE(Machine().Traced(16, "ERROR in OSGetSegBusInfo status =  2"));
    ClScriptedWindows::failAllocationOf = 64;
    EXPECT_EQ(OSGetSegBusInfoWithCount(&segment, &count), kNoMemory);
    ClScriptedWindows::failAllocationOf = 0;
    EXPECT_EQ(count, 99u);
    Machine().tableAnswers = {60, 60, 0};  // gone
    EXPECT_EQ(OSGetSegBusInfoWithCount(&segment, &count), kFailure);
    EXPECT_EQ(count, 0u);
}

TEST_F(ACPI, ExtendedSpaceIsReadFromTheSegmentsBase) {
    Machine().tables["MCFG"] = MCFG({
        {0x2E0000005, 1, 1, 0x7F},
        {0x3F0000000, 1, 0, 0xFF},
        {0,           2, 0, 0   }
    });
    const struct {
        const char* what;
        bool hasHypervisor;
        uint32_t location, offset, size;
        status_t status;
        uint32_t code;     // of the request
        uint64_t address;  // in the request; under a hypervisor location and offset
    } kCases[] = {
        {"first bus",                         false, 0x10001, 0,    4, 1, 0x80240114, 0x2E0100000},
        {"last bus",                          false, 0x1007F, 0,    4, 1, 0x80240114, 0x2E7F00000},
        {"bus, device and function",          false, 0x1E345, 0x10, 4, 1, 0x80240114, 0x2E451F010},
        {"the last word",                     false, 0x1E345, 4092, 4, 1, 0x80240114, 0x2E451FFFC},
        {"below the first bus",               false, 0x10000, 0,    4, 2, 0,          0          },
        {"above the last, in a second entry", false, 0x10080, 0,    4, 2, 0,          0          },
        {"unknown segment",                   false, 0x30000, 0,    4, 2, 0,          0          },
        {"a base of 0",                       false, 0x20000, 0,    4, 2, 0,          0          },
        {"size 0",                            false, 0x10001, 0,    0, 2, 0,          0          },
        {"the last word of 256",              true,  0xFF08,  252,  4, 1, 0x802400F4, 0x4000000FC},
        {"after it",                          true,  8,       256,  1, 2, 0,          0          },
        {"across the end",                    true,  8,       253,  4, 2, 0,          0          },
        {"another segment",                   true,  0x10000, 0,    4, 6, 0,          0          },
    };
    for (const auto& c : kCases) {
        ASSERT_EQ(FERROXTerminate(), kSuccess);
        Machine().hypervisorECX = c.hasHypervisor ? 0x80000000 : 0x7FFFFFFF;
        Open();
        ClBuffer buffer(c.size);
        EXPECT_EQ(PCIExRead(c.location, c.offset, buffer.Get()), c.status) << c.what;
        ASSERT_EQ(Machine().requests.size(), c.status == kSuccess ? 1u : 0u) << c.what;
        if (c.status != kSuccess) continue;
        EXPECT_EQ(Machine().requests[0].code, c.code) << c.what;
        EXPECT_EQ(Machine().requests[0].Number(8, 8), c.address) << c.what;
    }
    EXPECT_TRUE(Machine().Traced(2, "HyperV enabled."));
    uint64_t base = 7;
    EXPECT_EQ(GetPCIExCfgBaseAddr(&base, 0), kBadValue) << "segment 0, as unused places read";
    EXPECT_EQ(base, 7u);
    EXPECT_EQ(GetPCIExCfgBaseAddr(&base, 0x10001), kSuccess);
    EXPECT_EQ(base, 0x2E0000005u);
    EXPECT_TRUE(Machine().Traced(2, "Start Bus =  1") && Machine().Traced(2, "End Bus =  127"));
}
