// Parts of file names in the gfile family: extension, directory or drive
// prefix, trailing separators, and the repair of escapes read as control
// characters.
#include <tql70/gfile.h>
#include <tql70/gmem.h>
#include <tql70/zq_paths.h>

#include "platform/platform.h"

#include <QString>

#include <cctype>
#include <cstdlib>
#include <cstring>
#include <strings.h>
#include <string>

namespace {

// The repaired path of gfile_fix_path is built in a work area of this size.
constexpr size_t kFixPathLimit = 1024;

void slashes_to_backslashes(std::string& text)
{
    for (char& c : text) {
        if (c == '/') {
            c = '\\';
        }
    }
}

} // namespace

extern "C" {

char* convertFileName(char* name)
{
    if (name) {
        for (char* p = name; *p; ++p) {
            if (*p == '/') {
                *p = '\\';
            }
        }
    }
    return name;
}

int gfile_file_name_strcmp(const char* a, const char* b)
{
    return ::strcasecmp(a ? a : "", b ? b : "");
}

int gfile_file_name_strncmp(const char* a, const char* b, int n)
{
    return n <= 0 ? 0 : ::strncasecmp(a ? a : "", b ? b : "", static_cast<size_t>(n));
}

int gfile_hasfullpath(const char* path)
{
    if (!path || !*path) {
        return 0;
    }
    if (path[0] == '/' || path[0] == '\\') {
        return 1;
    }
    const char first = path[0];
    return path[1] == ':' && ((first >= 'A' && first <= 'Z') || (first >= 'a' && first <= 'z'));
}

char* gfile_getext(const char* name)
{
    const size_t length = name ? std::strlen(name) : 0;
    char* ext = static_cast<char*>(gmem_ee_calloc(length + 1, 1));
    if (ext && name) {
        if (const char* dot = std::strchr(name, '.')) {
            std::strcpy(ext, dot + 1);
        }
    }
    return ext;
}

int gfile_hasext(const char* name, int* pos)
{
    std::string copy = name ? name : "";
    slashes_to_backslashes(copy);
    const size_t dot = copy.rfind('.');
    const size_t separator = copy.rfind('\\');
    int found = 0;
    if (dot != std::string::npos && (separator == std::string::npos || dot > separator)) {
        found = static_cast<int>(dot) + 1;
    }
    if (pos) {
        *pos = found;
    }
    return found >= 1;
}

void gfile_stripext(const char* name, char* out)
{
    if (!out) {
        return;
    }
    int pos = 0;
    const std::string copy = name ? name : "";
    const size_t keep = gfile_hasext(copy.c_str(), &pos) ? static_cast<size_t>(pos - 1) : copy.size();
    std::memcpy(out, copy.c_str(), keep);
    out[keep] = '\0';
}

char* gfile_filext(char* name, int replace, const char* ext)
{
    if (!name) {
        return nullptr;
    }
    int pos = 0;
    const bool has = gfile_hasext(name, &pos);
    if (!has || replace) {
        if (has) {
            name[pos - 1] = '\0';
        }
        std::strcat(name, ".");
        std::strcat(name, ext ? ext : "");
    }
    return convertFileName(name);
}

int gfile_hasdrv(const char* name, int* pos)
{
    int found = 0;
    if (name) {
        for (int i = static_cast<int>(std::strlen(name)) - 1; i >= 0; --i) {
            if (name[i] == ':' || name[i] == '\\') {
                found = i + 1;
                break;
            }
        }
    }
    if (pos) {
        *pos = found;
    }
    return found >= 1;
}

void gfile_stripdrv(const char* name, char* out)
{
    if (!out) {
        return;
    }
    int pos = 0;
    gfile_hasdrv(name, &pos);
    std::memmove(out, (name ? name : "") + pos, std::strlen((name ? name : "") + pos) + 1);
}

void gfile_fildrv(char* name, int replace, const char* prefix)
{
    if (!name) {
        return;
    }
    if (gfile_hasdrv(name, nullptr) && !replace) {
        return;
    }
    char* bare_start = name;
    int pos = 0;
    gfile_hasdrv(name, &pos);
    const std::string bare = bare_start + pos;
    std::string result = prefix ? prefix : "";
    slashes_to_backslashes(result);
    if (!result.empty() && result.back() != '\\') {
        result += '\\';
    }
    result += bare;
    std::memcpy(name, result.c_str(), result.size() + 1);
}

int gfile_strip_dir_name(char* dir)
{
    if (!dir) {
        return 1;
    }
    size_t length = std::strlen(dir);
    if (length > 1 && dir[length - 1] == '/') {
        dir[length - 1] = '\\';
    }
    const bool drive_root = length == 3 && std::isalpha(static_cast<unsigned char>(dir[0])) && dir[1] == ':' &&
                            dir[2] == '\\';
    if (!drive_root && length > 0 && dir[length - 1] == '\\') {
        dir[length - 1] = '\0';
    }
    return 1;
}

int gfile_prepare_dir_name(char* dir)
{
    if (!dir || !*dir) {
        return 1;
    }
    const size_t length = std::strlen(dir);
    if (dir[length - 1] == '/') {
        dir[length - 1] = '\\';
    }
    if (dir[length - 1] != '\\') {
        dir[length] = '\\';
        dir[length + 1] = '\0';
    }
    return 1;
}

char* gfile_abs_path(const char* name)
{
    std::string absolute = absolute_file_path(name ? name : "");
    FixFilenameSlashes(&absolute[0]);
    return ::strdup(absolute.c_str());
}

int gfile_fix_path(char** path)
{
    static const char kLetters[] = "abtnvfr"; // codes 7 to 13
    if (!path || !*path) {
        return 0;
    }
    std::string repaired;
    for (const char* p = *path; *p; ++p) {
        if (*p >= 7 && *p <= 13) {
            repaired += "\\\\";
            repaired += kLetters[*p - 7];
        } else {
            repaired += *p;
        }
    }
    if (repaired.size() >= kFixPathLimit) {
        return 0;
    }
    if (!repaired.empty()) {
        char* grown = static_cast<char*>(std::realloc(*path, repaired.size() + 1));
        if (!grown) {
            return 0;
        }
        *path = grown;
    }
    std::memcpy(*path, repaired.c_str(), repaired.size() + 1);
    return 1;
}

bool gfile_allow_spaces_in_files(void)
{
    return false;
}

} // extern "C"

QString gfile_strip_dir_name_qt(const QString& dir)
{
    if (dir.size() == 3 && dir[1] == QLatin1Char(':')) {
        return dir;
    }
    if (dir.endsWith(QLatin1Char('/')) || dir.endsWith(QLatin1Char('\\'))) {
        return dir.left(dir.size() - 1);
    }
    return dir;
}

QString gfile_strip_dir_name_and_convert_qt(const QString& dir)
{
    QByteArray converted = dir.toUtf8();
    FixFilenameSlashes(converted.data());
    return gfile_strip_dir_name_qt(QString::fromUtf8(converted));
}
