// What stands for a value in a redacted table: as long as the value, of the same form, and made from HMACs of it.
//
// Equal values get equal pseudonyms in every table that is redacted under the same key, and different ones get
// different ones. For texts and short bytes that holds for certain, as they are permuted: of few characters, two HMACs
// would often be equal.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>

#include "Packages/Format/Ascii.h"

// Computes the HMAC-SHA-256 of a message under the user's key. False if it can't be computed.
using Hmac_t = std::function<bool(std::span<const uint8_t> message, std::span<uint8_t, 32> mac)>;

using Uuid_t = std::array<uint8_t, 16>;
using MacAddress_t = std::array<uint8_t, 6>;

class ClPseudonyms {
  public:
    explicit ClPseudonyms(const Hmac_t& hmac) : m_hmac(hmac) {}

    // Replaces a text without blanks around it: digits by digits, letters by letters in the same case, bytes above 7Fh
    // by such bytes. Other characters stay unless there is nothing else. A text in the form of a MAC address or a UUID
    // is replaced as such. The pseudonym is neither a filler nor the text itself. In other letter case, a text has the
    // same pseudonym in other letter case.
    void Text(std::span<char> text);
    // A UUID in the other byte order has the same pseudonym in the other byte order.
    Uuid_t Uuid(const Uuid_t& uuid);
    // Keeps whether the address is one of many devices, and whether it is locally administered.
    MacAddress_t MacAddress(const MacAddress_t& address);
    // Replaces bytes, unless they are all 00h or all FFh.
    void Bytes(std::span<uint8_t> bytes);

    // Whether an HMAC couldn't be computed, so that nothing is worth anything.
    bool HasFailed() const { return m_hasFailed; }

  private:
    void Draw(std::string message, std::span<uint8_t> bytes);
    void Permute(std::span<uint8_t> symbols, std::span<const uint16_t> radices, const std::string& context);
    std::string LowerText(const std::string& text);

    const Hmac_t& m_hmac;
    bool m_hasFailed = false;
    std::unordered_map<std::string, std::string> m_texts, m_bytes;  // values and their pseudonyms
};

// Gives a text in lower case the letter case of another one that is as long.
void TakeLetterCase(std::string_view from, std::span<char> text);

// A UUID in the other byte order.
Uuid_t Swapped(const Uuid_t& uuid);
// Whether `text` begins with a MAC address, with : or - between its bytes.
bool BeginsWithMacAddress(std::string_view text, MacAddress_t* address);
// Whether `text` begins with a UUID, with dashes.
bool BeginsWithUuid(std::string_view text, Uuid_t* uuid);
// The texts of bytes, in lower case and with a character between each; of a UUID with dashes.
std::string HexText(std::span<const uint8_t> bytes, std::string_view between = "");
std::string UuidText(const Uuid_t& uuid);
inline constexpr size_t kMacAddressText = 17, kUuidText = 36;
