#include "Packages/Format/MachineJson.h"

#include <algorithm>
#include <charconv>
#include <span>

#include "Packages/Format/TextLines.h"
#include "Packages/Format/Utf8.h"

namespace {

constexpr std::string_view kForm = "quorlin record";
constexpr uint64_t kVersion = 1;
constexpr size_t kMostBytes = 1u << 20, kMostDepth = 16;

// Numbers of the system's, as they are named in the file.
struct Known_t {
    char name[14];
    std::optional<uint64_t> SystemFacts_t::*member;
};
constexpr Known_t kKnown[] = {
    {"packages",      &SystemFacts_t::packages    },
    {"cores",         &SystemFacts_t::cores       },
    {"threads",       &SystemFacts_t::threads     },
    {"base_mhz",      &SystemFacts_t::baseSpeed   },
    {"max_mhz",       &SystemFacts_t::maxSpeed    },
    {"tpm",           &SystemFacts_t::tpm         },
    {"usable_memory", &SystemFacts_t::usableMemory},
};

// ---- Writing

std::string Quoted(std::string_view text) {
    std::string quoted = "\"";
    while (!text.empty()) {
        const Utf8Sequence_t next = NextUtf8Sequence(text);
        const auto first = static_cast<unsigned char>(text.front());
        if (!next.isValid) {
            quoted += "\xEF\xBF\xBD";  // U+FFFD
        } else if (first == '"' || first == '\\' || first < ' ' || first == 0x7F) {
            quoted += "\\u";
            AppendHex(quoted, first, 4, true);
        } else {
            quoted += text.substr(0, next.size);
        }
        text.remove_prefix(next.size);
    }
    return quoted += '"';
}

std::string QuotedOrNull(const std::string& text) { return text.empty() ? "null" : Quoted(text); }

std::string NumberOrNull(const std::optional<uint64_t>& number) { return number ? std::to_string(*number) : "null"; }

// A list on one line, or with `indent` an item on each.
template <class Item, class Write>
std::string ListOf(const std::vector<Item>& items, std::string_view indent, const Write& write) {
    std::string text = "[";
    for (const Item& item : items) {
        if (&item != items.data()) text += indent.empty() ? ", " : ",";
        text.append(indent).append(write(item));
    }
    if (!items.empty() && !indent.empty()) text.append(indent.substr(0, indent.size() - 2));
    return text += ']';
}

// ---- Reading

// A value that isn't an object or a list, and where it is, as "files.0.name".
struct Leaf_t {
    std::string path, text;
    char kind;  // '"' of a text, otherwise the first letter: of true, false, null or a number
};

class ClJsonReader {
  public:
    explicit ClJsonReader(std::string_view text) : m_rest(text) {}

    // Returns false if the text isn't JSON.
    bool Read() {
        const bool isRead = Value({}, 0);
        SkipBlanks();
        std::ranges::stable_sort(m_leaves, {}, &Leaf_t::path);
        return isRead && m_rest.empty();
    }

    // Texts, numbers and truths by their paths. Empty if there is none, or another kind of value.
    std::string Text(std::string_view path) const {
        const Leaf_t* const leaf = Find(path);
        return leaf != nullptr && leaf->kind == '"' ? leaf->text : std::string();
    }
    std::optional<uint64_t> Number(std::string_view path) const {
        const Leaf_t* const leaf = Find(path);
        uint64_t number = 0;
        if (leaf == nullptr || leaf->kind < '0' || leaf->kind > '9') return std::nullopt;
        const char* const last = leaf->text.data() + leaf->text.size();
        const auto [end, error] = std::from_chars(leaf->text.data(), last, number);
        return error == std::errc() && end == last ? std::optional(number) : std::nullopt;
    }
    bool IsTrue(std::string_view path) const {
        const Leaf_t* const leaf = Find(path);
        return leaf != nullptr && leaf->kind == 't';
    }
    bool IsThere(std::string_view path) const { return Find(path) != nullptr; }

  private:
    // A member that is there twice is read by nobody in the same way, so it isn't read at all.
    const Leaf_t* Find(std::string_view path) const {
        const auto [first, last] = std::equal_range(m_leaves.begin(), m_leaves.end(), path,
                                                    [](const auto& a, const auto& b) { return PathOf(a) < PathOf(b); });
        return last - first == 1 ? &*first : nullptr;
    }
    static std::string_view PathOf(const Leaf_t& leaf) { return leaf.path; }
    static std::string_view PathOf(std::string_view path) { return path; }

    void SkipBlanks() { m_rest.remove_prefix(std::min(m_rest.find_first_not_of(" \t\r\n"), m_rest.size())); }
    bool Take(char c) {
        SkipBlanks();
        if (!m_rest.starts_with(c)) return false;
        m_rest.remove_prefix(1);
        return true;
    }

    // Nobody asks for what is below a long path, which would be kept for each leaf.
    static std::string Below(const std::string& path, std::string_view name) {
        constexpr size_t kMostPath = 64;
        return path.size() > kMostPath ? std::string(".") : std::string(path).append(".").append(name);
    }

