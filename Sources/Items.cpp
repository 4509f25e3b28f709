#include "Sources/Items.h"

#include <algorithm>
#include <new>
#include <utility>

void Item_t::AppendKey(std::string& text) const {
    text += key.View();
    if (facts.kind == ItemKind_t::kTitle && facts.instance > 1) text.append("_").append(std::to_string(facts.instance));
    if (facts.kind != ItemKind_t::kItem) text += kGroupMark;
}

std::string Item_t::Title() const {
    std::string text;
    AppendKey(text);
    text.resize(text.size() - kGroupMark.size());
    return text;
}

void ClItemList::Add(ClText&& key, ClText&& value, ItemFacts_t facts) {
    if (m_keepsTexts) {
        key.Keep();
        value.Keep();
    }
    if (m_size % kBlockItems == 0 && m_size / kBlockItems == m_blocks.size())
        m_blocks.push_back(
            std::unique_ptr<Block_t>(new Block_t));  // left uninitialised, as each item is constructed in place
    new (Place(m_size)) Item_t{std::move(key), std::move(value), facts};
    m_size++;
}

void ClItemList::Truncate(size_t size) {
    for (size_t index = size; index < m_size; index++) std::destroy_at(Place(index));
    // Keeps one block so that refills don't allocate.
    const size_t blocks = std::max<size_t>((size + kBlockItems - 1) / kBlockItems, 1);
    if (m_blocks.size() > blocks) m_blocks.resize(blocks);
    m_size = size;
}
