// quorlin diff: what differs between two tables.
#include <algorithm>
#include <cstdio>
#include <deque>
#include <map>
#include <utility>

#include "Packages/Format/Structures.h"
#include "Sources/Types.h"
#include "Tools/quorlin/Commands.h"
#include "Tools/quorlin/Formats.h"
#include "Tools/quorlin/Text.h"
#include "Tools/quorlin/Types.h"

namespace {

constexpr Column_t kColumns[] = {{"change"}, {"type"}, {"handle"}, {"title"}, {"group"}, {"key"}, {"a"}, {"b"}};
constexpr List_t kList = {.name = "differences", .columns = kColumns, .innerName = "items"};

// An item and what identifies it in its structure, as a key may occur more than once.
struct OwnItem_t {
    std::string group, key;
    uint32_t occurrence;
    std::string value;

    bool IsSameItem(const OwnItem_t& other) const {
        return key == other.key && group == other.group && occurrence == other.occurrence;
    }
};

// A copy of a structure, as two tables can't be up at the same time.
struct OwnStructure_t {
    uint8_t type;
    uint16_t handle;
    std::string title;
    std::vector<OwnItem_t> items;
    bool isMatched = false;
};

struct OwnTable_t {
    std::string name;
    std::vector<OwnStructure_t> structures;
};

// Limits the memory that a table takes while it is compared, far above what real tables need.
class ClBudget {
  public:
    bool Take(size_t bytes) { return m_left >= bytes && (m_left -= bytes, true); }

  private:
    size_t m_left = 32u << 20;
};

bool IsIgnored(std::string_view key, const std::vector<std::string>& ignored) {
    return std::ranges::any_of(ignored, [key](const std::string& other) { return EqualsIgnoringCase(key, other); });
}

// False if the budget is used up.
bool TakeItems(const Structure_t& structure, const std::vector<std::string>& ignored, ClBudget& budget,
               std::vector<OwnItem_t>* items) {
    std::map<std::pair<std::string_view, std::string_view>, uint32_t> occurrences;
    std::string_view group;
    for (size_t index = structure.firstItem; index < structure.EndItem(); index++) {
        const ShownItem_t item = structure.Item(index);
        if (item.opensGroup) {
            group = item.key;
        } else if (!IsIgnored(item.key, ignored)) {
            if (!budget.Take(2 * sizeof(OwnItem_t) + group.size() + item.key.size() + item.value.size())) return false;
            items->push_back(
                {std::string(group), std::string(item.key), ++occurrences[{group, item.key}], std::string(item.value)});
        }
    }
    return true;
}

std::string HexOf(const TableStructure_t& structure) {
    std::string text;
    char byte[4];
    for (uint32_t place = kHeaderSize; place < structure.size; place++) {
        std::snprintf(byte, sizeof byte, "%02X", structure.data[place]);
        text += byte;
    }
    return text;
}

// Copies all structures, in the table's order. A structure without a decoder is compared by its bytes. False if the
// table is too large to compare.
bool TakeTable(ClTable& table, const std::vector<std::string>& ignored, OwnTable_t* taken) {
    ClBudget budget;
    bool fits = true;
    OwnTable_t& own = *taken;
    own.name = table.Name();
    std::map<std::pair<uint8_t, uint32_t>, OwnStructure_t> decoded;
    VisitStructures(table.Package(), AllTypes(true), [&](const Structure_t& structure) {
        fits = fits && budget.Take(2 * sizeof(OwnStructure_t));
        if (structure.isUndecoded || !fits) return true;
        OwnStructure_t& made = decoded[{structure.type, structure.instance}];
        made = {structure.type, structure.handle, std::string(structure.title), {}};
        fits = TakeItems(structure, ignored, budget, &made.items);
        return true;
    });
    if (!fits) return false;
    uint32_t instances[256] = {};
    for (const TableStructure_t& structure : ClWalk(table.Bytes())) {
        const uint8_t type = structure.Type();
        const auto found = decoded.find({type, ++instances[type]});
        OwnStructure_t next{type, structure.Handle(), std::string(NameOfType(type)), {}};
        if (found != decoded.end()) {
            if (!found->second.title.empty()) next.title = found->second.title;
            next.items = std::move(found->second.items);
        } else if (!IsIgnored("Bytes", ignored)) {
            next.items.push_back({"", "Bytes", 1, HexOf(structure)});
        }
        own.structures.push_back(std::move(next));
    }
    return true;
}

enum class Change_t { kAdded, kRemoved, kChanged };

const char* NameOf(Change_t change) {
    return change == Change_t::kAdded ? "added" : change == Change_t::kRemoved ? "removed" : "changed";
}

// What differs in one structure. An added or removed structure lists none of its items.
struct Difference_t {
    struct ItemChange_t {
        Change_t change;
        const OwnItem_t *a, *b;  // null where there is none

