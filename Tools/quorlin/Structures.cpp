#include "Tools/quorlin/Structures.h"

#include "Packages/Standard/Texts.h"
#include "Sources/Types.h"
#include "Tools/quorlin/Text.h"

namespace {

// Titles are "TEXT {Type N}".
std::string_view TitleText(std::string_view title) { return title.substr(0, title.rfind(" {Type ")); }

std::string SpacedDigits(std::span<const uint8_t> bytes) {
    const std::string digits = HexDigits(bytes);
    std::string text(bytes.empty() ? 0 : 3 * bytes.size() - 1, ' ');
    for (size_t place = 0; place < bytes.size(); place++) digits.copy(&text[3 * place], 2, 2 * place);
    return text;
}

// Makes items for a structure without any of its own.
void AddBytesAndStrings(const Structure_t& structure, ClItemList& items) {
    const ItemFacts_t facts{structure.instance, structure.handle, structure.type};
    items.Add("Bytes", SpacedDigits(structure.Bytes()), facts);
    ClStringWalk strings(structure.data);
    if (strings.IsEmpty()) return;
    // Structures refer to strings by a byte.
    for (uint32_t number = 1; number <= 255; number++) {
        const char* text = strings.Next();
        if (text == nullptr) break;
        items.Add("String " + std::to_string(number), std::string_view(text), facts);
    }
}

}  // namespace

std::string Structure_t::Heading() const {
    std::string heading;
    if (isUndecoded) {
        heading.append(title).append(" {Type ").append(std::to_string(type)).append("}");
        if (instance > 1) heading.append("_").append(std::to_string(instance));
    } else if (firstItem != 0) {
        heading = items[0].Title();
    } else {
        return heading;
    }
    return heading.append(", handle ").append(HandleText(handle));
}

void VisitStructures(Quorlin& package, std::span<const uint8_t> types,
                     const std::function<bool(const Structure_t& structure)>& visit, Which_t which) {
    uint32_t count = 0, lastType = 256;
    std::string title;
    ClItemList rawItems;
    package.VisitTypes(types, [&](const uint8_t* data, const ClItemList& items) {
        const uint8_t type = data[0];
        if (type != lastType) {
            lastType = type;
            count = 0;
            title.clear();
        }
        count++;
        const auto handle = static_cast<uint16_t>(data[2] | data[3] << 8);
        if (items.Size() == 0) {
            if (which == Which_t::kDecoded) return true;
            const Structure_t structure{type, handle, count, NameOfType(type), true, data, rawItems, 0};
            rawItems.Clear();
            AddBytesAndStrings(structure, rawItems);
            return visit(structure);
        }
        const bool hasTitle = items[0].facts.kind == ItemKind_t::kTitle;
        if (hasTitle) title = TitleText(items[0].key);
        return visit({type, handle, count, title, false, data, items, hasTitle ? 1u : 0u});
    });
}
