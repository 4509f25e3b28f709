#include "Packages/Analysis/AcpiProcessors.h"

#include <algorithm>
#include <map>
#include <tuple>

#include "Packages/Format/LittleEndian.h"

namespace {

// Calls visit(place, bytes) for each structure of a table from `begin` on, up to one that has no size or is cut.
void ForEachStructure(std::span<const uint8_t> table, size_t begin, auto&& visit) {
    for (size_t place = begin; place + 2 <= table.size();) {
        const size_t size = table[place + 1];
        if (size < 2 || size > table.size() - place) return;
        visit(place, table.subspan(place, size));
        place += size;
    }
}

class ClPptt {
  public:
    explicit ClPptt(std::span<const uint8_t> table)
        : m_tellsThreads(table.size() > kRevision && table[kRevision] >= 2) {
        ForEachStructure(table, kAcpiHead, [this](size_t place, std::span<const uint8_t> bytes) {
            if (bytes[0] == kNode && bytes.size() >= kNodeSize)
                m_nodes.push_back(NodeOf(place, bytes));
            else if (bytes[0] == kCache && bytes.size() >= kCacheSize)
                m_caches.push_back(CacheOf(place, bytes));
        });
        for (const Node_t& node : m_nodes)
            if (Node_t* const parent = Find(m_nodes, node.parent)) parent->isParent = true;
    }

    ProcessorTree_t Read(const std::set<uint32_t>& enabled) {
        std::set<uint32_t> seen;
        std::set<const Node_t*> packages, cores;
        for (Node_t& node : m_nodes) {
            if (node.isParent || (node.flags & kHasId) == 0 || !enabled.contains(node.id)) continue;
            if (!seen.insert(node.id).second) continue;
            if (!Climb(&node, static_cast<uint32_t>(seen.size()))) return {};
            const bool isThread = m_tellsThreads && (node.flags & kThread) != 0;
            const Node_t* const core = isThread ? Find(m_nodes, node.parent) : &node;
            packages.insert(node.package);
            cores.insert(core);
            // The levels of caches are counted from those of a core.
            m_knowsCaches = m_knowsCaches && core != nullptr && core->levels != 0;
        }
        if (seen.empty() || seen.size() != enabled.size()) return {};
        ProcessorTree_t tree;
        if (!packages.contains(nullptr)) tree.packages = packages.size();
        if (m_tellsThreads && !cores.contains(nullptr)) tree.cores = cores.size();
        if (m_knowsCaches) AddCaches(&tree);
        return tree;
    }

  private:
    static constexpr size_t kRevision = 8, kNodeSize = 20, kCacheSize = 24;
    static constexpr uint8_t kNode = 0, kCache = 1;
    static constexpr uint32_t kPackage = 1u << 0, kHasId = 1u << 1, kThread = 1u << 2;  // flags of a node
    static constexpr uint32_t kHasSize = 1u << 0, kHasKind = 1u << 4;                   // flags of a cache
    static constexpr uint32_t kMostLevels = 8;

    struct Node_t {
        size_t place;
        uint32_t flags, parent, id;
        std::span<const uint8_t> caches;  // the places of its own, 4 bytes each
        bool isParent = false;
        uint32_t visitor = 0;            // the processor that was the first to climb to it, from 1; 0 for none
        uint32_t below = 0, levels = 0;  // of caches, without and with its own
        const Node_t* package = nullptr;
    };
    struct Cache_t {
        size_t place;
        uint32_t flags, next, size;
        uint8_t kind;
        uint32_t level = 0;              // 0 for none
        uint32_t owners = 0, users = 0;  // nodes that have it as their own, and those that others' `next` leads to it
        const Node_t* user = nullptr;    // the last of both
    };

    static Node_t NodeOf(size_t place, std::span<const uint8_t> bytes) {
        const size_t count = std::min<size_t>(NumberAt<uint32_t>(bytes, 16), (bytes.size() - kNodeSize) / 4);
        return {place, NumberAt<uint32_t>(bytes, 4), NumberAt<uint32_t>(bytes, 8), NumberAt<uint32_t>(bytes, 12),
                bytes.subspan(kNodeSize, 4 * count)};
    }
    static Cache_t CacheOf(size_t place, std::span<const uint8_t> bytes) {
        return {place, NumberAt<uint32_t>(bytes, 4), NumberAt<uint32_t>(bytes, 8), NumberAt<uint32_t>(bytes, 12),
                static_cast<uint8_t>(bytes[21] >> 2 & 3)};
    }

    // A reference is a structure's place in the table. Null if there is none of this kind.
    template <class Item>
    static Item* Find(std::vector<Item>& items, uint32_t place) {
        const auto found = std::ranges::lower_bound(items, place, {}, &Item::place);
        return found == items.end() || found->place != place ? nullptr : &*found;
    }

