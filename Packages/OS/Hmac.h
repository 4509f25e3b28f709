// Cryptography, from a library that is kept or from the system.
#pragma once

#include <cstdint>
#include <span>

// Computes the HMAC-SHA-256 of a message under a key of any length. False if the system doesn't offer it.
bool os_HmacSha256(std::span<const uint8_t> key, std::span<const uint8_t> message, std::span<uint8_t, 32> mac);

// Computes the SHA-256 of a message. False if the system doesn't offer it.
bool os_Sha256(std::span<const uint8_t> message, std::span<uint8_t, 32> hash);

// Fills a key with random bytes that nobody can predict. False if the system has none.
bool os_FillRandom(std::span<uint8_t> key);
