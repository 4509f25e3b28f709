// Writes the page of all items, from the tables that the decoders read: write_items > Docs/Items.md
//
// With --check PAGE it compares the page with that text. With --shown it reads the program's `lines` output on standard
// input, and expects each item's key under its type.
#include <iostream>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "Sources/Decoders.h"
#include "Sources/SharedWords.h"
#include "Tools/docs/Page.h"

namespace {

using namespace std::string_literals;

std::string Hex(uint64_t value, uint32_t digits) { return ClSMBIOSType::GetHexString(value, digits); }

std::string Digits(const char* more, uint32_t digits) {
    return "hexadecimal"s.append(
        (digits == 0 ? std::string() : ", "s.append(std::to_string(digits)) + " digits" + more));
}

std::string BitText(const Rendering_t& rendering) {
    return "bit "s.append(std::to_string(rendering.number)) + ": set " + Code(TextOf(rendering.table, 1, {})) +
           ", clear " + Code(TextOf(rendering.table, 0, {}));
}

std::string YesNoText(const Rendering_t& rendering) {
    return "bit "s.append(std::to_string(rendering.number)) + ": set `Yes`, clear `No`";
}

// The words for a shared rendering.
std::optional<std::string> SharedWords(const Rendering_t& rendering) {
    const auto is = [&](auto... shows) { return ((rendering.render == shows) || ...); };
    const std::string otherwise = rendering.text.empty() ? "" : ", else "s.append(Code(rendering.text));
    if (rendering.render == ShowGroup) return "opens a sub-group";
    if (is(ShowDec8, ShowDec16, ShowDec32)) return "decimal";
    if (is(ShowHex8)) return Digits(rendering.number > 2 ? " or more" : "", rendering.number);
    if (is(ShowHex16)) return Digits(rendering.number != 4 ? " or more" : "", rendering.number);
    if (is(ShowHex32, ShowHex64)) return Digits("", rendering.number);
    if (is(ShowString)) return "string; number 0 is the first one";
    if (is(ShowStringOrNone)) return "string; `None` for number 0";
    if (is(ShowParsedString)) return "string; `None` for number 0 and for a number without a string";
    if (is(ShowFixedText)) return Code(rendering.text);
    if (is(ShowEnum8)) return "a word of the list"s.append(otherwise);
    if (is(ShowEnumOfBits8, ShowEnumOfBits16)) {
        const uint32_t first = rendering.number & 0xFF, last = first + (rendering.number >> 8) - 1;
        return "bits "s.append(std::to_string(first)) + " to " + std::to_string(last) + ": a word of the list" +
               otherwise;
    }
    if (is(ShowBitWords8, ShowBitWords16)) return "the words of the set bits, joined by `, `; `None` if there are none";
    if (is(ShowYesNo8, ShowYesNo16, ShowYesNo32)) return YesNoText(rendering);
    if (is(ShowBit8, ShowBit32)) return BitText(rendering);
    if (is(ShowDec16WithUnit)) return "decimal, then "s.append(Code(rendering.text));
    if (is(ShowDec16AndHex))
        return "decimal, then hexadecimal of "s.append(std::to_string(rendering.number)) +
               " digits or more in parentheses";
    if (is(ShowDeviceNumber)) return "bits 3 to 7, decimal";
    if (is(ShowFunctionNumber)) return "bits 0 to 2, decimal";
    return std::nullopt;
}

// The page of one type.
class ClPage final : public ClDescription {
  public:
    explicit ClPage(uint8_t type) : m_type(type) {}

    void Explain(ClText (*render)(const Field_t& field), std::string_view words) override {
        m_explanations[render] = words;
    }

