// quorlin diff: what differs between two tables.
#include <algorithm>
#include <cstdio>
#include <deque>
#include <map>
#include <utility>

#include "Packages/Format/Structures.h"
#include "Tools/quorlin/Columns.h"
#include "Tools/quorlin/Commands.h"
#include "Tools/quorlin/Csv.h"
#include "Tools/quorlin/Json.h"
#include "Tools/quorlin/Model.h"
#include "Tools/quorlin/Standard.h"
#include "Tools/quorlin/Text.h"

constexpr Usage_t kDiffUsage = {
    "quorlin diff",
    "Shows what differs between two tables. Structures are matched by type and handle, what is left by its order. "
    "Without B the other table is this machine's, or what --sample says.",
    "Example: quorlin diff before.bin after.bin --ignore \"Serial Number\"\n"
    "Exit codes: 0 the same, 1 different, 2 bad usage, no table or an unreadable one.",
    kExitTrouble,
};

namespace {

constexpr Format_t kFormats[] = {Format_t::kText, Format_t::kJson, Format_t::kCsv};

// An item with what tells it apart in its structure: a key may come more than once.
struct OwnItem_t {
    std::string group, key;
    uint32_t occurrence;
    std::string value;

    bool IsSameItem(const OwnItem_t& other) const {
        return key == other.key && group == other.group && occurrence == other.occurrence;
    }
};

// A structure of its own, as two tables aren't up at the same time.
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

// What a table may take while it is compared: far more than any real one does.
class ClBudget {
  public:
    bool Take(size_t bytes) { return m_left >= bytes && (m_left -= bytes, true); }

