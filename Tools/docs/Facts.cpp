// Writes what is made from the standard's tables:
//
//     write_facts page > Docs/Facts.md                  the page of all facts
//     write_facts schema > Docs/facts-schema.json       the schema of what quorlin facts writes as JSON
//
// With a file after the word it compares the file with what it would write.
#include <rapidjson/document.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "Packages/Standard/FillerLists.h"
#include "Packages/Standard/Standard.h"
#include "Tools/docs/Page.h"

namespace {

// The tables, in rising order of types. The last one stands for all types that the standard doesn't have.
std::vector<StandardType_t> Tables() {
    std::vector<StandardType_t> tables;
    for (unsigned type = 0; type < 256; type++) {
        if (!IsStandardType(static_cast<uint8_t>(type))) continue;
        tables.push_back(FindStandardType(static_cast<uint8_t>(type)));
        if (type == 42) tables.push_back(OldHostInterface());
    }
    tables.push_back(FindStandardType(128));
    return tables;
}

bool IsOtherTypes(const StandardType_t& table) { return !IsStandardType(table.type); }

std::string Hex(uint64_t number, int digits) {
    char text[24];
    std::snprintf(text, sizeof text, "%0*llXh", digits, static_cast<unsigned long long>(number));
    return text;
}

// 231h as 2.3.1, and 390h as 3.9.
std::string VersionText(StandardVersion_t version) {
    if (version == 0) return "";
    std::string text = std::to_string(version >> 8) + "." + std::to_string(version >> 4 & 0xF);
    return (version & 0xF) == 0 ? text : text + "." + std::to_string(version & 0xF);
}

// "a", "a or b", "a, b or c".
std::string Joined(const std::vector<std::string>& texts, const std::string& last) {
    std::string joined;
    for (size_t i = 0; i < texts.size(); i++)
        joined += (i == 0 ? "" : i + 1 == texts.size() ? " " + last + " " : ", ") + texts[i];
    return joined;
}

// ---- The page ----

// How the number in the bytes becomes the number of the fact.
std::string EncodingText(const StandardField_t& field) {
    switch (field.form) {
        case Form_t::kRomSize: return "(n + 1) × 64 KB";
        case Form_t::kExtendedRomSize: return "bits 13:0 in MB, or GB if bits 15:14 are 1";
        case Form_t::kPowerOfTwoMB: return "2^n MB";
        case Form_t::kMemorySize: return "bits 14:0 in MB, or KB if bit 15 is set";
        case Form_t::kCacheSize: return "in KB, or 64 KB if the highest bit is set";
        case Form_t::kTenthsOfVolt: return "0.1 V if bit 7 is set";
        case Form_t::kPlusOne: return "n + 1";
        case Form_t::kBcd: return "BCD";
        case Form_t::kSigned: return field.scale == 1 ? "signed" : "signed, × " + std::to_string(field.scale);
        case Form_t::kWithoutHighBit:
            return field.scale == 1 ? "without the highest bit"
                                    : "without the highest bit, × " + std::to_string(field.scale);
        default: return field.scale > 1 ? "× " + std::to_string(field.scale) : "";
    }
}

std::string DerivationText(Derivation_t derivation) {
    switch (derivation) {
        case Derivation_t::kIsoDate: return "the date in ISO form";
        case Derivation_t::kRelease: return "both numbers, with a point between them";
        case Derivation_t::kRealModeAddress: return "× 16";
        case Derivation_t::kRealModeSize: return "(10000h - n) × 16";
        case Derivation_t::kFirstUsable: return "the first one that has the value";
        case Derivation_t::kProcessorSignature: return "of x86 processors, from CPUID leaf 1 EAX";
        case Derivation_t::kProcessorFeatures: return "of x86 processors, from CPUID leaf 1 EDX";
        case Derivation_t::kProcessorVoltage: return "if it is one voltage";
        case Derivation_t::kPciAddress: return "segment:bus:device.function";
        case Derivation_t::kRangeEnd: return "the last byte";
        case Derivation_t::kRangeSize: return "end - begin + 1";
        case Derivation_t::kBatteryCapacity: return "the product";
        case Derivation_t::kIpmiAddress: return "with its lowest bit";
        case Derivation_t::kTpmFirmwareVersion: return "by the TPM's own layout";
        case Derivation_t::kNotDerived: break;
    }
    return "";
}

std::string KindText(const StandardType_t& table, const StandardField_t& field) {
    switch (field.kind) {
        case FactKind_t::kText: return field.form == Form_t::kAscii ? "text, in the field itself" : "text";
        case FactKind_t::kCode: return "code";
        case FactKind_t::kBits: return "bit list";
        case FactKind_t::kUuid: return "UUID";
        case FactKind_t::kDate: return "date";
        case FactKind_t::kVersion: return "version";
        case FactKind_t::kBytes: return field.form == Form_t::kReserved ? "bytes, reserved" : "bytes";
        case FactKind_t::kList: return "list";
        case FactKind_t::kHandle: {
            std::vector<std::string> types;
            for (const StandardCode_t& type : table.Codes(field)) types.push_back(std::to_string(type.first));
            return types.empty() ? "handle" : "handle of type " + Joined(types, "or");
        }
        case FactKind_t::kNumber: break;
    }
    std::string text = field.form == Form_t::kCount ? "count" : "number";
    if (field.unit != Unit_t::kNone) text.append(", ").append(UnitName(field.unit));
    if (const std::string encoding = EncodingText(field); !encoding.empty()) text.append("; ").append(encoding);
    return text;
}

std::string PlaceText(const StandardType_t& table, std::span<const StandardField_t> fields,
                      const StandardField_t& field) {
    if (field.form == Form_t::kDerived) {
        std::vector<std::string> sources;
        for (uint32_t i = 0; i < field.sources; i++) sources.push_back(Code(table.Text(fields[field.from[i]].key)));
        return "from " + Joined(sources, "and") + ": " + DerivationText(field.derivation);
    }
    if (field.IsPart()) {
        const int high = field.low + field.bits - 1;
        return field.bits == 1 ? "bit " + std::to_string(high)
                               : "bits " + std::to_string(high) + ":" + std::to_string(field.low);
    }
    if (field.form == Form_t::kStrings) return "the strings";
    const uint16_t offset = field.offset & static_cast<uint16_t>(~kAfterList);
    std::string text = field.offset < kAfterList ? Hex(offset, 2)
                       : offset == 0             ? "after these"
                                                 : "after these + " + Hex(offset, 2);
    if (field.form == Form_t::kRecords) return text;
    if (field.width == kCountedWidth) return text + ", as many bytes as counted";
    if (field.width == kRestOfRecord) return text + ", to the end";
    return text + ", " + std::to_string(field.width) + (field.width == 1 ? " byte" : " bytes");
}

std::string SpecialsText(const StandardType_t& table, const StandardField_t& field) {
    std::string text;
    for (const StandardSpecial_t& special : table.Specials(field)) {
        if (!text.empty()) text += "; ";
        const int digits = std::max(2, field.width <= 8 ? field.width * 2 : 2);
        text += Hex(special.first, field.IsPart() ? 1 : digits);
        if (special.last != special.first) text += " to " + Hex(special.last, digits);
        const std::string_view state = StateName(special.state), word = table.Text(special.word);
        if (special.isReference)
            text.append(": see ").append(word);
        else
            text.append(": ").append(state).append(word == state ? "" : ", " + std::string(word));
    }
    return text;
}

std::string WordsText(const StandardType_t& table, const StandardField_t& field) {
    std::string text;
    for (const StandardCode_t& row : table.Codes(field)) {
        if (!text.empty()) text += "; ";
        if (field.kind == FactKind_t::kBits)
            text += "bit " + std::to_string(row.first);
        else
            text += Hex(row.first, row.last > 0xFF ? 3 : 2) + (row.last == row.first ? "" : " to " + Hex(row.last, 2));
        text += " " + Code(table.Text(row.word));
        if (row.state != FactState_t::kValue) text.append(" (").append(StateName(row.state)).append(")");
    }
    return text;
}

// A table of fields, and the words below it.
std::string FieldsText(const StandardType_t& table, std::span<const StandardField_t> fields) {
    std::string text =
        "| key | the standard's name | where | reads as | since | other values |\n"
        "|---|---|---|---|---|---|\n";
    std::map<const StandardCode_t*, size_t> known;
    std::vector<std::pair<std::string, const StandardField_t*>> lists;
    for (const StandardField_t& field : fields) {
        const std::string key = Code(table.Text(field.key));
        text += "| " + key + " | " + std::string(table.Text(field.name)) + " | " + PlaceText(table, fields, field) +
                " | " + KindText(table, field) + " | " + VersionText(field.since) + " | " + SpecialsText(table, field) +
                " |\n";
        if ((field.kind != FactKind_t::kCode && field.kind != FactKind_t::kBits) || field.count == 0) continue;
        const auto [entry, isNew] = known.emplace(table.Codes(field).data(), lists.size());
        if (isNew)
            lists.emplace_back(key, &field);
        else
            lists[entry->second].first += ", " + key;
    }
    for (const auto& [keys, field] : lists) text += "\n" + Wrapped(keys + ": " + WordsText(table, *field) + ".");
    for (const StandardField_t& field : fields)
        if (field.kind == FactKind_t::kList)
            text += "\nEach of " + Code(table.Text(field.key)) + ":\n\n" + FieldsText(table, table.RecordFields(field));
    return text;
}

template <size_t kCount>
std::string FillersText(const char (&fillers)[kCount][kLongestFiller]) {
    std::string text;
    for (const char* filler : fillers) text += (text.empty() ? "" : "; ") + Code(filler);
    return Wrapped(text + ".");
}

std::string Page() {
    std::string text = R"(# Facts of each structure type

The program `write_facts` writes this page from the tables of `Packages/Standard`; a test compares them. They are
those of level 3.9 of the SMBIOS standard. [Program.md](Program.md#facts) shows how to print facts,
[Formats.md](Formats.md#facts) their JSON and CSV, and [facts-schema.json](facts-schema.json) is the schema of the JSON.

A key is the standard's name of the field in snake case, without what the name has in parentheses, and doesn't change.
Numbers are in the unit that the table gives, whatever the structure counts in. "since" is the level of the standard
that brought the field; 2.3.1 may stand for an older one. A field is there if the structure's length reaches its end.

Each fact has a state:

| state | meaning |
|---|---|
| `value` | the structure says this |
| `unknown` | the standard's code for an unknown value |
| `none` | there is nothing, or another field has it: string number 0, "not provided", "see Extended Size" |
| `absent` | the structure is too short for the field; listed only with `--absent` |
| `reserved` | a code that the standard doesn't assign; the number is kept |
| `filler` | a text that firmware was delivered with and nobody replaced, or such a UUID |
| `broken` | a string number past the strings, a list longer than its structure, a handle to nothing or a wrong type |

A text is a filler, in any case and without the blanks around it, if it is empty or one of these:
)";
    text += FillersText(kFillers);
    text += "\nIf it begins with one of these:\n" + FillersText(kFillerBegins);
    text += "\nIf it is one of these and a number:\n" + FillersText(kNumberedFillers);
    text += "\nIf it is one of the characters " + Code(kLoneFillers) + ", or one of " + Code(kRepeatedFillers) +
            " again and again. And if it is eight or more\ndigits that count up or down, such as `12345678`.\n\n"
            "A UUID is a filler if its bytes are all 00h or all FFh, or 0002 0003 0004 0005 0006 0007 0008 0009.\n";
    for (const StandardType_t& table : Tables()) {
        const std::string name(table.Name());
        if (IsOtherTypes(table))
            text += "\n## All other types\n\n";
        else if (table.fields.data() == OldHostInterface().fields.data())
            text +=
                "\n## Type 42 before 3.2\n\nFor tables below 3.2 if the lengths don't add up in the newer layout.\n\n";
        else
            text += "\n## Type " + std::to_string(table.type) + ": " + name + "\n\n";
        text += table.TopFields().empty() ? "Only the header.\n" : FieldsText(table, table.TopFields());
    }
    return text;
}

// ---- The schema ----

std::string Quoted(std::string_view text) {
    std::string quoted = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') quoted += '\\';
        quoted += c;
    }
    return quoted += '"';
}

std::string Reference(const std::string& name) { return R"({"$ref":"#/definitions/)" + name + "\"}"; }

// An object that has just these members, and the required ones in any case.
std::string Object(const std::string& members, const std::string& required = "") {
    return R"({"type":"object","properties":{)" + members +
           (required.empty() ? "}" : R"(},"required":[)" + required + "]") + R"(,"additionalProperties":false})";
}

constexpr char kSharedDefinitions[] = R"(
    "byte": {"type": "integer", "minimum": 0, "maximum": 255},
    "word": {"type": "integer", "minimum": 0, "maximum": 65535},
    "size": {"type": "integer", "minimum": 0},
    "hex": {"type": "string", "pattern": "^([0-9A-F]{2})*$"},
    "smbios": {"type": "string", "pattern": "^[0-9]+\\.[0-9]+$"},
    "remark": {"description": "The table is cut short or broken, or bytes were skipped", "type": "string"},
    "number": {"type": ["integer", "null"], "minimum": 0},
    "signed": {"type": ["integer", "null"]},
    "handle": {"type": ["integer", "null"], "minimum": 0, "maximum": 65535},
    "text": {"type": ["string", "null"]},
    "date": {"type": ["string", "null"], "pattern": "^[0-9]{4}-[0-9]{2}-[0-9]{2}$"},
    "uuid": {
        "type": ["string", "null"], "pattern": "^[0-9a-f]{8}-[0-9a-f]{4}-[0-9a-f]{4}-[0-9a-f]{4}-[0-9a-f]{12}$"
    },
    "version": {"type": ["string", "null"], "pattern": "^[0-9a-f]+\\.[0-9a-f]+$"},
    "bytes": {"type": ["string", "null"], "pattern": "^([0-9A-F]{2})*$"},
    "keys": {"type": "array", "items": {"type": "string"}},
    "reserved": {
        "description": "A code that the standard doesn't assign", "type": "string", "pattern": "^0x[0-9A-F]+$"
    })";

std::string Units() {
    std::string units;
    for (const auto& unit : kUnitNames)
        if (unit[0] != '\0') units += (units.empty() ? "" : ",") + Quoted(unit);
    return R"({"enum":[)" + units + "]}";
}

// What a fact with its state has beside the state and the value.
constexpr std::string_view kPlaceMembers =
    R"("unit":{"$ref":"#/definitions/unit"},"raw":{"$ref":"#/definitions/hex"},)"
    R"("offset":{"$ref":"#/definitions/word"},"size":{"$ref":"#/definitions/word"},)"
    R"("from":{"$ref":"#/definitions/keys"},)";

// A fact with its state, and a value of this schema if it has one.
std::string FullFact(const std::string& value) {
    return R"({"anyOf":[{"$ref":"#/definitions/without_value"},)" +
           Object(std::string(kPlaceMembers) + R"("state":{"enum":["value","unknown","reserved","filler"]},"value":)" +
                      value,
                  R"("state","value")") +
           "]}";
}

class ClSchema {
  public:
    // The schema as JSON, however it is laid out.
    std::string Text() {
        const std::string flat = DocumentText(false), full = DocumentText(true);
        std::string text =
            R"({"$schema":"http://json-schema.org/draft-04/schema#","title":"What quorlin facts prints with )"
            R"(--format json, and in each line with --format ndjson","definitions":{)";
        text.append(kSharedDefinitions).append(R"(,"unit":)").append(Units());
        text += R"(,"without_value":)" +
                Object(std::string(kPlaceMembers) + R"("state":{"enum":["none","absent","broken"]})", R"("state")");
        text += R"(,"full_number":)" + FullFact(R"({"type":"integer"})");
        text += R"(,"full_text":)" + FullFact(R"({"type":"string"})");
        text += R"(,"full_words":)" + FullFact(R"({"type":"array","items":{"type":"string"}})");
        for (const std::string& words : m_words) text += "," + words;
        text += R"(,"flat":)" + flat + R"(,"full":)" + full;
        text += R"(,"failure":)" +
                Object(R"("source":{"type":"string"},"error":{"type":"string"})", R"("source","error")") + "}";
        return text + R"(,"anyOf":[)" + Reference("flat") + "," + Reference("full") + "," + Reference("failure") + "]}";
    }