    void Rows(const Rows_t& rows, std::string_view when) override {
        if (!when.empty()) m_items += "\n"s.append(std::string(when)) + (when.ends_with('.') ? "\n" : ":\n");
        if (!when.empty() || m_items.empty()) m_items += "\n| key | offset | reads as |\n|---|---|---|\n";
        for (const PackedRow_t& packed : rows.rows) {
            const ItemRow_t row = UnpackedRow(rows, packed);
            Item(row.key, Hex(row.offset, 2), WordsOf(row));
            const bool isBit = row.rendering.render == ShowBit8 || row.rendering.render == ShowBit32;
            if (row.rendering.table.empty() || isBit) continue;
            const bool areBits = row.rendering.render == ShowBitWords8 || row.rendering.render == ShowBitWords16;
            Words(row.key, row.rendering.table, areBits);
        }
    }

    void Item(std::string_view key, std::string_view where, std::string_view words) override {
        if (m_items.empty()) m_items += "\n| key | offset | reads as |\n|---|---|---|\n";
        const bool isNamed = !key.starts_with('(');
        m_items += "| "s.append(isNamed ? Code(key) : std::string(key)) + " | " + std::string(where) + " | " +
                   std::string(words) + " |\n";
        keys.insert(isNamed ? std::string(key) : std::string());
    }

    void Words(std::string_view of, std::span<const CodeText_t> table, bool areBits) override {
        for (List_t& list : m_lists) {
            if (list.table.data() != table.data()) continue;
            if (list.of.find(of) == list.of.npos) list.of += ", "s.append(std::string(of));
            return;
        }
        m_lists.push_back({std::string(of), table, areBits});
    }

    std::string Text() const {
        std::string text = m_items;
        for (const List_t& list : m_lists) text += "\n"s.append(ListText(list));
        return text + m_notes;
    }

    void Note(std::string_view text) override { m_notes.append("\n").append(Wrapped(text)); }

    std::set<std::string> keys;  // an empty one: the structure itself has keys

  private:
    struct List_t {
        std::string of;
        std::span<const CodeText_t> table;
        bool areBits;
    };

    std::string WordsOf(const ItemRow_t& row) const {
        const Rendering_t& rendering = row.rendering;
        if (const auto shared = SharedWords(rendering)) return *shared;
        const auto own = m_explanations.find(rendering.render);
        if (own == m_explanations.end())
            throw std::runtime_error("type "s.append(std::to_string(m_type)) + " doesn't explain how " +
                                     std::string(row.key) + " reads");
        std::string words(own->second);
        if (!rendering.text.empty()) words += " (text: "s.append(Code(rendering.text)) + ")";
        if (rendering.number != 0) words += " (mask: "s.append(Hex(rendering.number, 1)) + ")";
        return words;
    }

    // Consecutive codes with one word are a range.
    static std::string ListText(const List_t& list) {
        std::string text = "**" + list.of + "**:";
        const auto code = [&](uint32_t value) {
            return list.areBits ? "bit "s.append(std::to_string(value)) : Hex(value, 2);
        };
        for (size_t first = 0, last; first < list.table.size(); first = last + 1) {
            for (last = first; last + 1 < list.table.size() &&
                               list.table[last + 1].Text() == list.table[first].Text() &&
                               list.table[last + 1].code == list.table[last].code + 1;)
                last++;
            text.append(" ").append(code(list.table[first].code));
            if (last != first) text.append(" to ").append(code(list.table[last].code));
            text.append(" ").append(Code(list.table[first].Text())).append(";");
        }
        text.back() = '.';
        return Wrapped(text);
    }

