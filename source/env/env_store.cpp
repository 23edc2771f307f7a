// The variable store: name normalisation, lookup in level order, and get,
// put, remove and exists on one environment.
#include "env/env_store.h"

#include <tql70/gmem.h>
#include <tql70/zq_paths.h>

#include <cassert>
#include <cstring>

namespace tql::env {

void normalize_name(const char* name, char out[GUI_ENV_NAME_MAX + 1])
{
    int i = 0;
    for (; i < GUI_ENV_NAME_MAX && name[i]; ++i) {
        const unsigned char c = static_cast<unsigned char>(name[i]);
        out[i] = static_cast<char>(c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c);
    }
    out[i] = '\0';
}

namespace {

GuiEnvEntry* find_in_level(GuiEnvLevel& level, const char* normalized, uint32_t hash, bool include_deleted)
{
    const int slot = level.index.find(level.entries, normalized, hash);
    if (slot < 0) {
        return nullptr;
    }
    GuiEnvEntry& entry = level.entries[slot];
    return (include_deleted || entry.state != ENV_DELETED) ? &entry : nullptr;
}

// The level a new entry of `level` goes to: site, custom or home for 4, 3
// and 2, local for everything else.
GuiEnvLevel& target_level(GuiEnv env, int level)
{
    return env->levels[(level >= GUI_ENV_HOME && level <= GUI_ENV_SITE) ? storage_index(level)
                                                                          : storage_index(GUI_ENV_LOCAL)];
}

// Takes a free slot of `level`, growing the table by one block of 32 when
// every slot is in use; null when memory is short.
GuiEnvEntry* take_slot(GuiEnvLevel& level)
{
    if (!level.index.reserve(level.count + 1)) {
        return nullptr;
    }
    if (level.capacity > level.count) {
        // Slots are taken in order and only freed with the whole level, so
        // the first free slot is the one after the last taken.
        GuiEnvEntry* slot = &level.entries[level.count];
        assert(slot->name[0] == '\0');
        ++level.count;
        return slot;
    }
    const int grown = level.capacity + kSlotBlock;
    void* table = level.entries ? gmem_ee_realloc(level.entries, sizeof(GuiEnvEntry), grown)
                                : gmem_ee_calloc(sizeof(GuiEnvEntry), grown);
    if (!table) {
        return nullptr;
    }
    level.entries = static_cast<GuiEnvEntry*>(table);
    std::memset(level.entries + level.capacity, 0, sizeof(GuiEnvEntry) * kSlotBlock);
    GuiEnvEntry* slot = &level.entries[level.capacity];
    level.capacity = grown;
    ++level.count;
    return slot;
}

} // namespace

GuiEnvEntry* find_entry(GuiEnv env, const char* normalized, int level, bool include_deleted)
{
    const uint32_t hash = NameIndex::hash(normalized);
    if (level >= GUI_ENV_LOCAL && level <= GUI_ENV_SITE) {
        return find_in_level(env->levels[storage_index(level)], normalized, hash, include_deleted);
    }
    for (int searched = GUI_ENV_LOCAL; searched <= GUI_ENV_SITE; ++searched) {
        GuiEnvLevel& searched_level = env->levels[storage_index(searched)];
        if (GuiEnvEntry* entry = find_in_level(searched_level, normalized, hash, include_deleted)) {
            return entry;
        }
    }
    return nullptr;
}

GuiEnvEntry* put_entry(GuiEnv env, const char* name, const char* value, int level, int state)
{
    if (!env || !name || !*name) {
        return nullptr;
    }
    char normalized[GUI_ENV_NAME_MAX + 1];
    normalize_name(name, normalized);
    if (GuiEnvEntry* entry = find_entry(env, normalized, level, true)) {
        if (entry->state == ENV_DELETED) {
            entry->state = ENV_MODIFIED;
            entry->user = nullptr;
        }
        if (level == GUI_ENV_USERDATA && value) {
            entry->user = const_cast<char*>(value);
            return entry;
        }
        char* copy = nullptr;
        if (value && !(copy = ZQ_stringcopy(value))) {
            return nullptr;
        }
        // An entry read from an included file stays ENV_INCLUDED even when
        // changed, so the change is never written back to its file.
        if (entry->state != ENV_INCLUDED) {
            entry->state = ENV_MODIFIED;
        }
        gmem_ee_free(entry->value);
        entry->value = copy;
        entry->source = nullptr; // no longer the value its file gave
        return entry;
    }
    if (!value) {
        return nullptr;
    }
    char* copy = nullptr;
    if (level != GUI_ENV_USERDATA && !(copy = ZQ_stringcopy(value))) {
        return nullptr;
    }
    GuiEnvLevel& target = target_level(env, level);
    GuiEnvEntry* entry = take_slot(target);
    if (!entry) {
        gmem_ee_free(copy);
        return nullptr;
    }
    std::memcpy(entry->name, normalized, sizeof normalized);
    entry->state = state;
    entry->value = copy;
    entry->user = level == GUI_ENV_USERDATA ? const_cast<char*>(value) : nullptr;
    target.index.add(target.entries, static_cast<int>(entry - target.entries));
    return entry;
}

} // namespace tql::env

using namespace tql::env;

extern "C" {

int gui_env_get(GuiEnv env, const char* name, char* buffer, void** user, int size, int level)
{
    if (!env || !name || !*name) {
        return -1;
    }
    char normalized[GUI_ENV_NAME_MAX + 1];
    normalize_name(name, normalized);
    const char* value;
    void* user_pointer = nullptr;
    if (const GuiEnvEntry* entry = find_entry(env, normalized, level, false)) {
        value = entry->value ? entry->value : "";
        user_pointer = entry->user;
    } else {
        char* replacement = nullptr;
        if (!gui_env_apply_env_error(GUI_ENV_ERR_NO_VAR, env, name, &replacement) || !replacement) {
            return -1;
        }
        value = replacement;
    }
    const size_t length = std::strlen(value);
    if (size < 0 || length >= static_cast<size_t>(size)) {
        return static_cast<int>(length + 1);
    }
    if (buffer) {
        std::memcpy(buffer, value, length + 1);
    }
    if (user) {
        *user = user_pointer;
    }
    return 0;
}

int gui_env_put(GuiEnv env, const char* name, const char* value, int level)
{
    return gui_env_put_modnew(env, name, value, level, ENV_MODIFIED);
}

int gui_env_put_modnew(GuiEnv env, const char* name, const char* value, int level, int state)
{
    return put_entry(env, name, value, level, state) ? 1 : 0;
}

int gui_env_rm(GuiEnv env, const char* name, int level)
{
    if (!env || !name || !*name) {
        return 0;
    }
    char normalized[GUI_ENV_NAME_MAX + 1];
    normalize_name(name, normalized);
    GuiEnvEntry* entry = find_entry(env, normalized, level, false);
    if (!entry) {
        return 0;
    }
    entry->state = ENV_DELETED;
    return 1;
}

int gui_env_exists(GuiEnv env, const char* name, int level)
{
    char scratch[100];
    return gui_env_get(env, name, scratch, nullptr, sizeof scratch, level) != -1;
}

int gui_env_get_and_expand(GuiEnv env, const char* name, char* buffer, void** user, int size, int level)
{
    const int found = gui_env_get(env, name, buffer, user, size, level);
    if (found != 0) {
        return found;
    }
    return gui_env_expand_str(buffer, buffer, size, env, static_cast<GuiEnv>(nullptr));
}

} // extern "C"
