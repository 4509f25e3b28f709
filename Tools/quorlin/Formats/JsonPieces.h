// What JSON documents are written from.
#pragma once

#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <cstring>
#include <string>
#include <string_view>

#include "Tools/quorlin/Output.h"
#include "Tools/quorlin/Text.h"

// JSON pieces. Invalid UTF-8 is replaced by U+FFFD; the functions that write text return whether they replaced any.
class ClJson {
  public:
    explicit ClJson(ClOutput& output) : m_output(output), m_writer(m_buffer) {}

    void BeginObject() { m_writer.StartObject(); }
    void EndObject() {
        m_writer.EndObject();
        FlushIfLarge();
    }
    void BeginList(const char* name) {
        Name(name);
        BeginList();
    }
    void BeginList() { m_writer.StartArray(); }
    void EndList() { m_writer.EndArray(); }

    // A name of our own: printable ASCII without quotes.
    void Name(std::string_view name) { Quoted(name); }
    bool Text(std::string_view text) {
        if (IsPlainJson(text)) {
            Quoted(text);
            return false;
        }
        std::string escaped;
        const bool isReplaced = AppendJson(escaped, text);
        Quoted(escaped);
        return isReplaced;
    }
    void Number(uint64_t number) { m_writer.Uint64(number); }
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
        if (IsPlainJson(key) && IsPlainJson(value)) {
            // Most pairs, in one step.
            constexpr std::string_view kBegin = R"({"key":")", kMiddle = R"(","value":")", kEnd = R"("})";
            Separate(rapidjson::kObjectType);
            char* at = m_buffer.Push(kBegin.size() + key.size() + kMiddle.size() + value.size() + kEnd.size());
            Copy(kEnd, Copy(value, Copy(kMiddle, Copy(key, Copy(kBegin, at)))));
            FlushIfLarge();
            return;
        }
        BeginObject();
        const bool keyReplaced = Member("key", key), valueReplaced = Member("value", value);
        MarkReplaced(keyReplaced || valueReplaced);
        EndObject();
    }

    // Starts a new line inside a document, for human readers.
    void Break() { m_buffer.Put('\n'); }
    // Ends a document and its line.
    void End() {
        m_buffer.Put('\n');
        Flush();
        m_writer.Reset(m_buffer);
    }

  private:
    static bool IsPlainJson(std::string_view text) { return IsPlain(text, '"', '\\'); }

    // Writes the comma or colon that a value of this type needs before it, and counts the value.
    void Separate(rapidjson::Type type) { m_writer.RawValue("", 0, type); }

    void Quoted(std::string_view escaped) {
        Separate(rapidjson::kStringType);
        char* at = m_buffer.Push(escaped.size() + 2);
        Copy("\"", Copy(escaped, Copy("\"", at)));
    }

    // Returns the place after the copy.
    static char* Copy(std::string_view text, char* at) {
        if (!text.empty()) std::memcpy(at, text.data(), text.size());
        return at + text.size();
    }

    void FlushIfLarge() {
        if (m_buffer.GetSize() >= kLarge) Flush();
    }
    void Flush() {
        m_output << std::string_view(m_buffer.GetString(), m_buffer.GetSize());
        m_buffer.Clear();
    }

    static constexpr size_t kLarge = 64u << 10;

    ClOutput& m_output;
    rapidjson::StringBuffer m_buffer;
    rapidjson::Writer<rapidjson::StringBuffer> m_writer;
};