  private:
    std::string DocumentText(bool isFull) {
        std::string structures;
        for (const StandardType_t& table : Tables())
            structures += (structures.empty() ? "" : ",") + StructureText(table, isFull);
        return Object(R"("source":{"type":"string"},"smbios":{"$ref":"#/definitions/smbios"},)"
                      R"("remark":{"$ref":"#/definitions/remark"},"structures":{"type":"array","items":{"anyOf":[)" +
                          structures + "]}}",
                      R"("source","smbios","structures")");
    }

    std::string StructureText(const StandardType_t& table, bool isFull) {
        const std::string type =
            IsOtherTypes(table)
                ? R"({"type":"integer","minimum":47,"maximum":255,"not":{"enum":[126,127]}},"name":{"type":"string"})"
                : R"({"enum":[)" + std::to_string(table.type) + R"(]},"name":{"enum":[)" + Quoted(table.Name()) + "]}";
        return Object(R"("type":)" + type +
                          R"(,"handle":{"$ref":"#/definitions/word"},"instance":{"type":"integer","minimum":1},)"
                          R"("offset":{"$ref":"#/definitions/size"},"length":{"$ref":"#/definitions/byte"},"facts":)" +
                          FieldsText(table, table.TopFields(), isFull),
                      R"("type","name","handle","instance","offset","length","facts")");
    }

