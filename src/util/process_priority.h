// Priority classes of the job's tool (the values hosts store) and the nice values that carry them.
#pragma once

namespace qb::util {

inline constexpr int kPriorityIdle = 64;
inline constexpr int kPriorityBelowNormal = 16384;
inline constexpr int kPriorityNormal = 32;
inline constexpr int kPriorityAboveNormal = 32768;
inline constexpr int kPriorityHigh = 128;
inline constexpr int kPriorityRealtime = 256;

// Idle 19, below normal 10, normal 0, above normal -5, high -10, realtime -15. Any other value is
// no class and runs at normal.
int NiceForPriorityClass(int priorityClass);

// The class a nice value belongs to: the class whose nice value is nearest.
int PriorityClassForNice(int nice);

} // namespace qb::util
