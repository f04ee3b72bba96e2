// Whether the tests run instrumented by the address sanitizer. Tests whose work lies mostly in an
// outside tool run in the plain build only, to keep the suite's time.
#pragma once

namespace qb::test {

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
inline constexpr bool kSanitizedBuild = true;
#else
inline constexpr bool kSanitizedBuild = false;
#endif
#elif defined(__SANITIZE_ADDRESS__)
inline constexpr bool kSanitizedBuild = true;
#else
inline constexpr bool kSanitizedBuild = false;
#endif

} // namespace qb::test
