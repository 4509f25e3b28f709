#include "Sources/Items.h"

void Item_t::AppendKey(std::string& text) const {
    text += key;
    if (facts.kind == ItemKind_t::kTitle && facts.instance > 1) text.append("_").append(std::to_string(facts.instance));
    if (facts.kind != ItemKind_t::kItem) text += kGroupMark;
}

std::string Item_t::Title() const {
    std::string text;
    AppendKey(text);
    text.resize(text.size() - kGroupMark.size());
    return text;
}
