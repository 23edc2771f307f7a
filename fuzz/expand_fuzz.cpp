// Fuzz target for variable expansion. The input's lines up to the first
// empty one are NAME=value definitions of a small environment (at most
// four; cycles welcome); the first byte after it chooses the output size and whether
// the error callback supplies a replacement; the rest is the text. Every
// expansion must end, fit what it reports and give the same answer twice.
#include <tql70/gui_env.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

void check(bool condition)
{
    if (!condition) {
        std::abort();
    }
}

bool supply_replacement = false;

int callback(int, const char*, const char*, char** out)
{
    static char replacement[] = "%R$R";
    if (supply_replacement && out) {
        *out = replacement;
        return 1;
    }
    return 0;
}

int expand(GuiEnv env, const std::string& text, std::vector<char>& out)
{
    std::fill(out.begin(), out.end(), '#');
    return gui_env_expand_str(out.data(), text.c_str(), static_cast<int>(out.size()), env,
                              static_cast<GuiEnv>(nullptr));
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    // No configuration file of the machine is read: the default
    // environment comes from folders that do not exist.
    setenv("HOME", "/nonexistent-tql70-fuzz", 1);
    setenv("ZQTARVEX_DIR", "/nonexistent-tql70-fuzz", 1);
    setenv("R", "$R%R", 1);
    gui_env_set_error(callback);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    // Small inputs only: without cycles, values that each use the next one
    // many times grow exponentially, which is correct but slow.
    if (size > 512) {
        return 0;
    }
    const std::string input(reinterpret_cast<const char*>(data), size);
    const size_t blank = input.find("\n\n");
    if (blank == std::string::npos || blank + 2 >= input.size()) {
        return 0;
    }
    GuiEnv env = gui_env_open("fuzz", 99);
    size_t start = 0;
    for (int count = 0; start < blank && count < 4; ++count) {
        size_t end = input.find('\n', start);
        const std::string line = input.substr(start, end - start);
        start = end + 1;
        const size_t equals = line.find('=');
        if (equals != std::string::npos) {
            gui_env_put(env, line.substr(0, equals).c_str(), line.substr(equals + 1).c_str(), GUI_ENV_LOCAL);
        }
    }
    const unsigned char control = static_cast<unsigned char>(input[blank + 2]);
    supply_replacement = control & 0x80;
    std::string text = input.substr(blank + 3);
    text.resize(std::strlen(text.c_str()));

    std::vector<char> first(1 + (control & 0x7f));
    std::vector<char> second(first.size());
    const int result = expand(env, text, first);
    check(result >= -1);
    if (result == 0) {
        check(std::memchr(first.data(), '\0', first.size()) != nullptr);
    } else if (result > 0) {
        check(static_cast<size_t>(result) > first.size() && first[0] == '\0');
    }
    check(expand(env, text, second) == result);
    check(result != 0 || std::strcmp(first.data(), second.data()) == 0);
    gui_env_close(env, 0);
    return 0;
}
