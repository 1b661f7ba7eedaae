// The clock for measuring short times. Any thread.
#pragma once

// Milliseconds from an arbitrary start.
double ClockMs();
