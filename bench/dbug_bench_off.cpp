// The benchmark's function with the trace macros compiled out.
#define TQL70_DBUG_OFF
#include <tql70/dbug.h>

__attribute__((noinline)) int dbug_bench_untraced(int x)
{
    DBUG_ENTER("untraced");
    DBUG_RETURN(x + 1);
}
