// Fuzz target for the list loader and the message catalogue reader. The
// input is loaded as a list file: every record must be a line the reader
// can give (at most 1023 characters, no TAB, CR or LF), the store count
// must be the record count, and loading over a longer list must replace
// only the first records. The input is then the message directory of a
// catalogue (its reference and include marks %, $ and + blanked out, and
// one known set added whose file is the input again): every message of
// that set and of the set the input's first line names is retrieved.
#include <tql70/glist.h>
#include <tql70/gmsg.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <sys/stat.h>
#include <vector>

namespace {

void check(bool condition)
{
    if (!condition) {
        std::abort();
    }
}

char g_root[4096];

// A private installation: the site configuration names the directory file.
// It is removed at exit.
const std::string& workspace()
{
    static const std::string directory = [] {
        // Memory-backed when the machine has /dev/shm: every input writes
        // and reads a few small files.
        const char* tmp = std::getenv("TMPDIR");
        const std::string base = tmp && *tmp ? tmp : (std::filesystem::is_directory("/dev/shm") ? "/dev/shm" : "/tmp");
        std::snprintf(g_root, sizeof g_root, "%s/tql70-list-fuzz-XXXXXX", base.c_str());
        check(::mkdtemp(g_root) != nullptr);
        const std::string root = g_root;
        ::mkdir((root + "/config").c_str(), 0755);
        std::ofstream(root + "/config/zqtarvex.cfg") << "ZQTARVEX_MSG_FILE=" << root << "/directory.cfg\n";
        setenv("ZQTARVEX_DIR", root.c_str(), 1);
        setenv("HOME", root.c_str(), 1);
        unsetenv("ZQTARVEX_DEBUG_MODE");
        std::atexit([] { std::filesystem::remove_all(g_root); });
        return root;
    }();
    return directory;
}

void write(const std::string& path, const uint8_t* data, size_t size, const std::string& tail = "")
{
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    out << tail;
}

std::vector<std::string> records(glist list)
{
    unsigned int length = 0;
    check(glist_query(list, GLIST_LENGTH, &length) == 1);
    std::vector<std::string> texts;
    char line[1024];
    for (unsigned int i = 0; i < length; ++i) {
        check(glist_getstr(list, i, line) == 1);
        texts.emplace_back(line);
    }
    return texts;
}

void fuzz_list(const std::string& root, const uint8_t* data, size_t size)
{
    const std::string input = root + "/list.txt";
    write(input, data, size);
    std::vector<char> message(input.size() + GLIST_MESSAGE_EXTRA);
    glist list = nullptr;
    check(glist_create(&list, 0, "fuzz", nullptr) == 1);
    check(glist_load(list, input.c_str(), message.data()) == 1);
    const std::vector<std::string> loaded = records(list);
    unsigned int stored = 0;
    check(glist_query(list, GLIST_STORE_COUNT, &stored) == 1 && stored == loaded.size());
    for (const std::string& text : loaded) {
        check(text.size() <= 1023 && text.find_first_of("\t\r\n") == std::string::npos);
    }
    // Loading over a longer list replaces the first records only.
    glist longer = nullptr;
    check(glist_create(&longer, 0, "longer", nullptr) == 1);
    const unsigned int kept = static_cast<unsigned int>(loaded.size()) + 3;
    for (unsigned int i = 0; i < kept; ++i) {
        check(glist_putstr(longer, i, "old") == 1);
    }
    check(glist_load(longer, input.c_str(), message.data()) == 1);
    std::vector<std::string> expected = loaded;
    expected.resize(kept, "old");
    check(records(longer) == expected);
    glist_close(longer);
    glist_close(list);
}

void retrieve_all(GmsgHandle handle, const std::string& set)
{
    char text[GMSG_MESSAGE_SIZE];
    for (int number = 1; number <= 64 && gmsg_retrieve_message(handle, set.c_str(), number, text); ++number) {
        check(std::strlen(text) < GMSG_MESSAGE_SIZE);
    }
}

void fuzz_catalogue(const std::string& root, const uint8_t* data, size_t size)
{
    // References that double at each step grow the expansion exponentially
    // in the input's length, and an include line may name any file of the
    // machine: the directory gets no reference marks and no include marks,
    // which the expansion and configuration targets fuzz on their own.
    std::string directory(reinterpret_cast<const char*>(data), size);
    for (char& c : directory) {
        if (c == '%' || c == '$' || c == '+') {
            c = '_';
        }
    }
    write(root + "/directory.cfg", reinterpret_cast<const uint8_t*>(directory.data()), directory.size(),
          "\nFUZZSET=" + root + "/set\n");
    write(root + "/set.msg", data, size);
    GmsgHandle handle = gmsg_open("zqtarvex", nullptr, "ENGLISH");
    if (!handle) {
        return;
    }
    retrieve_all(handle, "FUZZSET");
    const std::string first(reinterpret_cast<const char*>(data), strnlen(reinterpret_cast<const char*>(data), size));
    const std::string name = first.substr(0, first.find_first_of("=\r\n"));
    if (!name.empty()) {
        retrieve_all(handle, name);
    }
    check(gmsg_close(handle) == 1);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string& root = workspace();
    fuzz_list(root, data, size);
    fuzz_catalogue(root, data, size);
    return 0;
}
