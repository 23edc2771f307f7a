/* libb64's encoder and decoder, exported by tql70 as libb64 declares them.
 * The guards are libb64's own, so this header and libb64's may be mixed.
 * These are libb64's functions unchanged: they take no null pointers.
 *
 * Output sizes (a call may write more bytes than it returns):
 * base64_encode_block: (length_in + 2) / 3 * 4 + length_in / 54 + 2 bytes
 *   (four characters per three bytes, a line feed after every 72);
 * base64_encode_blockend: 4 bytes;
 * base64_decode_block: length_in * 3 / 4 + 2 bytes (a group left open at
 *   the end has its next byte started in plaintext_out, beyond the count
 *   returned; the next call completes it from the state). */
#ifndef TQL70_BASE64_H
#define TQL70_BASE64_H

#include "export.h"

TQL70_BEGIN_DECLS

#ifndef BASE64_CENCODE_H
#define BASE64_CENCODE_H
typedef enum { step_A, step_B, step_C } base64_encodestep;
typedef struct {
    base64_encodestep step;
    char result;
    int stepcount;
} base64_encodestate;
TQL70_API void base64_init_encodestate(base64_encodestate* state_in);
TQL70_API char base64_encode_value(char value_in);
TQL70_API int base64_encode_block(const char* plaintext_in, int length_in, char* code_out, base64_encodestate* state_in);
TQL70_API int base64_encode_blockend(char* code_out, base64_encodestate* state_in);
#endif

#ifndef BASE64_CDECODE_H
#define BASE64_CDECODE_H
typedef enum { step_a, step_b, step_c, step_d } base64_decodestep;
typedef struct {
    base64_decodestep step;
    char plainchar;
} base64_decodestate;
TQL70_API void base64_init_decodestate(base64_decodestate* state_in);
TQL70_API int base64_decode_value(char value_in);
TQL70_API int base64_decode_block(const char* code_in, const int length_in, char* plaintext_out, base64_decodestate* state_in);
#endif

TQL70_END_DECLS

#endif /* TQL70_BASE64_H */
