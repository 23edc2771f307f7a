// Message catalogues: opening and closing catalogue handles, loading the
// message set a request names (the last loaded set of the current catalogue
// is reused) and retrieving a message by number.
#include "messages/gmsg_internal.h"

#include "containers/glist_internal.h"

#include <tql70/gerror.h>
#include <tql70/gfile.h>
#include <tql70/gmem.h>
#include <tql70/tql_os.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <sys/stat.h>
#include <vector>

using namespace gmsg_internal;

namespace {

// Error codes of message retrieval (texts in gerror).
enum {
    kNoMemory = 2,
    kNoSetMemory = 3,
    kCannotFree = 4,
    kFileNotFound = 12,
    kEnvironmentFile = 13,
    kLoadFailed = 14,
    kSetNotFound = 15,
    kNoSet = 18,
    kNotInitialised = 19,
    kBadNumber = 20,
    kRetrieveFailed = 21,
};

// The catalogue whose set was loaded last.
GmsgCatalogue* g_current = nullptr;

char* copy_string(const std::string& text)
{
    char* copy = static_cast<char*>(gmem_ee_malloc(1, text.size() + 1));
    if (copy) {
        std::memcpy(copy, text.c_str(), text.size() + 1);
    }
    return copy;
}

bool file_exists(const std::string& name)
{
    struct stat status;
    return tql_stat(name.c_str(), &status) == 0;
}

// Closes the list of a set that failed to load: `code`, or 4 when even the
// close fails.
void drop_list(glist list, int code)
{
    gerror_set_error(glist_close(list) ? code : kCannotFree);
}

#if defined(__clang__)
#define NOT_ANALYSED_ACROSS_CALLS __attribute__((noinline))
#else
#define NOT_ANALYSED_ACROSS_CALLS __attribute__((noipa))
#endif

// memcpy through the C library: a copy of a length the compiler knows to
// be at most a message's size gets inlined as a string instruction that
// is several times slower for the short lengths of messages.
NOT_ANALYSED_ACROSS_CALLS void copy_bytes(char* destination, const char* source, size_t count)
{
    std::memcpy(destination, source, count);
}

// Whether any message of the list holds the separator.
bool holds_separator(glist list)
{
    const char* mark = separator();
    if (!mark[0]) {
        return false;
    }
    for (unsigned int i = 0; i < list->length; ++i) {
        const glist_internal::Record* record = *glist_internal::slot_at(list, i);
        if (record && std::strstr(record->bytes, mark)) {
            return true;
        }
    }
    return false;
}

bool load_set(GmsgCatalogue* handle, const char* set_name)
{
    glist list = nullptr;
    if (!glist_create(&list, 0, nullptr, nullptr)) {
        gerror_set_error(kLoadFailed);
        return false;
    }
    std::vector<char> value(kValueSize, '\0');
    if (gui_env_get_and_expand(handle->directory, set_name, value.data(), nullptr, kValueSize, 0) != 0) {
        drop_list(list, kSetNotFound);
        trace("gmsg: %s = %s\n", set_name, value.data());
        trace_error();
        return false;
    }
    trace("gmsg: %s = %s\n", set_name, value.data());
    const std::string base = value.data();
    std::string file;
    for (const std::string& candidate : {base + ".msg", base + "." + handle->extension, base}) {
        if (file_exists(candidate)) {
            file = candidate;
            break;
        }
    }
    if (file.empty()) {
        drop_list(list, kFileNotFound);
        return false;
    }
    std::vector<char> message(file.size() + GLIST_MESSAGE_EXTRA);
    if (!glist_load(list, file.c_str(), message.data())) {
        drop_list(list, kLoadFailed);
        return false;
    }
    handle->messages = list;
    handle->set_has_separator = holds_separator(list);
    return true;
}

// Makes `set_name` the loaded set of `handle`.
bool select_set(GmsgCatalogue* handle, const char* set_name)
{
    if (!handle) {
        gerror_set_error(kNotInitialised);
        return false;
    }
    if (handle == g_current && handle->set_name && handle->messages && std::strcmp(handle->set_name, set_name) == 0) {
        return true;
    }
    const size_t length = std::strlen(set_name);
    if (!handle->set_name || std::strlen(handle->set_name) < length) {
        char* grown = static_cast<char*>(gmem_ee_realloc(handle->set_name, 1, length + 1));
        if (!grown) {
            gerror_set_error(kNoSetMemory);
            return false;
        }
        handle->set_name = grown;
    }
    std::strcpy(handle->set_name, set_name);
    bool loaded = true;
    if (handle->messages) {
        loaded = glist_close(handle->messages) != 0;
        handle->messages = nullptr;
        if (!loaded) {
            gerror_set_error(kCannotFree);
        }
    }
    loaded = loaded && load_set(handle, set_name);
    if (!loaded) {
        gmem_ee_free(handle->set_name);
        handle->set_name = nullptr;
        return false;
    }
    g_current = handle;
    return true;
}

// Copies message `index` of the loaded set into `buffer` (at most
// GMSG_MESSAGE_SIZE bytes) with every separator's first character turned
// into a newline (looked for only when the set holds a separator); false
// when there is no such message. The set's list was
// made by gmsg itself: it has no hook, and each record is a line read by
// glist_load, its text followed by one NUL.
bool copy_message(glist list, unsigned int index, bool has_separator, char* buffer)
{
    if (!buffer || index >= list->length) {
        return false;
    }
    const glist_internal::Record* record = *glist_internal::slot_at(list, index);
    if (!record) {
        buffer[0] = '\0';
        return true;
    }
    // The record's bytes are the text and its NUL; a longer one than a
    // message can be is cut.
    if (record->size <= GMSG_MESSAGE_SIZE) {
        copy_bytes(buffer, record->bytes, record->size);
    } else {
        copy_bytes(buffer, record->bytes, GMSG_MESSAGE_SIZE - 1);
        buffer[GMSG_MESSAGE_SIZE - 1] = '\0';
    }
    if (has_separator) {
        const char* mark = separator();
        for (char* found = std::strstr(buffer, mark); found; found = std::strstr(found + 1, mark)) {
            *found = '\n';
        }
    }
    return true;
}

// Whether `number` is a message of `set_name`, the set loaded if need be;
// GuiErrno 0 or the code of the failure.
inline bool check_index(GmsgCatalogue* handle, const char* set_name, int number)
{
    GuiErrno = 0;
    if (!handle || !handle->directory) {
        GuiErrno = kNotInitialised;
        return false;
    }
    if (number < 1) {
        GuiErrno = kBadNumber;
        return false;
    }
    if (!set_name) {
        GuiErrno = kNoSet;
        return false;
    }
    if (!select_set(handle, set_name)) {
        return false;
    }
    if (static_cast<unsigned int>(number) > handle->messages->length) {
        GuiErrno = kBadNumber;
        return false;
    }
    return true;
}

} // namespace

