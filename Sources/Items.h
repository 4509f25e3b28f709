// Items, and the list that keeps them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "Sources/Text.h"

inline constexpr std::string_view kGroupMark = "#GROUPNAME";

// One item as text: a key and a value. A group item's key ends in kGroupMark and its value is empty.
struct ItemPair {
    ClText key;
    ClText value;
};

enum class ItemKind_t : uint8_t {
    kItem,
    kMarkedItem,  // an item whose key as text ends in kGroupMark, like a group's
    kGroup,       // the heading of the items that follow; no value
    kTitle,       // the title of a structure; no value
};

// The kind of an item, and the structure that it belongs to.
struct ItemFacts_t {
    uint32_t instance = 0;  // number of the structure among those of its type, from 1
    uint16_t handle = 0;
    uint8_t type = 0;
    ItemKind_t kind = ItemKind_t::kItem;

    ItemFacts_t As(ItemKind_t other) const { return {instance, handle, type, other}; }
};

// An item as a package keeps it. Its facts are separate, so that nobody has to parse them out of its texts. The key has
// no marks; AppendKey adds them.
struct Item_t {
    ClText key;
    ClText value;
    ItemFacts_t facts;

    // Appends the key as text: a title with its instance number from the second on, and kGroupMark unless it is a
    // kItem.
    void AppendKey(std::string& text) const;
    // A title as text, without kGroupMark: "TEXT {Type N}", "TEXT {Type N}_2".
    std::string Title() const;
};

// Items in the order in which they were added. They are allocated in blocks, because allocating them one by one would
// cost more than decoding them.
class ClItemList {
  public:
    ClItemList() = default;
    ClItemList(const ClItemList&) = delete;
    ClItemList& operator=(const ClItemList&) = delete;
    ~ClItemList() { Truncate(0); }

    // Whether Add copies the texts that an item refers to, for a list that may outlive them.
    void KeepTexts(bool keeps) { m_keepsTexts = keeps; }
    // Throws std::bad_alloc if memory runs out.
    void Add(ClText&& key, ClText&& value, ItemFacts_t facts);
    void Clear() { Truncate(0); }
    // Removes the items from `size` on.
    void Truncate(size_t size);
    size_t Size() const { return m_size; }
    // An item keeps its address until it is removed.
    const Item_t& operator[](size_t index) const { return *Place(index); }

  private:
    static constexpr size_t kBlockItems = 64;
    struct Block_t {
        alignas(Item_t) std::byte room[kBlockItems * sizeof(Item_t)];
    };

    Item_t* Place(size_t index) const {
        return reinterpret_cast<Item_t*>(m_blocks[index / kBlockItems]->room) + index % kBlockItems;
    }

    std::vector<std::unique_ptr<Block_t>> m_blocks;
    size_t m_size = 0;
    bool m_keepsTexts = false;
};
