#include "Sources/Structure.h"

#include <algorithm>

#include "Packages/FERROXExternal/StructureStore/ParsedRecords.h"
#include "Sources/PackageTrace.h"

namespace {

const char* StringArea(const uint8_t* pData) {
    const size_t offset = ParsedBytes(pData[0]) == 0 ? pData[1] : ParsedAreaOffset(pData[0]);
    return reinterpret_cast<const char*>(pData + offset);
}

constexpr char kNoSuchString[] = "(no such string)";

// The text of an area without strings.
const char* NullString() {
    PACKAGE_TRACE("Sources\\SMBIOSType", "ClSMBIOSType::GetString", kError, "\nNULL string: strPtr");
    return "(null string)";
}

// The end of the record that begins at `pData`: after the double NUL of its string area.
const uint8_t* RecordEnd(const uint8_t* pData) {
    const auto* byte = reinterpret_cast<const uint8_t*>(StringArea(pData));
    while (byte[0] != 0 || byte[1] != 0) byte++;
    return byte + 2;
}

}  // namespace

ClStructure ClStructure::WholeRecord(const uint8_t* pData) {
    const uint8_t parsedBytes = ParsedBytes(pData[0]);
    return parsedBytes == 0 ? ClStructure(pData, pData[1], true) : FixedBytes(pData, parsedBytes);
}

size_t ClStructure::ReadableBytes() const {
    if (!m_readsOn) return m_held;
    if (m_recordBytes == 0) m_recordBytes = static_cast<size_t>(RecordEnd(m_data) - m_data);
    return m_recordBytes;
}

void ClStructure::ReadOn(size_t offset, void* number, size_t size) const {
    const size_t readable = ReadableBytes();
    if (offset < readable) std::memcpy(number, m_data + offset, std::min(size, readable - offset));
}

ClStringWalk::ClStringWalk(const uint8_t* pData) : m_next(StringArea(pData)), m_isEmpty(*m_next == '\0') {}

const char* ClStringWalk::Next() {
    if (m_isEmpty) return NullString();
    if (*m_next == '\0') return nullptr;
    const char* text = m_next;
    m_next += std::strlen(text) + 1;
    return text;
}

const char* ClStringWalk::NextText() {
    const char* text = Next();
    return text == nullptr ? kNoSuchString : text;
}

const char* RecordString(uint32_t number, const uint8_t* pData) {
    const char* text = StringArea(pData);
    if (*text == '\0') return NullString();
    for (uint32_t current = 1; current < number; current++) {
        text += std::strlen(text) + 1;
        if (*text == '\0') return kNoSuchString;
    }
    return text;
}
