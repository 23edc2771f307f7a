// File handles: streams opened by numeric mode, block, character and
// position calls with status results, and the library's line readers
// (length limit, CR/LF/CRLF ends, Ctrl-Z as end-of-file mark).
#include <tql70/gfile.h>

#include "platform/platform.h"

#include <cstring>
#include <string>
#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace {

constexpr char kEndOfFileMark = 26; // Ctrl-Z
constexpr int kChunk = GFILE_LINE_MAX;

// Length of `text` up to its first CR, LF or Ctrl-Z.
size_t line_length(const char* text)
{
    return std::strcspn(text, "\r\n\x1a");
}

bool is_line_end(char c)
{
    return c == '\n' || c == '\r' || c == kEndOfFileMark;
}

typedef unsigned char Block __attribute__((vector_size(16)));

// The offset of the first byte of `block` whose lane is set in `lanes`
// (each 0 or 0xff), or 16 when none is.
size_t first_lane(const Block& lanes)
{
#ifdef __SSE2__
    // One instruction gathers the sixteen lanes into the bits of a mask.
    const unsigned mask = static_cast<unsigned>(_mm_movemask_epi8(reinterpret_cast<__m128i>(lanes)));
    return mask != 0 ? static_cast<size_t>(__builtin_ctz(mask)) : sizeof(Block);
#else
    typedef uint64_t Halves __attribute__((vector_size(16)));
    const Halves halves = reinterpret_cast<Halves>(lanes);
    const uint64_t first = halves[0];
    const uint64_t second = halves[1];
    if ((first | second) == 0) {
        return sizeof(Block);
    }
    // Memory order is bit order on a little-endian machine, the reverse on
    // a big-endian one.
#if __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__
    const int bit = first != 0 ? __builtin_clzll(first) : 64 + __builtin_clzll(second);
#else
    const int bit = first != 0 ? __builtin_ctzll(first) : 64 + __builtin_ctzll(second);
#endif
    return static_cast<size_t>(bit) / 8;
#endif
}

// The offset of the first LF, CR or Ctrl-Z of the `size` bytes at `text`,
// or `size`. Sixteen bytes at a time: one test for any byte below 32 passes
// over the text between line ends, the three ends are told apart only in a
// block that has such a byte; the last few bytes one by one, so nothing
// past the text is read.
size_t first_line_end(const char* text, size_t size)
{
    size_t at = 0;
    for (; at + sizeof(Block) <= size; at += sizeof(Block)) {
        Block block;
        std::memcpy(&block, text + at, sizeof block);
        if (first_lane((block & 0xe0) == 0) < sizeof(Block)) {
            const size_t end = first_lane((block == '\n') | (block == '\r') | (block == kEndOfFileMark));
            if (end < sizeof(Block)) {
                return at + end;
            }
        }
    }
    while (at < size && !is_line_end(text[at])) {
        ++at;
    }
    return at;
}

// The reader behind gfile_getline and gfile_getline_limited (each calls it
// directly, not through the other's exported symbol): what fgets(buf, n)
// reads, ended at its first LF, CR or Ctrl-Z (a NUL ends the text anyway),
// the rest of a longer line thrown away.
int read_line(FILE* fp, char* buf, int n)
{
    if (!fp || !buf || n < 1) {
        return 0;
    }
    // Taken from the stream's buffer: each piece is searched for the line
    // feed and for the line's end while it is still there, then copied once.
    const size_t limit = static_cast<size_t>(n) - 1;
    size_t stored = 0;
    size_t cut = limit + 1; // the first LF, CR or Ctrl-Z, once found
    bool complete = false;
    const char* data = nullptr;
    size_t count = 0;
    while (!complete && stored < limit && buffered_input(fp, &data, &count)) {
        size_t take = count < limit - stored ? count : limit - stored;
        // One search finds the line feed when nothing else ends the line
        // first (the usual case); after a CR or Ctrl-Z, or once the
        // line's end is known, the line feed is looked for on its own.
        const auto feed_from = [data, take](size_t from) {
            const void* found = std::memchr(data + from, '\n', take - from);
            return found ? static_cast<size_t>(static_cast<const char*>(found) - data) : take;
        };
        size_t feed = take; // offset of the line feed in this piece, or take
        if (cut > limit) {
            const size_t end = first_line_end(data, take);
            if (end < take) {
                cut = stored + end;
                feed = data[end] == '\n' ? end : feed_from(end + 1);
            }
        } else {
            feed = feed_from(0);
        }
        if (feed < take) {
            take = feed + 1;
            complete = true;
        }
        std::memcpy(buf + stored, data, take);
        consume_input(fp, take);
        stored += take;
    }
    if (stored == 0 && limit > 0) {
        return 0;
    }
    buf[stored] = '\0';
    cut = cut > stored ? stored : cut;
    if (n > 1 && stored == limit && buf[stored - 1] != '\n' && std::strlen(buf) == stored) {
        // Throw the rest of the over-long line away.
        char discard[kChunk];
        while (std::fgets(discard, sizeof discard, fp)) {
            const size_t chunk = std::strlen(discard);
            if (chunk > 0 && discard[chunk - 1] == '\n') {
                break;
            }
        }
    }
    if (buf[0] == kEndOfFileMark) {
        return 0;
    }
    buf[cut] = '\0';
    return 1;
}

} // namespace