    uint8_t m_type;
    std::map<ClText (*)(const Field_t&), std::string_view> m_explanations;
    std::string m_items, m_notes;
    std::vector<List_t> m_lists;
};

ClPage PageOf(uint8_t type) {
    ClPage page(type);
    switch (type) {
#define DECODER(number, ...)        \
    case number:                    \
        DescribeType##number(page); \
        break;
#include "Sources/Types.def"
        default: break;
    }
    return page;
}

std::string TypesText(bool (*isMeant)(const TypeRow_t& row)) {
    std::string text;
    for (const TypeRow_t& row : TypeRows())
        if (isMeant(row)) text += (text.empty() ? "" : ", ") + std::to_string(row.type);
    return text;
}

std::string WholePage() {
    std::string text =
        "# Items of each structure type\n\n"
        "The program `write_items` writes this page from the decoders' own tables; a test compares them. The items of "
        "a\n"
        "structure begin with a group item, its title. From the second structure of a type on, the title ends in `_2`, "
        "`_3`\n"
        "and so on.\n\n"
        "Keys and texts are shown as the items have them, blanks included; `\\t` is a tab. Hexadecimal is in capitals, "
        "filled\n"
        "up with zeros and followed by `h`, unless the page says otherwise. A string number that the structure doesn't "
        "have\n"
        "reads `(no such string)`; every number of a structure without strings reads `(null string)`. A value without "
        "a word\n"
        "in a list reads the text after \"else\", or nothing.\n\n"
        "Structures of these types give no items: " +
        TypesText([](const TypeRow_t& row) { return row.sweep == Sweep_t::kSwept && row.head == Head_t::kNone; }) +
        ".\nThese types are decoded only on demand: " +
        TypesText([](const TypeRow_t& row) { return row.sweep == Sweep_t::kOnDemand; }) + ".\n";
    for (const TypeRow_t& row : TypeRows()) {
        if (row.sweep == Sweep_t::kNotDecoded || row.head == Head_t::kNone) continue;
        const std::string_view title = row.Title();
        text +=
            "\n## Type " + std::to_string(row.type) + ": " + std::string(title.substr(0, title.rfind(" {"))) + "\n\n";
        text += row.view == View_t::kFormattedArea
                    ? "Fields past the end of a short structure read 0.\n"
                    : "Fields past the end of a short structure read the bytes that follow in its record.\n";
        if (row.head == Head_t::kHeader)
            text += "The items begin with `Type`, `Length` and `Handle`, in decimal.\n";
        else if (row.head == Head_t::kFirstTitle)
            text += "Only the first structure has a title.\n";
        text += PageOf(row.type).Text();
    }
    return text;
}

// Returns the keys of the program's lines that aren't on the page under their type.
std::vector<std::string> MissingKeys(std::istream& lines) {
    constexpr std::string_view kMark = "#GROUPNAME";
    std::vector<std::string> missing;
    std::map<int, std::set<std::string>> known;
    for (const TypeRow_t& row : TypeRows()) known[row.type] = PageOf(row.type).keys;
    int type = -1;
    for (std::string line; std::getline(lines, line);) {
        if (!line.starts_with('"')) continue;
        std::string key = line.substr(1, line.rfind("\", \"") - 1);
        const bool isGroup = key.ends_with(kMark);
        if (isGroup) key.resize(key.size() - kMark.size());
        if (const size_t mark = key.rfind(" {Type "); isGroup && mark != key.npos) {
            type = std::stoi(key.substr(mark + 7));
            continue;
        }
        if (key == "Type" || key == "Length" || key == "Handle") continue;
        if (!known[type].contains(key) && !known[type].contains(""))
            missing.push_back("type "s.append(std::to_string(type)) + ": the page doesn't have the key \"" + key +
                              "\"");
    }
    return missing;
}

int Run(const std::vector<std::string>& arguments) {
    if (arguments.empty()) {
        std::cout << WholePage();
        return 0;
    }
    if (arguments[0] == "--check" && arguments.size() == 2)
        return HasContent(arguments[1], WholePage(), "write_items") ? 0 : 1;
    if (arguments[0] == "--shown" && arguments.size() == 1) {
        const std::vector<std::string> missing = MissingKeys(std::cin);
        for (const std::string& line : missing) std::cerr << line << "\n";
        return missing.empty() ? 0 : 1;
    }
    std::cerr << "usage: write_items [--check PAGE | --shown]\n";
    return 2;
}

}  // namespace

int main(int count, char** values) try {
    return Run({values + 1, values + count});
} catch (const std::exception& problem) {
    std::cerr << problem.what() << "\n";
    return 1;
}
