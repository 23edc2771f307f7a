// File handles: streams opened by numeric mode, block, character and
// position calls with status results, and the library's line readers
// (length limit, CR/LF/CRLF ends, Ctrl-Z as end-of-file mark).
#include <tql70/gfile.h>

#include "platform/platform.h"

#include <cstring>
#include <string>

namespace {

constexpr char kEndOfFileMark = 26; // Ctrl-Z
constexpr int kChunk = GFILE_LINE_MAX;

// Length of `text` up to its first CR, LF or Ctrl-Z.
size_t line_length(const char* text)
{
    return std::strcspn(text, "\r\n\x1a");
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
    return gfile_getline_limited(fp, buf, GFILE_LINE_MAX);
}

int gfile_getline_limited(FILE* fp, char* buf, int n)
{
    if (!fp || !buf || n < 1) {
        return 0;
    }
    if (!std::fgets(buf, n, fp)) {
        return 0;
    }
    const size_t length = std::strlen(buf);
    if (n > 1 && length == static_cast<size_t>(n - 1) && buf[length - 1] != '\n') {
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
    buf[line_length(buf)] = '\0';
    return 1;
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
