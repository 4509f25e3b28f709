// Decodes a whole table as a host would: a sweep, then each type by its number.
#pragma once

#include "Fuzz/Fuzz.h"
#include "Packages/FERROXExternal/StructureStore/StoreHost.h"
#include "Sources/Quorlin.h"
#include "Sources/SMBIOSType.h"

// Reads the items that are left. Each must be a line "KEY", "VALUE".
inline void ReadItems(BaseAbstraction& package, uint32_t expected) {
    uint32_t count = 0;
    for (std::string line; package.GetNextItem(line) == kSuccess; count++) {
        Require(line.size() >= 6 && line.front() == '"' && line.back() == '"');
        Require(line.find("\", \"") != std::string::npos);
    }
    Require(count == expected);
}

// The source's table must outlive the call.
inline void DecodeTable(const ImageSource_t& source) {
    Require(SetImageMachine(&source) == kSuccess);
    auto* package = static_cast<Quorlin*>(CreateSmbiosPackage());
    Require(package != nullptr);
    const auto gives = [package](status_t status) {
        return status == kSuccess || (status == kNoMemory && package->HadTooManyItems());
    };
    Require(gives(package->Initialize()));
    const uint32_t swept = package->GetItemCount();
    ReadItems(*package, swept);
    for (uint8_t type = 0; type < Quorlin::kSweep; type++) Require(gives(package->GetTypes(type)));
    const uint32_t all = package->GetItemCount();
    Require(all >= swept);
    ReadItems(*package, all - swept);
    for (uint32_t index = 0; index < all; index++) Require(package->GetItemValue(index) == package->Item(index).value);
    Require(package->GetItemValue(all).empty());
    Require(package->UnInitialize() == kSuccess);
    // With version 0.0 a package believes that there is no table, and leaves the store up.
    if (StoreIsUp()) Require(LibSMBIOSExit() == kSuccess);
    DestroySmbiosPackage(package);
}
