#include "Packages/OS/Hmac.h"

#include <sodium/crypto_auth_hmacsha256.h>
#include <sodium/crypto_hash_sha256.h>
#include <sys/random.h>

#include <cerrno>

struct ClHmacKey::State_t {
    crypto_auth_hmacsha256_state begun;  // with the key taken in
    bool isReady;
};

// These functions need no start of the library.
ClHmacKey::ClHmacKey(std::span<const uint8_t> key) : m_state(std::make_unique<State_t>()) {
    m_state->isReady = crypto_auth_hmacsha256_init(&m_state->begun, key.data(), key.size()) == 0;
}

ClHmacKey::~ClHmacKey() = default;

bool ClHmacKey::Compute(std::span<const uint8_t> message, std::span<uint8_t, 32> mac) const {
    static_assert(crypto_auth_hmacsha256_BYTES == mac.extent);
    crypto_auth_hmacsha256_state state = m_state->begun;
    return m_state->isReady && crypto_auth_hmacsha256_update(&state, message.data(), message.size()) == 0 &&
           crypto_auth_hmacsha256_final(&state, mac.data()) == 0;
}

bool os_Sha256(std::span<const uint8_t> message, std::span<uint8_t, 32> hash) {
    static_assert(crypto_hash_sha256_BYTES == hash.extent);
    return crypto_hash_sha256(hash.data(), message.data(), message.size()) == 0;
}

bool os_FillRandom(std::span<uint8_t> key) {
    while (!key.empty()) {
        const ssize_t got = getrandom(key.data(), key.size(), 0);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return false;
        key = key.subspan(static_cast<size_t>(got));
    }
    return true;
}
