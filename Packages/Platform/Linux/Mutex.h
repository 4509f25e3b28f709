#pragma once

// Whether a named mutex is in use here that other processes know nothing of, as it wasn't to be had among those shared.
bool HasUnsharedNames();
