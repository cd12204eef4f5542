#include "input/session_hooks.h"

SessionHooks Session;
