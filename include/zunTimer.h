// zunTimer.h - the library's high-resolution clock.
//
// zunTimer() reads a monotonic clock and gives milliseconds from an arbitrary
// origin as a double: only differences mean something, and two successive
// calls never go back. The clock's rate is taken once, when the library is
// loaded; if the platform cannot give it, zunTimer returns 0.0 for ever.
//
//   const double start = zunTimer();
//   Work();
//   std::printf("%.3f ms\n", zunTimer() - start);
//
// Thread-safe; it keeps no state besides the rate.
#ifndef ZUN_TIMER_H
#define ZUN_TIMER_H

#include "zunConfig.h"

/// Milliseconds of the monotonic clock, from an arbitrary origin.
ZUN_API double zunTimer();

#endif // ZUN_TIMER_H
