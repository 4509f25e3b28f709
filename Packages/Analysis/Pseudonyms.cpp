#include "Packages/Analysis/Pseudonyms.h"

#include <algorithm>
#include <numeric>
#include <vector>

#include "Packages/Standard/Facts.h"

namespace {

// The kinds of values begin the messages, so that the HMACs of one kind say nothing about another.
constexpr char kTextMark = 't', kBytesMark = 'b', kUuidMark = 'u', kMacAddressMark = 'm';

// Bytes up to this number are permuted. The HMACs of more bytes are hardly ever equal, and need less time.
constexpr size_t kMostPermutedBytes = 2;

int HexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    const char lower = LowerCase(c);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

// Reads two digits at `place`, if they are there.
bool ReadHex(std::string_view text, size_t place, uint8_t* byte) {
    if (place + 2 > text.size()) return false;
    const int high = HexDigit(text[place]), low = HexDigit(text[place + 1]);
    *byte = static_cast<uint8_t>(high << 4 | low);
    return high >= 0 && low >= 0;
}

// The sets of characters that are replaced by each other.
constexpr std::string_view kDigits = "0123456789";
constexpr std::string_view kLetters = "abcdefghijklmnopqrstuvwxyz";
constexpr std::string_view kPunctuation = "!\"#$%&'()*+,-./:;<=>?@[\\]^_`{|}~";
constexpr auto kHighBytes = [] {
    std::array<char, 128> bytes = {};
    for (size_t i = 0; i < bytes.size(); i++) bytes[i] = static_cast<char>(0x80 + i);
    return bytes;
}();

// The set that a character in lower case is from. Empty if it stays.
std::string_view AlphabetOf(char c, bool isPunctuationReplaced) {
    if (c >= '0' && c <= '9') return kDigits;
    if (c >= 'a' && c <= 'z') return kLetters;
    if (static_cast<unsigned char>(c) >= 0x80) return {kHighBytes.data(), kHighBytes.size()};
    const bool isPunctuation = isPunctuationReplaced && kPunctuation.find(c) != std::string_view::npos;
    return isPunctuation ? kPunctuation : std::string_view();
}

bool IsEmpty(std::span<const uint8_t> bytes) {
    return std::ranges::all_of(bytes, [](uint8_t byte) { return byte == 0x00; }) ||
           std::ranges::all_of(bytes, [](uint8_t byte) { return byte == 0xFF; });
}

std::string Message(char mark, std::span<const uint8_t> bytes) {
    std::string message(1, mark);
    message.append(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    return message;
}

}  // namespace

void TakeLetterCase(std::string_view from, std::span<char> text) {
    const auto isUpper = [](char c) { return c >= 'A' && c <= 'Z'; };
    const bool hasUpper = std::ranges::any_of(from, isUpper);
    for (size_t i = 0; i < text.size(); i++) {
        const bool isLetter = isUpper(from[i]) || (from[i] >= 'a' && from[i] <= 'z');
        // In hexadecimal, a letter may stand where a digit was.
        const bool becomesUpper = isLetter ? isUpper(from[i]) : hasUpper;
        if (becomesUpper && text[i] >= 'a' && text[i] <= 'z') text[i] = static_cast<char>(text[i] - 'a' + 'A');
    }
}

Uuid_t Swapped(const Uuid_t& uuid) {
    Uuid_t swapped = uuid;
    std::reverse(swapped.begin(), swapped.begin() + 4);
    std::swap(swapped[4], swapped[5]);
    std::swap(swapped[6], swapped[7]);
    return swapped;
}

bool BeginsWithMacAddress(std::string_view text, MacAddress_t* address) {
    if (text.size() < kMacAddressText || (text[2] != ':' && text[2] != '-')) return false;
    for (size_t i = 0; i < address->size(); i++)
        if (!ReadHex(text, 3 * i, &(*address)[i]) || (i != 0 && text[3 * i - 1] != text[2])) return false;
    return true;
}

bool BeginsWithUuid(std::string_view text, Uuid_t* uuid) {
    size_t place = 0;
    for (size_t i = 0; i < uuid->size(); i++, place += 2) {
        if ((i == 4 || i == 6 || i == 8 || i == 10) && (place >= text.size() || text[place++] != '-')) return false;
        if (!ReadHex(text, place, &(*uuid)[i])) return false;
    }
    return true;
}

std::string HexText(std::span<const uint8_t> bytes, std::string_view between) {
    static constexpr char kHexDigits[] = "0123456789abcdef";
    std::string text;
    for (const uint8_t byte : bytes) {
        if (!text.empty()) text += between;
        text += kHexDigits[byte >> 4];
        text += kHexDigits[byte & 15];
    }
    return text;
}

std::string UuidText(const Uuid_t& uuid) {
    std::string text = HexText(uuid);
    for (const size_t dash : {8u, 13u, 18u, 23u}) text.insert(dash, 1, '-');
    return text;
}

std::string& ClRecent::Find(std::string_view text, bool* isNew) {
    constexpr size_t kFirst = 64;
    if (m_taken >= m_entries.size() && m_entries.size() < m_most) {
        m_entries = std::vector<Entry_t>(m_entries.empty() ? kFirst : 4 * m_entries.size());
        m_taken = 0;
    }
    Entry_t& entry = m_entries[std::hash<std::string_view>()(text) & (m_entries.size() - 1)];
    *isNew = !entry.isUsed || entry.text != text;
    if (*isNew) {
        entry.text = text;
        entry.isUsed = true;
        m_taken++;
    }
    return entry.made;
}

ClPseudonyms::Mac_t ClPseudonyms::MacOf(std::string_view message) {
    Mac_t mac = {};
    const std::span all(reinterpret_cast<const uint8_t*>(message.data()), message.size());
    m_hasFailed = m_hasFailed || !m_hmac(all, mac);
    return mac;
}

// Draws as many bytes as are needed from the HMAC of a message.
void ClPseudonyms::Draw(std::string_view message, std::span<uint8_t> bytes) {
    Mac_t mac = MacOf(message);
    if (bytes.size() <= mac.size()) {
        std::copy_n(mac.begin(), bytes.size(), bytes.begin());
        return;
    }
    const std::string seed(mac.begin(), mac.end());
    for (uint32_t block = 0; !bytes.empty(); block++) {
        std::string next = seed;
        for (uint32_t shift = 0; shift < 32; shift += 8) next += static_cast<char>(block >> shift & 0xFF);
        mac = MacOf(next);
        const size_t size = std::min(bytes.size(), mac.size());
        std::copy_n(mac.begin(), size, bytes.begin());
        bytes = bytes.subspan(size);
    }
}

// The same for messages of which many are equal, if a table has very many short texts.
void ClPseudonyms::DrawOften(std::string_view message, std::span<uint8_t> bytes) {
    constexpr int kMostVain = 100000;
    if (m_vainSearches > kMostVain) return Draw(message, bytes);
    bool isNew = false;
    std::string& drawn = m_draws.Find(message, &isNew);
    m_vainSearches += isNew ? 1 : -1;
    if (isNew) {
        Draw(message, bytes);
        drawn.assign(bytes.begin(), bytes.end());
    } else {
        std::ranges::copy(drawn, bytes.begin());
    }
}

// A Feistel network of five rounds. The last two undo the first two, and the one between them changes the first symbol
// in any case, so that no value stays what it is. `context` is what the permutation depends on besides the key.
void ClPseudonyms::Permute(std::span<uint8_t> symbols, std::span<const uint16_t> radices, std::string_view context) {
    constexpr char kLast = 4;
    constexpr size_t kFew = 2;  // so few symbols are the same in many texts
    const size_t half = (symbols.size() + 1) / 2;
    for (char round = 0; round <= kLast; round++) {
        const bool isFirstHalf = round % 2 == 0;
        const std::span<uint8_t> changed = isFirstHalf ? symbols.first(half) : symbols.subspan(half);
        const std::span<uint8_t> other = isFirstHalf ? symbols.subspan(half) : symbols.first(half);
        const std::span<const uint16_t> sizes = isFirstHalf ? radices.first(half) : radices.subspan(half);
        if (changed.empty()) continue;
        m_message = context;
        m_message += std::min(round, static_cast<char>(kLast - round));
        m_message.append(other.begin(), other.end());
        m_drawn.resize(changed.size());
        half <= kFew + 1 && other.size() <= kFew ? DrawOften(m_message, m_drawn) : Draw(m_message, m_drawn);
        for (size_t i = 0; i < changed.size(); i++) {
            auto step = static_cast<uint32_t>(m_drawn[i] % sizes[i]);
            // Steps without a common divisor pass through all symbols, so that some are no fillers.
            if (round == kLast / 2 && i == 0)
                while (std::gcd(step, uint32_t{sizes[i]}) != 1) step++;
            if (round > kLast / 2) step = sizes[i] - step;
            changed[i] = static_cast<uint8_t>((changed[i] + step) % sizes[i]);
        }
    }
}

std::string ClPseudonyms::LowerText(const std::string& text) {
    if (MacAddress_t address; text.size() == kMacAddressText && BeginsWithMacAddress(text, &address))
        return HexText(MacAddress(address), text.substr(2, 1));
    if (Uuid_t uuid; text.size() == kUuidText && BeginsWithUuid(text, &uuid)) return UuidText(Uuid(uuid));
    const bool isPunctuationReplaced = std::ranges::none_of(text, [](char c) { return !AlphabetOf(c, false).empty(); });
    m_symbols.clear();
    m_radices.clear();
    m_context = kTextMark;
    for (const char c : text) {
        const std::string_view alphabet = AlphabetOf(c, isPunctuationReplaced);
        m_context += alphabet.empty() ? c : alphabet[0];
        if (alphabet.empty()) continue;
        m_symbols.push_back(static_cast<uint8_t>(alphabet.find(c)));
        m_radices.push_back(static_cast<uint16_t>(alphabet.size()));
    }
    m_context += '\0';
    if (m_symbols.empty()) return text;  // of control characters and DEL
    std::string pseudonym = text;
    do {
        Permute(m_symbols, m_radices, m_context);
        size_t next = 0;
        for (char& c : pseudonym)
            if (const std::string_view alphabet = AlphabetOf(c, isPunctuationReplaced); !alphabet.empty())
                c = alphabet[m_symbols[next++]];
    } while (IsFiller(pseudonym) && !m_hasFailed);
    return pseudonym;
}

void ClPseudonyms::Text(std::span<char> text) {
    const std::string before(text.begin(), text.end());
    std::string lower = before;
    std::ranges::transform(lower, lower.begin(), LowerCase);
    bool isNew = false;
    std::string& pseudonym = m_texts.Find(lower, &isNew);
    if (isNew) pseudonym = LowerText(lower);
    std::ranges::copy(pseudonym, text.begin());
    TakeLetterCase(before, text);
}

Uuid_t ClPseudonyms::Uuid(const Uuid_t& uuid) {
    const Uuid_t other = Swapped(uuid);
    Uuid_t pseudonym;
    Draw(Message(kUuidMark, std::min(uuid, other)), pseudonym);
    return other < uuid ? Swapped(pseudonym) : pseudonym;
}

MacAddress_t ClPseudonyms::MacAddress(const MacAddress_t& address) {
    constexpr uint8_t kFlags = 3;
    MacAddress_t pseudonym;
    Draw(Message(kMacAddressMark, address), pseudonym);
    pseudonym[0] = static_cast<uint8_t>((pseudonym[0] & ~kFlags) | (address[0] & kFlags));
    return pseudonym;
}

void ClPseudonyms::Bytes(std::span<uint8_t> bytes) {
    if (IsEmpty(bytes)) return;
    const std::string message = Message(kBytesMark, bytes);
    bool isNew = false;
    std::string& pseudonym = m_bytes.Find(message, &isNew);
    if (isNew) {
        if (bytes.size() > kMostPermutedBytes) {
            Draw(message, bytes);
        } else {
            const std::vector<uint16_t> radices(bytes.size(), 256);
            do Permute(bytes, radices, Message(kBytesMark, {}));
            while (IsEmpty(bytes) && !m_hasFailed);
        }
        pseudonym.assign(bytes.begin(), bytes.end());
    }
    std::ranges::copy(pseudonym, bytes.begin());
}