extern "C" {

GmsgHandle gmsg_open(const char* config_name, const char* prefix, const char* language)
{
    gerror_set_error(0);
    g_current = nullptr;
    update_trace_flag();
    if (!initialise_once()) {
        return nullptr;
    }
    if (!config_name || !*config_name) {
        config_name = "zqtarvexsess";
    }
    if (!prefix || !*prefix) {
        prefix = "zqtarvex";
    }
    Settings settings;
    if (!read_settings(config_name, prefix, language, settings)) {
        return nullptr;
    }
    GmsgCatalogue* handle = static_cast<GmsgCatalogue*>(gmem_ee_calloc(sizeof(GmsgCatalogue), 1));
    if (!handle) {
        gerror_set_error(kNoMemory);
        return nullptr;
    }
    const char* directory_file = settings.directory_file.c_str();
    FILE* probe = nullptr;
    if (!gfile_filopn(&probe, directory_file, GFILE_READ)) {
        gmem_ee_free(handle);
        gerror_set_error(kFileNotFound);
        trace("gmsg: msg_directory_filename = %s\n", directory_file);
        trace_error();
        return nullptr;
    }
    gfile_filcls(probe);
    trace("gmsg: msg_directory_filename = %s\n", directory_file);
    handle->directory = gui_env_open(directory_file, 5);
    if (!handle->directory) {
        gmem_ee_free(handle);
        gerror_set_error(kEnvironmentFile);
        return nullptr;
    }
    handle->extension = copy_string(settings.extension);
    handle->font = copy_string(settings.font);
    handle->language = copy_string(settings.language);
    if (!handle->extension || !handle->font || !handle->language) {
        gmsg_close(handle);
        gerror_set_error(kNoMemory);
        return nullptr;
    }
    g_current = handle;
    return handle;
}

int gmsg_check_index(GmsgHandle handle, const char* set_name, int number)
{
    return check_index(handle, set_name, number) ? 1 : 0;
}

int gmsg_retrieve_message(GmsgHandle handle, const char* set_name, int number, char* buffer)
{
    if (!check_index(handle, set_name, number)) {
        return 0;
    }
    if (!copy_message(handle->messages, static_cast<unsigned int>(number - 1), handle->set_has_separator, buffer)) {
        GuiErrno = kRetrieveFailed;
        return 0;
    }
    return 1;
}

const char* gmsg_query_font(GmsgHandle handle)
{
    return handle ? handle->font : nullptr;
}

int gmsg_close(GmsgHandle handle)
{
    gerror_set_error(0);
    if (!handle) {
        return 1;
    }
    for (char** text : {&handle->set_name, &handle->extension, &handle->font, &handle->language}) {
        gmem_ee_free(*text);
        *text = nullptr;
    }
    int result = 1;
    if (handle->directory) {
        if (!gui_env_close(handle->directory, 0)) {
            gerror_set_error(kCannotFree);
            result = 0;
        }
        handle->directory = nullptr;
    }
    if (handle->messages) {
        if (!glist_close(handle->messages)) {
            gerror_set_error(kCannotFree);
            return 0;
        }
        handle->messages = nullptr;
    }
    if (g_current == handle) {
        g_current = nullptr;
    }
    if (result) {
        gmem_ee_free(handle);
    }
    return result;
}

} // extern "C"
