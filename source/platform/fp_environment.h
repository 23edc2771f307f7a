// The processor's floating-point environment: a cheap test for the default
// one (round to nearest, every exception masked, subnormals kept), running
// a computation in the default environment whatever the caller set, and
// masking every exception for good.
#ifndef TQL70_SOURCE_PLATFORM_FP_ENVIRONMENT_H
#define TQL70_SOURCE_PLATFORM_FP_ENVIRONMENT_H

#include <cfenv>
#if defined(__SSE2__)
#include <xmmintrin.h>
#endif

namespace tql::platform {

// True when the calling thread runs in the default environment. On x86 the
// control bits of MXCSR tell, read in one instruction; the x87 unit is set
// together with them by every <fenv.h> call.
inline bool fp_environment_is_default()
{
#if defined(__SSE2__)
    constexpr unsigned kFlagBits = 0x3f;    // sticky exception flags
    constexpr unsigned kDefault = 0x1f80;   // all masked, nearest, no FTZ/DAZ
    return (_mm_getcsr() & ~kFlagBits) == kDefault;
#else
    return std::fegetround() == FE_TONEAREST && fegetexcept() == 0;
#endif
}

// Saves the caller's environment into `saved` and installs the default one.
void enter_default_fp_environment(std::fenv_t& saved);
// Puts back the environment saved by enter_default_fp_environment, flags
// included, so the library's own flags are dropped and nothing traps.
void leave_default_fp_environment(const std::fenv_t& saved);

// Masks every floating-point exception of the calling thread.
void mask_all_fp_exceptions();

namespace detail {
// Makes the compiler treat `value` as read and rewritten here, so no
// arithmetic on it moves across the environment switches.
template <typename T>
inline void fp_fence(T& value)
{
    asm volatile("" : "+m"(value) : : "memory");
}

template <typename R, typename... A>
__attribute__((noinline, cold)) R run_in_default_fp(R (*work)(A...), A... args)
{
    std::fenv_t saved;
    enter_default_fp_environment(saved);
    (fp_fence(args), ...);
    R result = work(args...);
    fp_fence(result);
    leave_default_fp_environment(saved);
    return result;
}
} // namespace detail

// work(args...) computed in the default environment: directly when the
// caller runs in it, else between a save and a restore of the caller's.
template <typename R, typename... A>
inline R in_default_fp(R (*work)(A...), A... args)
{
    if (__builtin_expect(fp_environment_is_default(), 1)) {
        return work(args...);
    }
    return detail::run_in_default_fp(work, args...);
}

} // namespace tql::platform

#endif
