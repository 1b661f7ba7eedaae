#include "base/events.h"

Events g_events;
