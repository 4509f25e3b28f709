#include "Packages/Analysis/Diff.h"

#include <algorithm>
#include <cstring>
#include <unordered_map>
#include <utility>

#include "Packages/Format/Ascii.h"
#include "Packages/Standard/Texts.h"

namespace {

constexpr uint32_t kNone = ~uint32_t{0};
constexpr size_t kMostRunBytes = 255;  // a structure's; only what follows a broken one is longer

// What tells structures of one type from each other: where the thing is.
struct PlaceKey_t {
    uint8_t type;
    char key[30];
};
constexpr PlaceKey_t kPlaceKeys[] = {
    {2,  "location_in_chassis"          },
    {4,  "socket_designation"           },
    {6,  "socket_designation"           },
    {7,  "socket_designation"           },
    {7,  "cache_level"                  },
    {8,  "internal_reference_designator"},
    {8,  "external_reference_designator"},
    {9,  "slot_designation"             },
    {14, "group_name"                   },
    {16, "location"                     },
    {16, "use"                          },
    {17, "device_locator"               },
    {17, "bank_locator"                 },
    {22, "location"                     },
    {26, "description"                  },
    {26, "location"                     },
    {27, "description"                  },
    {28, "description"                  },
    {28, "location"                     },
    {29, "description"                  },
    {29, "location"                     },
    {34, "description"                  },
    {35, "description"                  },
    {39, "location"                     },
    {41, "reference_designation"        },
    {43, "description"                  },
    {45, "firmware_component_name"      },
};

// Types of parts that people take out and put in.
constexpr bool IsPartType(uint8_t type) {
    return type == 2 || type == 3 || type == 4 || type == 17 || type == 22 || type == 39;
}

bool HasPlace(uint8_t type) { return std::ranges::find(kPlaceKeys, type, &PlaceKey_t::type) != std::end(kPlaceKeys); }

// What a field is for the comparison.
enum Role_t : uint8_t { kIgnored = 1, kPlace = 2, kSerial = 4, kPartNumber = 8 };

uint64_t Mix(uint64_t hash, uint64_t number) {
    hash = (hash ^ number) * 0x9E3779B97F4A7C15u;
    return hash ^ hash >> 29;
}

uint64_t MixBytes(uint64_t hash, const void* bytes, size_t size) {
    hash = Mix(hash, size);
    const auto* next = static_cast<const char*>(bytes);
    for (uint64_t word; size != 0;) {
        const size_t count = std::min(size, sizeof word);
        word = 0;
        std::memcpy(&word, next, count);
        hash = Mix(hash, word);
        next += count;
        size -= count;
    }
    return hash;
}

// The text that a text of any form is compared by.
std::string_view TextOf(const Fact_t& fact) {
    return fact.kind == FactKind_t::kText && fact.field->form == Form_t::kText ? fact.string : fact.text;
}

// Where a text is cut that has `most` bytes at most, so that no UTF-8 character is cut.
size_t WholeCharacters(std::string_view text, size_t most) {
    while (most != 0 && (static_cast<unsigned char>(text[most]) & 0xC0) == 0x80) most--;
    return most;
}

bool IsTextKind(FactKind_t kind) {
    return kind == FactKind_t::kText || kind == FactKind_t::kUuid || kind == FactKind_t::kDate ||
           kind == FactKind_t::kVersion;
}

// The bytes of the formatted area from `begin` on, which no fact comes from.
std::span<const uint8_t> RestOf(const TableStructure_t& structure, uint32_t begin) {
    const uint32_t length = structure.Length() < kHeaderSize ? structure.size : structure.Length();
    const uint32_t end = std::min(length, structure.size);
    return {structure.data + std::min(begin, end), structure.data + end};
}

}  // namespace

// Structures are known by their numbers, in the order of the table. Everything that pairs them is a hash.
struct ClDiffTable::Parts_t {
    // A reference from one structure to another.
    struct Edge_t {
        uint32_t from, to, label;
    };

