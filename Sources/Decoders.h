// What each decoder's file defines: the maker of its decoder, and the description of its items.
#pragma once

#include <new>

#include "Sources/SMBIOSType.h"
#include "Sources/Types.h"

// Receives the items of a type in output order, for the page that documents them.
class ClDescription {
  public:
    virtual ~ClDescription() = default;
    // Says how the fields of a decoder's own function read. Comes before the rows.
    virtual void Explain(ClText (*render)(const Field_t& field), std::string_view words) = 0;
    // `when` says which structures have the items; all, if it is empty.
    virtual void Rows(const Rows_t& rows, std::string_view when = {}) = 0;
    // An item without a row. `where` is its offset, or empty.
    virtual void Item(std::string_view key, std::string_view where, std::string_view words) = 0;
    // The words of an enumeration or a bit list that no row refers to.
    virtual void Words(std::string_view of, std::span<const CodeText_t> table, bool areBits = false) = 0;
    // What else there is to say, as a paragraph after the lists of words.
    virtual void Note(std::string_view text) = 0;
};

#define DECODER(number, ...)                                    \
    ClSMBIOSType* NewType##number(const DecoderInput_t& input); \
    void DescribeType##number(ClDescription& description);
#include "Sources/Types.def"

// Defines the decoder of a type whose items are those of its rows, and no others.
#define DECODER_OF_ROWS(number, rows)                                                            \
    namespace {                                                                                  \
    class ClSMBIOSType##number final : public ClSMBIOSType {                                     \
      public:                                                                                    \
        ClSMBIOSType##number() : ClSMBIOSType(number) {}                                         \
        void PrintStructure(const uint8_t* pData) override { PrintRows(RowsOf<rows>(), pData); } \
    };                                                                                           \
    }                                                                                            \
    ClSMBIOSType* NewType##number(const DecoderInput_t&) { return new (std::nothrow) ClSMBIOSType##number; }

// The same with its description, if no rendering needs to be explained.
#define ROWS_DECODER(number, rows) \
    DECODER_OF_ROWS(number, rows)  \
    void DescribeType##number(ClDescription& description) { description.Rows(RowsOf<rows>()); }
