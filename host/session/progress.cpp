#include "session/progress.h"

RunProgress Progress;
