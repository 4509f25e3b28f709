// The package: its cursor, its item text, its statuses, and what it shares with other packages.
#include <gtest/gtest.h>

#include <vector>

#include "Packages/FERROXExternal/StructureStore/Machine.h"
#include "Sources/PackageTrace.h"
#include "Sources/Quorlin.h"
#include "Sources/SMBIOSType.h"
#include "Tests/Support/Structures.h"

namespace {

void UseTable(const std::vector<uint8_t>& table) {
    const ImageSource_t source = {table.data(), static_cast<uint32_t>(table.size()), 3, 0, 0};
    ASSERT_EQ(SetImageMachine(&source), kSuccess);
}

// A package that is initialised while this object lives.
class ClPackage {
  public:
    explicit ClPackage(const std::vector<uint8_t>& table, uint8_t presetType = Quorlin::kSweep) : m_table(table) {
        UseTable(m_table);
        m_package = static_cast<Quorlin*>(CreateSmbiosPackageForKovr(presetType));
        EXPECT_EQ(m_package->Initialize(), kSuccess);
    }
    ~ClPackage() {
        EXPECT_EQ(m_package->UnInitialize(), kSuccess);
        EXPECT_EQ(m_package->GetItemCount(), 0u);
        DestroySmbiosPackageForKovr(m_package);
    }
    Quorlin* operator->() { return m_package; }

    // The next line, or "(unchanged)" at the end.
    std::string Next() {
        std::string line = "(unchanged)";
        const status_t status = m_package->GetNextItem(line);
        EXPECT_EQ(status, line == "(unchanged)" ? kFailure : kSuccess);
        return line;
    }

