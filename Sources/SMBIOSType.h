// What every decoder is made of: items, the bounded view of a record, rows and renderings, and the base class.
//
// A decoder turns one structure into items. Most of it is a table: a row is a line of the structure's field list, in
// output order, and its last cell says how the field reads as text. PrintItems walks the rows. A field with logic of
// its own gets a small function, and its row looks like every other row.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Packages/OS/Status.h"

// A word of a table, or the one for a code that the table doesn't hold.
struct Word_t : std::string_view {
    constexpr Word_t(std::string_view text) : std::string_view(text), isInvalid(text.starts_with("Error: Invalid")) {}
    bool isInvalid;
};

// The text of a key or a value: its own, or a view of text that outlives all items and needs no copy: a literal, a word
// of a table, a string of a record (the store keeps its records as long as a package holds items).
class ClText {
  public:
    ClText() : ClText(std::string_view()) {}
    ClText(std::string_view lasting) { Refer(lasting.data(), lasting.size(), kLasting); }
    ClText(const char* lasting) : ClText(std::string_view(lasting)) {}
    template <size_t size>
    ClText(char (&buffer)[size]) = delete;  // a buffer doesn't last: make it a std::string
    ClText(const std::string& own) { Copy(own); }
    inline ClText(const Word_t& word);
    // Text of its own, made of pieces.
    static ClText Joined(std::initializer_list<std::string_view> pieces);
    ClText(ClText&& other) noexcept : m_data(other.m_data) { other.Refer(nullptr, 0, kLasting); }
    ClText(const ClText& other) {
        if (other.m_data.keep == kLasting)
            m_data = other.m_data;
        else
            Copy(other.View());
        m_data.isInvalid = other.m_data.isInvalid;
    }
    ClText& operator=(ClText other) noexcept {
        std::swap(m_data, other.m_data);
        return *this;
    }
    ~ClText() {
        if (m_data.keep == kHeap) delete[] Elsewhere();
    }

    std::string_view View() const { return {m_data.keep == kHere ? m_data.bytes : Elsewhere(), m_data.size}; }
    std::string String() const { return std::string(View()); }
    // Whether it tells of a code that its table doesn't hold.
    bool IsInvalid() const { return m_data.isInvalid; }
    ClText& MarkInvalid(bool isInvalid) {
        m_data.isInvalid = isInvalid;
        return *this;
    }
    // Makes the text its own, so that it needs nothing else to last.
    void Keep() {
        if (m_data.keep == kLasting && m_data.size != 0) *this = ClText(String()).MarkInvalid(m_data.isInvalid);
    }
    friend bool operator==(const ClText& text, std::string_view other) { return text.View() == other; }

  private:
    enum Keep_t : uint8_t { kLasting, kHere, kHeap };

    const char* Elsewhere() const {
        const char* place;
        std::memcpy(&place, m_data.bytes, sizeof place);
        return place;
    }
    void Refer(const char* text, size_t size, Keep_t keep) {
        std::memcpy(m_data.bytes, &text, sizeof text);
        m_data.size = size & kSizeMask;
        m_data.keep = keep & 3u;
        m_data.isInvalid = 0;
    }
    void Copy(std::string_view text) {
        char* own = Own(text.size());
        if (!text.empty()) std::memcpy(own, text.data(), text.size());
    }
    // Room for text of its own; expects a text that has none yet.
    char* Own(size_t size) {
        if (size > sizeof m_data.bytes) {
            char* text = new char[size];
            Refer(text, size, kHeap);
            return text;
        }
        m_data.size = size & kSizeMask;
        m_data.keep = kHere;
        m_data.isInvalid = 0;
        return m_data.bytes;
    }

    static constexpr uint32_t kSizeMask = 0x1FFFFFFF;  // no text of a table comes near it
    // A table has tens of thousands of texts, so that each byte here counts.
    struct Data_t {
        alignas(const char*) char bytes[20];  // the text itself, enough for every number, or its address
        uint32_t size : 29;
        uint32_t keep : 2;  // Keep_t
        uint32_t isInvalid : 1;
    } m_data;
};
static_assert(sizeof(ClText) == 24);

