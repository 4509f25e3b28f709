// A system without access to hardware: all operations return 6.
#include "Packages/FERROXExternal/FERROXLib/HardwareServices.h"

const HardwareServices_t kThisHardware = {};
