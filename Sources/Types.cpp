#include "Sources/Types.h"

#include <algorithm>
#include <new>

#include "Sources/Decoders.h"

namespace {

using namespace std::string_view_literals;

// `text` is the title's, `title` has the type mark too. An empty name means that the text is the name.
consteval TypeRow_t Row(uint8_t type, Sweep_t sweep, View_t view, Head_t head, std::string_view text,
                        std::string_view title, std::string_view name) {
    if (name.empty()) name = text;
    TypeRow_t row = {type, sweep, view, head, static_cast<uint8_t>(title.size()), static_cast<uint8_t>(name.size()),
                     {},   {}};
    std::ranges::copy(title, row.title);
    std::ranges::copy(name, row.name);
    return row;
}

#define ROW(number, sweep, view, head, title, name) \
    Row(number, Sweep_t::sweep, View_t::view, Head_t::head, title, title " {Type " #number "}", name),
#define DECODER(number, sweep, view, head, title, name) ROW(number, k##sweep, k##view, k##head, title, name)
#define NO_ITEMS(number, name) ROW(number, kSwept, kWholeRecord, kNone, name, "")
#define NAME_ONLY(number, name) ROW(number, kNotDecoded, kWholeRecord, kNone, name, "")
constexpr TypeRow_t kTypes[] = {
#include "Sources/Types.def"
};
static_assert(std::ranges::is_sorted(kTypes, std::ranges::less_equal{}, &TypeRow_t::type));

// Types whose structures give no items, not even a title.
class ClSMBIOSTypeWithoutItems final : public ClSMBIOSType {
  public:
    using ClSMBIOSType::ClSMBIOSType;
    void PrintStructure(const uint8_t*) override {}
};

}  // namespace

std::span<const TypeRow_t> TypeRows() { return kTypes; }

const TypeRow_t* FindType(uint8_t type) {
    // The table begins without gaps.
    if (type < std::size(kTypes) && kTypes[type].type == type) return &kTypes[type];
    const TypeRow_t* row = std::ranges::lower_bound(kTypes, type, {}, &TypeRow_t::type);
    return row == std::end(kTypes) || row->type != type ? nullptr : row;
}

std::string_view NameOfType(uint8_t type) {
    if (type >= 128) return "OEM-specific"sv;
    const TypeRow_t* row = FindType(type);
    return row == nullptr ? "Unknown"sv : row->Name();
}

ClSMBIOSType* NewDecoder(uint8_t type, const DecoderInput_t& input) {
    // clang-format off
    switch (type) {
#define DECODER(number, ...) case number: return NewType##number(input);
#define NO_ITEMS(number, name) case number: return new (std::nothrow) ClSMBIOSTypeWithoutItems(number);
#include "Sources/Types.def"
        default: return nullptr;
    }
    // clang-format on
}