    std::string FieldsText(const StandardType_t& table, std::span<const StandardField_t> fields, bool isFull) {
        std::string members;
        for (const StandardField_t& field : fields) {
            members += (members.empty() ? "" : ",") + Quoted(table.Text(field.key)) + ":";
            if (field.kind == FactKind_t::kList) {
                const std::string records = FieldsText(table, table.RecordFields(field), isFull);
                members += isFull ? FullFact(R"({"type":"array","items":)" + records + "}")
                                  : R"({"type":["array","null"],"items":)" + records + "}";
            } else {
                members += isFull ? Reference(FullName(field)) : Reference(FlatName(table, fields, field));
            }
        }
        return Object(members);
    }

    static std::string FullName(const StandardField_t& field) {
        switch (field.kind) {
            case FactKind_t::kNumber:
            case FactKind_t::kHandle: return "full_number";
            case FactKind_t::kBits: return "full_words";
            default: return "full_text";
        }
    }

    std::string FlatName(const StandardType_t& table, std::span<const StandardField_t> fields,
                         const StandardField_t& field) {
        switch (field.kind) {
            case FactKind_t::kNumber:
                return field.form == Form_t::kSigned ||
                               (field.sources != 0 && fields[field.from[0]].form == Form_t::kSigned)
                           ? "signed"
                           : "number";
            case FactKind_t::kHandle: return "handle";
            case FactKind_t::kUuid: return "uuid";
            case FactKind_t::kDate: return "date";
            case FactKind_t::kVersion: return "version";
            case FactKind_t::kBytes: return "bytes";
            case FactKind_t::kCode:
            case FactKind_t::kBits: return Words(table, field);
            default: return "text";
        }
    }