        const OwnItem_t& Either() const { return a != nullptr ? *a : *b; }
    };
    Change_t change;
    const OwnStructure_t* structure;
    std::vector<ItemChange_t> items;
};

Difference_t Compare(const OwnStructure_t& a, const OwnStructure_t& b) {
    Difference_t difference{Change_t::kChanged, &a, {}};
    const auto find = [](const OwnStructure_t& structure, const OwnItem_t& item) {
        const auto found =
            std::ranges::find_if(structure.items, [&](const OwnItem_t& other) { return other.IsSameItem(item); });
        return found == structure.items.end() ? nullptr : &*found;
    };
    for (const OwnItem_t& item : a.items) {
        const OwnItem_t* other = find(b, item);
        if (other == nullptr)
            difference.items.push_back({Change_t::kRemoved, &item, nullptr});
        else if (other->value != item.value)
            difference.items.push_back({Change_t::kChanged, &item, other});
    }
    for (const OwnItem_t& item : b.items)
        if (find(a, item) == nullptr) difference.items.push_back({Change_t::kAdded, nullptr, &item});
    return difference;
}

std::vector<Difference_t> CompareTables(OwnTable_t& a, OwnTable_t& b) {
    std::vector<std::pair<OwnStructure_t*, OwnStructure_t*>> matches;
    const auto match = [&](auto keyOf) {
        std::map<uint32_t, std::deque<OwnStructure_t*>> left;
        for (OwnStructure_t& other : b.structures)
            if (!other.isMatched) left[keyOf(other)].push_back(&other);
        for (OwnStructure_t& first : a.structures) {
            const auto others = left.find(keyOf(first));
            if (first.isMatched || others == left.end() || others->second.empty()) continue;
            matches.emplace_back(&first, others->second.front());
            first.isMatched = others->second.front()->isMatched = true;
            others->second.pop_front();
        }
    };
    match([](const OwnStructure_t& structure) { return uint32_t{structure.type} << 16 | structure.handle; });
    match([](const OwnStructure_t& structure) { return uint32_t{structure.type}; });
    std::ranges::sort(matches);  // back to the order of the first table
    std::vector<Difference_t> differences;
    for (const auto& [first, second] : matches)
        if (Difference_t difference = Compare(*first, *second); !difference.items.empty())
            differences.push_back(std::move(difference));
    for (const OwnStructure_t& structure : a.structures)
        if (!structure.isMatched) differences.push_back({Change_t::kRemoved, &structure, {}});
    for (const OwnStructure_t& structure : b.structures)
        if (!structure.isMatched) differences.push_back({Change_t::kAdded, &structure, {}});
    return differences;
}

void ShowToPeople(const Difference_t& difference, ClColumns& people) {
    const OwnStructure_t& structure = *difference.structure;
    const Change_t change = difference.change;
    const char* mark = change == Change_t::kChanged ? "  " : change == Change_t::kAdded ? "+ " : "- ";
    people.Line(0, "");
    people.Line(0, mark + structure.title + ", type " + std::to_string(structure.type) + ", handle " +
                       HandleText(structure.handle));
    for (const auto& item : difference.items) {
        const OwnItem_t& either = item.Either();
        const std::string name = (either.group.empty() ? "" : either.group + ": ") + either.key + "  ";
        if (item.a != nullptr) people.Line(0, "-   " + name + item.a->value);
        if (item.b != nullptr) people.Line(0, "+   " + name + item.b->value);
    }
}

void WriteRow(const Difference_t& difference, ClWriter& writer) {
    const auto cell = [](std::string_view text, bool isThere) { return isThere ? Cell_t(text) : Cell_t(); };
    std::vector<Row_t> items;
    for (const auto& item : difference.items) {
        const OwnItem_t& either = item.Either();
        items.push_back({NameOf(item.change),
                         {},
                         {},
                         {},
                         cell(either.group, !either.group.empty()),
                         either.key,
                         item.a != nullptr ? Cell_t(item.a->value) : Cell_t(),
                         item.b != nullptr ? Cell_t(item.b->value) : Cell_t()});
    }
    const OwnStructure_t& structure = *difference.structure;
    writer.Row({NameOf(difference.change), structure.type, structure.handle, structure.title}, items);
}

class ClDiff : public ClCommand {
  public:
    std::vector<Option_t> Options() override {
        std::vector<Option_t> options = m_source.OptionsForOne();
        options.push_back({"a", "FILE", "One table: a dump, a bare table, or a folder of both", &m_pathA, true});
        options.push_back({"b", "FILE", "The other table", &m_pathB});
        options.push_back({"--ignore", "KEY", "Leave out items of this key; may be given more than once", &m_ignored});
        options.push_back(m_format.Option());
        return options;
    }

