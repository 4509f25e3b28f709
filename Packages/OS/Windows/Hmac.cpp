#include "Packages/OS/Hmac.h"

#include <vector>

#include "Packages/OS/Windows/Windows.h"
// Needs the types of the other.
#include <bcrypt.h>

namespace {

// The functions of bcrypt.dll. It is loaded when it is needed, so that a start doesn't take longer.
class ClBCrypt {
  public:
    ClBCrypt() : m_library(LoadLibraryExW(L"bcrypt.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32)) {
        if (m_library == nullptr) return;
        Find("BCryptCreateHash", createHash);
        Find("BCryptHashData", hashData);
        Find("BCryptFinishHash", finishHash);
        Find("BCryptDestroyHash", destroyHash);
        Find("BCryptGenRandom", genRandom);
        decltype(&BCryptOpenAlgorithmProvider) open = nullptr;
        Find("BCryptOpenAlgorithmProvider", open);
        if (open != nullptr && open(&hmac, BCRYPT_SHA256_ALGORITHM, nullptr, BCRYPT_ALG_HANDLE_HMAC_FLAG) != 0)
            hmac = nullptr;
        if (open != nullptr && open(&sha256, BCRYPT_SHA256_ALGORITHM, nullptr, 0) != 0) sha256 = nullptr;
    }

    // Computes the hash of a message by an algorithm, with a key if it takes one.
    bool Hash(BCRYPT_ALG_HANDLE algorithm, std::span<const uint8_t> key, std::span<const uint8_t> message,
              std::span<uint8_t, 32> hash) const {
        BCRYPT_HASH_HANDLE state = nullptr;
        if (algorithm == nullptr || createHash == nullptr || hashData == nullptr || finishHash == nullptr ||
            destroyHash == nullptr ||
            createHash(algorithm, &state, nullptr, 0, Input(key), static_cast<ULONG>(key.size()), 0) != 0)
            return false;
        const bool isDone = hashData(state, Input(message), static_cast<ULONG>(message.size()), 0) == 0 &&
                            finishHash(state, hash.data(), static_cast<ULONG>(hash.size()), 0) == 0;
        destroyHash(state);
        return isDone;
    }

    BCRYPT_ALG_HANDLE hmac = nullptr, sha256 = nullptr;
    decltype(&BCryptGenRandom) genRandom = nullptr;

  private:
    decltype(&BCryptCreateHash) createHash = nullptr;
    decltype(&BCryptHashData) hashData = nullptr;
    decltype(&BCryptFinishHash) finishHash = nullptr;
    decltype(&BCryptDestroyHash) destroyHash = nullptr;

    // The system doesn't change what it reads, though its functions don't say so.
    static PUCHAR Input(std::span<const uint8_t> bytes) { return const_cast<PUCHAR>(bytes.data()); }
    template <class Function>
    void Find(const char* name, Function& function) {
        function = reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(m_library, name)));
    }

    HMODULE m_library;
};

// It stays until the process ends.
const ClBCrypt& BCrypt() {
    static const ClBCrypt crypt;
    return crypt;
}

}  // namespace

struct ClHmacKey::State_t {
    std::vector<uint8_t> key;
};

ClHmacKey::ClHmacKey(std::span<const uint8_t> key)
    : m_state(std::make_unique<State_t>(std::vector<uint8_t>(key.begin(), key.end()))) {}

ClHmacKey::~ClHmacKey() = default;

bool ClHmacKey::Compute(std::span<const uint8_t> message, std::span<uint8_t, 32> mac) const {
    return BCrypt().Hash(BCrypt().hmac, m_state->key, message, mac);
}

bool os_Sha256(std::span<const uint8_t> message, std::span<uint8_t, 32> hash) {
    return BCrypt().Hash(BCrypt().sha256, {}, message, hash);
}

bool os_FillRandom(std::span<uint8_t> key) {
    const ClBCrypt& crypt = BCrypt();
    return crypt.genRandom != nullptr &&
           crypt.genRandom(nullptr, key.data(), static_cast<ULONG>(key.size()), BCRYPT_USE_SYSTEM_PREFERRED_RNG) == 0;
}