    bool Value(const std::string& path, size_t depth) {
        if (depth > kMostDepth) return false;
        if (Take('{')) return Members(path, depth);
        if (Take('[')) return Items(path, depth);
        Leaf_t leaf = {path, {}, '"'};
        if (Take('"') ? !String(&leaf.text) : !Word(&leaf)) return false;
        m_leaves.push_back(std::move(leaf));
        return true;
    }

    bool Members(const std::string& path, size_t depth) {
        if (Take('}')) return true;
        do {
            std::string name;
            if (!Take('"') || !String(&name) || !Take(':')) return false;
            if (!Value(path.empty() ? std::move(name) : Below(path, name), depth + 1)) return false;
        } while (Take(','));
        return Take('}');
    }

    bool Items(const std::string& path, size_t depth) {
        if (Take(']')) return true;
        size_t index = 0;
        do
            if (!Value(Below(path, std::to_string(index++)), depth + 1)) return false;
        while (Take(','));
        return Take(']');
    }

    // Takes true, false, null or a number.
    bool Word(Leaf_t* leaf) {
        const size_t size = std::min(m_rest.find_first_of(" \t\r\n,]}"), m_rest.size());
        leaf->text = m_rest.substr(0, size);
        m_rest.remove_prefix(size);
        if (leaf->text.empty()) return false;
        leaf->kind = leaf->text.front();
        return leaf->text == "true" || leaf->text == "false" || leaf->text == "null" ||
               leaf->text.find_first_not_of("+-.0123456789Ee") == leaf->text.npos;
    }

    // Takes a text up to its end, after its beginning.
    bool String(std::string* text) {
        while (!m_rest.empty()) {
            const char c = m_rest.front();
            m_rest.remove_prefix(1);
            if (c == '"') return true;
            if (static_cast<unsigned char>(c) < ' ') return false;
            if (c != '\\')
                *text += c;
            else if (!Escape(text))
                return false;
        }
        return false;
    }

    bool Escape(std::string* text) {
        constexpr std::string_view kLetters = "\"\\/bfnrt", kMeanings = "\"\\/\b\f\n\r\t";
        if (m_rest.empty()) return false;
        const char letter = m_rest.front();
        m_rest.remove_prefix(1);
        if (letter != 'u') {
            const size_t place = kLetters.find(letter);
            if (place == kLetters.npos) return false;
            *text += kMeanings[place];
            return true;
        }
        uint32_t code = 0;
        if (m_rest.size() < 4 || std::from_chars(m_rest.data(), m_rest.data() + 4, code, 16).ptr != m_rest.data() + 4)
            return false;
        m_rest.remove_prefix(4);
        if (code >= 0xD800 && code <= 0xDFFF) return false;  // halves of a pair, which aren't written
        if (code < 0x80) {
            *text += static_cast<char>(code);
            return true;
        }
        if (code >= 0x800) {
            *text += static_cast<char>(0xE0 | code >> 12);
            *text += static_cast<char>(0x80 | (code >> 6 & 0x3F));
        } else {
            *text += static_cast<char>(0xC0 | code >> 6);
        }
        *text += static_cast<char>(0x80 | (code & 0x3F));
        return true;
    }

    std::string_view m_rest;
    std::vector<Leaf_t> m_leaves;  // in order of their paths once all are read
};

std::string At(std::string_view list, size_t index, std::string_view member = {}) {
    return std::string(list).append(".").append(std::to_string(index)).append(member);
}

// Returns false if an item of the list isn't a number below 2^32.
bool ReadNumbers(const ClJsonReader& json, std::string_view list, std::vector<uint32_t>* numbers) {
    for (size_t index = 0; json.IsThere(At(list, index)); index++) {
        const std::optional<uint64_t> number = json.Number(At(list, index));
        if (!number || *number > UINT32_MAX) return false;
        numbers->push_back(static_cast<uint32_t>(*number));
    }
    return true;
}

bool IsSha256(std::string_view text) {
    return text.size() == 64 && text.find_first_not_of("0123456789abcdef") == text.npos;
}

// Returns false if an item isn't a register's value, a range of addresses or a resource.
bool ReadKnown(const ClJsonReader& json, SystemFacts_t* known) {
    for (const Known_t& each : kKnown) known->*each.member = json.Number(each.name);
    if (!ReadNumbers(json, "midr", &known->midrs)) return false;
    for (size_t index = 0; json.IsThere(At("memory_map", index, ".begin")); index++) {
        const auto begin = json.Number(At("memory_map", index, ".begin")),
                   end = json.Number(At("memory_map", index, ".end"));
        if (!begin || !end || *end < *begin) return false;
        known->memoryMap.push_back({*begin, *end});
    }
    for (size_t index = 0; json.IsThere(At("firmware_resources", index, ".id")); index++) {
        const auto type = json.Number(At("firmware_resources", index, ".type")),
                   version = json.Number(At("firmware_resources", index, ".version"));
        if (!type || !version || *type > UINT32_MAX || *version > UINT32_MAX) return false;
        known->resources.push_back({json.Text(At("firmware_resources", index, ".id")), static_cast<uint32_t>(*type),
                                    static_cast<uint32_t>(*version)});
    }
    for (size_t index = 0; json.IsThere(At("network_addresses", index)); index++)
        known->networkAddresses.push_back(json.Text(At("network_addresses", index)));
    return true;
}

// Returns false if an item isn't one of the record's files with its hash, or if one is there twice.
bool ReadFiles(const ClJsonReader& json, std::vector<RecordedFile_t>* files) {
    for (size_t index = 0; json.IsThere(At("files", index, ".name")); index++) {
        const RecordedFile_t file = {json.Text(At("files", index, ".name")), json.Text(At("files", index, ".sha256"))};
        if (RecordFileByName(file.name) == kRecordFileCount || !IsSha256(file.sha256) ||
            std::ranges::find(*files, file.name, &RecordedFile_t::name) != files->end())
            return false;
        files->push_back(file);
    }
    return true;
}

}  // namespace