    // Goes from a processor up to the first node where another was. Returns false if parents are in a ring.
    bool Climb(Node_t* processor, uint32_t number) {
        std::vector<Node_t*> way;
        uint32_t levels = 0;
        Node_t* node = processor;
        for (; node != nullptr && node->visitor == 0; node = Find(m_nodes, node->parent)) {
            node->visitor = number;
            node->below = levels;
            levels = node->levels = NumberLevels(*node);
            way.push_back(node);
        }
        if (node != nullptr && node->visitor == number) return false;
        // Cores with fewer levels share caches whose level can't be told.
        if (node != nullptr && node->below != levels) m_knowsCaches = false;
        const Node_t* package = node == nullptr ? nullptr : node->package;
        for (auto each = way.rbegin(); each != way.rend(); ++each) {
            if (((*each)->flags & kPackage) != 0) package = *each;
            (*each)->package = package;
        }
        return true;
    }

    // A node's caches come after the levels below it, and before those that their `next` leads to. Caches that a node
    // below led to have their level from there. Returns the levels with the node's.
    uint32_t NumberLevels(const Node_t& node) {
        std::map<Cache_t*, uint32_t> levels;
        std::set<Cache_t*> own;
        for (size_t offset = 0; offset < node.caches.size(); offset += 4) {
            Cache_t* cache = Find(m_caches, NumberAt<uint32_t>(node.caches, offset));
            if (cache == nullptr) continue;
            own.insert(cache);
            const bool isNumbered =
                cache->user != nullptr && cache->user != &node && cache->user->visitor == node.visitor;
            uint32_t level = isNumbered ? cache->level : node.below + 1;
            for (; cache != nullptr && level <= kMostLevels; cache = Find(m_caches, cache->next), level++)
                levels[cache] = std::max(levels[cache], level);
            if (cache != nullptr) m_knowsCaches = false;
        }
        uint32_t most = node.below;
        for (const auto& [cache, level] : levels) {
            if (cache->level != 0 && cache->level != level) m_knowsCaches = false;
            cache->level = level;
            cache->user = &node;
            (own.contains(cache) ? cache->owners : cache->users)++;
            most = std::max(most, level);
        }
        return most;
    }

    // Each node has a cache of its own of what it describes, also where nodes share the description. A shared one that
    // no node has as its own may be one cache or many. A level with an unclear cache is left out.
    void AddCaches(ProcessorTree_t* tree) const {
        constexpr uint8_t kInstruction = 1;
        std::map<std::tuple<uint32_t, bool, uint64_t>, uint64_t> counts;
        std::set<uint32_t> unclear;
        for (const Cache_t& cache : m_caches) {
            if (cache.level == 0) continue;
            if ((cache.flags & kHasSize) == 0 || (cache.flags & kHasKind) == 0 || cache.size == 0 ||
                (cache.owners == 0 && cache.users > 1))
                unclear.insert(cache.level);
            counts[{cache.level, cache.kind == kInstruction, cache.size}] += std::max(cache.owners, 1u);
        }
        for (const auto& [what, count] : counts) {
            const auto& [level, isInstruction, size] = what;
            if (!unclear.contains(level)) tree->caches.push_back({level, isInstruction, size, count});
        }
    }

    const bool m_tellsThreads;
    bool m_knowsCaches = true;
    std::vector<Node_t> m_nodes;  // these two in order of their places
    std::vector<Cache_t> m_caches;
};

}  // namespace

// Some firmware has two entries for one.
EnabledProcessors_t ReadMadt(std::span<const uint8_t> madt) {
    constexpr uint8_t kLocalApic = 0, kLocalX2Apic = 9, kGicInterface = 11;
    EnabledProcessors_t all;
    const auto add = [&all](uint32_t id, uint32_t flags) {
        all.areListed = true;
        if ((flags & 1) != 0) all.ids.insert(id);
    };
    ForEachStructure(madt, kAcpiHead + 8, [&](size_t, std::span<const uint8_t> entry) {
        switch (entry[0]) {
            case kLocalApic: add(NumberAt<uint8_t>(entry, 3), NumberAt<uint32_t>(entry, 4)); break;
            case kLocalX2Apic: add(NumberAt<uint32_t>(entry, 4), NumberAt<uint32_t>(entry, 8)); break;
            case kGicInterface:
                all.isArm64 = true;
                add(NumberAt<uint32_t>(entry, 8), NumberAt<uint32_t>(entry, 12));
                break;
            default: break;
        }
    });
    return all;
}

ProcessorTree_t ReadPptt(std::span<const uint8_t> pptt, const std::set<uint32_t>& enabled) {
    return ClPptt(pptt).Read(enabled);
}
