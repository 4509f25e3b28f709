// JSON, valid whatever bytes a table holds: one document, or a line for each table (NDJSON).
#include "Tools/quorlin/Formats.h"
#include "Tools/quorlin/Formats/JsonPieces.h"

namespace {

class ClJsonWriter : public ClWriter {
  public:
    ClJsonWriter(ClOutput& output, bool isLine) : ClWriter(output), m_json(output), m_isLine(isLine) {}

    void Begin(const List_t& list, const Members_t& members) override {
        m_list = &list;
        m_json.BeginObject();
        for (const auto& [name, text] : members) m_json.Member(name, text);
        if (list.name != nullptr) m_json.BeginList(list.name);
    }

    void End() override {
        if (m_list->name != nullptr) m_json.EndList();
        m_json.EndObject();
        m_json.End();
    }

    void Row(std::initializer_list<Cell_t> cells, std::span<const Row_t> inner) override {
        m_json.BeginObject();
        PutCells(cells);
        if (m_list->innerName != nullptr) {
            m_json.BeginList(m_list->innerName);
            for (const Row_t& row : inner) {
                m_json.BeginObject();
                PutCells(row);
                m_json.EndObject();
            }
            m_json.EndList();
        }
        m_json.EndObject();
    }

    void Structure(const Structure_t& structure) override {
        if (!m_isLine) m_json.Break();
        m_json.BeginObject();
        PutStructureMembers(structure);
        if (structure.isUndecoded)
            PutBytesAndStrings(structure);
        else
            PutItems(structure);
        m_json.EndObject();
    }

    void Hits(const Structure_t& structure, std::span<const Hit_t> hits) override {
        for (const Hit_t& hit : hits) {
            m_json.BeginObject();
            PutStructureMembers(structure);
            if (!hit.group.empty()) m_json.Member("group", hit.group);
            m_json.Name("item");
            m_json.Pair(hit.item.key, hit.item.value);
            m_json.EndObject();
        }
    }

    void Facts(const FactStructure_t& structure) override {
        const TableStructure_t& bytes = structure.structure;
        const bool isFull = structure.choice.isFull;
        if (!m_isLine) m_json.Break();
        m_json.BeginObject();
        m_json.Member("type", bytes.Type());
        m_json.Member("name", structure.Name());
        m_json.Member("handle", bytes.Handle());
        m_json.Member("instance", structure.instance);
        m_json.Member("offset", structure.offset);
        m_json.Member("length", bytes.Length());
        m_json.Name("facts");
        m_json.BeginObject();
        bool isInList = false;
        int record = -1;
        const auto endList = [&] {
            if (!isInList) return;
            if (record >= 0) m_json.EndObject();
            m_json.EndList();
            if (isFull) m_json.EndObject();
            isInList = false;
            record = -1;
        };
        structure.ForEach([&](const ClFacts& facts, const Fact_t& fact) {
            if (fact.record < 0) {
                endList();
            } else if (fact.record != record) {
                if (record >= 0) m_json.EndObject();
                m_json.BeginObject();
                record = fact.record;
            }
            if (!isFull && fact.state == FactState_t::kAbsent) return;
            m_json.Name(fact.Key());
            isInList = isInList || (fact.kind == FactKind_t::kList && fact.IsValue());
            if (isFull)
                PutFullFact(facts, fact);
            else
                PutFlatFact(facts, fact);
        });
        endList();
        m_json.EndObject();
        m_json.EndObject();
    }

    void Members(const Node_t::Members_t& members) override {
        for (const auto& [name, node] : members) {
            if (!m_isLine) m_json.Break();
            m_json.Name(name);
            PutNode(node);
        }
    }

    void Failed(std::string_view source, std::string_view error) override {
        m_json.BeginObject();
        m_json.Member("source", source);
        m_json.Member("error", error);
        m_json.EndObject();
        m_json.End();
    }

  private:
    // Returns whether it is a text with invalid bytes.
    bool PutNode(const Node_t& node) {
        if (const auto* text = std::get_if<std::string>(&node.value)) return m_json.Text(*text);
        if (const auto* number = std::get_if<uint64_t>(&node.value)) {
            m_json.Number(*number);
        } else if (const auto* truth = std::get_if<bool>(&node.value)) {
            m_json.Truth(*truth);
        } else if (const auto* list = std::get_if<Node_t::List_t>(&node.value)) {
            m_json.BeginList();
            for (const Node_t& each : *list) PutNode(each);
            m_json.EndList();
        } else if (const auto* members = std::get_if<Node_t::Members_t>(&node.value)) {
            bool isReplaced = false;
            m_json.BeginObject();
            for (const auto& [name, each] : *members) {
                m_json.Name(name);
                isReplaced |= PutNode(each);
            }
            m_json.MarkReplaced(isReplaced);
            m_json.EndObject();
        } else {
            m_json.Null();
        }
        return false;
    }

