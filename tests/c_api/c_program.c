/* A C99 client of tql70: calls each C family through the umbrella header
 * and round-trips a text through the base64 functions. Exits 0 when every
 * check holds. */
#include <tql70/tql70.h>

#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static int failures = 0;

static void check(int condition, const char* what)
{
    if (!condition) {
        fprintf(stderr, "check failed: %s\n", what);
        ++failures;
    }
}

static int quiet_hook(char* module, int code, char* message, char* text)
{
    (void)module;
    (void)message;
    (void)text;
    return code == 7;
}

static int compare_ints(const void* a, const void* b) { return *(const int*)a - *(const int*)b; }

/* The trace macros expanded in C. */
static int traced_increment(int x)
{
    DBUG_ENTER("traced_increment");
    DBUG_RETURN(x + 1);
}

int main(void)
{
    int values[5] = {3, 1, 2, 5, 4};
    const char plain[] = "tql70 base64 round trip";
    char encoded[64];
    char decoded[64];
    char native[16];
    base64_encodestate encoder;
    base64_decodestate decoder;
    int length;
    char* block;
    const char* text = NULL;
    int code = 0;
    tql_regexp* compiled;

    base64_init_encodestate(&encoder);
    length = base64_encode_block(plain, (int)strlen(plain), encoded, &encoder);
    length += base64_encode_blockend(encoded + length, &encoder);
    encoded[length] = '\0';
    check(strcmp(encoded, "dHFsNzAgYmFzZTY0IHJvdW5kIHRyaXA=\n") == 0, "base64 encoding");
    check(base64_encode_value(0) == 'A', "base64_encode_value");
    check(base64_decode_value('B') == 1, "base64_decode_value");
    base64_init_decodestate(&decoder);
    length = base64_decode_block(encoded, (int)strlen(encoded), decoded, &decoder);
    decoded[length] = '\0';
    check(strcmp(decoded, plain) == 0, "base64 decoding");

    check(aerr_set("CAPI", 7, "message", "value %d", 5) == 1, "aerr_set");
    check(error_pending(), "error_pending after aerr_set");
    check(aerr_get(NULL, &code, &text) == 1 && code == 7 && strcmp(text, "value 5") == 0, "aerr_get");
    aerr_set_error_function(quiet_hook);
    check(aerr_report() == 1 && !error_pending(), "aerr_report through a hook");
    aerr_set_error_function(NULL);

    gerror_set_all_errors(23, 0);
    check(strcmp(gerror_get_error_message(), "Cannot open file") == 0, "gerror_get_error_message");
    gerror_set_error(0);
    check(strcmp(gerror_get_error_message(), "GuiErrno out of range") == 0, "code 0 is out of range");

    check(strncmp(kps_version_str("app"), "app (*) ", 8) == 0, "kps_version_str");
    check(tql_native_path("C:\\a\\b", native) == native && strcmp(native, "/a/b") == 0, "tql_native_path");
    check(tql_strcmp(NULL, "") == 0 && strrstr("abcabc", "bc") != NULL, "string helpers");

    tql_qsort(values, 5, sizeof values[0], compare_ints);
    check(values[0] == 1 && values[4] == 5, "tql_qsort");

    {
        list_t freelist = {NULL, NULL};
        list_t nodes = {NULL, NULL};
        MemCntl pool = {NULL, NULL};
        void* data;
        check(list_alloc(3, sizeof(int), &nodes, &freelist) == 1 && list_len(&nodes) == 3, "list_alloc");
        list_free(&nodes, &freelist);
        check(list_len(&freelist) == 3 && nodes.head == NULL, "list_free");
        check(initialize_MemCntl(&pool, &poolMem) == 1, "initialize_MemCntl");
        data = alloc_Mem(&pool, 3, 8);
        check(data != NULL && check_Mem(&pool) == 1 && free_Mem(&pool, data) == 1, "the block pool");
        check(gtime_clock() == 0, "gtime_clock");
    }

    block = (char*)gmem_ee_calloc(4, 2);
    check(block != NULL && block[7] == 0, "gmem_ee_calloc");
    gmem_ee_free(block);

    compiled = tql_regcomp("x(ab)y");
    check(tql_regexec(compiled, "zxaby") == 1, "tql_regexec");
    tql_regsub(compiled, "[\\1]&", native);
    check(strcmp(native, "[ab]xaby") == 0, "tql_regsub");
    free(compiled);
    check(gcrypt_encrypt_mode(7) == -1 && strcmp(gcrypt_error(), "GCRYPTERR: unsupported encryption mode") == 0,
          "gcrypt_encrypt_mode refuses an unknown mode");
    check(traced_increment(1) == 2, "DBUG_ENTER and DBUG_RETURN");
    check(tql_hcreate(1) != 0, "tql_hcreate");
    {
        char key[] = "name";
        ENTRY item;
        item.key = key;
        item.data = values;
        check(tql_hsearch(item, ENTER) != NULL && tql_hsearch(item, FIND)->data == values, "tql_hsearch");
    }
    tql_hdestroy();
    {
        HASHINFO info = {100, 0, 0, 0, NULL, 0}; /* not a power of two */
        errno = 0;
        check(hash_open(NULL, O_RDWR, 0, &info, 0) == NULL && errno == EINVAL, "hash_open refuses a bad page size");
    }

    return failures == 0 ? 0 : 1;
}
