#include "Tools/quorlin/Show.h"

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

#include "Packages/Platform/Program.h"
#include "Sources/SMBIOSType.h"

namespace {

struct Item_t {
    std::string key, value;
    bool isGroup;

    // A title carries its type's mark; any other group item opens a sub-group.
    bool IsTitle() const { return isGroup && key.find("{Type ") != key.npos; }
};

// The next item with its value as decoded. The line tells the key: what stands in front of the value, whose length is
// known.
bool NextItem(Quorlin& package, uint32_t* index, Item_t* item) {
    std::string line;
    if (package.GetNextItem(line) != kSuccess) return false;
    item->value = package.GetItemValue((*index)++);
    const auto quotes = static_cast<size_t>(std::ranges::count(item->value, '"'));
    const size_t shown = item->value == " " ? 0 : item->value.size() - quotes;
    item->key = line.substr(1, line.size() - shown - 6);
    // A group item of a setting carries a value and reads as an item.
    item->isGroup = item->key.ends_with(kGroupMark);
    if (item->isGroup) item->key.resize(item->key.size() - kGroupMark.size());
    if (!item->value.empty()) item->isGroup = false;
    return true;
}

// Firmware's strings reach a terminal here: control characters would steer it.
std::string Printable(std::string text) {
    for (char& character : text)
        if (static_cast<unsigned char>(character) < 0x20 || character == 0x7F) character = ' ';
    while (!text.empty() && text.back() == ' ') text.pop_back();
    return text;
}

constexpr size_t kWidestKey = 44;  // longer keys push their value to the right

class ClTextFormat {
  public:
    explicit ClTextFormat(ClOutput& output) : m_output(output) {
        const char* noColor = std::getenv("NO_COLOR");
        if (IsStandardOutputTerminal() && (noColor == nullptr || *noColor == '\0')) {
            m_titleBegin = "\x1b[1m";
            m_titleEnd = "\x1b[0m";
        }
    }

    void Add(Item_t item) {
        if (!item.isGroup) {
            m_block.push_back(std::move(item));
            return;
        }
        FinishBlock();
        if (item.IsTitle()) {
            if (m_begun) m_output << "\n";
            m_output << m_titleBegin << Printable(std::move(item.key)) << m_titleEnd << "\n";
            m_indent = 2;
        } else {
            m_output << "  " << Printable(std::move(item.key)) << "\n";
            m_indent = 4;
        }
        m_begun = true;
    }

    // The items since the last group item, with their values below each other.
    void FinishBlock() {
        size_t width = 0;
        for (const Item_t& item : m_block)
            if (item.key.size() <= kWidestKey) width = std::max(width, item.key.size());
        for (Item_t& item : m_block) {
            const size_t keySize = item.key.size();
            m_output.Pad(m_indent) << Printable(std::move(item.key));
            const std::string value = Printable(std::move(item.value));
            if (!value.empty()) m_output.Pad(keySize < width ? width - keySize + 2 : 2) << value;
            m_output << "\n";
        }
        m_block.clear();
    }

  private:
    ClOutput& m_output;
    std::vector<Item_t> m_block;
    size_t m_indent = 0;
    bool m_begun = false;
    const char* m_titleBegin = "";
    const char* m_titleEnd = "";
};

}  // namespace

void ShowItems(Quorlin& package, Format_t format, ClOutput& output) {
    if (format == Format_t::kLines) {
        std::string line;
        while (package.GetNextItem(line) == kSuccess && !output.Failed()) output << line << "\n";
        return;
    }
    ClTextFormat text(output);
    Item_t item;
    uint32_t index = 0;
    while (NextItem(package, &index, &item) && !output.Failed()) text.Add(std::move(item));
    text.FinishBlock();
}
