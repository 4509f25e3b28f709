// The decoder of each type.
#include <new>

#include "Sources/Decoders.h"
#include "Sources/Quorlin.h"

template <class Decoder, class... Arguments>
static ClSMBIOSType* New(Arguments... arguments) {
    return new (std::nothrow) Decoder(arguments...);
}

ClSMBIOSType* Quorlin::DecoderFactory(uint8_t type) const {
    switch (type) {
        case 0: return New<ClSMBIOSType0>();
        case 1: return New<ClSMBIOSType1>();
        case 2: return New<ClSMBIOSType2>();
        case 3: return New<ClSMBIOSType3>();
        case 4: return New<ClSMBIOSType4>(m_processorSignature);
        case 5: return New<ClSMBIOSType5>();
        case 6: return New<ClSMBIOSType6>();
        case 7: return New<ClSMBIOSType7>();
        case 8: return New<ClSMBIOSType8>();
        case 9: return New<ClSMBIOSType9>();
        case 10: return New<ClSMBIOSType10>();
        case 11: return New<ClSMBIOSType11>();
        case 12: return New<ClSMBIOSType12>();
        case 13: return New<ClSMBIOSType13>(m_smbiosMajor, m_smbiosMinor);
        case 14: return New<ClSMBIOSType14>();
        case 15: return New<ClSMBIOSType15>();
        case 16: return New<ClSMBIOSType16>();
        case 17: return New<ClSMBIOSType17>();
        case 18: return New<ClSMBIOSType18>();
        case 19: return New<ClSMBIOSType19>();
        case 20: return New<ClSMBIOSType20>();
        case 21: return New<ClSMBIOSType21>();
        case 22: return New<ClSMBIOSType22>();
        case 23: return New<ClSMBIOSType23>();
        case 24: return New<ClSMBIOSType24>();
        case 25: return New<ClSMBIOSType25>();
        case 26: return New<ClSMBIOSType26>();
        case 27: return New<ClSMBIOSType27>();
        case 28: return New<ClSMBIOSType28>();
        case 29: return New<ClSMBIOSType29>();
        case 30: return New<ClSMBIOSType30>();
        case 31: return New<ClSMBIOSType31>();
        case 32: return New<ClSMBIOSType32>();
        case 33: return New<ClSMBIOSType33>();
        case 34: return New<ClSMBIOSType34>();
        case 35: return New<ClSMBIOSType35>();
        case 36: return New<ClSMBIOSType36>();
        case 37: return New<ClSMBIOSType37>();
        case 38: return New<ClSMBIOSType38>();
        case 39: return New<ClSMBIOSType39>();
        case 40: return New<ClSMBIOSType40>();
        case 41: return New<ClSMBIOSType41>();
        case 42: return New<ClSMBIOSType42>();
        case 126: return New<ClSMBIOSType126>();
        case 127: return New<ClSMBIOSType127>();
        case 130: return New<ClSMBIOSType130>();
        case 131: return New<ClSMBIOSType131>();
        case 148: return New<ClSMBIOSType148>(m_processorSignature);
        case 221: return New<ClSMBIOSType221>();
        case 222: return New<ClSMBIOSType222>();
        default: return nullptr;
    }
}
