// A system without access to hardware: all operations return 6.
#include "Packages/FERROXExternal/FERROXLib/HardwareServices.h"
#include "Packages/FERROXExternal/FERROXLib/Obstacles.h"

const HardwareServices_t kThisHardware = {};

Finding_t FindObstacle(Way_t, uint32_t) { return {Obstacle_t::kNotHere}; }

status_t BeginTrial(bool) { return kNotSupported; }

void EndTrial() {}
