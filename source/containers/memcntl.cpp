// Memory controls: the two operation tables (the plain library allocator
// and the block pool) and the calls that dispatch through a control.
#include <tql70/gmem.h>
#include <tql70/memcntl.h>

#include "containers/block_pool.h"

namespace {

void* plain_alloc(size_t count, size_t size, void** /*state*/)
{
    return gmem_ee_malloc(count, size);
}

void* plain_realloc(void* ptr, size_t count, size_t size, void** /*state*/)
{
    return gmem_ee_realloc(ptr, count, size);
}

int plain_free(void* ptr, void** /*state*/)
{
    if (!ptr) {
        return 0;
    }
    gmem_ee_free(ptr);
    return 1;
}

int always_sound(void** /*state*/)
{
    return 1;
}

int plain_init(void** state)
{
    if (!state) {
        return 0;
    }
    *state = nullptr;
    return 1;
}

int no_setting(void** /*state*/)
{
    return 0;
}

bool has_table(const MemCntl* cntl)
{
    return cntl && cntl->ops;
}

} // namespace

extern "C" {

const MemCntlOps tarvexMem = {plain_alloc, plain_realloc, plain_free, always_sound, plain_init, no_setting};
const MemCntlOps poolMem = {pool_alloc, pool_realloc, pool_free, pool_check, pool_init, no_setting};

int initialize_MemCntl(MemCntl* cntl, const MemCntlOps* table)
{
    if (!cntl || !table) {
        return 0;
    }
    cntl->ops = table;
    return table->init(&cntl->state);
}

void* alloc_Mem(MemCntl* cntl, size_t count, size_t size)
{
    return has_table(cntl) ? cntl->ops->alloc(count, size, &cntl->state) : nullptr;
}

void* realloc_Mem(MemCntl* cntl, void* ptr, size_t count, size_t size)
{
    return has_table(cntl) && ptr ? cntl->ops->realloc(ptr, count, size, &cntl->state) : nullptr;
}

int free_Mem(MemCntl* cntl, void* ptr)
{
    return has_table(cntl) ? cntl->ops->free(ptr, &cntl->state) : 0;
}

int check_Mem(MemCntl* cntl)
{
    return has_table(cntl) ? cntl->ops->check(&cntl->state) : 0;
}

int set_MemCntl(MemCntl* cntl)
{
    return has_table(cntl) ? cntl->ops->set(&cntl->state) : 0;
}

int dump_Mem(MemCntl* cntl)
{
    if (!cntl) {
        return 0;
    }
    if (cntl->ops == &tarvexMem) {
        return 1;
    }
    return cntl->ops == &poolMem ? pool_check(&cntl->state) : 0;
}

} // extern "C"
