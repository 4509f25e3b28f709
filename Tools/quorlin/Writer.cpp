#include "Tools/quorlin/Writer.h"

void ClWriter::Structure(const Structure_t& structure) {
    std::string_view group;
    for (size_t index = structure.firstItem; index < structure.EndItem(); index++) {
        const ShownItem_t item = structure.Item(index);
        if (item.opensGroup)
            group = item.key;
        else
            Row({structure.type, structure.handle, structure.instance, structure.title, group, item.key, item.value});
    }
}

void ClWriter::Hits(const Structure_t& structure, std::span<const Hit_t> hits) {
    for (const Hit_t& hit : hits)
        Row({structure.type, structure.handle, structure.instance, structure.title, hit.group, hit.item.key,
             hit.item.value});
}
