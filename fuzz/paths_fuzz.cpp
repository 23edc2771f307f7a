// Fuzz target for path canonicalisation, the wildcard matcher and the
// name repairs of gfile. The first byte splits the rest into a name and a
// pattern. The matcher is checked against its first, exponential form on
// small inputs. Runs in a temporary directory of its own; nothing is created or
// changed on disk. Results go into heap buffers of exactly the size the
// function may use, so a write past them is caught.
#include <tql70/gfile.h>
#include <tql70/zq_paths.h>

#include "gfile/gfile_internal.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

void check(bool condition)
{
    if (!condition) {
        std::abort();
    }
}

bool is_separator(char c)
{
    return c == '/' || c == '\\';
}

std::string fixed_up(const std::string& path)
{
    std::vector<char> buffer(path.c_str(), path.c_str() + path.size() + 1);
    ZQ_fixup_path(buffer.data());
    return buffer.data();
}

std::string working_directory;

void check_fixup(const std::string& name)
{
    const std::string once = fixed_up(name);
    check(once.size() <= name.size());
    check(once.find('/') == std::string::npos);
    check(once.empty() || !is_separator(once.back()));
    check(once.find("\\\\", 1) == std::string::npos);
    check(fixed_up(once) == once);
}

void check_canonical(const std::string& name)
{
    std::vector<char> out(working_directory.size() + name.size() + 2);
    if (!ZQ_canonical_path(name.c_str(), out.data())) {
        // Refused: the name has no canonical form, or its form would not fit
        // a path buffer (the comparison has no such limit).
        if (working_directory.size() + name.size() + 2 < TQL70_PATH_BUFFER_SIZE) {
            check(ZQ_paths_are_same(name.c_str(), name.c_str(), 0) == 0);
        }
        return;
    }
    const std::string canonical = out.data();
    check(canonical.empty() || ZQ_path_is_absolute(canonical.c_str()));
    check(fixed_up(canonical) == canonical);
    if (!canonical.empty()) {
        std::vector<char> again(canonical.size() + 1);
        check(ZQ_canonical_path(canonical.c_str(), again.data()) && canonical == again.data());
    }
    check(ZQ_paths_are_same(name.c_str(), name.c_str(), 0) == 1);

    std::vector<char> directory(working_directory.size() + name.size() + 4);
    ZQ_get_directory_from_file(name.c_str(), directory.data());
}

// The matcher as first written, trying every share of the name among the
// '*'s: the answers to keep, in time exponential in the number of '*'s.
bool reference_match(const char* name, const char* pattern)
{
    while (*name) {
        if (*pattern == '*') {
            const char after = pattern[1];
            if (!after) {
                return true;
            }
            if (*name == after && reference_match(name + 1, pattern + 2)) {
                return true;
            }
            ++name;
        } else if (*pattern == '?' || *pattern == *name) {
            ++pattern;
            ++name;
        } else {
            return false;
        }
    }
    return !*pattern || (pattern[0] == '*' && !pattern[1]);
}

void check_wildcards(const std::string& name, const std::string& pattern)
{
    using tql::gfile::wildcard_match;
    if (std::count(pattern.begin(), pattern.end(), '*') <= 4 && name.size() <= 64) {
        check(wildcard_match(name.c_str(), pattern.c_str()) == reference_match(name.c_str(), pattern.c_str()));
    }
    check(wildcard_match(name.c_str(), "*"));
    if (name.find('*') == std::string::npos) {
        check(wildcard_match(name.c_str(), name.c_str()));
        check(wildcard_match(name.c_str(), std::string(name.size(), '?').c_str()));
        check(!wildcard_match((name + "x").c_str(), name.c_str()));
    }
    wildcard_match(name.c_str(), pattern.c_str());
}

void check_repairs(const std::string& name)
{
    size_t controls = 0;
    for (char c : name) {
        controls += c >= 7 && c <= 13;
    }
    const size_t repaired_size = name.size() + 2 * controls;
    char* path = static_cast<char*>(std::malloc(name.size() + 1));
    std::memcpy(path, name.c_str(), name.size() + 1);
    const int fixed = gfile_fix_path(&path);
    check(fixed == (repaired_size < 1024 ? 1 : 0));
    if (fixed) {
        check(std::strlen(path) == repaired_size);
        for (const char* p = path; *p; ++p) {
            check(*p < 7 || *p > 13);
        }
    } else {
        check(name == path);
    }
    std::free(path);

    std::vector<char> dir(name.c_str(), name.c_str() + name.size() + 1);
    check(gfile_strip_dir_name(dir.data()) == 1);
    const size_t stripped = std::strlen(dir.data());
    check(stripped == name.size() || stripped + 1 == name.size());

    int pos = -1;
    const int has = gfile_hasdrv(name.c_str(), &pos);
    check(pos >= 0 && static_cast<size_t>(pos) <= name.size() && has == (pos >= 1));
    std::vector<char> bare(name.size() - static_cast<size_t>(pos) + 1);
    gfile_stripdrv(name.c_str(), bare.data());
    check(name.compare(static_cast<size_t>(pos), std::string::npos, bare.data()) == 0);

    std::vector<char> converted(name.c_str(), name.c_str() + name.size() + 1);
    convertFileName(converted.data());
    check(std::strlen(converted.data()) == name.size() && !std::strchr(converted.data(), '/'));
    check(gdir_compare_paths(name.c_str(), converted.data()) == 1);

    const char* base = ZQ_get_basename_from_file(name.c_str());
    check(base >= name.c_str() && base <= name.c_str() + name.size() && !std::strpbrk(base, "/\\"));
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    const char* tmp = std::getenv("TMPDIR");
    std::string pattern = std::string(tmp && *tmp ? tmp : "/tmp") + "/paths_fuzz.XXXXXX";
    if (!mkdtemp(&pattern[0]) || chdir(pattern.c_str()) != 0) {
        std::abort();
    }
    working_directory = pattern;
    std::atexit([] { rmdir(working_directory.c_str()); });
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 1) {
        return 0;
    }
    const std::string text(reinterpret_cast<const char*>(data + 1), size - 1);
    const size_t split = text.size() * data[0] / 256;
    const std::string name = text.substr(0, split).c_str();
    const std::string pattern = text.substr(split).c_str();

    check_fixup(name);
    check_canonical(name);
    check_wildcards(name, pattern);
    check_repairs(name);
    return 0;
}
