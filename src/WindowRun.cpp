// The run with windows: opening files, and the rim at which faults of event handlers end.
#include "WindowRun.h"
