// Facts: what a structure says by the newest level of the SMBIOS standard, typed, with the bytes that it comes from.
//
//     for (const TableStructure_t& structure : ClWalk(table)) {
//         ClFacts facts(structure, {.version = 0x0304});
//         while (facts.Next()) Show(facts->Key(), facts->text);
//     }
//
// A fact's texts are views of the structure, of the standard's tables, or of the ClFacts, and are valid until the next
// call of Next. Nothing is allocated, and nothing is shared between threads.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "Packages/Format/Structures.h"
#include "Packages/Standard/Standard.h"

struct Fact_t : FactHead_t {
    const StandardField_t* field;  // its row in the table of the type
    const char* key;               // with a NUL after it, as after the name
    const char* name;
    // Numbers in their unit, codes, bit lists, handles, string numbers, and the number of a list's records.
    uint64_t number;
    // Texts, words of codes, UUIDs, dates and versions. Of numbers that aren't values, why.
    std::string_view text;
    std::string_view string;  // the bytes of a text in the structure's strings

    // The stable key in snake_case, such as "memory_size".
    std::string_view Key() const { return {key, keySize}; }
    // The standard's name, such as "Memory Size".
    std::string_view Name() const { return {name, nameSize}; }
    bool IsValue() const { return state == FactState_t::kValue; }
};

// The handles of a table and the types of their structures, to tell whether a handle refers to something.
class ClHandles {
  public:
    explicit ClHandles(std::span<const uint8_t> table);
    // Whether a structure with this handle has one of the types, or any type if there are none.
    bool Has(uint16_t handle, std::span<const StandardCode_t> types) const;

  private:
    std::vector<uint32_t> m_handles;  // handle << 8 | type, sorted
};

// The strings after a structure's formatted area.
class ClStrings {
  public:
    void Find(const TableStructure_t& structure);
    uint32_t Count() const { return m_count; }
    // Returns the string with this number, from 1 to Count().
    std::string_view Get(uint32_t number) const;

  private:
    const char* m_begin;
    uint32_t m_count;
    uint32_t m_starts[256];  // of the strings, and the end of the last one
};

struct FactOptions_t {
    uint16_t version = 0x0300;           // of the table, as 0304h for 3.4: the byte order of UUIDs depends on it
    const ClHandles* handles = nullptr;  // to judge handles; null leaves them alone
    bool listsAbsent = false;            // also facts with the state kAbsent
};

// Walks over the facts of one structure at a time: its fields in the order of the standard, parts after their field,
// the records of a list after the list, and derived facts last. `structure` must outlive the walk.
class ClFacts {
  public:
    // A walk over nothing.
    ClFacts() = default;
    ClFacts(const TableStructure_t& structure, const FactOptions_t& options) { Begin(structure, options); }
    ClFacts(const ClFacts&) = delete;
    ClFacts& operator=(const ClFacts&) = delete;

    // Begins a walk over this structure.
    void Begin(const TableStructure_t& structure, const FactOptions_t& options);
    // Moves to the next fact, or returns false after the last one.
    bool Next() { return NextFact() != nullptr; }
    // The same, but returns the fact. Null after the last one.
    const Fact_t* NextFact();
    // The last fact; null before the first and after the last one.
    const Fact_t* Fact() const { return m_fact.field != nullptr ? &m_fact : nullptr; }

    const Fact_t& operator*() const { return m_fact; }
    const Fact_t* operator->() const { return &m_fact; }

    const StandardType_t& Type() const { return m_type; }
    const ClStrings& Strings() const { return m_strings; }
    // The bytes of a fact in the formatted area.
    std::span<const uint8_t> Bytes(const Fact_t& fact) const { return {m_data + fact.offset, fact.size}; }
    // Calls `take` with the word of each set bit of a bit list.
    template <class Take>
    void ForEachWord(const Fact_t& fact, Take take) const {
        for (const StandardCode_t& bit : m_type.Codes(*fact.field))
            if (fact.number >> bit.first & 1) take(m_type.Text(bit.word));
    }
    // The key of the field that a derived fact comes from; `source` is below `fact.field->sources`.
    std::string_view SourceKey(const Fact_t& fact, uint32_t source) const;

