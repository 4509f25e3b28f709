// End-of-Table.
#include "Packages/Standard/Rows.h"

STANDARD_TYPE(127, "End-of-Table", "2.2", kNoFields)
