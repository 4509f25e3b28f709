// The package: set-up and tear-down, the sweep, and the items that a host reads.
#include "Sources/Quorlin.h"

#include <algorithm>
#include <memory>
#include <new>

#include "Packages/CrashReport/CrashReport.h"
#include "Packages/FERROXExternal/StructureStore/Machine.h"
#include "Packages/FERROXExternal/StructureStore/StoreHost.h"
#include "Packages/OS/Memory.h"
#include "Packages/OS/OS.h"
#include "Sources/PackageTrace.h"
#include "Sources/SMBIOSType.h"

#define TRACE(function, level, ...) PACKAGE_TRACE("Sources\\Quorlin", "Quorlin::" function, level, __VA_ARGS__)

DebugHandle_t packageTraceHandle = nullptr;

namespace {

constexpr uint32_t kSignatureMask = 0x0F0FF0;  // extended model, family and model, without stepping and type
constexpr uint32_t kRecordHead = sizeof(uint32_t);
constexpr uint32_t kBatch = 255;  // structures of one PrintStructure call

}  // namespace

Quorlin::Quorlin(uint8_t presetType) : m_items(std::make_unique<ClItemList>()), m_presetType(presetType) {}

Quorlin::~Quorlin() = default;

status_t Quorlin::Initialize() {
    InstallCrashReport();
    return BringUp();
}

status_t Quorlin::BringUp() {
    // Without a trace handle the package runs without trace.
    DebugLibInit("Quorlin", &packageTraceHandle);
    m_cursor = 0;
    m_smbiosMajor = 0;
    m_smbiosMinor = 0;
    m_hadTooManyItems = false;
    m_items->Clear();
    CPUIDRecord_t cpuid = {};
    cpuid.Eax = 1;
    uint8_t entry[kEntryBufferSize] = {};
    status_t status = LibSMBIOSInit(entry);
    if (status != kSuccess) {
        TRACE("Initialize", kErrorExit, "\nLibSMBIOSInit failed with return status : 0x%x", status);
        return status;
    }
    m_smbiosMajor = entry[6];
    m_smbiosMinor = entry[7];
    status = CurrentMachine()->ReadCPUID(kAnyProcessor, &cpuid);
    if (status != kSuccess) {
        TRACE("Initialize", kErrorExit, "\nReadCPUID failed with return status : 0x%x", status);
        return kFailure;
    }
    m_processorSignature = cpuid.Eax & kSignatureMask;
    return m_presetType == kSweep ? GetTypes(kSweep) : kSuccess;
}

status_t Quorlin::UnInitialize() {
    m_items->Clear();
    const status_t status = HoldsStore() ? LibSMBIOSExit() : kSuccess;
    m_smbiosMajor = m_smbiosMinor = 0;
    // The last reference frees the handle, so it must not be used any more.
    const bool isLast = packageTraceHandle != nullptr && packageTraceHandle->RefCount == 1;
    DebugLibExit(packageTraceHandle);
    if (isLast) packageTraceHandle = nullptr;
    return status;
}

status_t Quorlin::GetItemByName(std::string name) {
    if (!name.empty()) return kFailure;
    TRACE("GetItemByName", kError, "\nNULL Pointer:");
    return kBadValue;
}

status_t Quorlin::GetNextItem(std::string& text) {
    if (m_cursor >= m_items->Size()) {
        TRACE("GetNextItem", kInfo, "\nNo more items");
        return kFailure;
    }
    const Item_t& item = Item(m_cursor);
    try {
        text.resize(item.MostLineBytes());
    } catch (const std::bad_alloc&) {
        TRACE("GetNextItem", kError, "\nNULL Pointer:");
        return kNoMemory;
    }
    text.resize(static_cast<size_t>(item.PutLine(text.data()) - text.data()));
    m_cursor++;
    return kSuccess;
}

void Quorlin::BeginCount(size_t given) {
    const TableFacts_t* facts = FactsOfTable();
    const size_t byBytes = facts == nullptr ? 0 : size_t{kMostItemsPerByte} * facts->length;
    const size_t most = std::max<size_t>(byBytes, kAlwaysAllowedItems);
    m_itemsLeft = most > given ? most - given : 0;
}

