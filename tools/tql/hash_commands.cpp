// tql hash: looks into a hash database from the shell (dump, get, put,
// stat).
#include "commands.h"

#include "hashdb/hash_table.h"

#include <tql70/hashdb.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>

namespace tql_tool {

namespace {

const Command& hash_command()
{
    const auto& all = commands();
    return *std::find_if(all.begin(), all.end(), [](const Command& c) { return std::strcmp(c.name, "hash") == 0; });
}

// Printable bytes as they are, '\\' doubled, others as \xHH.
void print_escaped(const DBT& text)
{
    const unsigned char* p = static_cast<const unsigned char*>(text.data);
    for (size_t i = 0; i < text.size; ++i) {
        if (p[i] == '\\') {
            std::fputs("\\\\", stdout);
        } else if (p[i] >= 0x20 && p[i] < 0x7f) {
            std::putchar(p[i]);
        } else {
            std::printf("\\x%02x", p[i]);
        }
    }
}

int failure(const char* what, const std::string& file)
{
    std::fprintf(stderr, "tql: %s %s: %s\n", what, native(file).c_str(), std::strerror(errno));
    return 1;
}

DBT text(const std::string& s) { return {const_cast<char*>(s.data()), s.size()}; }

int dump(DB* db, const std::string& file)
{
    DBT key, data;
    int r = db->seq(db, &key, &data, R_FIRST);
    for (; r == 0; r = db->seq(db, &key, &data, R_NEXT)) {
        print_escaped(key);
        std::putchar('\t');
        print_escaped(data);
        std::putchar('\n');
    }
    return r < 0 ? failure("cannot read", file) : 0;
}

int stat(DB* db)
{
    const auto* table = static_cast<const tql70_hashdb::HashTable*>(db->internal);
    std::printf("pairs           %llu\npage size       %u\nbuckets         %u\noverflow pages  %u\n",
                table->pair_count(), table->page_size(), table->bucket_count(), table->overflow_pages());
    return 0;
}

} // namespace

int run_hash(const Args& args)
{
    const std::string action = args.empty() ? "" : args[0];
    const size_t wanted = action == "get" ? 3 : action == "put" ? 4 : 2;
    if ((action != "dump" && action != "get" && action != "put" && action != "stat") || args.size() != wanted) {
        return usage_error(hash_command(), "hash takes dump FILE, get FILE KEY, put FILE KEY VALUE or stat FILE");
    }
    const std::string& file = args[1];
    DB* db = hash_open(file.c_str(), action == "put" ? O_RDWR | O_CREAT : O_RDONLY, 0644, nullptr, 0);
    if (!db) {
        return failure("cannot open", file);
    }
    int status = 0;
    if (action == "dump") {
        status = dump(db, file);
    } else if (action == "stat") {
        status = stat(db);
    } else if (action == "get") {
        DBT key = text(args[2]), data;
        const int r = db->get(db, &key, &data, 0);
        if (r == 0) {
            print_escaped(data);
            std::putchar('\n');
        } else if (r == 1) {
            std::fprintf(stderr, "tql: %s has no key '%s'\n", native(file).c_str(), args[2].c_str());
        }
        status = r < 0 ? failure("cannot read", file) : r;
    } else {
        DBT key = text(args[2]), data = text(args[3]);
        status = db->put(db, &key, &data, 0) == 0 ? 0 : failure("cannot write", file);
    }
    if (db->close(db) != 0 && status == 0) {
        status = failure("cannot close", file);
    }
    return status;
}

} // namespace tql_tool
