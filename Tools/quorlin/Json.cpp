#include "Tools/quorlin/Json.h"

#include <cstring>

#include "Tools/quorlin/Text.h"

namespace {

constexpr size_t kLarge = 64u << 10;

bool StandsAsItIs(std::string_view text) { return IsPlain(text, '"', '\\'); }

char* Append(char* at, std::string_view text) {
    if (!text.empty()) std::memcpy(at, text.data(), text.size());
    return at + text.size();
}

}  // namespace

void ClJson::FlushIfLarge() {
    if (m_buffer.GetSize() < kLarge) return;
    m_output << std::string_view(m_buffer.GetString(), m_buffer.GetSize());
    m_buffer.Clear();
}

void ClJson::Quoted(std::string_view escaped) {
    Prefix(rapidjson::kStringType);
    char* at = m_buffer.Push(escaped.size() + 2);
    *at = '"';
    *Append(at + 1, escaped) = '"';
}

bool ClJson::Text(std::string_view text) {
    if (StandsAsItIs(text)) {
        Quoted(text);
        return false;
    }
    std::string escaped;
    const bool isReplaced = AppendJson(escaped, text);
    Quoted(escaped);
    return isReplaced;
}

void ClJson::Pair(std::string_view key, std::string_view value) {
    FlushIfLarge();
    if (StandsAsItIs(key) && StandsAsItIs(value)) {
        // The usual pair in one step.
        constexpr std::string_view kBegin = R"({"key":")", kMiddle = R"(","value":")", kEnd = R"("})";
        Prefix(rapidjson::kObjectType);
        char* at = m_buffer.Push(kBegin.size() + key.size() + kMiddle.size() + value.size() + kEnd.size());
        Append(Append(Append(Append(Append(at, kBegin), key), kMiddle), value), kEnd);
        return;
    }
    BeginObject();
    const bool keyReplaced = Member("key", key), valueReplaced = Member("value", value);
    if (keyReplaced || valueReplaced) {
        Name("replaced");
        Truth(true);
    }
    FinishObject();
}

void ClJson::Finish() {
    m_buffer.Put('\n');
    m_output << std::string_view(m_buffer.GetString(), m_buffer.GetSize());
    m_buffer.Clear();
    Reset(m_buffer);
}

void WriteTableMembers(ClJson& json, const ClTable& table) {
    json.Member("source", table.Name());
    json.Member("smbios", std::to_string(table.Major()) + "." + std::to_string(table.Minor()));
    if (!table.Remark().empty()) json.Member("remark", table.Remark());
}

void WriteStructureMembers(ClJson& json, const Structure_t& structure) {
    json.Member("type", structure.type);
    json.Member("handle", structure.handle);
    json.Member("instance", structure.instance);
    if (json.Member("title", structure.title)) {
        json.Name("replaced");
        json.Truth(true);
    }
}

int RunOnTables(const Source_t& source, Format_t format, int trouble, ClJson& json,
                const std::function<int(ClTable&)>& work) {
    if (format != Format_t::kNdjson) return ForEachTable(source, trouble, work);
    return ForEachTable(source, trouble, work, [&](const ClTable& table) {
        json.BeginObject();
        json.Member("source", table.Name());
        json.Member("error", table.Error());
        json.FinishObject();
        json.Finish();
    });
}

bool CheckFleet(const Usage_t& usage, const Source_t& source, Format_t format, int* exitCode) {
    if (!source.IsFleet() || format == Format_t::kNdjson || format == Format_t::kCsv) return true;
    return SayBadUsage(usage, "several images need --format ndjson or csv", exitCode);
}
