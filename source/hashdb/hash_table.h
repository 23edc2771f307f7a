// The page-based linear hash table behind hash_open: the file format, the
// page cache and the operations on pairs.
#ifndef TQL70_SOURCE_HASHDB_HASH_TABLE_H
#define TQL70_SOURCE_HASHDB_HASH_TABLE_H

#include <tql70/hashdb.h>

#include <cstdint>
#include <list>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace tql70_hashdb {

class HashTable {
public:
    // Null with errno set when the file cannot be opened or is not a sound
    // table.
    static HashTable* open(const char* file, int flags, int mode, const HASHINFO* info);
    ~HashTable();
    HashTable(const HashTable&) = delete;
    HashTable& operator=(const HashTable&) = delete;

    int close();
    int get(const DBT& key, DBT& data);
    int put(const DBT& key, const DBT& data, unsigned flags);
    int del(const DBT& key);
    int seq(DBT& key, DBT& data, unsigned flags);
    int sync();
    int fd() const { return fd_; }

    // Pages read from and written to the file since opening.
    unsigned long long pages_read() const { return pages_read_; }
    unsigned long long pages_written() const { return pages_written_; }
    unsigned long long pair_count() const { return nkeys_; }
    unsigned page_size() const { return bsize_; }
    unsigned bucket_count() const { return max_bucket_ + 1; }
    unsigned overflow_pages() const { return ovfl_total_; }

private:
    struct Page {
        uint32_t number;
        bool dirty;
        std::list<uint32_t>::iterator lru;
        std::vector<unsigned char> bytes;
    };
    struct Found {
        Page* page = nullptr;
        Page* previous = nullptr;
        uint32_t offset = 0;
    };

    HashTable() = default;
    bool create_new(const HASHINFO* info);
    bool load_header();
    void store_header(std::vector<unsigned char>& bytes) const;

    Page* fetch(uint32_t number, unsigned char type);
    Page* fresh(uint32_t number, unsigned char type);
    bool write_page(Page& page);
    bool trim_cache();
    void forget(uint32_t number);

    uint32_t hash(const void* data, size_t size) const;
    uint32_t bucket_of(uint32_t h) const;
    uint32_t bucket_page(uint32_t bucket) const;
    uint64_t last_page() const;
    uint32_t overflow_page(uint32_t ordinal) const;
    int overflow_ordinal(uint32_t page) const;
    uint32_t allocate_overflow();
    void free_overflow(uint32_t page);
    // Says so on standard error and sets errno.
    void out_of_overflow() const;

    int find(const DBT& key, uint32_t h, Found& found);
    bool record_key(const unsigned char* record, std::string& key);
    bool read_big(uint32_t first, uint64_t skip, uint64_t size, std::string& out);
    bool write_big(const DBT& key, const DBT& data, uint32_t& first);
    void free_chain(uint32_t first);
    bool make_record(const DBT& key, const DBT& data, std::string& record);
    bool insert_record(uint32_t bucket, const std::string& record);
    void remove_pair(Found& found);
    bool split();
    bool record_bounds(const Page& page, uint32_t offset, uint32_t& length) const;
    int give_pair(const unsigned char* record, DBT& key, DBT* data);

    int fd_ = -1;
    bool readonly_ = false;
    bool header_dirty_ = false;
    std::string temporary_name_;
    uint32_t (*hash_fn_)(const void*, size_t) = nullptr;

    uint32_t bsize_ = 4096;
    uint32_t ffactor_ = 32;
    uint64_t nkeys_ = 0;
    uint32_t max_bucket_ = 0;
    uint32_t high_mask_ = 1;
    uint32_t low_mask_ = 0;
    uint32_t ovfl_total_ = 0; // overflow ordinals ever handed out
    uint32_t ovfl_used_ = 0;  // of them, in use
    uint32_t spares_[32] = {};
    std::vector<unsigned char> bitmap_;
    uint64_t file_pages_ = 0;

    size_t cache_limit_ = 0;
    std::unordered_map<uint32_t, std::unique_ptr<Page>> cache_;
    std::list<uint32_t> lru_;
    unsigned long long pages_read_ = 0;
    unsigned long long pages_written_ = 0;

    uint32_t cursor_bucket_ = 0;
    uint32_t cursor_page_ = 0;
    uint32_t cursor_offset_ = 0;
    bool cursor_set_ = false;
    uint64_t cursor_returned_ = 0;
    uint64_t cursor_pages_ = 0;

    std::string key_out_;
    std::string data_out_;
};

} // namespace tql70_hashdb

#endif