  private:
    // Where the fields of the structure, or of the record at hand, are.
    struct Area_t {
        void SetFields(std::span<const StandardField_t> all) {
            fields = next = all.data();
            last = stop = next + all.size();
        }

        const StandardField_t* fields;
        const StandardField_t* next;
        const StandardField_t* last;  // the end of the fields
        const StandardField_t* stop;  // the same, or `next` while records are read
        uint32_t begin;
        uint32_t end;
        uint32_t count;  // the last count, and whether it is there
        bool hasCount;
        FactState_t wholeState;  // of the field whose parts come next
        std::string_view wholeText;
    };

    [[gnu::always_inline]] inline void Start(const StandardField_t& field);
    [[gnu::always_inline]] inline const Fact_t* End(const StandardField_t& field, Area_t& area) const;
    [[gnu::always_inline]] inline const Fact_t* EndOrTakeOver(const StandardField_t& field, Area_t& area);
    [[gnu::always_inline]] inline bool SetSpecial(const StandardField_t& field, uint64_t number, Fact_t& fact) const;
    [[gnu::noinline]] const Fact_t* ReadText();
    [[gnu::noinline]] const Fact_t* ReadHandle();
    [[gnu::noinline]] const Fact_t* ReadFirstUsable();
    [[gnu::noinline]] const Fact_t* ReadNumber();
    [[gnu::noinline]] const Fact_t* ReadCode();
    [[gnu::noinline]] const Fact_t* ReadBits();
    [[gnu::always_inline]] inline const Fact_t* EndNumber(const StandardField_t& field, uint64_t number);
    [[gnu::always_inline]] inline void SetCode(const StandardField_t& field, uint64_t number, Fact_t& fact) const;
    [[gnu::always_inline]] inline void SetBits(const StandardField_t& field, uint64_t number, Fact_t& fact) const;
    [[gnu::noinline]] const Fact_t* ReadOther();
    const Fact_t* NextOfAny();
    void JudgeHandle(const StandardField_t& field, Fact_t& fact) const;
    [[gnu::always_inline]] inline bool ReadField(Area_t& area, int record);
    void Decode(const StandardField_t& field, uint32_t offset, uint32_t size, Fact_t& fact);
    [[gnu::always_inline]] inline void DecodeNumber(const StandardField_t& field, uint64_t number, Fact_t& fact) const;
    void DecodeText(uint32_t number, Fact_t& fact) const;
    void DecodeUuid(const uint8_t* uuid, Fact_t& fact);
    void DecodeAscii(Fact_t& fact) const;
    [[gnu::noinline]] void DecodeDate(Fact_t& fact);
    [[gnu::noinline]] void DecodeVersion(Fact_t& fact);
    uint32_t PlaceOf(const StandardField_t& field, const Area_t& area) const;
    [[gnu::always_inline]] inline bool HasRoom(const StandardField_t& field, const Area_t& area, uint32_t& offset,
                                               uint32_t& size) const;
    void ReadList(const StandardField_t& field, const Area_t& area, Fact_t& fact);
    void ReadStrings(const StandardField_t& field, const Area_t& area, Fact_t& fact);
    bool StartRecord();
    Fact_t Source(const Area_t& area, const StandardField_t& field, uint32_t source);
    void Derive(const Area_t& area, const StandardField_t& field, Fact_t& fact);

    void SetText(std::string_view text, Fact_t& fact);

    const uint8_t* m_data;
    StandardType_t m_type;
    FactOptions_t m_options;
    ClStrings m_strings;
    Fact_t m_fact = {};
    Area_t m_structure = {};
    uint32_t m_afterList;  // where the fields after the last list begin
    uint32_t m_step;
    const StandardField_t* m_list = nullptr;  // whose records are read
    Area_t m_record;                          // they are set when a list begins
    uint32_t m_records;
    uint32_t m_recordStep;
    int m_recordNumber;
    char m_buffer[64];
};

// Whether a text is one that firmware is delivered with, such as "To Be Filled By O.E.M.", blanks, or one character
// again and again.
bool IsFiller(std::string_view text);
