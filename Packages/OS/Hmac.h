// Cryptography, from a library that is kept or from the system.
#pragma once

#include <cstdint>
#include <memory>
#include <span>

// A key of any length for HMAC-SHA-256, made ready once for any number of messages.
class ClHmacKey {
  public:
    explicit ClHmacKey(std::span<const uint8_t> key);
    ~ClHmacKey();
    ClHmacKey(const ClHmacKey&) = delete;
    ClHmacKey& operator=(const ClHmacKey&) = delete;

    // Computes the HMAC of a message. False if the system doesn't offer it.
    bool Compute(std::span<const uint8_t> message, std::span<uint8_t, 32> mac) const;

    struct State_t;  // the system's part

  private:
    std::unique_ptr<State_t> m_state;
};

// The same for a single message.
inline bool os_HmacSha256(std::span<const uint8_t> key, std::span<const uint8_t> message, std::span<uint8_t, 32> mac) {
    return ClHmacKey(key).Compute(message, mac);
}

// Computes the SHA-256 of a message. False if the system doesn't offer it.
bool os_Sha256(std::span<const uint8_t> message, std::span<uint8_t, 32> hash);

// Fills a key with random bytes that nobody can predict. False if the system has none.
bool os_FillRandom(std::span<uint8_t> key);
