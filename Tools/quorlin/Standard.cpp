#include "Tools/quorlin/Standard.h"

#include <algorithm>

namespace {

constexpr uint8_t kHeader = 4;
constexpr EntryList_t kNoList = {}, kBoards{0x0E, 0, 0x0F, 2, 0}, kElements{0x13, 0x14, 0x15, 0, kNoHandle},
                      kModules{0x0E, 0, 0x0F, 2, 0}, kMembers{0, 0, 0x05, 3, 1},
                      kDescriptors{0x15, 0x16, 0x17, 0, kNoHandle}, kLoads{0x06, 0, 0x07, 3, 1},
                      kComponents{0x17, 0, 0x18, 2, 0};

//   type least strings                         handles         list
constexpr TypeFacts_t kFacts[] = {
    {0,   0x12, "\x04\x05\x08",                 "",             kNoList     },
    {1,   0x08, "\x04\x05\x06\x07\x19\x1A",     "",             kNoList     },
    {2,   0x08, "\x04\x05\x06\x07\x08\x0A",     "\x0B",         kBoards     },
    {3,   0x09, "\x04\x06\x07\x08",             "",             kElements   },
    {4,   0x1A, "\x04\x07\x10\x20\x21\x22",     "\x1A\x1C\x1E", kNoList     },
    {5,   0x0F, "",                             "",             kModules    },
    {6,   0x0C, "\x04",                         "",             kNoList     },
    {7,   0x0F, "\x04",                         "",             kNoList     },
    {8,   0x09, "\x04\x06",                     "",             kNoList     },
    {9,   0x0D, "\x04",                         "",             kNoList     },
    {10,  0x06, "",                             "",             kNoList     },
    {11,  0x05, "",                             "",             kNoList     },
    {12,  0x05, "",                             "",             kNoList     },
    {13,  0x16, "\x15",                         "",             kNoList     },
    {14,  0x05, "\x04",                         "",             kMembers    },
    {15,  0x14, "",                             "",             kDescriptors},
    {16,  0x0F, "",                             "\x0B",         kNoList     },
    {17,  0x15, "\x10\x11\x17\x18\x19\x1A\x2B", "\x04\x06",     kNoList     },
    {18,  0x17, "",                             "",             kNoList     },
    {19,  0x0F, "",                             "\x0C",         kNoList     },
    {20,  0x13, "",                             "\x0C\x0E",     kNoList     },
    {21,  0x07, "",                             "",             kNoList     },
    {22,  0x10, "\x04\x05\x06\x07\x08\x14",     "",             kNoList     },
    {23,  0x0D, "",                             "",             kNoList     },
    {24,  0x05, "",                             "",             kNoList     },
    {25,  0x09, "",                             "",             kNoList     },
    {26,  0x14, "\x04",                         "",             kNoList     },
    {27,  0x0C, "\x0E",                         "\x04",         kNoList     },
    {28,  0x14, "\x04",                         "",             kNoList     },
    {29,  0x14, "\x04",                         "",             kNoList     },
    {30,  0x06, "\x04",                         "",             kNoList     },
    {31,  0x1C, "",                             "",             kNoList     },
    {32,  0x0B, "",                             "",             kNoList     },
    {33,  0x1F, "",                             "",             kNoList     },
    {34,  0x0B, "\x04",                         "",             kNoList     },
    {35,  0x0B, "\x04",                         "\x05\x07\x09", kNoList     },
    {36,  0x10, "",                             "",             kNoList     },
    {37,  0x07, "",                             "",             kLoads      },
    {38,  0x10, "",                             "",             kNoList     },
    {39,  0x10, "\x05\x06\x07\x08\x09\x0A\x0B", "\x10\x12\x14", kNoList     },
    {40,  0x05, "",                             "",             kNoList     },
    {41,  0x0B, "\x04",                         "",             kNoList     },
    {42,  0x06, "",                             "",             kNoList     },
    {43,  0x1F, "\x12",                         "",             kNoList     },
    {44,  0x06, "",                             "\x04",         kNoList     },
    {45,  0x18, "\x04\x05\x07\x09\x0A\x0B",     "",             kComponents },
    {46,  0x09, "\x06",                         "\x07",         kNoList     },
    {126, 0x04, "",                             "",             kNoList     },
    {127, 0x04, "",                             "",             kNoList     },
};
static_assert(std::ranges::is_sorted(kFacts, {}, &TypeFacts_t::type));

}  // namespace

const TypeFacts_t* FactsOf(uint8_t type) {
    const TypeFacts_t* row = std::ranges::lower_bound(kFacts, type, {}, &TypeFacts_t::type);
    return row == std::end(kFacts) || row->type != type ? nullptr : row;
}

uint8_t MinimumLength(uint8_t type) {
    const TypeFacts_t* facts = FactsOf(type);
    return facts == nullptr ? kHeader : facts->minimumLength;
}
