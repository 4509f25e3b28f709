// What JSON documents are written from.
#pragma once

#include <rapidjson/writer.h>

#include <string>
#include <string_view>

#include "Sources/Text.h"
#include "Tools/quorlin/Output.h"
#include "Tools/quorlin/Text.h"

// JSON pieces. Invalid UTF-8 is replaced by U+FFFD; the functions that write text return whether they replaced any.
class ClJson {
  public:
    explicit ClJson(ClOutput& output) : m_output(output), m_writer(m_stream) {}

    void BeginObject() { m_writer.StartObject(); }
    void EndObject() { m_writer.EndObject(); }
    void BeginList(const char* name) {
        Name(name);
        BeginList();
    }
    void BeginList() { m_writer.StartArray(); }
    void EndList() { m_writer.EndArray(); }

    // A name of our own: printable ASCII without quotes.
    void Name(std::string_view name) {
        Separate(rapidjson::kStringType);
        m_output << '"' << name << '"';
    }
    bool Text(std::string_view text) {
        Separate(rapidjson::kStringType);
        return PutQuoted(text);
    }
    void Number(uint64_t number) {
        Separate(rapidjson::kNumberType);
        m_output.Number(number);
    }
    void Signed(int64_t number) { m_writer.Int64(number); }
    void Null() { m_writer.Null(); }
    void Truth(bool truth) { m_writer.Bool(truth); }

    void Member(std::string_view name, uint64_t number) { Name(name), Number(number); }
    bool Member(std::string_view name, std::string_view text) { return Name(name), Text(text); }
    // "replaced": true, if so.
    void MarkReplaced(bool isReplaced) {
        if (isReplaced) Name("replaced"), Truth(true);
    }

    // {"key": KEY, "value": VALUE}, with "replaced" for either.
    void Pair(std::string_view key, std::string_view value) {
        Separate(rapidjson::kObjectType);
        // Most pairs, in one step.
        constexpr std::string_view kBegin = R"({"key":")", kMiddle = R"(","value":")", kEnd = R"("})";
        char* place = m_output.Room(kBegin.size() + key.size() + kMiddle.size() + value.size() + kEnd.size());
        char* end = CopyPlain<'"', '\\'>(PutText(place, kBegin), key);
        if (end != nullptr) end = CopyPlain<'"', '\\'>(PutText(end, kMiddle), value);
        if (end != nullptr) {
            m_output.SetEnd(PutText(end, kEnd));
            return;
        }
        m_output << R"({"key":)";
        bool isReplaced = PutQuoted(key);
        m_output << R"(,"value":)";
        isReplaced |= PutQuoted(value);
        m_output << (isReplaced ? R"(,"replaced":true})" : "}");
    }

    // Starts a new line inside a document, for human readers.
    void Break() { m_output << '\n'; }
    // Ends a document and its line.
    void End() {
        m_output << '\n';
        m_writer.Reset(m_stream);
    }

  private:
    // Where the library's writer puts its characters.
    struct Stream_t {
        using Ch = char;
        ClOutput& output;
        void Put(char character) { output << character; }
        void Flush() {}
    };

    // Writes the comma or colon that a value of this type needs before it, and counts the value.
    void Separate(rapidjson::Type type) { m_writer.RawValue("", 0, type); }

    // Writes a text in quotes, and returns whether bytes of it were replaced.
    bool PutQuoted(std::string_view text) {
        m_output << '"';
        bool isReplaced = false;
        if (!m_output.Plain<'"', '\\'>(text)) {
            m_escaped.clear();
            isReplaced = AppendJson(m_escaped, text);
            m_output << m_escaped;
        }
        m_output << '"';
        return isReplaced;
    }

    ClOutput& m_output;
    Stream_t m_stream{m_output};
    rapidjson::Writer<Stream_t> m_writer;
    std::string m_escaped;
};
