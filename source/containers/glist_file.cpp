// Persistent lists: loading a list from a text file, one record per line,
// and storing it back, replacing the file in one step.
#include "containers/glist_internal.h"

#include <tql70/gfile.h>

#include "platform/replace_by_rename.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

constexpr size_t kLineBuffer = 1025;

// glist_putstr of a line read from a file, its TABs turned into blanks
// (as gparse_strptab does), without measuring the line twice.
bool put_line(GlistHeader* list, unsigned int index, char* line)
{
    const size_t length = std::strlen(line);
    for (char* tab = static_cast<char*>(std::memchr(line, '\t', length)); tab;
         tab = static_cast<char*>(std::memchr(tab + 1, '\t', length - static_cast<size_t>(tab + 1 - line)))) {
        *tab = ' ';
    }
    if (glist_internal::hooked(list, glist_internal::kHookPutRecord, line)) {
        return true;
    }
    bool failed = false;
    glist_internal::Record* record =
        glist_internal::make_record(line, length ? static_cast<uint32_t>(length + 1) : 0, failed);
    if (failed || !glist_internal::store_record(list, index, record)) {
        std::free(record);
        return false;
    }
    list->flags &= ~static_cast<uint32_t>(GLIST_SORTED);
    return true;
}

} // namespace

extern "C" {

int glist_load(glist handle, const char* path, char* message_out)
{
    if (!message_out) {
        return 0;
    }
    if (!path) {
        path = "";
    }
    if (!handle) {
        std::sprintf(message_out, "<GLIST_LOAD> (%zd) not open: %s", static_cast<ssize_t>(0), path);
        return 0;
    }
    FILE* file = nullptr;
    if (!gfile_filopn(&file, path, GFILE_READ)) {
        std::sprintf(message_out, "Not found: %s", path);
        return 0;
    }
    char* line = static_cast<char*>(std::malloc(kLineBuffer));
    if (!line) {
        std::fclose(file);
        std::sprintf(message_out, "Load incomplete: %s", path);
        return 0;
    }
    unsigned int count = 0;
    while (gfile_getline(file, line)) {
        if (!put_line(handle, count, line)) {
            std::sprintf(message_out, "Load incomplete: %s", path);
            std::fclose(file);
            std::free(line);
            return 0;
        }
        ++count;
    }
    handle->store_count = count;
    std::fclose(file);
    std::free(line);
    return 1;
}

int glist_store(glist handle, const char* path, char* message_out)
{
    if (!message_out) {
        return 0;
    }
    if (!path) {
        path = "";
    }
    if (!handle) {
        std::sprintf(message_out, "<GLIST_STORE> (%zd) not open: %s", static_cast<ssize_t>(0), path);
        return 0;
    }
    PendingReplacement pending;
    if (!*path || !begin_replacement(path, pending)) {
        std::sprintf(message_out, "Cannot create: %s", path);
        return 0;
    }
    const unsigned int count = handle->store_count < handle->length ? handle->store_count : handle->length;
    for (unsigned int i = 0; i < count; ++i) {
        gfile_putline(pending.file, 1, glist_internal::record_text(*glist_internal::slot_at(handle, i)));
    }
    if (!commit_replacement(pending)) {
        std::sprintf(message_out, "Write error: %s", path);
        return 0;
    }
    return 1;
}

} // extern "C"
