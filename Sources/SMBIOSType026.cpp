// Voltage Probe (the SMBIOS standard, type 26).
#include "Sources/Decoders.h"
#include "Sources/ProbeItems.h"

ROWS_DECODER(26, kProbeItems)
