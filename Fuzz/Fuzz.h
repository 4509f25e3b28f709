// Shared by the fuzzers: reading the input, and reporting a finding.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <string>
#include <string_view>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

// Reports a finding if the condition is false.
inline void Require(bool holds) {
    if (!holds) std::abort();
}

// Takes numbers from the front of an input; after its end they are 0. The rest is what the fuzzer works on.
class ClInput {
  public:
    ClInput(const uint8_t* data, size_t size) : m_rest(data, size) {}

    template <class Number>
    Number Take() {
        Number number = 0;
        for (size_t place = 0; place < sizeof number && !m_rest.empty(); place++) {
            number = static_cast<Number>(number | static_cast<Number>(m_rest.front()) << 8 * place);
            m_rest = m_rest.subspan(1);
        }
        return number;
    }
    bool IsEmpty() const { return m_rest.empty(); }
    // A block of exactly that size, so that a read past its end is noticed.
    std::vector<uint8_t> Rest() const { return {m_rest.begin(), m_rest.end()}; }

  private:
    std::span<const uint8_t> m_rest;
};

// Whether a trace setting names a file, which a fuzzer must not create. White space may interrupt the key.
inline bool NamesAFile(std::string_view text) {
    std::string plain;
    std::copy_if(text.begin(), text.end(), std::back_inserter(plain),
                 [](char c) { return std::string_view(" \t\n\v\f\r").find(c) == std::string_view::npos; });
    return plain.find("FileName") != std::string::npos;
}
