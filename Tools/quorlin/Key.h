// The key of a redaction, and the options of commands that redact on request.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "Packages/Analysis/Pseudonyms.h"
#include "Tools/quorlin/CommandLine.h"

// The --key option; it fills `file`.
Option_t KeyOption(std::string* file);
// Reads the key in a file, or makes a random one if `file` is empty. False, with a line on standard error, on failure.
bool MakeKey(const std::string& file, std::vector<uint8_t>* key);
inline constexpr char kNoHmac[] = "the system has no HMAC-SHA-256";
// Computes HMACs under the key.
Hmac_t HmacUnder(const std::vector<uint8_t>& key);

// For commands that redact on request: --redact and the options that go with it.
struct RedactChoice_t {
    bool isWanted = false, keepsVendor = false;
    std::string keyFile;

    // `help` is that of --redact.
    void AddOptions(const char* help, std::vector<Option_t>& options);
    // Throws BadUsage_t for options without --redact.
    void Check() const;
};
