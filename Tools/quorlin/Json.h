// JSON, valid whatever bytes a table holds.
#pragma once

#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <functional>
#include <string_view>

#include "Tools/quorlin/Model.h"
#include "Tools/quorlin/Output.h"
#include "Tools/quorlin/Table.h"

// Writes JSON into an output. Invalid UTF-8 is replaced by U+FFFD; the functions that write text say so.
class ClJson : private rapidjson::Writer<rapidjson::StringBuffer> {
  public:
    explicit ClJson(ClOutput& output) : Writer(m_buffer), m_output(output) {}

    void BeginObject() { StartObject(); }
    void FinishObject() { EndObject(), FlushIfLarge(); }
    void BeginList() { StartArray(); }
    void FinishList() { EndArray(); }
    // A name of our own: printable ASCII without quotes.
    void Name(std::string_view name) { Quoted(name); }
    bool Text(std::string_view text);
    void Number(uint64_t number) { Uint64(number); }
    void Truth(bool truth) { Bool(truth); }

    void Member(std::string_view name, uint64_t number) { Name(name), Number(number); }
    bool Member(std::string_view name, std::string_view text) { return Name(name), Text(text); }
    // {"key": KEY, "value": VALUE}, and "replaced": true where a byte of either was.
    void Pair(std::string_view key, std::string_view value);

    // Starts a line inside a document, for people's eyes.
    void Break() { m_buffer.Put('\n'); }
    // Hands what has been written to the output, now and then. For what repeats without Pair, which does so itself.
    void FlushIfLarge();
    // Ends the document and its line.
    void Finish();

  private:
    void Quoted(std::string_view escaped);

    rapidjson::StringBuffer m_buffer;
    ClOutput& m_output;
};

// The members that every table's document begins with: "source", "smbios", and "remark" if there is one.
void WriteTableMembers(ClJson& json, const ClTable& table);

// The members that every structure's object begins with: "type", "handle", "instance", "title", and "replaced": true
// where a byte of the title was.
void WriteStructureMembers(ClJson& json, const Structure_t& structure);

// ForEachTable as `format` wants it: for kNdjson a table that can't be brought up becomes the line
// {"source": NAME, "error": TEXT}, and all is said on standard error otherwise.
int RunOnTables(const Source_t& source, Format_t format, int trouble, ClJson& json,
                const std::function<int(ClTable&)>& work);
// Several images are for kNdjson and kCsv alone. As ParseCommandLine when they aren't.
bool CheckFleet(const Usage_t& usage, const Source_t& source, Format_t format, int* exitCode);
