// ZQ_stringcopy: the library's string duplication, on its own allocator.
#include <tql70/gmem.h>
#include <tql70/zq_paths.h>

#include <cstring>

extern "C" char* ZQ_stringcopy(const char* s)
{
    if (!s) {
        s = "";
    }
    const size_t bytes = std::strlen(s) + 1;
    char* copy = static_cast<char*>(gmem_ee_malloc(bytes, 1));
    if (copy) {
        std::memcpy(copy, s, bytes);
    }
    return copy;
}