    // A walk over the facts of a structure that count.
    struct Walk_t {
        void Begin(Parts_t& parts, uint32_t i) {
            facts.Begin(parts.At(i), parts.Options());
            roles = &parts.Roles(facts.Type());
            comparesParts = !parts.ignored.empty();
            covered = kHeaderSize;
        }
        const Fact_t* Next() {
            while (const Fact_t* fact = facts.NextFact()) {
                number = static_cast<uint32_t>(fact->field - facts.Type().fields.data());
                role = number < roles->size() ? (*roles)[number] : 0;
                covered = std::max<uint32_t>(covered, fact->offset + fact->size);
                // A field whose parts may be left out is compared by its parts.
                if (fact->isDerived || (role & kIgnored) != 0 || (fact->field->hasParts && comparesParts)) continue;
                return fact;
            }
            return nullptr;
        }

        ClFacts facts;
        uint32_t number = 0;  // of the last fact in the type's table
        uint8_t role = 0;
        uint32_t covered = 0;  // where the bytes end that the facts so far come from

      private:
        const std::vector<uint8_t>* roles = nullptr;
        bool comparesParts = false;
    };

    Parts_t(std::span<const uint8_t> bytes, uint16_t itsVersion, std::span<const std::string> itsIgnored)
        : table(bytes), version(itsVersion), ignored(itsIgnored.begin(), itsIgnored.end()), handles(bytes) {
        withHandle.assign(0x10000, kNone);
        for (const TableStructure_t& structure : ClWalk(table)) {
            uint32_t& first = withHandle[structure.Handle()];
            if (first == kNone) first = Count();
            offsets.push_back(static_cast<uint32_t>(structure.data - table.data()));
            if (structure.Length() < kHeaderSize) break;
        }
        own.resize(Count());
        content.resize(Count());
        for (uint32_t i = 0; i < Count(); i++) HashOne(i);
        FindNeighbours();
        Refine();
    }

    uint32_t Count() const { return static_cast<uint32_t>(offsets.size()); }
    // After a length below a header's no structure can be told, so the last one has all the bytes that are left.
    TableStructure_t At(uint32_t i) const {
        TableStructure_t structure = StructureAt(table.data(), static_cast<uint32_t>(table.size()), offsets[i]);
        if (structure.Length() < kHeaderSize) structure.size = static_cast<uint32_t>(table.size()) - offsets[i];
        return structure;
    }
    uint8_t TypeOf(uint32_t i) const { return table[offsets[i]]; }
    FactOptions_t Options() const { return {.version = version, .handles = &handles}; }
    uint32_t Target(const Fact_t& fact) const { return withHandle[fact.number & 0xFFFF]; }

    // The roles of a type's fields.
    const std::vector<uint8_t>& Roles(const StandardType_t& type) {
        std::vector<uint8_t>& known = roles[type.type];
        if (known.empty()) known = FindRoles(type);
        return known;
    }

    // Calls `take` with each fact that counts, its number in the type's table, and its role.
    template <class Take>
    void ForEachFact(uint32_t i, Take take) {
        walk.Begin(*this, i);
        while (const Fact_t* fact = walk.Next()) take(*fact, walk.number, walk.role);
    }

    // The serial number, or another text of a structure; empty if it isn't a value.
    std::string_view TextWith(uint32_t i, Role_t wanted) {
        std::string_view text;
        ForEachFact(i, [&](const Fact_t& fact, uint32_t, uint8_t role) {
            if ((role & wanted) != 0 && fact.IsValue() && text.empty()) text = WithoutBlanks(fact.string);
        });
        return text;
    }

    // Its locators or designations. Reads no more of the structure.
    std::string PlaceOf(uint32_t i) {
        std::string place;
        if (!HasPlace(TypeOf(i))) return place;
        places.Begin(At(i), {.version = version});
        const std::vector<uint8_t>& known = Roles(places.Type());
        const auto isPlace = [](uint8_t role) { return (role & kPlace) != 0; };
        const auto last = std::find_if(known.rbegin(), known.rend(), isPlace);
        const auto end = static_cast<size_t>(known.rend() - last);
        while (const Fact_t* fact = places.NextFact()) {
            const auto number = static_cast<size_t>(fact->field - places.Type().fields.data());
            if (number >= end) break;
            if (!isPlace(known[number]) || (known[number] & kIgnored) != 0 || !fact->IsValue()) continue;
            const std::string_view text = WithoutBlanks(fact->string);
            if (!text.empty()) place.append(place.empty() ? "" : ", ").append(text);
        }
        return place;
    }

