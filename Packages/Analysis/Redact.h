// Replaces what tells a machine from others of its kind by pseudonyms, so that its table can be given away.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "Packages/Analysis/Pseudonyms.h"

struct RedactOptions_t {
    uint16_t version = 0x0300;  // of the table, as 0304h for 3.4
    bool keepsVendor = false;   // leaves structures of unknown types, but for values that are known from elsewhere
};

// Replaces the values in place. Lengths, and the fact states of what is replaced, stay the same. Needs time in
// proportion to the table. False if an HMAC can't be computed; the table is worthless then.
// others  other bytes of the machine: the table's values, MAC addresses and UUIDs as text are replaced there as well
bool RedactTable(std::span<uint8_t> table, const RedactOptions_t& options, const Hmac_t& hmac,
                 std::span<const std::span<uint8_t>> others = {});

// How a fact is replaced.
enum class Redaction_t : uint8_t { kText, kUuid, kNumber, kInterface, kProtocol };

// A kind of fact that is replaced in structures of the standard's types.
struct RedactedFact_t {
    uint8_t type;
    char key[29];
    Redaction_t how;
};
std::span<const RedactedFact_t> RedactedFacts();
// What of the fact is replaced.
std::string_view WhatIsReplaced(Redaction_t how);
