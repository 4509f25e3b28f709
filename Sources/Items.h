// Items, and the list that keeps them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "Sources/Text.h"

inline constexpr std::string_view kGroupMark = "#GROUPNAME";

// One item as text: a key and a value. A group item's key ends in kGroupMark and its value is empty.
struct ItemPair {
    std::string key;
    std::string value;
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

// An item as a package keeps it. Its facts are separate, so that callers needn't parse them out of its texts. The key
// has no marks; AppendKey adds them.
struct Item_t {
    std::string_view key;
    std::string_view value;
    ItemFacts_t facts;

    // Appends the key as text: a title with its instance number from the second on, and kGroupMark unless it is a
    // kItem.
    void AppendKey(std::string& text) const;
    // Writes the item as GetNextItem returns it, `"KEY", "VALUE"`, whose value is without quotes. Returns the place
    // after it.
    char* PutLine(char* place) const;
    // At least what PutLine writes.
    size_t MostLineBytes() const { return key.size() + value.size() + kMostMarks.size() + kQuotes.size(); }
    // A title as text, without kGroupMark: "TEXT {Type N}", "TEXT {Type N}_2".
    std::string Title() const;

  private:
    static constexpr std::string_view kMostMarks = "_4294967295#GROUPNAME", kQuotes = "\"\", \"\"";

    char* PutKey(char* place) const {
        return facts.kind == ItemKind_t::kItem ? PutText(place, key) : PutMarkedKey(place);
    }
    char* PutMarkedKey(char* place) const;
};

// Items in the order in which they were added.
class ClItemList {
  public:
    // Whether Add copies the texts that an item refers to, for a list that may outlive them.
    void KeepTexts(bool keeps) { m_keepsTexts = keeps; }
    // Throws std::bad_alloc if memory runs out.
    void AddLasting(std::string_view key, const ClText& value, const ItemFacts_t& facts) {
        m_items.push_back({key, Lasting(value), facts});
    }
    // The same for a key that need not outlive the list.
    void Add(const ClText& key, const ClText& value, const ItemFacts_t& facts) {
        m_items.push_back({Lasting(key), Lasting(value), facts});
    }
    void Clear() {
        m_items.clear();
        m_texts.Clear();
    }

    struct Mark_t {
        size_t size;
        ClTextArena::Mark_t texts;
    };
    Mark_t Mark() const { return {m_items.size(), m_texts.Mark()}; }
    // Removes the items that were added after the mark.
    void ReturnTo(const Mark_t& mark) {
        m_items.resize(mark.size);
        m_texts.ReturnTo(mark.texts);
    }

    size_t Size() const { return m_items.size(); }
    // Valid until the next Add.
    const Item_t& operator[](size_t index) const { return m_items[index]; }

  private:
    std::string_view Lasting(const ClText& text) {
        return text.IsOwn() || m_keepsTexts ? m_texts.Keep(text.View()) : text.View();
    }

    std::vector<Item_t> m_items;
    ClTextArena m_texts;
    bool m_keepsTexts = false;
};
