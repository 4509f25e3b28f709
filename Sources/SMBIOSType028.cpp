// Temperature Probe (the SMBIOS standard, type 28).
#include "Sources/Decoders.h"
#include "Sources/ProbeItems.h"

ROWS_DECODER(28, kProbeItems)