inline ClText::ClText(const Word_t& word) : ClText(std::string_view(word)) { m_data.isInvalid = word.isInvalid; }

inline constexpr std::string_view kGroupMark = "#GROUPNAME";

// What decoders hand out: one key and one value. A group item's key ends in kGroupMark and its value is empty.
struct ItemPair {
    ClText key;
    ClText value;
};

enum class ItemKind_t : uint8_t {
    kItem,
    kMarkedItem,  // an item whose key as text ends in kGroupMark, as a group's does
    kGroup,       // the heading of the items after it; no value
    kTitle,       // the title of a structure; no value
};

// What an item is, and the structure that it is of.
struct ItemFacts_t {
    uint32_t instance = 0;  // of the structure among those of its type, from 1
    uint16_t handle = 0;
    uint8_t type = 0;
    ItemKind_t kind = ItemKind_t::kItem;

    ItemFacts_t As(ItemKind_t other) const { return {instance, handle, type, other}; }
};

// An item as it is kept: its facts are kept apart from its texts, so that nobody has to read them out of these. Its key is
// without the marks that the text of it carries.
struct Item_t {
    ClText key;
    ClText value;
    ItemFacts_t facts;

    // Adds the key as text: a title with its instance from the second on, and kGroupMark where the kind has it.
    void AppendKey(std::string& text) const;
    // A title as text, without kGroupMark: "TEXT {Type N}", "TEXT {Type N}_2".
    std::string Title() const;
};

// Items in the order in which they were added: many in a block, and all released together, as the items of a package
// are. One by one they would cost more to allocate than to decode.
class ClItemList {
  public:
    ClItemList() = default;
    ClItemList(const ClItemList&) = delete;
    ClItemList& operator=(const ClItemList&) = delete;
    ~ClItemList() { Truncate(0); }

    // Whether texts that others own are copied, for a list that may outlive them.
    void KeepTexts(bool keeps) { m_keepsTexts = keeps; }
    // Throws std::bad_alloc without memory.
    void Add(ClText&& key, ClText&& value, ItemFacts_t facts);
    void Clear() { Truncate(0); }
    // Drops the items from `size` on.
    void Truncate(size_t size);
    size_t Size() const { return m_size; }
    // An item stays where it is until it is dropped.
    const Item_t& operator[](size_t index) const { return *Place(index); }

  private:
    static constexpr size_t kBlockItems = 64;
    struct Block_t {
        alignas(Item_t) std::byte room[kBlockItems * sizeof(Item_t)];
    };

    Item_t* Place(size_t index) const {
        return reinterpret_cast<Item_t*>(m_blocks[index / kBlockItems]->room) + index % kBlockItems;
    }

    std::vector<std::unique_ptr<Block_t>> m_blocks;
    size_t m_size = 0;
    bool m_keepsTexts = false;
};

// The record of one structure. No read leaves it, whatever bytes the table holds; numbers are little-endian.
//
// A record holds at least Length bytes and ends in the string area, which ends in a double NUL. A structure may be
// shorter than the fields that its decoder shows, and what such a field reads is the view's kind:
class ClStructure {
  public:
    // A field that the formatted area doesn't hold as a whole reads 0: a number made up of string bytes would mislead.
    static ClStructure FormattedArea(const uint8_t* pData) { return {pData, pData[1], false}; }
    // Such a field reads the record's own bytes, those of the string area, and 0 behind the record.
    static ClStructure WholeRecord(const uint8_t* pData);
    // The parsed records of types 0 to 2 hold a fixed count of bytes, whatever Length says; behind them all reads 0.
    static ClStructure FixedBytes(const uint8_t* pData, uint8_t count) { return {pData, count, false}; }

