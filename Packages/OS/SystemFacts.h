#pragma once

#include "Packages/Format/SystemFacts.h"

// Only reads. Throws std::bad_alloc.
SystemFacts_t ReadSystemFacts();
