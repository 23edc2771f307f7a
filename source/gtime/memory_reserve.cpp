// The emergency memory reserve: a block held back so that it can be given
// up when the application runs out of memory, and the recovery callback.
#include <tql70/gmem.h>
#include <tql70/gtime.h>

namespace {

RecoveryCallback recovery_callback = nullptr;
unsigned int reserve_size = 0;
void* reserve_block = nullptr;

void release_reserve()
{
    gmem_ee_free(reserve_block);
    reserve_block = nullptr;
}

} // namespace

extern "C" {

int zqtarvex_mem_recover_func(RecoveryCallback* callback, unsigned int* size)
{
    const RecoveryCallback old_callback = recovery_callback;
    const unsigned int old_size = reserve_size;
    const RecoveryCallback new_callback = callback ? *callback : old_callback;
    const unsigned int new_size = size ? *size : old_size;
    if (callback) {
        *callback = old_callback;
    }
    if (size) {
        *size = old_size;
    }
    if (old_callback) {
        release_reserve();
    }
    if (new_callback && new_size) {
        reserve_block = gmem_ee_calloc(new_size, 1);
        if (!reserve_block) {
            recovery_callback = old_callback;
            reserve_size = old_size;
            if (old_callback && old_size) {
                reserve_block = gmem_ee_calloc(old_size, 1);
                if (!reserve_block) {
                    reserve_size = 0;
                }
            }
            return 0;
        }
    }
    recovery_callback = new_callback;
    reserve_size = new_size;
    return 1;
}

int gui_stdlib_recover(int argument)
{
    if (!recovery_callback) {
        return 1;
    }
    const unsigned int released = reserve_block ? reserve_size : 0;
    release_reserve();
    reserve_size = 0;
    return recovery_callback(released, argument);
}

} // extern "C"