    const uint8_t* Data() const { return m_data; }
    uint8_t Length() const { return m_data[1]; }
    uint8_t Byte(size_t offset) const { return Read<uint8_t>(offset); }
    uint16_t Word(size_t offset) const { return Read<uint16_t>(offset); }
    uint32_t Dword(size_t offset) const { return Read<uint32_t>(offset); }
    uint64_t Qword(size_t offset) const { return Read<uint64_t>(offset); }
    // Whether the formatted area holds `count` bytes from `offset` on.
    bool Holds(size_t offset, size_t count) const { return offset + count <= Length(); }
    // How many bytes can be read before all reads 0.
    size_t ReadableBytes() const;

  private:
    ClStructure(const uint8_t* data, size_t held, bool readsOn) : m_data(data), m_held(held), m_readsOn(readsOn) {}

    template <class Number>
    Number Read(size_t offset) const {
        Number number = 0;
        if (offset + sizeof number <= m_held)
            std::memcpy(&number, m_data + offset, sizeof number);
        else if (m_readsOn)
            ReadOn(offset, &number, sizeof number);
        return number;
    }
    void ReadOn(size_t offset, void* number, size_t size) const;

    const uint8_t* m_data;
    size_t m_held;                     // bytes that can be read as they are
    bool m_readsOn;                    // whether a read after them goes on to the record's end
    mutable size_t m_recordBytes = 0;  // up to that end; 0 as long as nobody asked
};

// The strings of a record's string area in order, each found in one step.
class ClStringWalk {
  public:
    explicit ClStringWalk(const uint8_t* pData);
    bool IsEmpty() const { return m_isEmpty; }
    // The next string, or null after the last. Of an area without strings each is "(null string)", without an end.
    const char* Next();
    // The next string as GetString tells it: "(no such string)" after the last.
    const char* NextText();

  private:
    const char* m_next;
    bool m_isEmpty;
};

struct CodeText_t {
    uint32_t code;  // the value, or for a bit list the bit's number
    std::string_view text;
};

// The text of `code`, or `otherwise` for a code that the table doesn't hold. Tables rise, mostly without gaps.
constexpr Word_t TextOf(std::span<const CodeText_t> table, uint32_t code, std::string_view otherwise) {
    if (table.empty() || code < table.front().code) return otherwise;
    const size_t place = code - table.front().code;
    if (place < table.size() && table[place].code == code) return table[place].text;
    const auto row = std::ranges::lower_bound(table, code, {}, &CodeText_t::code);
    return row == table.end() || row->code != code ? otherwise : row->text;
}

// Every code once, in rising order. A static_assert on each table keeps TextOf right.
consteval bool IsRising(std::span<const CodeText_t> table) {
    return std::ranges::adjacent_find(table, std::ranges::greater_equal{}, &CodeText_t::code) == table.end();
}

class ClSMBIOSType;
struct ItemRow_t;

// A field on its way to text: the structure, its row, and the decoder for what depends on the machine.
struct Field_t {
    const ClStructure& structure;
    const ItemRow_t& row;
    const ClSMBIOSType& decoder;

    inline uint8_t Byte() const;
    inline uint16_t Word() const;
    inline uint32_t Dword() const;
    inline uint64_t Qword() const;
};

struct Rendering_t {
    ClText (*render)(const Field_t& field);  // null: the row opens a sub-group
    std::span<const CodeText_t> table = {};  // of an enumeration or a bit list
    std::string_view text = {};              // what else the rendering needs: an error word, a unit
    uint32_t number = 0;                     // hexadecimal digits, or a bit's number
};

struct ItemRow_t {
    std::string_view key;
    size_t offset;
    Rendering_t rendering;
};

// Hexadecimal without zeros in front and without a closing "h", in lower and in upper case.
std::string PlainHex(uint64_t value);
std::string PlainUpperHex(uint64_t value);
// The texts of the set bits below `count`, in rising order, joined by ", ". A set bit without a row adds the
// separator alone.
std::string BitsText(std::span<const CodeText_t> table, uint32_t value, uint32_t count);