    // The same for a reference, cut if it is very long. Very many references may lead to one structure.
    const std::string& ShortPlaceOf(uint32_t i) {
        constexpr size_t kMostBytes = 64, kMostKnown = 1u << 16;
        if (shortPlaces.size() >= kMostKnown) shortPlaces.clear();
        const auto [entry, isNew] = shortPlaces.try_emplace(i);
        std::string& place = entry->second;
        if (isNew) place = PlaceOf(i);
        if (place.size() > kMostBytes + 3) place = place.substr(0, WholeCharacters(place, kMostBytes)) + "...";
        return place;
    }

    uint64_t SerialKey(uint32_t i) {
        const std::string_view serial = TextWith(i, kSerial);
        return serial.empty() ? 0 : MixBytes(Mix(1, TypeOf(i)), serial.data(), serial.size());
    }

    // All but the texts.
    uint64_t NumbersKey(uint32_t i) {
        uint64_t hash = Mix(2, TypeOf(i));
        ForEachFact(i, [&](const Fact_t& fact, uint32_t number, uint8_t) {
            if (fact.kind == FactKind_t::kHandle || IsTextKind(fact.kind)) return;
            hash = Mix(Mix(hash, number), fact.number);
        });
        return hash;
    }

    uint64_t ShapeKey(uint32_t i) {
        const TableStructure_t structure = At(i);
        if (HasPlace(structure.Type())) return 0;
        ClStrings strings;
        strings.Find(structure);
        return Mix(Mix(Mix(3, structure.Type()), structure.Length()), strings.Count());
    }

    std::span<const Edge_t> EdgesOf(uint32_t i) const {
        const auto begin = std::ranges::lower_bound(edges, i, {}, &Edge_t::from);
        const auto end = std::find_if(begin, edges.end(), [i](const Edge_t& edge) { return edge.from != i; });
        return {begin, end};
    }

    uint64_t Up(uint32_t i) const { return edges.empty() ? 0 : up[i]; }
    uint64_t Down(uint32_t i) const { return edges.empty() ? 0 : down[i]; }
    uint64_t Color(uint32_t i) const { return edges.empty() ? content[i] : color[i]; }

    std::span<const uint8_t> table;
    uint16_t version;
    std::vector<std::string> ignored;
    ClHandles handles;
    std::vector<uint32_t> withHandle;  // the first structure that has the handle
    std::vector<uint32_t> offsets;     // of the structures
    std::vector<uint64_t> own;         // where the thing is
    std::vector<uint64_t> content;     // all facts but references
    std::vector<Edge_t> edges;         // in the order of `from`
    // These have no entries in a table without references.
    std::vector<uint64_t> up, down;  // what refers to it, and what it refers to
    std::vector<uint64_t> color;     // all facts of it and of the structures around it
    std::vector<uint8_t> roles[256];
    Walk_t walk;  // the last one of ForEachFact
    ClFacts places;
    std::unordered_map<uint32_t, std::string> shortPlaces;

  private:
    std::vector<uint8_t> FindRoles(const StandardType_t& type) const {
        std::vector<uint8_t> found(type.fields.size());
        bool isWholeIgnored = false;
        for (size_t i = 0; i < found.size(); i++) {
            const StandardField_t& field = type.fields[i];
            const std::string_view key = type.Text(field.key);
            for (const PlaceKey_t& place : kPlaceKeys)
                if (place.type == type.type && place.key == key) found[i] |= kPlace;
            if (key == "serial_number") found[i] |= kSerial;
            if (key == "part_number" || key == "model_part_number") found[i] |= kPartNumber;
            const bool isIgnored = std::ranges::find(ignored, key) != ignored.end();
            if (!field.IsPart()) isWholeIgnored = isIgnored;
            if (isIgnored || (field.IsPart() && isWholeIgnored)) found[i] |= kIgnored;
        }
        // With a fact go those that it is derived from, and with a list its records.
        for (size_t i = 0; i < found.size(); i++) {
            const StandardField_t& field = type.fields[i];
            if ((found[i] & kIgnored) == 0) continue;
            for (uint32_t source = 0; source < field.sources; source++) found[field.from[source]] |= kIgnored;
            if (field.form != Form_t::kRecords && field.form != Form_t::kStrings) continue;
            for (uint32_t record = field.first; record < uint32_t{field.first} + field.count; record++)
                found[record] |= kIgnored;
        }
        return found;
    }

