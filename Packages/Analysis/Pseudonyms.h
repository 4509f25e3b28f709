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
#include <vector>

#include "Packages/Format/Ascii.h"

// Computes the HMAC-SHA-256 of a message under the user's key. False if it can't be computed.
using Hmac_t = std::function<bool(std::span<const uint8_t> message, std::span<uint8_t, 32> mac)>;

using Uuid_t = std::array<uint8_t, 16>;
using MacAddress_t = std::array<uint8_t, 6>;

// Remembers texts and what was made of them, each at one place, where a new one takes the place of an old one. So it
// takes no more memory for very many texts, and none is lost but time.
class ClRecent {
  public:
    // With so many places at most, a power of two.
    explicit ClRecent(size_t most) : m_most(most) {}
    // Returns what was made of a text, to be filled if it `isNew`.
    std::string& Find(std::string_view text, bool* isNew);

  private:
    struct Entry_t {
        std::string text, made;
        bool isUsed = false;
    };
    const size_t m_most;
    std::vector<Entry_t> m_entries;
    size_t m_taken = 0;  // places since the last growth
};

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
    using Mac_t = std::array<uint8_t, 32>;

    Mac_t MacOf(std::string_view message);
    void Draw(std::string_view message, std::span<uint8_t> bytes);
    void Permute(std::span<uint8_t> symbols, std::span<const uint16_t> radices, std::string_view context);
    void DrawOften(std::string_view message, std::span<uint8_t> bytes);
    std::string LowerText(const std::string& text);

    const Hmac_t& m_hmac;
    bool m_hasFailed = false;
    ClRecent m_texts{1u << 12}, m_bytes{1u << 12};  // values and their pseudonyms
    ClRecent m_draws{1u << 16};                     // messages of short texts, and what was drawn
    int m_vainSearches = 0;                         // in it, above those that found something
    // Of the text at hand. They keep their memory.
    std::string m_context, m_message;
    std::vector<uint8_t> m_symbols, m_drawn;
    std::vector<uint16_t> m_radices;
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
