#include "Tools/quorlin/Findings.h"

#include "Tools/quorlin/Types.h"

CheckedTable_t Checked(ClTable& table) {
    const Image_t* image = table.Image();
    return {
        .bytes = table.Bytes(),
        .version = table.Version(),
        .checksumsFit = image == nullptr || image->checksumsFit,
        .missing = image == nullptr ? 0 : image->missing,
        .structures = image == nullptr ? uint16_t{0} : image->structures,
        .largest = image == nullptr ? uint16_t{0} : image->largest,
    };
}

std::string SubjectOf(const FindingGroup_t& group) {
    if (group.type < 0) return "";
    std::string text(NameOfType(static_cast<uint8_t>(group.type)));
    text.append(" (type ").append(std::to_string(group.type)).append(")");
    if (!group.name.empty()) text.append(", ").append(group.name);
    return text;
}