// The renderings that decoders share. The number in a name is the field's width in bits.
ClText ShowDec8(const Field_t& field);
ClText ShowDec16(const Field_t& field);
ClText ShowDec32(const Field_t& field);
ClText ShowHex8(const Field_t& field);
ClText ShowHex16(const Field_t& field);
ClText ShowHex32(const Field_t& field);
ClText ShowHex64(const Field_t& field);
ClText ShowString(const Field_t& field);
ClText ShowStringOrNone(const Field_t& field);
ClText ShowFoundText(const Field_t& field);
ClText ShowParsedString(const Field_t& field);
ClText ShowEnum8(const Field_t& field);
ClText ShowYesNo8(const Field_t& field);
ClText ShowYesNo16(const Field_t& field);
ClText ShowYesNo32(const Field_t& field);
ClText ShowDec16WithUnit(const Field_t& field);
ClText ShowDec16AndHex(const Field_t& field);
ClText ShowDeviceNumber(const Field_t& field);
ClText ShowFunctionNumber(const Field_t& field);
ClText ShowBit8(const Field_t& field);
ClText ShowBit32(const Field_t& field);

inline constexpr Rendering_t Group{nullptr};
inline constexpr Rendering_t Dec8{ShowDec8}, Dec16{ShowDec16}, Dec32{ShowDec32};
// Hex8, Hex16, Hex32 and Hex64 show all digits of their field; the others zero-fill to the count named.
inline constexpr Rendering_t Hex8{ShowHex8, {}, {}, 2}, Hex16{ShowHex16, {}, {}, 4}, Hex32{ShowHex32, {}, {}, 8},
    Hex64{ShowHex64, {}, {}, 16};
constexpr Rendering_t Hex8Digits(uint32_t digits) { return {ShowHex8, {}, {}, digits}; }
constexpr Rendering_t Hex16Digits(uint32_t digits) { return {ShowHex16, {}, {}, digits}; }
inline constexpr Rendering_t String{ShowString};              // no test of number 0
inline constexpr Rendering_t StringOrNone{ShowStringOrNone};  // "None" for number 0
// A text that the decoder found, such as a string of a structure that just lists them: it has no field with a number.
constexpr Rendering_t FoundText(std::string_view text) { return {ShowFoundText, {}, text}; }
// A string of a parsed record; "None" for number 0 and for a number that names no string.
inline constexpr Rendering_t ParsedText{ShowParsedString};
constexpr Rendering_t Enum8(std::span<const CodeText_t> table, std::string_view otherwise) {
    return {ShowEnum8, table, otherwise};
}
// "Yes" or "No" from a bit of the field.
constexpr Rendering_t YesNo8(uint32_t bit) { return {ShowYesNo8, {}, {}, bit}; }
constexpr Rendering_t YesNo16(uint32_t bit) { return {ShowYesNo16, {}, {}, bit}; }
constexpr Rendering_t YesNo32(uint32_t bit) { return {ShowYesNo32, {}, {}, bit}; }
// A word in decimal with its unit, as in " MHz".
constexpr Rendering_t Dec16WithUnit(std::string_view unit) { return {ShowDec16WithUnit, {}, unit}; }
// A word in decimal, and in parentheses in hexadecimal of at least `digits`: 64 (0040h).
constexpr Rendering_t Dec16AndHex(uint32_t digits) { return {ShowDec16AndHex, {}, {}, digits}; }
// The two parts of a byte that locates a PCI function in its bus.
inline constexpr Rendering_t DeviceNumber{ShowDeviceNumber}, FunctionNumber{ShowFunctionNumber};
// One of two texts from a bit of the field: code 0 of the table when it is clear, code 1 when it is set.
constexpr Rendering_t Bit8(std::span<const CodeText_t> table, uint32_t bit) { return {ShowBit8, table, {}, bit}; }
constexpr Rendering_t Bit32(std::span<const CodeText_t> table, uint32_t bit) { return {ShowBit32, table, {}, bit}; }
// A field as a static member of its decoder, such as ClSMBIOSType7::GetAssociativityString, tells it.
template <auto GetText>
inline constexpr Rendering_t Text8{[](const Field_t& field) -> ClText { return GetText(field.Byte()); }};
template <auto GetText>
inline constexpr Rendering_t Text16{[](const Field_t& field) -> ClText { return GetText(field.Word()); }};