extern "C" {

int gfile_filopn(FILE** fp, const char* name, int mode)
{
    if (!fp) {
        return 0;
    }
    const char* open_mode = mode == GFILE_WRITE ? "w" : mode == GFILE_READ ? "r" : mode == GFILE_APPEND ? "a" : nullptr;
    if (open_mode) {
        *fp = name ? fopen_utf8(name, open_mode) : nullptr;
    }
    return *fp != nullptr;
}

int gfile_filcls(FILE* fp)
{
    return fp && std::fclose(fp) == 0;
}

int gfile_filend(FILE* fp)
{
    if (!fp) {
        return 0;
    }
    return std::feof(fp) != 0;
}

int gfile_filerr(FILE* fp)
{
    if (!fp) {
        return 0;
    }
    return std::ferror(fp) != 0;
}

int gfile_getfilbuf(FILE* fp, size_t size, size_t count, void* buf)
{
    if (!fp || !buf) {
        return 0;
    }
    std::fread(buf, size, count, fp);
    return !std::ferror(fp);
}

int gfile_putfilbuf(FILE* fp, size_t size, size_t count, const void* buf)
{
    if (!fp || !buf) {
        return 0;
    }
    std::fwrite(buf, size, count, fp);
    return !std::ferror(fp);
}

int gfile_getfilchr(FILE* fp, char* c)
{
    if (!fp || !c) {
        return 0;
    }
    *c = static_cast<char>(std::fgetc(fp));
    return !(std::ferror(fp) && std::feof(fp));
}

int gfile_putfilchr(FILE* fp, char c)
{
    if (!fp) {
        return 0;
    }
    std::fputc(static_cast<unsigned char>(c), fp);
    return !std::ferror(fp);
}

int gfile_getfilptr(FILE* fp, long* pos)
{
    if (!fp || !pos) {
        return 0;
    }
    *pos = std::ftell(fp);
    return *pos != -1;
}

int gfile_putfilptr(FILE* fp, long pos)
{
    if (!fp) {
        return 0;
    }
    return std::fseek(fp, pos, SEEK_SET) == 0;
}

int gfile_resetfilptr(FILE* fp)
{
    if (!fp) {
        return 0;
    }
    return std::fseek(fp, 0, SEEK_SET) == 0;
}

int gfile_getline(FILE* fp, char* buf)
{
    return read_line(fp, buf, GFILE_LINE_MAX);
}

int gfile_getline_limited(FILE* fp, char* buf, int n)
{
    return read_line(fp, buf, n);
}

int gfile_putline(FILE* fp, int newline, const char* text)
{
    if (!fp || !text) {
        return 0;
    }
    if (std::fputs(text, fp) == EOF) {
        return 0;
    }
    return !newline || std::fputc('\n', fp) != EOF;
}

} // extern "C"

bool gfile_getline_std_string(FILE* fp, std::string* line)
{
    if (!fp || !line) {
        return false;
    }
    line->clear();
    char chunk[kChunk];
    for (;;) {
        if (!std::fgets(chunk, sizeof chunk, fp)) {
            return !line->empty();
        }
        if (line->empty() && chunk[0] == kEndOfFileMark) {
            return false;
        }
        const size_t length = std::strlen(chunk);
        const size_t kept = line_length(chunk);
        line->append(chunk, kept);
        if (length < sizeof chunk - 1 || kept < length) {
            return true;
        }
    }
}
