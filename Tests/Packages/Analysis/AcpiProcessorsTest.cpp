// MADT and PPTT, as firmware writes them and as it mustn't.
#include "Packages/Analysis/AcpiProcessors.h"

#include <gtest/gtest.h>

#include "Tests/Support/AcpiTables.h"

namespace {

// Caches as "level kind size count", with "-" for what isn't known.
std::string TextOf(const ProcessorTree_t& tree) {
    const auto number = [](std::optional<uint64_t> value) { return value ? std::to_string(*value) : "-"; };
    std::string text = number(tree.packages) + " " + number(tree.cores);
    for (const HardwareFacts_t::Cache_t& cache : tree.caches)
        text.append(", ").append(std::to_string(cache.level)).append(cache.isInstruction ? "i " : "d ") +=
            std::to_string(cache.size) + " x" + std::to_string(cache.count);
    return text;
}
std::string Tree(const ClTree& tree, const std::set<uint32_t>& enabled) {
    return TextOf(ReadPptt(tree.Bytes(), enabled));
}

// Two packages of two cores. A description of the first level serves all cores; each core's second level has its own.
TEST(Pptt, CountsPackagesCoresAndCaches) {
    ClTree tree;
    const uint32_t last = tree.Cache(8 << 20, ClTree::kUnified), third = tree.Cache(4 << 20, ClTree::kUnified);
    const uint32_t root = tree.Node(0, 0, 0);
    for (uint32_t id = 0; id < 4; id += 2) {
        const uint32_t package = tree.Node(ClTree::kPackage | ClTree::kHasId, root, 2, {id == 0 ? last : third});
        for (uint32_t core = id; core < id + 2; core++) {
            const uint32_t second = tree.Cache(1 << 20, ClTree::kUnified);
            const uint32_t data = tree.Cache(64 << 10, ClTree::kData, second),
                           instruction = tree.Cache(64 << 10, ClTree::kInstruction, second);
            tree.Core(package, core, {data, instruction});
        }
    }
    EXPECT_EQ(Tree(tree, {0, 1, 2, 3}), "2 4, 1d 65536 x4, 1i 65536 x4, 2d 1048576 x4, 3d 4194304 x1, 3d 8388608 x1");
    EXPECT_EQ(Tree(tree, {0, 1}), "1 2, 1d 65536 x2, 1i 65536 x2, 2d 1048576 x2, 3d 8388608 x1") << "two are disabled";
    EXPECT_EQ(Tree(tree, {0, 4}), "- -") << "one isn't in the tree";
    EXPECT_EQ(Tree(tree, {}), "- -");
}

TEST(Pptt, ThreadsShareTheirCore) {
    for (const uint8_t revision : {uint8_t{1}, uint8_t{2}}) {
        ClTree tree(revision);
        const uint32_t cache = tree.Cache(32768, ClTree::kData), package = tree.Node(ClTree::kPackage, 0, 0);
        for (uint32_t id = 0; id < 4; id += 2) {
            const uint32_t core = tree.Node(0, package, 0, {cache});
            for (uint32_t thread = id; thread < id + 2; thread++)
                tree.Node(ClTree::kHasId | ClTree::kThread | ClTree::kLeaf, core, thread);
        }
        EXPECT_EQ(Tree(tree, {0, 1, 2, 3}), revision == 1 ? "1 -" : "1 2, 1d 32768 x2");
    }
}

// How a tree names its caches, and which of their levels and numbers can be told.
TEST(Pptt, OnlyClearCachesCount) {
    ClTree listed;  // a cluster names the second level, to which the first one leads
    const uint32_t second = listed.Cache(4096, ClTree::kUnified), first = listed.Cache(1024, ClTree::kData, second);
    const uint32_t cluster = listed.Node(ClTree::kPackage, 0, 0, {second});
    listed.Core(cluster, 0, {first});
    listed.Core(cluster, 1, {second, first});
    EXPECT_EQ(Tree(listed, {0}), "1 1, 1d 1024 x1, 2d 4096 x1");
    EXPECT_EQ(Tree(listed, {1}), "1 1, 1d 1024 x1, 2d 4096 x2") << "one of the core, and one of the cluster";

    ClTree shared;  // nobody has the second level, so it may be one or two
    const uint32_t last = shared.Cache(4096, ClTree::kUnified), own = shared.Cache(1024, ClTree::kData, last);
    const uint32_t package = shared.Node(ClTree::kPackage, 0, 0);
    shared.Core(package, 0, {own});
    shared.Core(package, 1, {own});
    EXPECT_EQ(Tree(shared, {0, 1}), "1 2, 1d 1024 x2");
    EXPECT_EQ(Tree(shared, {0}), "1 1, 1d 1024 x1, 2d 4096 x1");

    ClTree uneven;  // a core without the second level
    const uint32_t third = uneven.Cache(8192, ClTree::kUnified), middle = uneven.Cache(4096, ClTree::kUnified),
                   big = uneven.Cache(1024, ClTree::kData, middle), little = uneven.Cache(512, ClTree::kData);
    const uint32_t top = uneven.Node(ClTree::kPackage, 0, 0, {third});
    uneven.Core(top, 0, {big});
    uneven.Core(top, 1, {little});
    EXPECT_EQ(Tree(uneven, {0, 1}), "1 2");

    ClTree mixed;  // a description that serves the second level of a core, and the first one of another
    const uint32_t both = mixed.Cache(4096, ClTree::kUnified), lead = mixed.Cache(1024, ClTree::kData, both);
    mixed.Core(mixed.Node(ClTree::kPackage, 0, 0), 0, {lead, both});
    mixed.Core(mixed.Node(ClTree::kPackage, 0, 1), 1, {both});
    EXPECT_EQ(Tree(mixed, {0, 1}), "2 2");

    ClTree high;  // only a level that many share
    high.Core(high.Node(ClTree::kPackage, 0, 0, {high.Cache(8192, ClTree::kUnified)}), 0);
    EXPECT_EQ(Tree(high, {0}), "1 1");

    for (const uint32_t flags : {0x7Eu, 0x6Fu}) {  // without size, and without kind
        ClTree vague;
        const uint32_t cache = vague.Cache(4096, ClTree::kUnified, 0, flags);
        vague.Core(vague.Node(ClTree::kPackage, 0, 0), 0, {vague.Cache(1024, ClTree::kData, cache)});
        EXPECT_EQ(Tree(vague, {0}), "1 1, 1d 1024 x1") << flags;
    }
}

TEST(Pptt, RingsAndWildReferencesEnd) {
    ClTree parents;
    const uint32_t up = parents.Node(0, 0, 0), down = parents.Node(0, up, 0);
    parents.Core(down, 0);
    parents.Refer(up, down);
    EXPECT_EQ(Tree(parents, {0}), "- -");
    parents.Refer(up, up);
    EXPECT_EQ(Tree(parents, {0}), "- -");
    parents.Refer(up, parents.End());
    EXPECT_EQ(Tree(parents, {0}), "- 1") << "no package";
    parents.Refer(up, down + 4);
    EXPECT_EQ(Tree(parents, {0}), "- 1") << "not where a structure begins";

    ClTree caches;
    const uint32_t one = caches.Cache(1024, ClTree::kData), two = caches.Cache(4096, ClTree::kUnified, one);
    const uint32_t core = caches.Core(caches.Node(ClTree::kPackage, 0, 0), 0, {one, one + 1, 0xFFFFFFFF});
    EXPECT_EQ(Tree(caches, {0}), "1 1, 1d 1024 x1");
    caches.Refer(one, two);
    EXPECT_EQ(Tree(caches, {0}), "1 1");
    caches.Refer(one, core);
    EXPECT_EQ(Tree(caches, {0}), "1 1, 1d 1024 x1") << "a node is no cache";
    for (size_t size = 0; size < caches.Bytes().size(); size++)
        EXPECT_EQ(TextOf(ReadPptt(std::span(caches.Bytes()).first(size), {0})), "- -") << size;
}

// Far more than 8 levels, and as many processors: climbing to the top from each would take hours.
TEST(Pptt, ALongWayIsGoneOnce) {
    constexpr uint32_t kMany = 200'000;
    ClTree tree;
    std::set<uint32_t> enabled;
    uint32_t node = tree.Node(ClTree::kPackage, 0, 0);
    for (uint32_t level = 0; level < kMany; level++) node = tree.Node(0, node, 0);
    for (uint32_t id = 0; id < kMany; id++) {
        tree.Core(node, id);
        enabled.insert(id);
    }
    EXPECT_EQ(Tree(tree, enabled), "1 200000");
}

TEST(Madt, Arm64ProcessorsHaveTheirInterfaces) {
    EXPECT_FALSE(ReadMadt(MadtOf({})).areListed);
    const EnabledProcessors_t off = ReadMadt(MadtOf({
        {5, 0}
    }));
    EXPECT_TRUE(off.areListed && off.isArm64 && off.ids.empty());
    constexpr uint8_t kMayBeBroughtOnline = 8;
    const std::vector<uint8_t> madt = MadtOf({
        {5, 0                  },
        {6, 1                  },
        {7, kMayBeBroughtOnline},
        {6, 1                  }
    });
    EXPECT_EQ(ReadMadt(madt).ids, std::set<uint32_t>{6});
    for (size_t size = 0; size < madt.size(); size++) EXPECT_LE(ReadMadt(std::span(madt).first(size)).ids.size(), 1u);
}

}  // namespace