    int Run() override {
        m_source.CheckOne();
        if (!m_pathB.empty() && (m_source.sample || m_source.sampleIfNone || !m_source.images.empty()))
            throw BadUsage_t{"diff compares two tables; leave out B or the other one"};
        Source_t first = m_source, second = m_source;
        first.sample = first.sampleIfNone = false;
        first.images = {m_pathA};
        if (!m_pathB.empty()) second.images = {m_pathB};
        OwnTable_t a, b;
        if (Take(first, &a) != kExitDone || Take(second, &b) != kExitDone) return kDiffCommand.trouble;
        const std::vector<Difference_t> differences = CompareTables(a, b);
        ClOutput output;
        Write(a, b, differences, *m_format.Chosen().make(output, false));
        if (!output.Finish()) return kDiffCommand.trouble;
        return differences.empty() ? kExitDone : kExitNo;
    }

  private:
    int Take(const Source_t& from, OwnTable_t* own) const {
        return ForEachTable(from, kDiffCommand.trouble, [&](ClTable& table) {
            if (TakeTable(table, m_ignored, own)) return kExitDone;
            SayError(table.Name(), "too many structures and items to compare; try quorlin check");
            return kDiffCommand.trouble;
        });
    }

    static void Write(const OwnTable_t& a, const OwnTable_t& b, const std::vector<Difference_t>& differences,
                      ClWriter& writer) {
        writer.Begin(kList, {
                                {"a", a.name},
                                {"b", b.name}
        });
        ClColumns* people = writer.People();
        if (people != nullptr && !differences.empty()) {
            people->Line(0, "- " + a.name);
            people->Line(0, "+ " + b.name);
        }
        for (const Difference_t& difference : differences)
            if (people != nullptr)
                ShowToPeople(difference, *people);
            else
                WriteRow(difference, writer);
        writer.End();
    }

    Source_t m_source;
    std::string m_pathA, m_pathB;
    std::vector<std::string> m_ignored;
    ClFormatOption m_format{kComparison};
};

}  // namespace

constexpr Command_t kDiffCommand = {
    .name = "diff",
    .summary = "what differs between two tables",
    .description =
        "Shows what differs between two tables. Structures are matched by type and handle, the others by their "
        "order. Without B the other table is this machine's, or the one that --sample or --image names.",
    .footer =
        "Example: quorlin diff before.bin after.bin --ignore \"Serial Number\"\n"
        "Exit codes: 0 the same, 1 different, 2 bad usage, no table or an unreadable one.",
    .trouble = kExitTrouble,
    .make = MakeCommand<ClDiff>,
};
