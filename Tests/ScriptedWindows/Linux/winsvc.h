// Declared in windows.h.
#pragma once
