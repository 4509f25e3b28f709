// Inactive.
#include "Packages/Standard/Rows.h"

STANDARD_TYPE(126, "Inactive", "2.2", kNoFields)