RecordFile_t RecordFileByName(std::string_view name) {
    const auto* const found = std::ranges::find_if(kRecordFiles, [name](const char* each) { return name == each; });
    return static_cast<RecordFile_t>(found - std::begin(kRecordFiles));
}

std::string WriteMachineJson(const MachineFacts_t& facts) {
    const auto number = [](uint32_t value) { return std::to_string(value); };
    const auto file = [](const RecordedFile_t& item) {
        return std::string("{\"name\": ").append(Quoted(item.name)).append(", \"sha256\": \"").append(item.sha256) +
               "\"}";
    };
    const auto unread = [](const Unread_t& item) {
        return std::string("{\"what\": ").append(Quoted(item.what)).append(", \"why\": ").append(Quoted(item.why)) +
               "}";
    };
    const auto area = [](const MemoryArea_t& item) {
        return std::string("{\"begin\": ").append(std::to_string(item.begin)).append(", \"end\": ") +
               std::to_string(item.end) + "}";
    };
    const auto resource = [](const FirmwareResource_t& item) {
        return std::string("{\"id\": ").append(Quoted(item.id)).append(", \"type\": ") + std::to_string(item.type) +
               ", \"version\": " + std::to_string(item.version) + "}";
    };
    constexpr char kItem[] = "\n    ";
    std::string text = "{\n";
    const auto add = [&text](std::string_view name, std::string_view value) {
        if (text.size() > 2) text += ",\n";
        text.append("  \"").append(name).append("\": ").append(value);
    };
    add("form", Quoted(kForm));
    add("version", std::to_string(kVersion));
    add("redacted", facts.isRedacted ? "true" : "false");
    add("system", QuotedOrNull(facts.system));
    add("kernel", QuotedOrNull(facts.kernel));
    add("host", QuotedOrNull(facts.host));
    add("firmware", QuotedOrNull(facts.firmware));
    add("processors", NumberOrNull(facts.processors));
    add("memory", NumberOrNull(facts.memory));
    for (const Known_t& each : kKnown) add(each.name, NumberOrNull(facts.known.*each.member));
    add("midr", ListOf(facts.known.midrs, "", number));
    add("memory_map", ListOf(facts.known.memoryMap, kItem, area));
    add("firmware_resources", ListOf(facts.known.resources, kItem, resource));
    add("network_addresses", ListOf(facts.known.networkAddresses, "", Quoted));
    add("versions", ListOf(facts.versions, "", number));
    add("pci_segments", ListOf(facts.segments, "", number));
    add("pci_extended", facts.hasExtendedSpace ? "true" : "false");
    add("acpi_left_out", ListOf(facts.leftOut, "", Quoted));
    add("files", ListOf(facts.files, kItem, file));
    add("unread", ListOf(facts.unread, kItem, unread));
    return text += "\n}\n";
}

std::string ParseMachineJson(std::string_view text, MachineFacts_t* facts) {
    *facts = {};
    if (text.size() > kMostBytes) return "larger than 1 MiB";
    ClJsonReader json(text);
    if (!json.Read()) return "not JSON";
    if (json.Text("form") != kForm) return "not the description of a record";
    const std::optional<uint64_t> version = json.Number("version");
    if (version != kVersion) return "a record of another version than 1";
    facts->isRedacted = json.IsTrue("redacted");
    facts->system = json.Text("system");
    facts->kernel = json.Text("kernel");
    facts->host = json.Text("host");
    facts->firmware = json.Text("firmware");
    facts->processors = json.Number("processors");
    facts->memory = json.Number("memory");
    facts->hasExtendedSpace = json.IsTrue("pci_extended");
    for (size_t index = 0; json.IsThere(At("acpi_left_out", index)); index++)
        facts->leftOut.push_back(json.Text(At("acpi_left_out", index)));
    for (size_t index = 0; json.IsThere(At("unread", index, ".what")); index++)
        facts->unread.push_back({json.Text(At("unread", index, ".what")), json.Text(At("unread", index, ".why"))});
    if (!ReadKnown(json, &facts->known) || !ReadNumbers(json, "versions", &facts->versions) ||
        !ReadNumbers(json, "pci_segments", &facts->segments))
        return "a number that isn't one";
    return ReadFiles(json, &facts->files) ? std::string() : "a file that no record has, or without its SHA-256";
}
