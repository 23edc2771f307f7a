// Compares the dynamic symbols of the shared library with the names its
// public headers declare with TQL70_API. A C declaration must appear under
// its plain name; a C++ declaration (inside #ifdef __cplusplus) must appear
// only mangled. Fails on any extra symbol and on any declared name that is
// not exported.
#include <cxxabi.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <regex>
#include <set>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

struct Declared { std::set<std::string> c_names; std::set<std::string> cxx_names; };

std::string last_identifier(const std::string& text)
{
    static const std::regex identifier("[A-Za-z_][A-Za-z0-9_]*");
    std::string last;
    for (std::sregex_iterator it(text.begin(), text.end(), identifier), end; it != end; ++it) last = it->str();
    return last;
}

// The name declared on a line that carries TQL70_API.
std::string declared_name(const std::string& line)
{
    static const std::regex class_decl(R"(\b(class|struct)\s+TQL70_API\s+([A-Za-z_]\w*))");
    std::smatch match;
    if (std::regex_search(line, match, class_decl)) return match[2];
    const size_t paren = line.find('(');
    return last_identifier(line.substr(0, paren == std::string::npos ? line.find(';') : paren));
}

void scan_header(const fs::path& header, Declared& declared)
{
    std::ifstream in(header);
    // One entry per open #if: whether that branch is C++-only.
    std::vector<bool> branches;
    static const std::regex if_cxx(R"(^\s*#\s*(ifdef\s+__cplusplus|if\s+defined\s*\(?\s*__cplusplus))");
    static const std::regex if_any(R"(^\s*#\s*if)");
    static const std::regex else_any(R"(^\s*#\s*(else|elif))");
    static const std::regex endif_any(R"(^\s*#\s*endif)");
    static const std::regex declaration(R"(^\s*((class|struct)\s+)?TQL70_API\b)");
    for (std::string line; std::getline(in, line);) {
        if (std::regex_search(line, if_cxx)) {
            branches.push_back(true);
        } else if (std::regex_search(line, if_any)) {
            branches.push_back(false);
        } else if (std::regex_search(line, else_any) && !branches.empty()) {
            branches.back() = false;
        } else if (std::regex_search(line, endif_any) && !branches.empty()) {
            branches.pop_back();
        } else if (std::regex_search(line, declaration)) {
            bool cxx = false;
            for (bool b : branches) cxx = cxx || b;
            (cxx ? declared.cxx_names : declared.c_names).insert(declared_name(line));
        }
    }
}

// The declared C++ name a demangled symbol belongs to: the class of a
// member, vtable or typeinfo, or the free function's name.
std::string cxx_base_name(std::string demangled)
{
    for (const char* prefix : {"vtable for ", "typeinfo name for ", "typeinfo for "}) {
        if (demangled.rfind(prefix, 0) == 0) demangled = demangled.substr(std::string(prefix).size());
    }
    demangled = demangled.substr(0, demangled.find('('));
    return demangled.substr(0, demangled.find("::"));
}

std::vector<std::string> dynamic_symbols(const std::string& nm, const std::string& library)
{
    const std::string command = nm + " -D --defined-only " + library;
    FILE* pipe = popen(command.c_str(), "r");
    if (!pipe) {
        std::perror("popen");
        std::exit(2);
    }
    std::vector<std::string> names;
    char line[4096];
    while (std::fgets(line, sizeof line, pipe)) {
        std::string text(line);
        text = text.substr(0, text.find_last_not_of("\r\n") + 1);
        const size_t space = text.rfind(' ');
        names.push_back(text.substr(space + 1));
    }
    if (pclose(pipe) != 0) {
        std::cerr << "nm failed: " << command << "\n";
        std::exit(2);
    }
    return names;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 4) {
        std::cerr << "usage: export_check NM LIBRARY INCLUDE_DIR\n";
        return 2;
    }
    Declared declared;
    for (const auto& entry : fs::directory_iterator(argv[3])) if (entry.path().extension() == ".h") scan_header(entry.path(), declared);

    int failures = 0;
    std::set<std::string> seen_c;
    std::set<std::string> seen_cxx;
    for (const std::string& symbol : dynamic_symbols(argv[1], argv[2])) {
        if (symbol.rfind("_Z", 0) == 0) {
            int status = 0;
            char* demangled = abi::__cxa_demangle(symbol.c_str(), nullptr, nullptr, &status);
            const std::string readable = status == 0 ? demangled : symbol;
            std::free(demangled);
            const std::string base = cxx_base_name(readable);
            if (declared.cxx_names.count(base)) {
                seen_cxx.insert(base);
                continue;
            }
            std::cerr << "exported but not declared as C++ interface: " << readable << "\n";
            ++failures;
        } else if (declared.c_names.count(symbol)) {
            seen_c.insert(symbol);
        } else {
            std::cerr << "exported but not declared as C interface: " << symbol << "\n";
            ++failures;
        }
    }
    for (const std::string& name : declared.c_names) {
        if (!seen_c.count(name)) {
            std::cerr << "declared with C linkage but not exported: " << name << "\n";
            ++failures;
        }
    }
    for (const std::string& name : declared.cxx_names) {
        if (!seen_cxx.count(name)) {
            std::cerr << "declared as C++ but not exported: " << name << "\n";
            ++failures;
        }
    }
    std::cout << declared.c_names.size() << " C names and " << declared.cxx_names.size()
              << " C++ names declared; " << failures << " mismatches\n";
    return failures == 0 ? 0 : 1;
}