    void HashOne(uint32_t i) {
        uint64_t place = Mix(4, TypeOf(i)), all = place;
        ForEachFact(i, [&](const Fact_t& fact, uint32_t number, uint8_t role) {
            const uint32_t label = number << 16 | static_cast<uint16_t>(fact.record + 1);
            all = Mix(Mix(all, label), static_cast<uint64_t>(fact.state));
            if (fact.kind == FactKind_t::kHandle) {
                if (Target(fact) != kNone && fact.state != FactState_t::kNone && fact.state != FactState_t::kUnknown)
                    edges.push_back({i, Target(fact), label});
            } else if (IsTextKind(fact.kind)) {
                const std::string_view text = TextOf(fact);
                all = MixBytes(all, text.data(), text.size());
            } else if (fact.kind == FactKind_t::kBytes) {
                const std::span<const uint8_t> raw = walk.facts.Bytes(fact);
                all = MixBytes(all, raw.data(), raw.size());
            } else {
                all = Mix(all, fact.number);
            }
            if ((role & kPlace) == 0 || !fact.IsValue()) return;
            const std::string_view text = WithoutBlanks(fact.string);
            place =
                MixBytes(Mix(Mix(place, number), IsTextKind(fact.kind) ? 0 : fact.number), text.data(), text.size());
        });
        const std::span<const uint8_t> rest = RestOf(At(i), walk.covered);
        all = MixBytes(all, rest.data(), rest.size());
        own[i] = place;
        content[i] = all;
    }

    void FindNeighbours() {
        if (edges.empty()) return;
        up.resize(Count());
        down.resize(Count());
        for (const Edge_t& edge : edges) {
            up[edge.to] += Mix(Mix(5, edge.label), own[edge.from]);
            down[edge.from] += Mix(Mix(6, edge.label), own[edge.to]);
        }
    }

    // Structures of equal content still differ if those around them do. References are a few steps deep.
    void Refine() {
        constexpr int kRounds = 4;
        if (edges.empty()) return;
        color = content;
        std::vector<uint64_t> next;
        for (int round = 0; round < kRounds; round++) {
            next = color;
            for (const Edge_t& edge : edges) {
                next[edge.to] += Mix(Mix(8, edge.label), color[edge.from]);
                next[edge.from] += Mix(Mix(9, edge.label), color[edge.to]);
            }
            color.swap(next);
        }
    }
};

namespace {

using Parts_t = ClDiffTable::Parts_t;

class ClDiff {
  public:
    ClDiff(Parts_t& a, Parts_t& b, const std::function<void(const Difference_t&)>& report)
        : m_a(a), m_b(b), m_report(report), m_partnerOfA(a.Count(), kNone), m_partnerOfB(b.Count(), kNone) {}

    void Run() {
        PairAll();
        m_partsOfA = PartsOf(m_a);
        m_partsOfB = PartsOf(m_b);
        for (uint32_t i = 0; i < m_a.Count(); i++) {
            if (m_partnerOfA[i] == kNone)
                Report(Change_t::kRemoved, i, kNone);
            else
                ReportPair(i, m_partnerOfA[i]);
        }
        for (uint32_t j = 0; j < m_b.Count(); j++)
            if (m_partnerOfB[j] == kNone) Report(Change_t::kAdded, kNone, j);
    }

  private:
    // Structures of both tables with the same key are pairs, in the order of the tables. A key of 0 is none.
    template <class KeyOf>
    void Pair(KeyOf keyOf) {
        const auto keysOf = [&](Parts_t& side, const std::vector<uint32_t>& partners) {
            std::vector<std::pair<uint64_t, uint32_t>> keys;
            keys.reserve(side.Count() - m_pairs);
            for (uint32_t i = 0; i < side.Count(); i++)
                if (partners[i] == kNone)
                    if (const uint64_t key = keyOf(side, i); key != 0) keys.emplace_back(key, i);
            std::ranges::sort(keys);
            return keys;
        };
        if (m_pairs == m_a.Count() || m_pairs == m_b.Count()) return;
        const auto ofA = keysOf(m_a, m_partnerOfA), ofB = keysOf(m_b, m_partnerOfB);
        for (auto a = ofA.begin(), b = ofB.begin(); a != ofA.end() && b != ofB.end();) {
            if (a->first == b->first) {
                m_partnerOfA[a->second] = b->second;
                m_partnerOfB[b->second] = a->second;
                m_pairs++;
                ++a, ++b;
            } else {
                a->first < b->first ? ++a : ++b;
            }
        }
    }

