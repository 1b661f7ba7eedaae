// The clock for measuring short times. Any thread.
#pragma once

// Milliseconds since an arbitrary point in time; never goes back.
double ClockMs();
