// Electrical Current Probe (the SMBIOS standard, type 29).
#include "Sources/Decoders.h"
#include "Sources/ProbeItems.h"

ROWS_DECODER(29, kProbeItems)