    // From what leaves no doubt to what is merely likely.
    void PairAll() {
        Pair([](Parts_t& side, uint32_t i) { return side.Color(i); });
        Pair([](Parts_t& side, uint32_t i) { return Mix(side.own[i] + side.Up(i), side.Down(i)); });
        Pair([](Parts_t& side, uint32_t i) { return Mix(side.own[i], side.Down(i)); });
        Pair([](Parts_t& side, uint32_t i) { return Mix(side.own[i], side.content[i]); });
        Pair([](Parts_t& side, uint32_t i) { return HasPlace(side.TypeOf(i)) ? side.own[i] : 0; });
        Pair([](Parts_t& side, uint32_t i) { return side.SerialKey(i); });
        Pair([](Parts_t& side, uint32_t i) { return side.NumbersKey(i); });
        Pair([](Parts_t& side, uint32_t i) { return side.ShapeKey(i); });
        // What is left of a type was renamed if there are as many in both tables.
        int64_t left[256] = {};
        for (uint32_t i = 0; i < m_a.Count(); i++) left[m_a.TypeOf(i)] += m_partnerOfA[i] == kNone;
        for (uint32_t j = 0; j < m_b.Count(); j++) left[m_b.TypeOf(j)] -= m_partnerOfB[j] == kNone;
        Pair([&](Parts_t& side, uint32_t i) {
            const uint8_t type = side.TypeOf(i);
            return left[type] == 0 || !HasPlace(type) ? uint64_t{type} + 1 : 0;
        });
    }

    // The serial numbers of parts, each with the only structure that has it.
    static std::vector<std::pair<uint64_t, uint32_t>> PartsOf(Parts_t& side) {
        std::vector<std::pair<uint64_t, uint32_t>> all, once;
        for (uint32_t i = 0; i < side.Count(); i++)
            if (IsPartType(side.TypeOf(i)))
                if (const uint64_t key = side.SerialKey(i); key != 0) all.emplace_back(key, i);
        std::ranges::sort(all);
        for (size_t i = 0; i < all.size(); i++) {
            const bool isRepeated = (i != 0 && all[i - 1].first == all[i].first) ||
                                    (i + 1 < all.size() && all[i + 1].first == all[i].first);
            if (!isRepeated) once.push_back(all[i]);
        }
        return once;
    }

    static uint32_t Find(const std::vector<std::pair<uint64_t, uint32_t>>& parts, uint64_t key) {
        const auto found = std::ranges::lower_bound(parts, key, {}, &std::pair<uint64_t, uint32_t>::first);
        return found != parts.end() && found->first == key ? found->second : kNone;
    }

    void ReportPair(uint32_t i, uint32_t j) {
        if (IsSame(i, j)) return;
        const uint8_t type = m_a.TypeOf(i);
        if (IsPartType(type)) {
            const uint64_t before = m_a.SerialKey(i), after = m_b.SerialKey(j);
            if (before != after && after != 0) {
                // The part was somewhere else, and left that place.
                const uint32_t from = Find(m_partsOfA, after);
                if (from != kNone && m_partnerOfA[from] != kNone && m_b.SerialKey(m_partnerOfA[from]) != after) {
                    Compare(from, j, true);
                    Report(Change_t::kMoved, from, j);
                    return;
                }
            }
            if (before != 0 && after == 0) {
                // It is empty, as its part was moved.
                const uint32_t to = Find(m_partsOfB, before);
                if (to != kNone && m_partnerOfB[to] != kNone && m_a.SerialKey(m_partnerOfB[to]) != before) return;
            }
        }
        Compare(i, j, false);
        if (!m_facts.empty()) Report(IsReplaced(i, j) ? Change_t::kReplaced : Change_t::kChanged, i, j);
    }

    bool IsReplaced(uint32_t i, uint32_t j) {
        if (!IsPartType(m_a.TypeOf(i))) return false;
        for (const Role_t role : {kSerial, kPartNumber}) {
            const std::string_view before = m_a.TextWith(i, role), after = m_b.TextWith(j, role);
            if (!before.empty() && !after.empty()) return before != after;
        }
        return false;
    }