  private:
    std::vector<uint8_t> m_table;
    Quorlin* m_package;
};

const ClStructureBuilder kChassis = ClStructureBuilder(3, 0x15, 7).Bytes(4, {1, 3}).Strings({"May\"er \"& Co", " "});

TEST(Package, ReturnsItemsAsLines) {
    ClPackage package(TableOf({ClStructureBuilder(kChassis).Byte(6, 2)}));
    EXPECT_EQ(package->GetItemCount(), 17u);
    for (const char* line : {
             R"("System Enclosure or Chassis Types {Type 3}#GROUPNAME", "")", R"("Type", "3")", R"("Length", "21")",
             R"("Handle", "7")", R"("Manufacturer", "Mayer & Co")", R"("Chassis Type", "Desktop")",
             R"("Chassis Lock", "Not Present or Unknown")",
             R"("Version", "")",  // a value of one blank
         })
        EXPECT_EQ(package.Next(), line);
    EXPECT_EQ(package->GetItemValue(4), "May\"er \"& Co");
    EXPECT_EQ(package->GetItemValue(7), " ");
    EXPECT_EQ(package->GetItemValue(17), "");
}

TEST(Package, ReadsOnFromItsCursorAfterMoreTypes) {
    ClPackage package(TableOf({kChassis, kChassis}), 3);
    EXPECT_EQ(package->GetItemCount(), 0u);
    EXPECT_EQ(package.Next(), "(unchanged)");
    EXPECT_EQ(package->GetTypes(3), kSuccess);
    EXPECT_EQ(package->GetItemCount(), 34u);
    EXPECT_EQ(package.Next(), "\"System Enclosure or Chassis Types {Type 3}#GROUPNAME\", \"\"");
    for (int item = 1; item < 17; item++) package.Next();
    EXPECT_EQ(package.Next(), "\"System Enclosure or Chassis Types {Type 3}_2#GROUPNAME\", \"\"");
    for (int item = 18; item < 34; item++) package.Next();
    EXPECT_EQ(package.Next(), "(unchanged)");
    EXPECT_EQ(package->GetTypes(3), kSuccess);  // the same items once more, numbered from 1 again
    EXPECT_EQ(package->GetItemCount(), 68u);
    EXPECT_EQ(package.Next(), "\"System Enclosure or Chassis Types {Type 3}#GROUPNAME\", \"\"");
}

TEST(Package, AddsNothingForTypesWithoutStructuresOrDecoder) {
    ClPackage package(TableOf({ClStructureBuilder(200, 8), ClStructureBuilder(126, 8), ClStructureBuilder(5, 20)}));
    EXPECT_EQ(package->GetItemCount(), 0u);
    for (const int type : {3, 5, 126, 127, 200, 254})
        EXPECT_EQ(package->GetTypes(static_cast<uint8_t>(type)), kSuccess);
    EXPECT_EQ(package->GetItemCount(), 0u);
    EXPECT_EQ(package->GetItemByName(""), kBadValue);
    EXPECT_EQ(package->GetItemByName("Type"), kFailure);
    EXPECT_EQ(package->ReservedOperation1(), kFailure);
    EXPECT_EQ(package->ReservedOperation2(), kFailure);
}

TEST(Package, VisitsEachStructureWithItsOwnItems) {
    ClPackage package(TableOf(std::vector(600, kChassis)));
    EXPECT_EQ(package->GetItemCount(), 600u * 17);  // more structures than a byte counts
    std::string lastTitle;
    uint32_t count = 0;
    const uint8_t types[] = {3};
    EXPECT_EQ(package->VisitTypes(types,
                                  [&](const uint8_t* structure, const ClItemList& own) {
                                      EXPECT_EQ(structure[0], 3);
                                      EXPECT_EQ(own.Size(), 17u);
                                      lastTitle = own[0].Title();
                                      count++;
                                      return true;
                                  }),
              kSuccess);
    EXPECT_EQ(count, 600u);
    EXPECT_EQ(lastTitle, "System Enclosure or Chassis Types {Type 3}_600");
    EXPECT_EQ(package->GetItemCount(), 600u * 17);
}

// Packages share one table and one trace handle. A package may be initialised again.
TEST(Package, SharesTableAndTraceHandle) {
    auto* second = static_cast<Quorlin*>(CreateSmbiosPackage());
    {
        ClPackage first(TableOf({kChassis}));
        EXPECT_EQ(second->Initialize(), kSuccess);
        EXPECT_EQ(second->UnInitialize(), kSuccess);
        EXPECT_EQ(first->GetTypes(3), kSuccess);
        EXPECT_EQ(first->GetItemCount(), 34u);
        EXPECT_EQ(second->Initialize(), kSuccess);
    }
    EXPECT_EQ(second->GetItemCount(), 17u);
    EXPECT_NE(packageTraceHandle, nullptr);
    EXPECT_EQ(second->UnInitialize(), kSuccess);
    EXPECT_EQ(packageTraceHandle, nullptr);
    std::string line;
    EXPECT_EQ(second->GetNextItem(line), kFailure);
    DestroySmbiosPackage(second);
}

// A package that isn't initialised decodes the table of another one, and its items outlive that table.
TEST(Package, ItemsOutliveTheTableOfOthers) {
    auto* second = static_cast<Quorlin*>(CreateSmbiosPackage());
    {
        ClPackage first(
            TableOf({ClStructureBuilder(3, 0x15).Byte(4, 1).Strings({"A maker of a long name, not held in place"})}));
        EXPECT_EQ(second->GetTypes(3), kSuccess);
    }
    ClPackage other(TableOf({kChassis}));  // in the memory that was the first one's
    EXPECT_EQ(second->GetItemValue(4), "A maker of a long name, not held in place");
    DestroySmbiosPackage(second);
}

// 255 members of 255 versions, shown by each of a thousand groups.
TEST(Package, ReturnsABoundedNumberOfItems) {
    std::vector<ClStructureBuilder> bomb(255, ClStructureBuilder(221, 5).Byte(4, 255));
    bomb.resize(1255, ClStructureBuilder(14, 8).Byte(5, 221));
    bomb.push_back(kChassis);
    ClPackage package(TableOf(bomb), 3);
    EXPECT_EQ(package->GetTypes(3), kSuccess);
    const uint32_t before = package->GetItemCount();
    for (const uint8_t type : {uint8_t{14}, Quorlin::kSweep}) {
        EXPECT_EQ(package->GetTypes(type), kNoMemory);
        EXPECT_EQ(package->GetItemCount(), before);
    }
    EXPECT_EQ(package->GetTypes(3), kSuccess);
    EXPECT_EQ(package->GetItemCount(), 2 * before);
    for (uint32_t items = 2 * before; items + before <= Quorlin::kAlwaysAllowedItems; items += before)
        ASSERT_EQ(package->GetTypes(3), kSuccess) << items;
    EXPECT_EQ(package->GetTypes(3), kNoMemory);
}

TEST(Package, UninitialisedTwiceLeavesTheTableToOthers) {
    auto* second = static_cast<Quorlin*>(CreateSmbiosPackage());
    ClPackage first(TableOf({kChassis}));
    EXPECT_EQ(second->Initialize(), kSuccess);
    for (int time = 0; time < 2; time++) EXPECT_EQ(second->UnInitialize(), kSuccess);
    EXPECT_EQ(first->GetTypes(3), kSuccess);
    EXPECT_EQ(first->GetItemCount(), 34u);
    DestroySmbiosPackage(second);
}

TEST(Package, ReportsAMachineThatFails) {
    const auto works = [] { return kSuccess; };
    const TableRoad_t noRoad = [](uint8_t*, uint8_t*, SMBIOSTableImage_t**) { return kFailure; };
    const std::vector<uint8_t> table = TableOf({kChassis});
    UseTable(table);
    MachineServices_t noProcessor = *CurrentMachine();
    noProcessor.ReadCPUID = [](uint32_t, CPUIDRecord_t*) { return status_t{0}; };
    const MachineServices_t noTable = {works, works, noRoad, noRoad, noProcessor.ReadCPUID};
    for (const MachineServices_t& machine : {noTable, noProcessor}) {
        ASSERT_EQ(SetMachine(&machine), kSuccess);
        auto* package = static_cast<Quorlin*>(CreateSmbiosPackage());
        EXPECT_EQ(package->Initialize(), kFailure);
        EXPECT_EQ(package->GetItemCount(), 0u);
        EXPECT_EQ(package->UnInitialize(), kSuccess);
        DestroySmbiosPackage(package);
        EXPECT_EQ(SetMachine(&machine), kSuccess);  // the store went down
    }
    DestroySmbiosPackage(nullptr);
}

}  // namespace
