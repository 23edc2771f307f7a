/* A C caller of the trace macros compiled out: they must leave plain C99
 * that traces nothing. */
#define TQL70_DBUG_OFF
#include <tql70/dbug.h>

int dbug_off_double(int x)
{
    DBUG_ENTER("dbug_off_double");
    DBUG_PRINT("info", ("x=%d", x));
    DBUG_ASSERT(x >= 0);
    DBUG_RETURN(2 * x);
}