  private:
    size_t m_left = 32u << 20;
};

bool IsIgnored(std::string_view key, const std::vector<std::string>& ignored) {
    return std::ranges::any_of(ignored, [key](const std::string& other) { return EqualsIgnoringCase(key, other); });
}

// False when the budget is used up.
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

// All structures, in the table's order. One that no decoder shows is compared by its bytes. False for a table that is
// too much to compare.
bool TakeTable(ClTable& table, const std::vector<std::string>& ignored, OwnTable_t* taken) {
    ClBudget budget;
    bool fits = true;
    OwnTable_t& own = *taken;
    own.name = table.Name();
    std::map<std::pair<uint8_t, uint32_t>, OwnStructure_t> decoded;
    VisitStructures(table.Package(), AllTypes(true), [&](const Structure_t& structure) {
        fits = fits && budget.Take(2 * sizeof(OwnStructure_t));
        if (structure.isUndecoded || !fits) return;
        OwnStructure_t& made = decoded[{structure.type, structure.instance}];
        made = {structure.type, structure.handle, std::string(structure.title), {}};
        fits = TakeItems(structure, ignored, budget, &made.items);
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

void ListText(const std::vector<Difference_t>& differences, const OwnTable_t& a, const OwnTable_t& b,
              ClOutput& output) {
    if (differences.empty()) return;
    output << "- " << Printable(a.name) << "\n+ " << Printable(b.name) << "\n";
    for (const Difference_t& difference : differences) {
        const OwnStructure_t& structure = *difference.structure;
        const std::string name = Printable(structure.title) + ", type " + std::to_string(structure.type) + ", handle " +
                                 HandleText(structure.handle);
        if (difference.change != Change_t::kChanged) {
            output << (difference.change == Change_t::kAdded ? "\n+ " : "\n- ") << name << "\n";
            continue;
        }
        output << "\n  " << name << "\n";
        for (const auto& item : difference.items) {
            const std::string group = item.Either().group.empty() ? "" : Printable(item.Either().group) + ": ";
            if (item.a != nullptr)
                output << "-   " << group << Printable(item.a->key) << "  " << Printable(item.a->value) << "\n";
            if (item.b != nullptr)
                output << "+   " << group << Printable(item.b->key) << "  " << Printable(item.b->value) << "\n";
        }
    }
}

void ListCsv(const std::vector<Difference_t>& differences, ClOutput& output) {
    ClCsv csv(output, false);
    csv.Head({"change", "type", "handle", "title", "group", "key", "a", "b"});
    for (const Difference_t& difference : differences) {
        const OwnStructure_t& structure = *difference.structure;
        const std::string type = std::to_string(structure.type), handle = std::to_string(structure.handle);
        if (difference.items.empty())
            csv.Row({NameOf(difference.change), type, handle, structure.title, "", "", "", ""});
        for (const auto& item : difference.items)
            csv.Row({NameOf(item.change), type, handle, structure.title, item.Either().group, item.Either().key,
                     item.a != nullptr ? item.a->value : "", item.b != nullptr ? item.b->value : ""});
    }
}

void ListJson(const std::vector<Difference_t>& differences, const OwnTable_t& a, const OwnTable_t& b, ClJson& json) {
    json.BeginObject();
    json.Member("a", a.name);
    json.Member("b", b.name);
    json.Name("differences");
    json.BeginList();
    for (const Difference_t& difference : differences) {
        const OwnStructure_t& structure = *difference.structure;
        json.BeginObject();
        json.Member("change", std::string_view(NameOf(difference.change)));
        json.Member("type", structure.type);
        json.Member("handle", structure.handle);
        json.Member("title", structure.title);
        json.Name("items");
        json.BeginList();
        for (const auto& item : difference.items) {
            json.BeginObject();
            json.Member("change", std::string_view(NameOf(item.change)));
            if (!item.Either().group.empty()) json.Member("group", item.Either().group);
            json.Member("key", item.Either().key);
            if (item.a != nullptr) json.Member("a", item.a->value);
            if (item.b != nullptr) json.Member("b", item.b->value);
            json.FinishObject();
        }
        json.FinishList();
        json.FinishObject();
    }
    json.FinishList();
    json.FinishObject();
    json.Finish();
}

}  // namespace

int RunDiff(const Arguments_t& arguments) {
    Source_t source;
    std::string pathA, pathB, formatName = "text";
    std::vector<std::string> ignored;
    std::vector<Option_t> options = source.Options();
    options.push_back({"a", "A", "One table: a dump, a bare table, or a folder of both", &pathA, true});
    options.push_back({"b", "B", "The other table", &pathB});
    options.push_back({"--ignore", "KEY", "Leave items of this key out; may be given more than once", &ignored});
    options.push_back({"--format", "FORMAT", "text (for people), json or csv", &formatName});
    int exitCode = kExitDone;
    Format_t format;
    if (!ParseCommandLine(kDiffUsage, options, arguments, &exitCode) || !source.CheckOne(kDiffUsage, &exitCode) ||
        !ChooseFormat(kDiffUsage, formatName, kFormats, &format, &exitCode))
        return exitCode;
    if (!pathB.empty() && (source.sample || source.sampleIfNone || !source.images.empty())) {
        SayBadUsage(kDiffUsage, "two tables are enough; leave B or the other out", &exitCode);
        return exitCode;
    }
    OwnTable_t tables[2];
    const auto take = [&](const Source_t& from, OwnTable_t* own) {
        return ForEachTable(from, kDiffUsage.trouble, [&](ClTable& table) {
            if (TakeTable(table, ignored, own)) return kExitDone;
            SayError(table.Name(),
                     "more structures and items than can be compared; try check, which says what is wrong");
            return kDiffUsage.trouble;
        });
    };
    Source_t other = source;
    source.sample = source.sampleIfNone = false;
    source.images = {pathA};
    if (!pathB.empty()) other.images = {pathB};
    if (take(source, &tables[0]) != kExitDone || take(other, &tables[1]) != kExitDone) return kDiffUsage.trouble;
    const std::vector<Difference_t> differences = CompareTables(tables[0], tables[1]);
    ClOutput output;
    ClJson json(output);
    if (format == Format_t::kText)
        ListText(differences, tables[0], tables[1], output);
    else if (format == Format_t::kCsv)
        ListCsv(differences, output);
    else
        ListJson(differences, tables[0], tables[1], json);
    if (!output.Finish()) return kDiffUsage.trouble;
    return differences.empty() ? kExitDone : kExitNo;
}