// Base of the decoders. A decoder serves the structures of one type in one step of a package and then dies.
class ClSMBIOSType {
  public:
    virtual ~ClSMBIOSType() = default;
    ClSMBIOSType() = default;
    ClSMBIOSType(const ClSMBIOSType&) = delete;
    ClSMBIOSType& operator=(const ClSMBIOSType&) = delete;

    // Adds the items of the structure at `pData`, a record's body. Never throws and never writes into the record.
    virtual void PrintStructure(const uint8_t* pData) = 0;

    // Copies the next item that hasn't been read to `output`, its key as text. 1; 2 for a null output; 5 when there is
    // none.
    status_t GetNextItem(ItemPair* output);
    // Adds the items that follow to the end of `list`, which outlives the decoder: a package's.
    void UseList(ClItemList* list);
    // Passes over the items that haven't been read, for who has them in a list of its own; gives their number.
    size_t PassItems();

    static std::string GetDecimalString(uint32_t value);
    // Uppercase, zero-filled to `width` digits (a longer value is not cut), with a closing "h".
    static std::string GetHexString(uint64_t value, uint32_t width);
    // A string of a record's string area, from 1. 0 and 1 both give the first: a decoder that must not show a string
    // for number 0 tests the number itself. An area without strings gives "(null string)" for every number, and a
    // number that the area doesn't hold gives "(no such string)". The text lives as long as the record.
    static const char* GetString(uint32_t strNum, const uint8_t* pData);
    static Word_t GetErrorGranularityString(uint8_t code);
    static Word_t GetErrorOperationString(uint8_t code);
    static Word_t GetErrorTypeString(uint8_t code);
    static Word_t GetOnboardDeviceTypeString(uint8_t code);

  protected:
    // Adds one item; `group` not 0 makes it a group item. Without memory the item is dropped.
    void Fill_String_Data(ClText key, ClText value, uint8_t group);
    // Counts the structure, whose items follow. `pData` may be null.
    void BeginStructure(const uint8_t* pData);
    // The same, and adds the group item: the title, as text with the count after it from the second structure on.
    // Gives false, with a trace, for a null `pData`: the decoder then ends.
    bool PrintTitle(std::string_view title, const uint8_t* pData, const char* nullTrace = "\npData is NULL");
    // The title, then the items "Type", "Length" and "Handle".
    bool PrintHead(std::string_view title, const uint8_t* pData);
    void PrintItems(std::span<const ItemRow_t> rows, const ClStructure& structure);
    // Items of one key for strings 1 to `count` of the area.
    void PrintStrings(std::string_view key, uint8_t count, const ClStructure& structure);

    uint32_t m_processorSignature = 0;  // given to the decoders of types 4 and 148 only
    int32_t m_instanceCounter = 0;

  private:
    ClItemList m_ownItems;
    ClItemList* m_items = &m_ownItems;
    size_t m_readCursor = 0;
    ItemFacts_t m_structure;  // at hand
};

// The three codes of the memory error structures.
inline constexpr Rendering_t ErrorType = Text8<ClSMBIOSType::GetErrorTypeString>,
                             ErrorGranularity = Text8<ClSMBIOSType::GetErrorGranularityString>,
                             ErrorOperation = Text8<ClSMBIOSType::GetErrorOperationString>;

inline uint8_t Field_t::Byte() const { return structure.Byte(row.offset); }
inline uint16_t Field_t::Word() const { return structure.Word(row.offset); }
inline uint32_t Field_t::Dword() const { return structure.Dword(row.offset); }
inline uint64_t Field_t::Qword() const { return structure.Qword(row.offset); }
