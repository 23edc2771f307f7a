// Switching the floating-point environment around the library's numerics.
#include "platform/fp_environment.h"

namespace tql::platform {

void enter_default_fp_environment(std::fenv_t& saved)
{
    std::fegetenv(&saved);
    std::fesetenv(FE_DFL_ENV);
#if defined(__SSE2__)
    // FE_DFL_ENV leaves flush-to-zero and denormals-are-zero as they were.
    _mm_setcsr(0x1f80);
#endif
}

void leave_default_fp_environment(const std::fenv_t& saved)
{
    std::fesetenv(&saved);
}

void mask_all_fp_exceptions()
{
    fedisableexcept(FE_ALL_EXCEPT);
}

} // namespace tql::platform
