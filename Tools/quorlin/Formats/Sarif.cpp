// SARIF 2.1.0, which code review and build systems read: findings with their rules, and where they are in the file.
#include <array>

#include "Packages/Analysis/Rules.h"
#include "Tools/quorlin/Findings.h"
#include "Tools/quorlin/Formats.h"
#include "Tools/quorlin/Formats/JsonPieces.h"

namespace {

// A file's name as a URI reference.
std::string UriOf(std::string_view name) {
    std::string uri;
    for (const char c : name) {
        const bool isPlain = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
                             std::string_view("-._~/").find(c) != std::string_view::npos;
        char escaped[4];
        std::snprintf(escaped, sizeof escaped, "%%%02X", static_cast<unsigned char>(c));
        uri += isPlain ? std::string(1, c) : escaped;
    }
    return uri;
}

class ClSarifWriter : public ClWriter {
  public:
    explicit ClSarifWriter(ClOutput& output) : ClWriter(output), m_json(output) {}

    void Begin(const List_t&, const Members_t& members) override {
        m_uri = UriOf(members.front().second);
        m_json.BeginObject();
        m_json.Member("$schema", "https://json.schemastore.org/sarif-2.1.0.json");
        m_json.Member("version", "2.1.0");
        m_json.BeginList("runs");
        m_json.BeginObject();
        m_json.Name("tool");
        m_json.BeginObject();
        m_json.Name("driver");
        m_json.BeginObject();
        m_json.Member("name", "quorlin");
        m_json.Member("version", QUORLIN_VERSION);
        m_json.BeginList("rules");
        for (const RuleId_t rule : kRules) PutRule(RuleOf(rule));
        m_json.EndList();
        m_json.EndObject();
        m_json.EndObject();
        m_json.BeginList("results");
    }

    void End() override {
        m_json.EndList();
        m_json.EndObject();
        m_json.EndList();
        m_json.EndObject();
        m_json.End();
    }

    // A result for each place.
    void Row(std::initializer_list<Cell_t> cells, std::span<const Row_t> inner) override {
        const std::span<const Cell_t> outer(cells.begin(), cells.size());
        for (const Row_t& place : inner) {
            m_json.BeginObject();
            m_json.Member("ruleId", TextOf(outer[kRuleColumn]));
            m_json.Member("level", TextOf(outer[kSeverityColumn]));
            m_json.Name("message");
            m_json.BeginObject();
            std::string text(TextOf(outer[kNameColumn]));
            text.append(text.empty() ? "" : ": ").append(TextOf(outer[kWhatColumn]));
            if (const std::string_view found = TextOf(place[kFoundColumn]); !found.empty())
                text.append("; found ").append(found);
            if (const std::string_view expected = TextOf(place[kExpectedColumn]); !expected.empty())
                text.append(", expected ").append(expected);
            m_json.Member("text", text);
            m_json.EndObject();
            m_json.BeginList("locations");
            m_json.BeginObject();
            m_json.Name("physicalLocation");
            m_json.BeginObject();
            m_json.Name("artifactLocation");
            m_json.BeginObject();
            m_json.Member("uri", m_uri);
            m_json.EndObject();
            m_json.Name("region");
            m_json.BeginObject();
            m_json.Member("byteOffset", std::get<uint64_t>(place[kOffsetColumn]));
            m_json.Member("byteLength", std::get<uint64_t>(place[kSizeColumn]));
            m_json.EndObject();
            m_json.EndObject();
            m_json.EndObject();
            m_json.EndList();
            m_json.EndObject();
        }
    }

  private:
    static std::string_view TextOf(const Cell_t& cell) {
        const auto* text = std::get_if<std::string_view>(&cell);
        return text != nullptr ? *text : std::string_view();
    }

    void PutRule(const Rule_t& rule) {
        m_json.BeginObject();
        m_json.Member("id", rule.id);
        PutMessage("shortDescription", rule.what);
        PutMessage("fullDescription", rule.why);
        PutMessage("help", rule.fix);
        m_json.Name("defaultConfiguration");
        m_json.BeginObject();
        m_json.Member("level", SeverityWord(rule.severity));
        m_json.EndObject();
        m_json.EndObject();
    }

    void PutMessage(std::string_view name, std::string_view text) {
        m_json.Name(name);
        m_json.BeginObject();
        m_json.Member("text", text);
        m_json.EndObject();
    }

    ClJson m_json;
    std::string m_uri;
};

std::unique_ptr<ClWriter> MakeSarif(ClOutput& output, bool) { return std::make_unique<ClSarifWriter>(output); }

}  // namespace

constexpr Format_t kSarifFormat = {
    .name = "sarif",
    .contents = kFindings,
    .takesMany = false,
    .reportsErrors = false,
    .isSweep = false,
    .make = MakeSarif,
};