    // Whether the bytes are the same but for the handle, and references mean the same. It may be false though no fact
    // differs.
    bool IsSame(uint32_t i, uint32_t j) const {
        const TableStructure_t a = m_a.At(i), b = m_b.At(j);
        if (a.size != b.size || std::memcmp(a.data, b.data, 2) != 0 ||
            std::memcmp(a.data + kHeaderSize, b.data + kHeaderSize, a.size - kHeaderSize) != 0 ||
            m_a.version != m_b.version)
            return false;
        return std::ranges::equal(m_a.EdgesOf(i), m_b.EdgesOf(j), [&](const auto& one, const auto& other) {
            return one.label == other.label && IsSameTarget(one.to, other.to);
        });
    }

    bool IsSameTarget(uint32_t a, uint32_t b) const {
        if (a == kNone || b == kNone) return a == b;
        return m_partnerOfA[a] == b || m_a.Color(a) == m_b.Color(b);
    }

    // Where a fact comes in a walk: fields in their order, the records of a list after the list.
    struct Step_t {
        uint32_t field = kNone, record = 0, place = 0;
        auto operator<=>(const Step_t&) const = default;
    };

    // One side of the comparison of two structures.
    struct Side_t {
        Side_t(Parts_t& parts, uint32_t i, bool isMoved)
            : m_parts(parts), m_structure(parts.At(i)), m_isMoved(isMoved) {
            walk.Begin(parts, i);
            Next();
        }

        void Next() {
            step = {};
            while (const Fact_t* fact = walk.Next()) {
                if (fact->kind == FactKind_t::kList) m_list = walk.number;
                if (m_isMoved && ((walk.role & kPlace) != 0 || fact->kind == FactKind_t::kHandle)) continue;
                step = fact->record < 0 ? Step_t{walk.number, 0, walk.number}
                                        : Step_t{m_list, static_cast<uint32_t>(fact->record) + 1, walk.number};
                return;
            }
        }

        const Fact_t& Fact() const { return *walk.facts; }

        // A value as people read it. A reference has the place of what it refers to.
        std::string Shown() const {
            std::string text = ShownValue(walk.facts, Fact());
            if (Fact().kind != FactKind_t::kHandle || !Fact().IsValue()) return text;
            const uint32_t target = m_parts.Target(Fact());
            const std::string& place = target == kNone ? m_none : m_parts.ShortPlaceOf(target);
            return place.empty() ? text : text.append(" (").append(place).append(")");
        }

        std::span<const uint8_t> Rest(uint32_t begin) const { return RestOf(m_structure, begin); }

        Parts_t::Walk_t walk;
        Step_t step;

      private:
        Parts_t& m_parts;
        const std::string m_none;
        TableStructure_t m_structure;
        bool m_isMoved;
        uint32_t m_list = 0;
    };

    // Fills m_facts with the facts that differ.
    void Compare(uint32_t i, uint32_t j, bool isMoved) {
        m_facts.clear();
        Side_t a(m_a, i, isMoved), b(m_b, j, isMoved);
        size_t whole = 0;  // the place after the change of a field whose parts come next; 0 for none
        while (a.step.field != kNone || b.step.field != kNone) {
            const bool isOnlyInA = a.step < b.step, isOnlyInB = b.step < a.step;
            const Fact_t& fact = isOnlyInB ? b.Fact() : a.Fact();
            const size_t before = m_facts.size();
            if (isOnlyInA)
                AddChange(fact, a.Shown(), "");
            else if (isOnlyInB)
                AddChange(fact, "", b.Shown());
            else
                CompareFact(a, b);
            const bool isChanged = m_facts.size() != before;
            if (isChanged && whole != 0 && fact.field->IsPart()) {
                m_facts.erase(m_facts.begin() + static_cast<ptrdiff_t>(whole) - 1);
                whole = 0;
            } else if (!fact.field->IsPart()) {
                whole = isChanged && fact.field->hasParts ? m_facts.size() : 0;
            }
            if (!isOnlyInB) a.Next();
            if (!isOnlyInA) b.Next();
        }
        const uint32_t covered = std::max(a.walk.covered, b.walk.covered);
        AddRuns("data", "Data", covered, a.Rest(covered), b.Rest(covered));
    }

