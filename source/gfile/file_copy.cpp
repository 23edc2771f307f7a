// Copying, moving, erasing and appending files.
#include <tql70/gfile.h>
#include <tql70/gmem.h>
#include <tql70/gtime.h>
#include <tql70/tql_os.h>

#include "gfile/gfile_internal.h"
#include "platform/platform.h"

#include <cstring>
#include <sys/stat.h>

using namespace tql::gfile;

namespace {

// Gives up the emergency memory reserve for the life of a copy and takes
// it back on every way out.
class ReserveReleased {
public:
    ReserveReleased() { zqtarvex_mem_recover_func(&callback_, &size_); }
    ~ReserveReleased() { zqtarvex_mem_recover_func(&callback_, &size_); }
    ReserveReleased(const ReserveReleased&) = delete;
    ReserveReleased& operator=(const ReserveReleased&) = delete;

private:
    RecoveryCallback callback_ = nullptr;
    unsigned int size_ = 0;
};

// A stream closed when it goes out of scope, unless closed before.
class Stream {
public:
    explicit Stream(FILE* file) : file_(file) {}
    ~Stream() { close(); }
    Stream(const Stream&) = delete;
    Stream& operator=(const Stream&) = delete;

    FILE* get() const { return file_; }
    bool close()
    {
        FILE* file = file_;
        file_ = nullptr;
        return !file || std::fclose(file) == 0;
    }

private:
    FILE* file_;
};

} // namespace

extern "C" {

int gfile_copy(const char* src, const char* dst)
{
    struct stat st;
    if (tql_stat(src, &st) != 0) {
        fail(kCannotFind, __LINE__);
        return 0;
    }
    unsigned long long remaining = static_cast<unsigned long long>(st.st_size);
    ReserveReleased reserve;
    Stream in(fopen_utf8(src, "rb"));
    Stream out(in.get() ? fopen_utf8(dst, "w+b") : nullptr);
    if (!in.get() || !out.get()) {
        fail(kCannotOpen, __LINE__);
        return 0;
    }
    // The kernel copies without passing the bytes through this process;
    // where it cannot, the bytes go through one buffer of the whole file
    // when memory allows, else through halves of it.
    switch (kernel_copy(in.get(), out.get(), remaining)) {
    case KernelCopy::kDone:
        remaining = 0;
        break;
    case KernelCopy::kShort:
        fail(kReadError, __LINE__);
        return 0;
    case KernelCopy::kFailed:
        fail(kWriteError, __LINE__);
        return 0;
    case KernelCopy::kUnsupported:
        break;
    }
    if (remaining > 0) {
        size_t chunk = static_cast<size_t>(remaining < 0x7FFFFFFFull ? remaining : 0x7FFFFFFFull);
        char* buffer = static_cast<char*>(gmem_ee_malloc(chunk + 1, 1));
        while (!buffer && chunk / 2 > 1000) {
            chunk /= 2;
            buffer = static_cast<char*>(gmem_ee_malloc(chunk + 1, 1));
        }
        if (!buffer) {
            fail(kNoCopyMemory, __LINE__);
            return 0;
        }
        while (remaining > 0) {
            if (remaining < chunk) {
                chunk = static_cast<size_t>(remaining);
            }
            if (std::fread(buffer, 1, chunk, in.get()) != chunk) {
                fail(kReadError, __LINE__);
                gmem_ee_free(buffer);
                return 0;
            }
            if (std::fwrite(buffer, 1, chunk, out.get()) != chunk) {
                fail(kWriteError, __LINE__);
                gmem_ee_free(buffer);
                return 0;
            }
            remaining -= chunk;
        }
        gmem_ee_free(buffer);
    }
    in.close();
    if (!out.close()) {
        fail(kWriteError, __LINE__);
        return 0;
    }
    copy_file_times(native_path(src), native_path(dst));
    return 1;
}

int gfile_erasefil(const char* path)
{
    if (!path || !remove_file(native_path(path))) {
        fail(kCannotDelete, __LINE__);
        return 0;
    }
    return 1;
}

int gfile_move(const char* src, const char* dst)
{
    return gfile_copy(src, dst) && gfile_erasefil(src);
}

int gfile_append_file_to_file(const char* dst, const char* src)
{
    FILE* out = fopen_utf8(dst, "a");
    if (!out) {
        return 0;
    }
    FILE* in = fopen_utf8(src, "r");
    if (!in) {
        std::fclose(out);
        return 0;
    }
    char line[GFILE_LINE_MAX];
    while (gfile_getline_limited(in, line, sizeof line)) {
        std::fputs(line, out);
    }
    std::fclose(in);
    std::fclose(out);
    return 1;
}

int gfile_append_line_to_file(const char* dst, const char* line)
{
    FILE* out = fopen_utf8(dst, "a");
    if (!out) {
        return 0;
    }
    if (line && *line && std::fputs(line, out) != EOF) {
        std::fputc('\n', out);
    }
    std::fclose(out);
    return 1;
}

} // extern "C"