status_t Quorlin::GetTypes(uint8_t SMBIOSStructNumber) {
    const ClItemList::Mark_t before = m_items->Mark();
    BeginCount(before.size);
    // The records outlive the items only if this package has a reference to the store.
    m_items->KeepTexts(!HoldsStore());
    status_t status = kFailure;
    if (SMBIOSStructNumber != kSweep) {
        status = DecodeType(SMBIOSStructNumber, *m_items, nullptr);
    } else {
        for (const TypeRow_t& row : TypeRows())
            if (row.sweep == Sweep_t::kSwept && status != kNoMemory) status = DecodeType(row.type, *m_items, nullptr);
    }
    if (status == kNoMemory) m_items->ReturnTo(before);
    return status;
}

ClSMBIOSType* Quorlin::DecoderFactory(uint8_t type) const {
    return NewDecoder(type, {m_processorSignature, m_smbiosMajor, m_smbiosMinor});
}

status_t Quorlin::VisitTypes(std::span<const uint8_t> types, const Visit_t& visit) {
    ClItemList items;
    BeginCount(0);
    status_t status = kSuccess;
    for (const uint8_t type : types) {
        if (!StoreHasType(type)) continue;
        status = DecodeType(type, items, &visit);
        if (status == kNoMemory) break;
    }
    return status;
}

const Item_t& Quorlin::Item(uint32_t index) const { return (*m_items)[index]; }

uint32_t Quorlin::GetItemCount() { return static_cast<uint32_t>(m_items->Size()); }

std::string Quorlin::GetItemValue(uint32_t index) try {
    return index < m_items->Size() ? std::string(Item(index).value) : std::string();
} catch (const std::bad_alloc&) {
    return {};
}

// Decodes all structures of a type with one decoder.
status_t Quorlin::DecodeType(uint8_t type, ClItemList& items, const Visit_t* visit) {
    uint8_t** records = nullptr;
    uint8_t count = 0;
    const status_t status = GetSMBIOSStruture(type, &records, &count);
    if (status != kSuccess || count == 0) return status;
    std::unique_ptr<uint8_t*, decltype(&os_free)> owner(records, os_free);
    const std::unique_ptr<ClSMBIOSType> decoder(DecoderFactory(type));
    if (decoder == nullptr)
        TRACE("GetTypes", kError, "\nInvalid SMBIOSStructure");
    else
        decoder->UseList(&items);
    bool goesOn = true;
    const auto print = [&](uint8_t** first, uint8_t number) {
        if (visit == nullptr) return PrintStructure(decoder.get(), number, first, type);
        for (uint8_t place = 0; place < number && goesOn; place++) {
            if (PrintStructure(decoder.get(), 1, first + place, type) == kNoMemory) return kNoMemory;
            goesOn = (*visit)(first[place] + kRecordHead, items);
            items.Clear();
            if (decoder != nullptr) decoder->UseList(&items);
        }
        return kSuccess;
    };
    if (print(records, count) == kNoMemory) return kNoMemory;
    if (!goesOn || count < kBatch || (decoder == nullptr && visit == nullptr)) return status;
    // More than an 8-bit count: the rest goes to the same decoder, so that the numbering goes on.
    uint32_t rest = 0;
    if (GetSMBIOSStrutureFrom(type, kBatch, &records, &rest) != kSuccess) return status;
    owner.reset(records);
    for (uint32_t first = 0; first < rest && goesOn; first += kBatch)
        if (print(records + first, static_cast<uint8_t>(std::min(kBatch, rest - first))) == kNoMemory) return kNoMemory;
    return status;
}

status_t Quorlin::PrintStructure(ClSMBIOSType* pType, uint8_t NumOfStructs, uint8_t** pData, uint8_t) {
    if (pType == nullptr || pData == nullptr) {
        TRACE("PrintStructure", kError, "\nNULL Pointer:");
        return kBadValue;
    }
    for (uint8_t place = 0; place < NumOfStructs; place++) {
        pType->PrintStructure(pData[place] + kRecordHead);
        const size_t added = pType->PassItems();  // they are in the package's list
        if (added > m_itemsLeft) {
            TRACE("PrintStructure", kError, "\nMore items than a table may give");
            m_hadTooManyItems = true;
            return kNoMemory;
        }
        m_itemsLeft -= added;
    }
    return kSuccess;
}

BaseAbstraction* CreateSmbiosPackage() { return CreateSmbiosPackageForKovr(Quorlin::kSweep); }

BaseAbstraction* CreateSmbiosPackageForKovr(uint8_t presetType) {
    packageTraceHandle = nullptr;
    try {
        return new Quorlin(presetType);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void DestroySmbiosPackage(BaseAbstraction* package) { delete package; }

void DestroySmbiosPackageForKovr(BaseAbstraction* package) { delete package; }
