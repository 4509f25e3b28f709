// Tables that are cut anywhere decode without a read past their end: the sample, generated images and, if available,
// images of real machines, cut at every length, and the sample's structures with every length byte. AddressSanitizer
// sees such a read; other builds only see crashes and hangs. The tests for Windows leave it out.
#include <gtest/gtest.h>

#include <vector>

#include "Packages/FERROXExternal/StructureStore/Machine.h"
#include "Packages/Format/Structures.h"
#include "Packages/Sample/Sample.h"
#include "Sources/Quorlin.h"
#include "Tests/Support/Images.h"
#include "Tests/Support/RealTables.h"

namespace {

using Bytes_t = std::vector<uint8_t>;

// Sweeps the first `size` bytes of a table and decodes type 148. The count leaves out the groups: they have an item for
// each entry of a member without strings, and fewer once its first string appears.
uint32_t ItemsOf(const uint8_t* table, size_t size, uint32_t signature) {
    // A block of its own size, so that a read past its end is seen.
    const std::vector<uint8_t> cut(table, table + size);
    const ImageSource_t source = {cut.data(), static_cast<uint32_t>(size), 2, 8, signature};
    EXPECT_EQ(SetImageMachine(&source), kSuccess);
    auto* package = static_cast<Quorlin*>(CreateSmbiosPackage());
    EXPECT_EQ(package->Initialize(), kSuccess);
    EXPECT_EQ(package->GetTypes(148), kSuccess);
    const uint32_t all = package->GetItemCount();
    EXPECT_EQ(package->GetTypes(14), kSuccess);
    const uint32_t count = all - (package->GetItemCount() - all);
    EXPECT_EQ(package->UnInitialize(), kSuccess);
    DestroySmbiosPackage(package);
    return count;
}

void CutEverywhere(const uint8_t* table, size_t size, const std::string& what) {
    uint32_t items = 0;
    for (size_t length = 0; length <= size; length++) {
        const uint32_t now = ItemsOf(table, length, 0x506C0);
        // More bytes make no fewer items, except the last letter of "Disabled", the name of a hidden firmware
        // component.
        EXPECT_GE(now + 1, items) << what << " cut at " << length;
        items = now;
    }
    EXPECT_GT(items, 50u) << what;
}

void CutImage(const TableImage_t& image) {
    ASSERT_GT(image.bytes.size(), kImageTableOffset) << image.name;
    CutEverywhere(image.bytes.data() + kImageTableOffset, image.bytes.size() - kImageTableOffset, image.name);
}

TEST(Cut, SampleDecodesAtEveryLength) { CutEverywhere(SampleTable().data(), SampleTable().size(), "sample"); }

// Each structure is the last of its table, after a group that names its type, so that the group's decoder reads it too.
TEST(Cut, StructuresOfTheSampleDecodeWithEveryLengthByte) {
    const auto length = static_cast<uint32_t>(SampleTable().size());
    for (uint32_t begin = 0; begin < length;) {
        const TableStructure_t found = StructureAt(SampleTable().data(), length, begin);
        ASSERT_GT(found.size, 0u) << "at " << begin;
        Bytes_t structure = {14, 8, 0xFE, 0xFE, 0, found.Type(), 0, 0, 0, 0};
        const size_t lengthByte = structure.size() + 1;
        structure.insert(structure.end(), found.data, found.data + found.size);
        const uint32_t items = ItemsOf(structure.data(), structure.size(), 0);
        const uint8_t ownLength = structure[lengthByte];
        for (const uint32_t signature : {0u, 0x506C0u}) {
            for (unsigned byte = 0; byte < 256; byte++) {
                structure[lengthByte] = static_cast<uint8_t>(byte);
                ItemsOf(structure.data(), structure.size(), signature);
            }
            // With a length of 255 the cuts lie inside the formatted area.
            for (size_t size = 0; size < structure.size(); size++) ItemsOf(structure.data(), size, signature);
        }
        structure[lengthByte] = ownLength;
        EXPECT_EQ(ItemsOf(structure.data(), structure.size(), 0), items) << "structure at " << begin;
        begin += found.size;
    }
}

TEST(Cut, GeneratedImagesDecodeAtEveryLength) {
    for (const TableImage_t& image : GeneratedImages()) CutImage(image);
}

TEST(Cut, ImagesOfRealMachinesDecodeAtEveryLength) {
    if (RealTables().empty()) GTEST_SKIP() << "no images of real machines here";
    for (const RealTable_t& real : RealTables()) CutEverywhere(real.table.data(), real.table.size(), real.name);
}

}  // namespace
