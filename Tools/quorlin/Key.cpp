#include "Tools/quorlin/Key.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "Packages/OS/Hmac.h"
#include "Packages/OS/Program.h"
#include "Tools/quorlin/Output.h"

constexpr size_t kLeastKeyBytes = 16, kMostKeyBytes = 64u << 10, kNewKeyBytes = 32;

Option_t KeyOption(std::string* file) {
    return {.name = "--key",
            .typeName = "FILE",
            .help = "The key, 16 bytes or more; without it, a new one is made and thrown away",
            .target = file};
}

// Returns what is wrong with the file; empty if it is a key.
static std::string ReadKey(const std::string& path, std::vector<uint8_t>* key) {
    std::FILE* file = OpenFile(path, "r");
    if (file == nullptr) return std::strerror(errno);
    key->resize(kMostKeyBytes + 1);
    key->resize(std::fread(key->data(), 1, key->size(), file));
    const int error = std::ferror(file) != 0 ? errno : 0;
    std::fclose(file);
    if (error != 0) return std::strerror(error);
    if (key->size() > kMostKeyBytes) return "larger than 64 KiB, so not a key";
    return key->size() < kLeastKeyBytes ? "shorter than 16 bytes, so not a key" : "";
}

bool MakeKey(const std::string& file, std::vector<uint8_t>* key) {
    if (file.empty()) {
        key->resize(kNewKeyBytes);
        const bool isMade = os_FillRandom(*key);
        if (!isMade) SayError("redact", "the system makes no random key; give one with --key");
        return isMade;
    }
    const std::string problem = ReadKey(file, key);
    if (!problem.empty()) SayError(file, problem + "; try another key file");
    return problem.empty();
}

Hmac_t HmacUnder(const std::vector<uint8_t>& key) {
    const auto ready = std::make_shared<const ClHmacKey>(key);
    return
        [ready](std::span<const uint8_t> message, std::span<uint8_t, 32> mac) { return ready->Compute(message, mac); };
}

void RedactChoice_t::AddOptions(const char* help, std::vector<Option_t>& options) {
    options.push_back({"--redact", nullptr, help, &isWanted});
    options.push_back(KeyOption(&keyFile));
    options.push_back({"--keep-vendor", nullptr,
                       "With --redact: leave structures of unknown types, but for known values", &keepsVendor});
}

void RedactChoice_t::Check() const {
    if (!isWanted && (!keyFile.empty() || keepsVendor)) throw BadUsage_t{"--key and --keep-vendor are for --redact"};
}
