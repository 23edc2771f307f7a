// Message catalogues: opening and closing catalogue handles, loading the
// message set a request names (the last loaded set of the current catalogue
// is reused) and retrieving a message by number.
#include "messages/gmsg_internal.h"

#include <tql70/gerror.h>
#include <tql70/gfile.h>
#include <tql70/gmem.h>
#include <tql70/tql_os.h>

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
    kListSize = 17,
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

// Turns the first character of every separator in `text` into a newline.
void break_lines(char* text)
{
    const char* mark = separator();
    if (!*mark) {
        return;
    }
    for (char* found = std::strstr(text, mark); found; found = std::strstr(found + 1, mark)) {
        *found = '\n';
    }
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
    gerror_set_error(0);
    if (!handle || !handle->directory) {
        gerror_set_error(kNotInitialised);
        return 0;
    }
    if (number < 1) {
        gerror_set_error(kBadNumber);
        return 0;
    }
    if (!set_name) {
        gerror_set_error(kNoSet);
        return 0;
    }
    if (!select_set(handle, set_name)) {
        return 0;
    }
    unsigned int count = 0;
    if (!glist_query(handle->messages, GLIST_LENGTH, &count)) {
        gerror_set_error(kListSize);
        return 0;
    }
    if (static_cast<unsigned int>(number) > count) {
        gerror_set_error(kBadNumber);
        return 0;
    }
    return 1;
}

int gmsg_retrieve_message(GmsgHandle handle, const char* set_name, int number, char* buffer)
{
    gerror_set_error(0);
    if (!gmsg_check_index(handle, set_name, number)) {
        return 0;
    }
    if (!buffer || !glist_getstr(handle->messages, static_cast<unsigned int>(number - 1), buffer)) {
        gerror_set_error(kRetrieveFailed);
        return 0;
    }
    break_lines(buffer);
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