    void AddChange(const Fact_t& fact, std::string a, std::string b) {
        m_facts.push_back({fact.Key(), fact.Name(), fact.record, -1, std::move(a), std::move(b)});
    }

    void CompareFact(const Side_t& a, const Side_t& b) {
        const Fact_t &one = a.Fact(), &other = b.Fact();
        bool isSame = one.state == other.state;
        if (one.kind == FactKind_t::kHandle) {
            isSame = isSame && (!one.IsValue() || IsSameTarget(m_a.Target(one), m_b.Target(other)));
        } else if (IsTextKind(one.kind)) {
            isSame = isSame && TextOf(one) == TextOf(other);
        } else if (one.kind == FactKind_t::kBytes) {
            AddRuns(one.Key(), one.Name(), one.offset, a.walk.facts.Bytes(one), b.walk.facts.Bytes(other));
            return;
        } else {
            isSame = isSame && one.number == other.number;
        }
        if (!isSame) AddChange(one, a.Shown(), b.Shown());
    }

    // Adds the runs of bytes that differ.
    void AddRuns(std::string_view key, std::string_view name, uint32_t offset, std::span<const uint8_t> a,
                 std::span<const uint8_t> b) {
        const size_t common = std::min(a.size(), b.size());
        if (std::max(a.size(), b.size()) > kMostRunBytes) {
            if (!std::ranges::equal(a, b)) AddRest(key, name, offset, a, b);
            return;
        }
        const auto add = [&](size_t begin, std::span<const uint8_t> one, std::span<const uint8_t> other) {
            m_facts.push_back({key, name, -1, static_cast<int>(offset + begin), HexDigits(one), HexDigits(other)});
        };
        for (size_t i = 0; i < common;) {
            if (a[i] == b[i]) {
                i++;
                continue;
            }
            const size_t begin = i;
            while (i < common && a[i] != b[i]) i++;
            add(begin, a.subspan(begin, i - begin), b.subspan(begin, i - begin));
        }
        if (a.size() != b.size()) add(common, a.subspan(common), b.subspan(common));
    }

    void AddRest(std::string_view key, std::string_view name, uint32_t offset, std::span<const uint8_t> a,
                 std::span<const uint8_t> b) {
        const auto first = static_cast<size_t>(std::ranges::mismatch(a, b).in1 - a.begin());
        m_facts.push_back({key, name, -1, static_cast<int>(offset + first), std::to_string(a.size() - first) + " bytes",
                           std::to_string(b.size() - first) + " bytes"});
    }

    void Report(Change_t change, uint32_t i, uint32_t j) {
        if (i == kNone || j == kNone) m_facts.clear();
        const TableStructure_t a = i == kNone ? TableStructure_t{} : m_a.At(i);
        const TableStructure_t b = j == kNone ? TableStructure_t{} : m_b.At(j);
        if ((j == kNone ? a : b).Type() == kEndOfTable) return;  // has nothing to say
        const std::string place = j == kNone ? m_a.PlaceOf(i) : m_b.PlaceOf(j);
        const std::string from = change == Change_t::kMoved ? m_a.PlaceOf(i) : "";
        m_report({change, i == kNone ? nullptr : &a, j == kNone ? nullptr : &b, place, from, m_facts});
    }

    Parts_t &m_a, &m_b;
    const std::function<void(const Difference_t&)>& m_report;
    std::vector<uint32_t> m_partnerOfA, m_partnerOfB;
    uint32_t m_pairs = 0;
    std::vector<std::pair<uint64_t, uint32_t>> m_partsOfA, m_partsOfB;
    std::vector<FactChange_t> m_facts;
};

}  // namespace

const char* ChangeName(Change_t change) {
    switch (change) {
        case Change_t::kRemoved: return "removed";
        case Change_t::kAdded: return "added";
        case Change_t::kChanged: return "changed";
        case Change_t::kReplaced: return "replaced";
        default: return "moved";
    }
}

ClDiffTable::ClDiffTable(std::span<const uint8_t> table, uint16_t version, std::span<const std::string> ignored)
    : m_parts(std::make_unique<Parts_t>(table, version, ignored)) {}

ClDiffTable::~ClDiffTable() = default;

void DiffTables(const ClDiffTable& a, const ClDiffTable& b, const std::function<void(const Difference_t&)>& report) {
    ClDiff(*a.m_parts, *b.m_parts, report).Run();
}
