#include "Tests/Support/Images.h"

#include <algorithm>

#include "Packages/Format/Structures.h"
#include "Packages/Format/TableFile.h"
#include "Packages/Sample/Sample.h"

namespace {

using Bytes_t = std::vector<uint8_t>;
using Structures_t = std::vector<Bytes_t>;

// Every `step`-th structure of the sample, counted from the End-of-Table structure, which is the last.
Structures_t FromSample(size_t step) {
    const auto table = SampleTable();
    Structures_t all, chosen;
    for (uint32_t offset = 0; offset < table.size(); offset += static_cast<uint32_t>(all.back().size())) {
        const TableStructure_t one = StructureAt(table.data(), static_cast<uint32_t>(table.size()), offset);
        all.emplace_back(one.data, one.data + one.size);
    }
    for (size_t i = (all.size() - 1) % step; i < all.size(); i += step) chosen.push_back(all[i]);
    return chosen;
}

Bytes_t& Middle(Structures_t& all) { return all[all.size() / 2]; }

void Sound(Structures_t&) {}
void NoEnd(Structures_t& all) { all.pop_back(); }
void BytesAfterEnd(Structures_t& all) { all.push_back({1, 8, 0, 9, 1, 0, 0, 0, 'x', 0, 0, 4, 200}); }
void NoFinalNul(Structures_t& all) {
    all.pop_back();
    all.back().pop_back();
}
void CutInside(Structures_t& all) {
    all.pop_back();
    all.back().resize(all.back()[1] - 1u);
}
void LengthPastEnd(Structures_t& all) {
    all.pop_back();
    all.back()[1] = 0xFF;
}
void LengthTooShort(Structures_t& all) { Middle(all)[1] = 3; }
void ZerosAfterPage(Structures_t& all) {
    for (size_t i = all.size() / 2; i < all.size(); i++) std::ranges::fill(all[i], uint8_t{0});
}
void StrayString(Structures_t& all) { Middle(all).insert(Middle(all).end(), {'s', 't', 'r', 'a', 'y', 0, 0}); }
void RepeatedHandles(Structures_t& all) {
    for (Bytes_t& one : all) one[2] = one[3] = 0;
}
void OddStrings(Structures_t& all) {
    uint8_t odd = 1;
    for (Bytes_t& one : all)
        for (size_t at = one[1]; at < one.size(); at++)
            if (one[at] != 0) one[at] = odd = static_cast<uint8_t>(odd * 7 % 255 + 1);
}

constexpr struct {
    const char* name;
    uint8_t major, minor, step;
    void (*spoil)(Structures_t& all);
} kMachines[] = {
    {"old-laptop",       2, 3,  4, Sound          },
    {"no-end",           2, 3,  4, NoEnd          },
    {"odd-version",      2, 31, 5, BytesAfterEnd  },
    {"no-final-nul",     2, 5,  5, NoFinalNul     },
    {"odd-strings",      2, 7,  3, OddStrings     },
    {"length-past-end",  2, 8,  3, LengthPastEnd  },
    {"missing-page",     3, 0,  2, ZerosAfterPage },
    {"cut-inside",       3, 1,  3, CutInside      },
    {"stray-string",     3, 2,  5, StrayString    },
    {"repeated-handles", 3, 3,  4, RepeatedHandles},
    {"length-too-short", 3, 5,  2, LengthTooShort },
    {"newest",           3, 7,  2, Sound          },
};

}  // namespace

std::vector<TableImage_t> GeneratedImages() {
    std::vector<TableImage_t> images;
    for (const auto& machine : kMachines) {
        Structures_t structures = FromSample(machine.step);
        machine.spoil(structures);
        Bytes_t table;
        for (const Bytes_t& one : structures) table.insert(table.end(), one.begin(), one.end());
        images.push_back({machine.name, MakeDump(table, machine.major, machine.minor)});
    }
    return images;
}