    // The name of the definition with the words of a field.
    std::string Words(const StandardType_t& table, const StandardField_t& field) {
        std::string& name = m_names[table.Codes(field).data()];
        if (!name.empty()) return name;
        name = std::to_string(table.type) + "_" + std::string(table.Text(field.key));
        const bool areBits = field.kind == FactKind_t::kBits;
        std::string words;
        std::set<std::string_view> known;
        for (const StandardCode_t& row : table.Codes(field)) {
            if (!areBits && row.state != FactState_t::kValue) continue;
            const std::string_view word = table.Text(row.word);
            if (known.insert(word).second) words += Quoted(word) + ",";
        }
        if (areBits && !words.empty()) words.pop_back();
        m_words.push_back(Quoted(name) + ":" +
                          (areBits ? R"({"type":["array","null"],"items":{"enum":[)" + words + "]}}"
                                   : R"({"anyOf":[{"$ref":"#/definitions/reserved"},{"enum":[)" + words + "null]}]}"));
        return name;
    }

    std::map<const StandardCode_t*, std::string> m_names;  // of definitions with words
    std::vector<std::string> m_words;
};

// Lays JSON out: what fits is one line; an array of texts fills its lines.
class ClLayout {
  public:
    static std::string Of(const std::string& json) {
        rapidjson::Document document;
        document.Parse(json.c_str());
        if (document.HasParseError())
            throw std::runtime_error("not JSON at " + json.substr(document.GetErrorOffset(), 40));
        return Lines(document, 0, 0) + "\n";
    }

  private:
    static constexpr size_t kWidth = 118;

    // `value` in lines of which the first begins at `column`, and the last ends at `indent`.
    static std::string Lines(const rapidjson::Value& value, size_t indent, size_t column) {
        std::string line = Line(value);
        if (column + Columns(line) <= kWidth || !(value.IsObject() || value.IsArray())) return line;
        const std::string begin = "\n" + std::string(indent + 2, ' '), end = "\n" + std::string(indent, ' ');
        std::string text;
        if (value.IsObject()) {
            for (const auto& member : value.GetObject()) {
                const std::string name = Quoted(member.name.GetString()) + ": ";
                text.append(text.empty() ? "" : ",").append(begin).append(name);
                text += Lines(member.value, indent + 2, indent + 2 + name.size());
            }
            return "{" + text + end + "}";
        }
        size_t at = kWidth;
        for (const auto& entry : value.GetArray()) {
            const std::string word = Lines(entry, indent + 2, indent + 2);
            const bool fits = !entry.IsObject() && at + Columns(word) + 2 <= kWidth;
            text.append(text.empty() ? "" : ",").append(fits ? " " : begin).append(word);
            at = (fits ? at + 2 : indent + 3) + Columns(word);
        }
        return "[" + text + end + "]";
    }

    static std::string Line(const rapidjson::Value& value) {
        std::string text;
        if (value.IsObject()) {
            for (const auto& member : value.GetObject())
                text.append(text.empty() ? "" : ", ")
                    .append(Quoted(member.name.GetString()))
                    .append(": ")
                    .append(Line(member.value));
            return text.empty() ? "{}" : "{ " + text + " }";
        }
        if (value.IsArray()) {
            for (const auto& entry : value.GetArray()) text += (text.empty() ? "" : ", ") + Line(entry);
            return "[" + text + "]";
        }
        if (value.IsString()) return Quoted(value.GetString());
        if (value.IsNumber()) return std::to_string(value.GetInt64());
        return value.IsNull() ? "null" : value.GetBool() ? "true" : "false";
    }

    // The columns of a text in UTF-8.
    static size_t Columns(std::string_view text) {
        return static_cast<size_t>(std::ranges::count_if(text, [](char c) { return (c & 0xC0) != 0x80; }));
    }
};

}  // namespace

int main(int count, char** values) try {
    const std::string what = count > 1 ? values[1] : "";
    if (count > 3 || (what != "page" && what != "schema")) {
        std::cerr << "usage: write_facts page|schema [FILE]\n";
        return 2;
    }
    const std::string text = what == "page" ? Page() : ClLayout::Of(ClSchema().Text());
    if (count == 3) return HasContent(values[2], text, "write_facts " + what) ? 0 : 1;
    std::cout << text;
    return 0;
} catch (const std::exception& problem) {
    std::cerr << problem.what() << "\n";
    return 1;
}
