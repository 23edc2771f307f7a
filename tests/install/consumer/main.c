/* Consumer of an installed tql70: prints the version and checks one call
 * from each of two families. */
#include <tql70/tql70.h>

#include <stdio.h>
#include <string.h>

int main(void)
{
    char native[8];
    printf("%s\n", kps_version_str("consumer"));
    gerror_set_error(22);
    if (strcmp(gerror_get_error_message(), "Cannot find file") != 0) return 1;
    return strcmp(tql_native_path("C:\\x", native), "/x") == 0 ? 0 : 1;
}
