// Fuzz target for name validation and repair. The first byte chooses the
// kind, the dot rule and the replacement; the rest is the name, held in a
// buffer of exactly its size. A repaired name keeps its length, changes
// only into the replacement, and validates unless one of the documented
// exceptions applies; the special-character search agrees with the
// identifier check; a translated data set name is a valid identifier.
#include <tql70/astr.h>
#include <tql70/gmem.h>

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

constexpr int kKinds[] = {ASTR_KIND_COMPONENT, ASTR_KIND_IDENTIFIER, ASTR_KIND_NODE, ASTR_KIND_DESIGN,
                          ASTR_KIND_INDEXED, ASTR_KIND_WORKSPACE, ASTR_KIND_DESIGN | ASTR_KIND_NODE,
                          ASTR_KIND_INDEXED | ASTR_KIND_WORKSPACE};

// Whether the repair of `name` must give a valid name: the repair leaves
// a leading digit of an identifier, the '$' and '%' of a design name, and
// the index suffix of an indexed name as they are.
bool repair_validates(const std::string& name, int kind)
{
    const bool identifier = (kind & (ASTR_KIND_IDENTIFIER | ASTR_KIND_INDEXED)) != 0;
    const bool strict = (kind & (ASTR_KIND_IDENTIFIER | ASTR_KIND_INDEXED | ASTR_KIND_WORKSPACE)) != 0;
    if (identifier && !name.empty() && name[0] >= '0' && name[0] <= '9') {
        return false;
    }
    if ((kind & ASTR_KIND_DESIGN) && !strict && name.find_first_of("$%") != std::string::npos) {
        return false;
    }
    return !(kind & ASTR_KIND_INDEXED) || name.find('(') == std::string::npos;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 1) {
        return 0;
    }
    const int kind = kKinds[data[0] & 7];
    const int allow_dot = (data[0] >> 3) & 1;
    const char replacement = (data[0] & 0x10) ? '_' : 'x';
    const std::string name = std::string(reinterpret_cast<const char*>(data + 1), size - 1).c_str();

    // Exact-size copies on the heap, so a write past the end is caught.
    std::vector<char> exact(name.c_str(), name.c_str() + name.size() + 1);
    std::vector<char> repaired(name.size() + 1, '#');

    const char* message = astr_kps_valid_name(exact.data(), kind, allow_dot);
    check(!message || (message[0] == '`' && std::strlen(message) < 256));
    check(astr_kps_get_valid_name(exact.data(), kind, allow_dot, replacement, repaired.data()) == 1);
    check(std::strlen(repaired.data()) == name.size());
    for (size_t i = 0; i < name.size(); ++i) {
        check(repaired[i] == name[i] || repaired[i] == replacement);
    }
    if (!message) {
        check(std::memcmp(repaired.data(), exact.data(), exact.size()) == 0);
    }
    if (repair_validates(name, kind)) {
        check(astr_kps_valid_name(repaired.data(), kind, allow_dot) == nullptr);
    }
    // In place, and without an output, the repair gives the same answers.
    check(astr_kps_get_valid_name(exact.data(), kind, allow_dot, replacement, exact.data()) == 1);
    check(std::memcmp(exact.data(), repaired.data(), exact.size()) == 0);
    check(astr_kps_get_valid_name(name.c_str(), kind, allow_dot, replacement, nullptr) == 1);

    const char* special = astr_kps_spl_name(name.c_str(), allow_dot);
    check(!special || (special >= name.c_str() && special < name.c_str() + name.size()));
    check((special == nullptr) == (astr_kps_valid_name(name.c_str(), ASTR_KIND_IDENTIFIER, allow_dot) == nullptr));

    char* identifier = astr_translate_kps_dataset_name(name.c_str());
    check(identifier && astr_kps_valid_name(identifier, ASTR_KIND_IDENTIFIER, 0) == nullptr);
    gmem_ee_free(identifier);
    return 0;
}