    void PutCells(std::span<const Cell_t> cells) {
        const Column_t* column = m_list->columns.data();
        for (const Cell_t& cell : cells) {
            const char* name = column++->name;
            if (cell.index() == 0) continue;
            m_json.Name(name);
            if (const auto* text = std::get_if<std::string_view>(&cell)) m_json.Text(*text);
            if (const auto* number = std::get_if<uint64_t>(&cell)) m_json.Number(*number);
            if (const auto* truth = std::get_if<bool>(&cell)) m_json.Truth(*truth);
        }
    }

    void PutStructureMembers(const Structure_t& structure) {
        m_json.Member("type", structure.type);
        m_json.Member("handle", structure.handle);
        m_json.Member("instance", structure.instance);
        m_json.MarkReplaced(m_json.Member("title", structure.title));
    }

    // A value as JSON; of a list, only its begin.
    void PutFactValue(const ClFacts& facts, const Fact_t& fact) {
        switch (fact.kind) {
            case FactKind_t::kNumber:
                fact.isSigned ? m_json.Signed(static_cast<int64_t>(fact.number)) : m_json.Number(fact.number);
                break;
            case FactKind_t::kHandle: m_json.Number(fact.number); break;
            case FactKind_t::kBits:
                m_json.BeginList();
                facts.ForEachWord(fact, [&](std::string_view word) { m_json.Text(word); });
                m_json.EndList();
                break;
            case FactKind_t::kList: m_json.BeginList(); break;
            case FactKind_t::kCode:
                fact.state == FactState_t::kReserved ? m_json.Text(CodeText(fact.number)) : m_json.Text(fact.text);
                break;
            case FactKind_t::kBytes: m_json.Text(HexDigits(facts.Bytes(fact))); break;
            default: m_json.Text(fact.text);
        }
    }

    // Only values, so that a key always has the same JSON type; and codes that the standard doesn't assign.
    void PutFlatFact(const ClFacts& facts, const Fact_t& fact) {
        if (fact.IsValue() || (fact.kind == FactKind_t::kCode && fact.state == FactState_t::kReserved))
            PutFactValue(facts, fact);
        else
            m_json.Null();
    }

    void PutFullFact(const ClFacts& facts, const Fact_t& fact) {
        m_json.BeginObject();
        if (fact.unit != Unit_t::kNone) m_json.Member("unit", UnitName(fact.unit));
        m_json.Member("state", StateName(fact.state));
        if (fact.size != 0 || !fact.string.empty()) m_json.Member("raw", RawDigits(facts, fact));
        if (fact.size != 0) {
            m_json.Member("offset", fact.offset);
            m_json.Member("size", fact.size);
        }
        if (fact.field->sources != 0) {
            m_json.BeginList("from");
            for (uint32_t i = 0; i < fact.field->sources; i++) m_json.Text(facts.SourceKey(fact, i));
            m_json.EndList();
        }
        const bool hasValue = fact.state != FactState_t::kNone && fact.state != FactState_t::kAbsent &&
                              fact.state != FactState_t::kBroken;
        if (hasValue) m_json.Name("value"), PutFactValue(facts, fact);
        if (fact.kind != FactKind_t::kList || !hasValue) m_json.EndObject();
    }

    void PutItems(const Structure_t& structure) {
        bool isInGroup = false;
        const auto endGroup = [&] {
            if (!isInGroup) return;
            m_json.EndList();
            m_json.EndObject();
        };
        m_json.BeginList("items");
        for (size_t index = structure.firstItem; index < structure.EndItem(); index++) {
            const ShownItem_t item = structure.Item(index);
            if (!item.opensGroup) {
                m_json.Pair(item.key, item.value);
                continue;
            }
            endGroup();
            isInGroup = true;
            m_json.BeginObject();
            m_json.MarkReplaced(m_json.Member("group", item.key));
            m_json.BeginList("items");
        }
        endGroup();
        m_json.EndList();
    }

    // For a structure without items of its own: they are its bytes and then its strings.
    void PutBytesAndStrings(const Structure_t& structure) {
        m_json.Member("bytes", HexDigits(structure.Bytes()));
        m_json.BeginList("strings");
        bool isReplaced = false;
        for (size_t index = structure.firstItem + 1; index < structure.EndItem(); index++)
            isReplaced |= m_json.Text(structure.Item(index).value);
        m_json.EndList();
        m_json.MarkReplaced(isReplaced);
    }

    ClJson m_json;
    bool m_isLine;
    const List_t* m_list = nullptr;
};

std::unique_ptr<ClWriter> MakeJson(ClOutput& output, bool) { return std::make_unique<ClJsonWriter>(output, false); }

std::unique_ptr<ClWriter> MakeNdjson(ClOutput& output, bool) { return std::make_unique<ClJsonWriter>(output, true); }

}  // namespace

constexpr Format_t kJsonFormat = {
    .name = "json",
    .contents = kAnyContent | kObjects,
    .takesMany = false,
    .reportsErrors = false,
    .isSweep = false,
    .make = MakeJson,
};

constexpr Format_t kNdjsonFormat = {
    .name = "ndjson",
    .contents = kAnyContent | kObjects,
    .takesMany = true,
    .reportsErrors = true,
    .isSweep = false,
    .make = MakeNdjson,
};
