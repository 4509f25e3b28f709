// The package: what a host drives.
//
// A host creates a package, initialises it, may ask for one more type, and reads items one by one; then it
// uninitialises the package and destroys it. Between UnInitialize and Destroy another Initialize is allowed.
//
// Calls      Initialize, then GetTypes, GetNextItem, GetItemCount, GetItemValue in any order, then UnInitialize.
// Status     1 success, 2 bad argument, 3 out of memory, 5 failure or nothing more.
// Ownership  A package owns its items from the GetTypes that made them until UnInitialize.
// Threads    A package is for one thread at a time; set-up and tear-down of packages for one thread of the process.
// ABI        The order of the virtual operations is fixed. Text crosses the boundary as std::string, so a host is built
//            with the same compiler and runtime as the library.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>

#include "Packages/OS/Export.h"
#include "Packages/OS/Status.h"

struct Item_t;
class ClItemList;
class ClSMBIOSType;

class BaseAbstraction {
  public:
    // Brings up trace, table and processor signature, and decodes all swept types unless the package has a preset
    // type. 5 if the machine can't be read, has no table or has no processor signature.
    virtual status_t Initialize() = 0;
    // Destroys all items and releases the table. Harmless after an Initialize that failed.
    virtual status_t UnInitialize() = 0;
    // No lookup is implemented: 2 for an empty name, 5 for any other.
    virtual status_t GetItemByName(std::string name) = 0;
    // The item under the cursor as one line, "KEY", "VALUE", and the cursor moves on. A group item's key ends in
    // "#GROUPNAME". The value comes without double quotes, and a value of one blank as nothing. 5 at the end, with
    // `text` unchanged; 3 if memory runs out, with an empty `text` and the cursor unchanged.
    virtual status_t GetNextItem(std::string& text) = 0;
    virtual ~BaseAbstraction() = default;
    virtual status_t ReservedOperation1() { return kFailure; }
    virtual status_t ReservedOperation2() { return kFailure; }
};

// Not final: a host's calls have to go through the table of virtual operations, as the operations themselves aren't
// exported.
class Quorlin : public BaseAbstraction {
  public:
    static constexpr uint8_t kSweep = 255;
    // Groups that name groups multiply without bound.
    static constexpr uint32_t kMostItemsPerByte = 8, kAlwaysAllowedItems = 100000;

    explicit Quorlin(uint8_t presetType);
    ~Quorlin() override;
    Quorlin(const Quorlin&) = delete;
    Quorlin& operator=(const Quorlin&) = delete;

    status_t Initialize() override;
    status_t UnInitialize() override;
    status_t GetItemByName(std::string name) override;
    status_t GetNextItem(std::string& text) override;

    // Appends the items of one type, or of all swept types for 255. The cursor stays. A type that the table doesn't
    // have, or that has no decoder, adds nothing and returns 1. Returns 3 and appends nothing if the package would get
    // more items than a table may have: kMostItemsPerByte for each of its bytes, but at least kAlwaysAllowedItems.
    virtual status_t GetTypes(uint8_t SMBIOSStructNumber);
    // The number of items, group items included, whatever the cursor.
    virtual uint32_t GetItemCount();
    // The value of an item as decoded, or empty text after the last item and if memory runs out.
    virtual std::string GetItemValue(uint32_t index);

    // Initialize without the crash report, for this tree's own hosts.
    status_t BringUp();
    // An item without a copy, for this tree's own hosts; it is valid until the next GetTypes or UnInitialize. Expects
    // an index below GetItemCount.
    const Item_t& Item(uint32_t index) const;
    // Decodes these types as GetTypes does, for this tree's own hosts, but keeps no items: `visit` gets each structure
    // with its own items, or with none, for the length of the call. So only one structure's items exist at a time.
    // Returns 3 when the items are more than a table may have, after visits of the structures before. `visit` returns
    // whether to go on with the structures of this type.
    using Visit_t = std::function<bool(const uint8_t* structure, const ClItemList& items)>;
    status_t VisitTypes(std::span<const uint8_t> types, const Visit_t& visit);
    // Whether GetTypes or VisitTypes has returned 3 since BringUp.
    bool HadTooManyItems() const { return m_hadTooManyItems; }

  private:
    void BeginCount(size_t given);
    status_t DecodeType(uint8_t type, ClItemList& items, const Visit_t* visit);
    ClSMBIOSType* DecoderFactory(uint8_t type) const;
    status_t PrintStructure(ClSMBIOSType* pType, uint8_t NumOfStructs, uint8_t** pData, uint8_t SMBIOSType);
    bool HoldsStore() const { return m_smbiosMajor != 0 || m_smbiosMinor != 0; }

    uint32_t m_cursor = 0;
    uint32_t m_processorSignature = 0;
    uint8_t m_smbiosMajor = 0;  // with the minor: not 0 while this package has a reference to the store
    uint8_t m_smbiosMinor = 0;
    std::unique_ptr<ClItemList> m_items;
    size_t m_itemsLeft = 0;  // that the current call may still add
    bool m_hadTooManyItems = false;
    uint8_t m_presetType;
};

extern "C" {
// A new package; null without memory. It belongs to the caller.
QUORLIN_API BaseAbstraction* CreateSmbiosPackage();
// A package that doesn't sweep at Initialize; its host asks for types with GetTypes. A preset of 255 sweeps.
QUORLIN_API BaseAbstraction* CreateSmbiosPackageForKovr(uint8_t presetType);
// Both destroy packages of either Create; null does nothing.
QUORLIN_API void DestroySmbiosPackage(BaseAbstraction* package);
QUORLIN_API void DestroySmbiosPackageForKovr(BaseAbstraction* package);
}
