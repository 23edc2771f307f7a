// Fuzz target for the configuration reader and writer. The input is cut at
// each "\n@@\n" into up to four files f0.cfg ... f3.cfg in a private
// folder; f0.cfg is read as a local-level file, so "+f1" and any other
// include line lead anywhere. Reading must end without crashing, and after
// a new variable is set and saved, reading the file back must give it.
#include <tql70/gui_env.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <unistd.h>

namespace {

void check(bool condition)
{
    if (!condition) {
        std::abort();
    }
}

int callback(int, const char*, const char*, char**)
{
    return 0;
}

void write_file(const std::string& name, const std::string& content)
{
    FILE* file = std::fopen(name.c_str(), "wb");
    check(file != nullptr);
    std::fwrite(content.data(), 1, content.size(), file);
    std::fclose(file);
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    // In memory where the machine has it: every run saves a file.
    char folder[] = "/dev/shm/tql70-config-fuzz-XXXXXX";
    char fallback[] = "/tmp/tql70-config-fuzz-XXXXXX";
    char* made = mkdtemp(folder);
    if (!made) {
        made = mkdtemp(fallback);
    }
    check(made != nullptr);
    check(chdir(made) == 0);
    setenv("HOME", made, 1);
    setenv("ZQTARVEX_DIR", made, 1);
    gui_env_set_error(callback);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string input(reinterpret_cast<const char*>(data), size);
    size_t start = 0;
    for (int i = 0; i < 4; ++i) {
        const size_t cut = i < 3 ? input.find("\n@@\n", start) : std::string::npos;
        const std::string part = start <= input.size() ? input.substr(start, cut - start) : std::string();
        write_file("f" + std::to_string(i) + ".cfg", part);
        start = cut == std::string::npos ? input.size() + 1 : cut + 4;
    }

    GuiEnv env = gui_env_open("f0", GUI_ENV_LOCAL);
    check(env != nullptr);
    char buffer[64];
    const bool known = gui_env_get(env, "FUZZ_SAVED", buffer, nullptr, sizeof buffer, GUI_ENV_ANY) >= 0;
    gui_env_put(env, "FUZZ_SAVED", "saved value", GUI_ENV_LOCAL);
    const int saved = gui_env_close(env, 1);
    if (!known && saved) {
        env = gui_env_open("f0", GUI_ENV_LOCAL);
        check(gui_env_get(env, "FUZZ_SAVED", buffer, nullptr, sizeof buffer, GUI_ENV_LOCAL) == 0);
        check(std::strcmp(buffer, "saved value") == 0);
        gui_env_close(env, 0);
    }
    return 0;
}
