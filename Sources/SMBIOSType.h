// The base class of the decoders. A decoder turns structures into items.
#pragma once

#include <cstddef>
#include <cstdint>
#include <new>
#include <string>
#include <string_view>

#include "Packages/OS/Status.h"
#include "Sources/Items.h"
#include "Sources/RowPacker.h"
#include "Sources/Types.h"

// Base of the decoders. A decoder serves all structures of one type during one GetTypes of a package.
class ClSMBIOSType {
  public:
    virtual ~ClSMBIOSType() = default;
    // Expects a type that has a row in the table of types.
    explicit ClSMBIOSType(uint8_t type) : m_row(*FindType(type)) {}
    ClSMBIOSType(const ClSMBIOSType&) = delete;
    ClSMBIOSType& operator=(const ClSMBIOSType&) = delete;

    // Adds the items of the structure at `pData`, a record's body. Never throws and never writes into the record.
    virtual void PrintStructure(const uint8_t* pData) = 0;

    // Copies the next unread item to `output`, its key as text. Status: 1; 2 for a null `output`; 5 when there is none.
    status_t GetNextItem(ItemPair* output);
    // Appends all further items to `list`, which must outlive the decoder.
    void UseList(ClItemList* list);
    // Skips the unread items, for callers that gave a list of their own. Returns how many there were.
    size_t PassItems();

    static std::string GetDecimalString(uint32_t value);
    // HexText of Rows.h.
    static std::string GetHexString(uint64_t value, uint32_t width);
    // RecordString of Structure.h.
    static const char* GetString(uint32_t strNum, const uint8_t* pData);
    // TextOf for the words of the rows that have the rendering of this name.
    static std::string_view GetErrorGranularityString(uint8_t code);
    static std::string_view GetErrorOperationString(uint8_t code);
    static std::string_view GetErrorTypeString(uint8_t code);
    static std::string_view GetOnboardDeviceTypeString(uint8_t code);

  protected:
    // Adds one item, a group item unless `group` is 0. If memory runs out, the item is dropped.
    void Fill_String_Data(ClText key, ClText value, uint8_t group);
    // Counts the structure whose items follow. `pData` may be null.
    void BeginStructure(const uint8_t* pData);
    // The same, and adds what the type's structures begin with: the title, and "Type", "Length" and "Handle". Traces
    // and returns false for a null `pData`.
    bool PrintHead(const uint8_t* pData, const char* nullTrace = "\npData is NULL");
    // The structure in the view of its type.
    ClStructure View(const uint8_t* pData) const;
    // PrintHead, then the items of `rows`.
    void PrintRows(const Rows_t& rows, const uint8_t* pData);
    // `shift` moves the offsets of the rows, for those of an entry after the first.
    void PrintItems(const Rows_t& rows, const ClStructure& structure, size_t shift = 0);
    // Items of one key for strings 1 to `count` of the area.
    void PrintStrings(std::string_view key, uint8_t count, const ClStructure& structure);
    // Adds an item. If memory runs out, the item is dropped; the items after it are still added.
    template <class Work>
    static void OrDrop(Work addItem) {
        try {
            addItem();
        } catch (const std::bad_alloc&) {
            TraceDrop();
        }
    }

    uint32_t m_processorSignature = 0;  // given to the decoders of types 4 and 148 only
    int32_t m_instanceCounter = 0;

  private:
    static void TraceDrop();

    const TypeRow_t& m_row;
    ClItemList m_ownItems;
    ClItemList* m_items = &m_ownItems;
    size_t m_readCursor = 0;
    ItemFacts_t m_structure;  // at hand
};
