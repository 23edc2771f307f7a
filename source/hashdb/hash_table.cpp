// The page-based linear hash table. Page 0 is the header (fields, checksum
// and the bitmap of overflow pages in use); the other pages hold buckets,
// overflow pages of full buckets and chains of big pairs. Buckets grow one
// at a time by splitting (linear hashing); the pages of the buckets of one
// split point are followed by the overflow pages made while it was the
// last, so every page number follows from the header alone.
#include "hashdb/hash_table.h"

#include "platform/platform.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>

namespace tql70_hashdb {

namespace {

constexpr uint32_t kMagic = 0x484c5154; // "TQLH"
constexpr uint32_t kVersion = 1;
constexpr uint32_t kChecksumAt = 172;
constexpr uint32_t kBitmapAt = 176;
constexpr uint32_t kPageHead = 12;
constexpr unsigned char kPairPage = 1;
constexpr unsigned char kBigPage = 2;
constexpr uint16_t kBigMark = 0xffff;
constexpr uint32_t kBigRecord = 16;
constexpr char kHashCheck[] = "tql70 hash check";

uint32_t load32(const unsigned char* p)
{
    return uint32_t(p[0]) | uint32_t(p[1]) << 8 | uint32_t(p[2]) << 16 | uint32_t(p[3]) << 24;
}
uint16_t load16(const unsigned char* p) { return uint16_t(p[0] | p[1] << 8); }
void store32(unsigned char* p, uint32_t v)
{
    p[0] = v & 0xff; p[1] = (v >> 8) & 0xff; p[2] = (v >> 16) & 0xff; p[3] = v >> 24;
}
void store16(unsigned char* p, uint16_t v) { p[0] = v & 0xff; p[1] = v >> 8; }

uint32_t default_hash(const void* data, size_t size)
{
    const unsigned char* p = static_cast<const unsigned char*>(data);
    uint32_t h = 2166136261u;
    for (size_t i = 0; i < size; ++i) {
        h = (h ^ p[i]) * 16777619u;
    }
    h ^= h >> 16; h *= 0x85ebca6bu; h ^= h >> 13; h *= 0xc2b2ae35u; h ^= h >> 16;
    return h;
}

uint32_t checksum(const std::vector<unsigned char>& bytes)
{
    uint32_t h = 2166136261u;
    for (size_t i = 0; i < bytes.size(); ++i) {
        if (i < kChecksumAt || i >= kChecksumAt + 4) {
            h = (h ^ bytes[i]) * 16777619u;
        }
    }
    return h;
}

// The split point of a bucket: 0 for bucket 0, else its bit length.
uint32_t split_point(uint32_t bucket)
{
    uint32_t s = 0;
    while (bucket) {
        ++s;
        bucket >>= 1;
    }
    return s;
}

bool power_of_two_page(uint32_t size) { return size >= 256 && size <= 65536 && (size & (size - 1)) == 0; }

int fail(int code)
{
    errno = code;
    return -1;
}

} // namespace

HashTable::~HashTable()
{
    if (fd_ >= 0) {
        page_file_close(fd_);
    }
    if (!temporary_name_.empty()) {
        page_file_remove(temporary_name_);
    }
}

HashTable* HashTable::open(const char* file, int flags, int mode, const HASHINFO* info)
{
    std::unique_ptr<HashTable> table(new HashTable);
    HASHINFO defaults{};
    if (!info) {
        info = &defaults;
    }
    if ((info->bsize && !power_of_two_page(info->bsize)) ||
        (info->lorder != 0 && info->lorder != 1234 && info->lorder != 4321)) {
        errno = EINVAL;
        return nullptr;
    }
    table->hash_fn_ = info->hash ? info->hash : default_hash;
    table->cache_limit_ = info->cachesize ? info->cachesize : 256 * 1024;
    if ((flags & O_ACCMODE) == O_WRONLY) {
        flags = (flags & ~O_ACCMODE) | O_RDWR;
    }
    table->readonly_ = (flags & O_ACCMODE) == O_RDONLY;
    if (!file) {
        if (table->readonly_) {
            errno = EINVAL;
            return nullptr;
        }
        table->fd_ = page_file_temporary(table->temporary_name_);
    } else {
        table->fd_ = page_file_open(file, flags, mode);
    }
    if (table->fd_ < 0) {
        return nullptr;
    }
    const long long size = page_file_size(table->fd_);
    if (size < 0) {
        return nullptr;
    }
    if (size == 0) {
        if (table->readonly_) {
            errno = EINVAL;
            return nullptr;
        }
        if (!table->create_new(info)) {
            return nullptr;
        }
    } else if (!table->load_header()) {
        return nullptr;
    }
    return table.release();
}

uint32_t HashTable::hash(const void* data, size_t size) const { return hash_fn_(data, size); }

bool HashTable::create_new(const HASHINFO* info)
{
    bsize_ = info->bsize ? info->bsize : 4096;
    ffactor_ = info->ffactor ? info->ffactor : 32;
    uint32_t buckets = 1;
    const uint64_t wanted = info->nelem / ffactor_;
    while (buckets < wanted && buckets < (1u << 20)) {
        buckets <<= 1;
    }
    max_bucket_ = buckets - 1;
    low_mask_ = buckets - 1;
    high_mask_ = 2 * buckets - 1;
    bitmap_.assign(bsize_ - kBitmapAt, 0);
    file_pages_ = 1;
    for (uint32_t b = 0; b <= max_bucket_; ++b) {
        if (!fresh(bucket_page(b), kPairPage)) {
            return false;
        }
    }
    header_dirty_ = true;
    return sync() == 0;
}

void HashTable::store_header(std::vector<unsigned char>& bytes) const
{
    bytes.assign(bsize_, 0);
    unsigned char* p = bytes.data();
    store32(p, kMagic);
    store32(p + 4, kVersion);
    store32(p + 8, bsize_);
    store32(p + 12, ffactor_);
    store32(p + 16, uint32_t(nkeys_));
    store32(p + 20, uint32_t(nkeys_ >> 32));
    store32(p + 24, max_bucket_);
    store32(p + 28, high_mask_);
    store32(p + 32, low_mask_);
    store32(p + 36, hash(kHashCheck, sizeof kHashCheck - 1));
    store32(p + 40, ovfl_total_);
    for (int s = 0; s < 32; ++s) {
        store32(p + 44 + 4 * s, spares_[s]);
    }
    std::memcpy(p + kBitmapAt, bitmap_.data(), bitmap_.size());
    store32(p + kChecksumAt, checksum(bytes));
}

bool HashTable::load_header()
{
    unsigned char head[kBitmapAt];
    if (page_file_read(fd_, head, sizeof head, 0) != (long long)sizeof head || load32(head) != kMagic ||
        load32(head + 4) != kVersion || !power_of_two_page(load32(head + 8))) {
        errno = EINVAL;
        return false;
    }
    bsize_ = load32(head + 8);
    std::vector<unsigned char> bytes(bsize_);
    if (page_file_read(fd_, bytes.data(), bsize_, 0) != bsize_ || checksum(bytes) != load32(&bytes[kChecksumAt])) {
        errno = EINVAL;
        return false;
    }
    const unsigned char* p = bytes.data();
    ffactor_ = load32(p + 12);
    nkeys_ = load32(p + 16) | uint64_t(load32(p + 20)) << 32;
    max_bucket_ = load32(p + 24);
    high_mask_ = load32(p + 28);
    low_mask_ = load32(p + 32);
    ovfl_total_ = load32(p + 40);
    uint64_t spare_sum = 0;
    for (int s = 0; s < 32; ++s) {
        spares_[s] = load32(p + 44 + 4 * s);
        spare_sum += spares_[s];
        if (spares_[s] && uint32_t(s) > split_point(max_bucket_)) {
            spare_sum = ~0ull;
        }
    }
    bitmap_.assign(p + kBitmapAt, p + bsize_);
    for (uint32_t o = 0; o < ovfl_total_ && o < bitmap_.size() * 8; ++o) {
        ovfl_used_ += bitmap_[o / 8] >> (o % 8) & 1;
    }
    const bool sound = ffactor_ != 0 && high_mask_ == 2 * low_mask_ + 1 && (low_mask_ & (low_mask_ + 1)) == 0 &&
                       max_bucket_ >= low_mask_ && max_bucket_ <= high_mask_ && max_bucket_ < (1u << 30) &&
                       spare_sum == ovfl_total_ && ovfl_total_ <= bitmap_.size() * 8;
    if (!sound) {
        errno = EINVAL;
        return false;
    }
    if (load32(p + 36) != hash(kHashCheck, sizeof kHashCheck - 1)) {
        errno = EINVAL; // made with another hash function
        return false;
    }
    const long long size = page_file_size(fd_);
    if (size < 0 || uint64_t(size) < (last_page() + 1) * bsize_) {
        errno = EINVAL; // truncated
        return false;
    }
    file_pages_ = uint64_t(size) / bsize_;
    return true;
}

// ---- the page cache --------------------------------------------------------

bool HashTable::write_page(Page& page)
{
    if (!page_file_write(fd_, page.bytes.data(), bsize_, (long long)page.number * bsize_)) {
        return false;
    }
    ++pages_written_;
    page.dirty = false;
    return true;
}

bool HashTable::trim_cache()
{
    while (!lru_.empty() && cache_.size() * bsize_ > cache_limit_ && cache_.size() > 4) {
        const auto it = cache_.find(lru_.back());
        if (it->second->dirty && !write_page(*it->second)) {
            return false;
        }
        lru_.pop_back();
        cache_.erase(it);
    }
    return true;
}

void HashTable::forget(uint32_t number)
{
    const auto it = cache_.find(number);
    if (it != cache_.end()) {
        lru_.erase(it->second->lru);
        cache_.erase(it);
    }
}

HashTable::Page* HashTable::fresh(uint32_t number, unsigned char type)
{
    forget(number);
    auto page = std::make_unique<Page>();
    page->number = number;
    page->dirty = true;
    page->bytes.assign(bsize_, 0);
    page->bytes[8] = type;
    lru_.push_front(number);
    page->lru = lru_.begin();
    file_pages_ = std::max<uint64_t>(file_pages_, uint64_t(number) + 1);
    return cache_.emplace(number, std::move(page)).first->second.get();
}

// A page of the expected type whose records all lie inside it; null with
// errno EINVAL for a page that is missing, of another kind or unsound.
HashTable::Page* HashTable::fetch(uint32_t number, unsigned char type)
{
    const auto it = cache_.find(number);
    if (it != cache_.end()) {
        Page* page = it->second.get();
        lru_.splice(lru_.begin(), lru_, page->lru);
        if (page->bytes[8] != type) {
            errno = EINVAL;
            return nullptr;
        }
        return page;
    }
    if (number == 0 || number >= file_pages_) {
        errno = EINVAL;
        return nullptr;
    }
    auto page = std::make_unique<Page>();
    page->number = number;
    page->dirty = false;
    page->bytes.resize(bsize_);
    const long long n = page_file_read(fd_, page->bytes.data(), bsize_, (long long)number * bsize_);
    if (n < 0) {
        return nullptr;
    }
    ++pages_read_;
    const unsigned char* p = page->bytes.data();
    const uint32_t next = load32(p);
    const uint32_t used = load16(p + 6);
    bool sound = n == bsize_ && p[8] == type && next < file_pages_ && used <= bsize_ - kPageHead;
    if (sound && type == kPairPage) {
        uint32_t offset = kPageHead, count = 0, length = 0;
        while (sound && offset < kPageHead + used) {
            sound = record_bounds(*page, offset, length) && offset + length <= kPageHead + used;
            offset += length;
            ++count;
        }
        sound = sound && count == load16(p + 4);
    }
    if (!sound) {
        errno = EINVAL;
        return nullptr;
    }
    lru_.push_front(number);
    page->lru = lru_.begin();
    return cache_.emplace(number, std::move(page)).first->second.get();
}

bool HashTable::record_bounds(const Page& page, uint32_t offset, uint32_t& length) const
{
    if (offset + 4 > bsize_) {
        return false;
    }
    const unsigned char* r = page.bytes.data() + offset;
    length = load16(r) == kBigMark ? kBigRecord : 4u + load16(r) + load16(r + 2);
    return offset + length <= bsize_;
}

// ---- page numbers and overflow pages --------------------------------------

uint32_t HashTable::bucket_of(uint32_t h) const
{
    uint32_t b = h & high_mask_;
    return b > max_bucket_ ? (b & low_mask_) : b;
}

uint32_t HashTable::bucket_page(uint32_t bucket) const
{
    uint32_t before = 0;
    for (uint32_t s = 0; s < split_point(bucket); ++s) {
        before += spares_[s];
    }
    return 1 + bucket + before;
}

// The highest page number in use: the last bucket's, or the last overflow
// page of the current split point.
uint64_t HashTable::last_page() const
{
    const uint32_t s = split_point(max_bucket_);
    return std::max<uint64_t>(bucket_page(max_bucket_), spares_[s] ? (uint64_t(1) << s) + ovfl_total_ : 0);
}

uint32_t HashTable::overflow_page(uint32_t ordinal) const
{
    uint32_t before = 0, s = 0;
    while (s < 31 && ordinal >= before + spares_[s]) {
        before += spares_[s];
        ++s;
    }
    return (1u << s) + ordinal + 1;
}

int HashTable::overflow_ordinal(uint32_t page) const
{
    uint32_t before = 0;
    for (uint32_t s = 0; s < 32; ++s) {
        const uint32_t first = (1u << s) + before + 1;
        if (page >= first && page < first + spares_[s]) {
            return int(page - (1u << s) - 1);
        }
        before += spares_[s];
    }
    return -1;
}

void HashTable::out_of_overflow() const
{
    std::fputs("HASH: Out of overflow pages. Increase page size\n", stderr);
    errno = ENOSPC;
}

// A new overflow page's number; 0 when the overflow pages are exhausted.
uint32_t HashTable::allocate_overflow()
{
    uint32_t ordinal = ovfl_total_;
    for (uint32_t o = 0; ovfl_used_ < ovfl_total_ && o < ovfl_total_; ++o) {
        if (bitmap_[o / 8] == 0xff) {
            o += 7;
        } else if (!(bitmap_[o / 8] >> (o % 8) & 1)) {
            ordinal = o;
            break;
        }
    }
    if (ordinal == ovfl_total_) {
        if (ovfl_total_ >= bitmap_.size() * 8) {
            out_of_overflow();
            return 0;
        }
        ++ovfl_total_;
        ++spares_[split_point(max_bucket_)];
    }
    bitmap_[ordinal / 8] |= 1 << (ordinal % 8);
    ++ovfl_used_;
    header_dirty_ = true;
    return overflow_page(ordinal);
}

void HashTable::free_overflow(uint32_t page)
{
    const int ordinal = overflow_ordinal(page);
    if (ordinal >= 0 && (bitmap_[ordinal / 8] >> (ordinal % 8) & 1)) {
        bitmap_[ordinal / 8] &= ~(1 << (ordinal % 8));
        --ovfl_used_;
        header_dirty_ = true;
    }
    forget(page);
}

// ---- big pairs ------------------------------------------------------------

bool HashTable::write_big(const DBT& key, const DBT& data, uint32_t& first)
{
    const uint64_t total = uint64_t(key.size) + data.size;
    const uint32_t room = bsize_ - kPageHead;
    Page* previous = nullptr;
    first = 0;
    for (uint64_t done = 0; done < total;) {
        const uint32_t number = allocate_overflow();
        if (!number) {
            free_chain(first);
            return false;
        }
        Page* page = fresh(number, kBigPage);
        if (previous) {
            store32(previous->bytes.data(), number);
        } else {
            first = number;
        }
        const uint32_t n = uint32_t(std::min<uint64_t>(room, total - done));
        for (uint32_t i = 0; i < n; ++i, ++done) {
            page->bytes[kPageHead + i] = done < key.size ? static_cast<const unsigned char*>(key.data)[done]
                                                         : static_cast<const unsigned char*>(data.data)[done - key.size];
        }
        store16(page->bytes.data() + 6, uint16_t(n));
        previous = page;
    }
    return true;
}

bool HashTable::read_big(uint32_t number, uint64_t skip, uint64_t size, std::string& out)
{
    out.clear();
    if (skip + size > file_pages_ * (bsize_ - kPageHead)) {
        errno = EINVAL; // longer than the whole file could hold
        return false;
    }
    out.reserve(size);
    for (uint64_t steps = 0; out.size() < size; ++steps) {
        Page* page = steps <= file_pages_ ? fetch(number, kBigPage) : nullptr;
        if (!page) {
            errno = EINVAL;
            return false;
        }
        const uint32_t used = load16(page->bytes.data() + 6);
        const uint32_t from = uint32_t(std::min<uint64_t>(skip, used));
        skip -= from;
        const uint32_t n = uint32_t(std::min<uint64_t>(used - from, size - out.size()));
        out.append(reinterpret_cast<const char*>(page->bytes.data()) + kPageHead + from, n);
        number = load32(page->bytes.data());
        if (out.size() < size && (!number || used == 0)) {
            errno = EINVAL;
            return false;
        }
    }
    return true;
}

void HashTable::free_chain(uint32_t number)
{
    for (uint64_t steps = 0; number && steps <= file_pages_; ++steps) {
        Page* page = fetch(number, kBigPage);
        const uint32_t next = page ? load32(page->bytes.data()) : 0;
        free_overflow(number);
        number = next;
    }
}

// ---- records ----------------------------------------------------------------

bool HashTable::record_key(const unsigned char* r, std::string& key)
{
    if (load16(r) != kBigMark) {
        key.assign(reinterpret_cast<const char*>(r) + 4, load16(r));
        return true;
    }
    return read_big(load32(r + 4), 0, load32(r + 8), key);
}

int HashTable::give_pair(const unsigned char* r, DBT& key, DBT* data)
{
    if (load16(r) != kBigMark) {
        key_out_.assign(reinterpret_cast<const char*>(r) + 4, load16(r));
        if (data) {
            data_out_.assign(reinterpret_cast<const char*>(r) + 4 + load16(r), load16(r + 2));
        }
    } else if (!read_big(load32(r + 4), 0, load32(r + 8), key_out_) ||
               (data && !read_big(load32(r + 4), load32(r + 8), load32(r + 12), data_out_))) {
        return -1;
    }
    key = {key_out_.data(), key_out_.size()};
    if (data) {
        *data = {data_out_.data(), data_out_.size()};
    }
    return 0;
}

int HashTable::find(const DBT& key, uint32_t h, Found& found)
{
    uint32_t number = bucket_page(bucket_of(h));
    std::string stored;
    for (uint64_t steps = 0; number; ++steps) {
        Page* page = steps <= file_pages_ ? fetch(number, kPairPage) : nullptr;
        if (!page) {
            return fail(EINVAL);
        }
        const unsigned char* p = page->bytes.data();
        const uint32_t end = kPageHead + load16(p + 6);
        for (uint32_t offset = kPageHead, length = 0; offset < end; offset += length) {
            record_bounds(*page, offset, length);
            const unsigned char* r = p + offset;
            bool same;
            if (load16(r) != kBigMark) {
                same = load16(r) == key.size && std::memcmp(r + 4, key.data, key.size) == 0;
            } else {
                if (load32(r + 8) != key.size) {
                    continue;
                }
                if (!record_key(r, stored)) {
                    return -1;
                }
                same = std::memcmp(stored.data(), key.data, key.size) == 0;
            }
            if (same) {
                found.page = page;
                found.offset = offset;
                return 0;
            }
        }
        found.previous = page;
        number = load32(p);
    }
    return 1;
}

bool HashTable::make_record(const DBT& key, const DBT& data, std::string& record)
{
    const uint64_t length = 4 + uint64_t(key.size) + data.size;
    if (length <= (bsize_ - kPageHead) / 4) {
        record.resize(length);
        unsigned char* r = reinterpret_cast<unsigned char*>(record.data());
        store16(r, uint16_t(key.size));
        store16(r + 2, uint16_t(data.size));
        if (key.size) std::memcpy(r + 4, key.data, key.size);
        if (data.size) std::memcpy(r + 4 + key.size, data.data, data.size);
        return true;
    }
    if (key.size > 0xffffffffu || data.size > 0xffffffffu) {
        errno = EINVAL;
        return false;
    }
    uint32_t first = 0;
    if (!write_big(key, data, first)) {
        return false;
    }
    record.assign(kBigRecord, '\0');
    unsigned char* r = reinterpret_cast<unsigned char*>(record.data());
    store16(r, kBigMark);
    store16(r + 2, kBigMark);
    store32(r + 4, first);
    store32(r + 8, uint32_t(key.size));
    store32(r + 12, uint32_t(data.size));
    return true;
}

bool HashTable::insert_record(uint32_t bucket, const std::string& record)
{
    uint32_t number = bucket_page(bucket);
    Page* page = nullptr;
    for (uint64_t steps = 0; number; ++steps) {
        page = steps <= file_pages_ ? fetch(number, kPairPage) : nullptr;
        if (!page) {
            errno = EINVAL;
            return false;
        }
        if (bsize_ - kPageHead - load16(page->bytes.data() + 6) >= record.size()) {
            break;
        }
        number = load32(page->bytes.data());
    }
    if (!number) {
        const uint32_t added = allocate_overflow();
        if (!added) {
            return false;
        }
        store32(page->bytes.data(), added);
        page->dirty = true;
        page = fresh(added, kPairPage);
    }
    unsigned char* p = page->bytes.data();
    const uint16_t used = load16(p + 6);
    std::memcpy(p + kPageHead + used, record.data(), record.size());
    store16(p + 6, uint16_t(used + record.size()));
    store16(p + 4, uint16_t(load16(p + 4) + 1));
    page->dirty = true;
    return true;
}

// Takes the pair out of its page, frees the pages of a big pair and counts
// one key less.
void HashTable::remove_pair(Found& found)
{
    unsigned char* p = found.page->bytes.data();
    const uint32_t big = load16(p + found.offset) == kBigMark ? load32(p + found.offset + 4) : 0;
    uint32_t length = 0;
    record_bounds(*found.page, found.offset, length);
    const uint32_t end = kPageHead + load16(p + 6);
    std::memmove(p + found.offset, p + found.offset + length, end - found.offset - length);
    store16(p + 6, uint16_t(end - length - kPageHead));
    store16(p + 4, uint16_t(load16(p + 4) - 1));
    found.page->dirty = true;
    if (load16(p + 4) == 0 && found.previous) {
        store32(found.previous->bytes.data(), load32(p));
        found.previous->dirty = true;
        free_overflow(found.page->number);
    }
    free_chain(big);
    --nkeys_;
}

// Splits the next bucket into itself and a new last bucket. Skipped (the
// chains just grow longer) when the overflow pages could run out halfway.
bool HashTable::split()
{
    const uint32_t old_bucket = (max_bucket_ + 1) & low_mask_;
    std::vector<uint32_t> chain;
    for (uint32_t number = bucket_page(old_bucket); number; ) {
        Page* page = chain.size() <= file_pages_ ? fetch(number, kPairPage) : nullptr;
        if (!page) {
            errno = EINVAL;
            return false;
        }
        chain.push_back(number);
        number = load32(page->bytes.data());
    }
    if (max_bucket_ + 1 >= (1u << 30) || bitmap_.size() * 8 - ovfl_used_ < chain.size() + 2) {
        return true;
    }
    std::vector<std::pair<uint32_t, std::string>> records;
    std::string key;
    for (const uint32_t number : chain) {
        Page* page = fetch(number, kPairPage);
        const unsigned char* p = page->bytes.data();
        const uint32_t end = kPageHead + load16(p + 6);
        for (uint32_t offset = kPageHead, length = 0; offset < end; offset += length) {
            record_bounds(*page, offset, length);
            if (!record_key(p + offset, key)) {
                return false;
            }
            records.emplace_back(hash(key.data(), key.size()),
                                 std::string(reinterpret_cast<const char*>(p) + offset, length));
        }
    }
    const uint32_t new_bucket = ++max_bucket_;
    if (new_bucket > high_mask_) {
        low_mask_ = high_mask_;
        high_mask_ = new_bucket | low_mask_;
    }
    header_dirty_ = true;
    for (size_t i = 1; i < chain.size(); ++i) {
        free_overflow(chain[i]);
    }
    fresh(chain[0], kPairPage);
    fresh(bucket_page(new_bucket), kPairPage);
    for (const auto& [h, record] : records) {
        if (!insert_record(bucket_of(h), record)) {
            return false;
        }
    }
    return true;
}

// ---- operations ---------------------------------------------------------------

int HashTable::get(const DBT& key, DBT& data)
{
    if (!trim_cache()) {
        return -1;
    }
    Found found;
    const int result = find(key, hash(key.data, key.size), found);
    if (result != 0) {
        return result;
    }
    DBT stored_key;
    return give_pair(found.page->bytes.data() + found.offset, stored_key, &data);
}

int HashTable::put(const DBT& key, const DBT& data, unsigned flags)
{
    if (readonly_) {
        return fail(EPERM);
    }
    if ((flags != 0 && flags != R_NOOVERWRITE) || (!key.data && key.size) || (!data.data && data.size)) {
        return fail(EINVAL);
    }
    if (!trim_cache()) {
        return -1;
    }
    const uint32_t h = hash(key.data, key.size);
    Found found;
    const int result = find(key, h, found);
    if (result < 0 || (result == 0 && flags == R_NOOVERWRITE)) {
        return result < 0 ? -1 : 1;
    }
    std::string record;
    if (!make_record(key, data, record)) {
        return -1;
    }
    const auto drop_new_chain = [&] {
        const unsigned char* r = reinterpret_cast<const unsigned char*>(record.data());
        if (load16(r) == kBigMark) {
            free_chain(load32(r + 4));
        }
    };
    if (result == 0) {
        // The old pair goes only when the new one is sure to find room.
        uint32_t old_length = 0;
        record_bounds(*found.page, found.offset, old_length);
        const uint32_t room = bsize_ - kPageHead - load16(found.page->bytes.data() + 6) + old_length;
        if (record.size() > room && ovfl_used_ == bitmap_.size() * 8) {
            drop_new_chain();
            out_of_overflow();
            return -1;
        }
        remove_pair(found);
    }
    if (!insert_record(bucket_of(h), record)) {
        drop_new_chain();
        return -1;
    }
    ++nkeys_;
    header_dirty_ = true;
    if (nkeys_ > uint64_t(ffactor_) * (max_bucket_ + 1) && !split()) {
        return -1;
    }
    return 0;
}

int HashTable::del(const DBT& key)
{
    if (readonly_) {
        return fail(EPERM);
    }
    if (!trim_cache()) {
        return -1;
    }
    Found found;
    const int result = find(key, hash(key.data, key.size), found);
    if (result != 0) {
        return result;
    }
    remove_pair(found);
    cursor_returned_ -= cursor_returned_ > 0;
    header_dirty_ = true;
    return 0;
}

int HashTable::seq(DBT& key, DBT& data, unsigned flags)
{
    if (flags != R_FIRST && flags != R_NEXT && flags != 0) {
        return fail(EINVAL);
    }
    if (!trim_cache()) {
        return -1;
    }
    if (flags == R_FIRST || !cursor_set_) {
        cursor_bucket_ = 0;
        cursor_page_ = bucket_page(0);
        cursor_offset_ = kPageHead;
        cursor_set_ = true;
        cursor_returned_ = 0;
        cursor_pages_ = 0;
    }
    for (;;) {
        if (cursor_bucket_ > max_bucket_) {
            return 1;
        }
        // A sound walk visits each page once and gives each pair once; more
        // means the chains of a damaged file loop.
        Page* page = cursor_pages_ <= file_pages_ ? fetch(cursor_page_, kPairPage) : nullptr;
        if (!page) {
            return fail(EINVAL);
        }
        const unsigned char* p = page->bytes.data();
        uint32_t length = 0;
        if (cursor_offset_ < kPageHead + load16(p + 6) && record_bounds(*page, cursor_offset_, length)) {
            if (cursor_returned_ >= nkeys_) {
                return fail(EINVAL);
            }
            const uint32_t offset = cursor_offset_;
            cursor_offset_ += length;
            ++cursor_returned_;
            return give_pair(p + offset, key, &data);
        }
        cursor_offset_ = kPageHead;
        ++cursor_pages_;
        cursor_page_ = load32(p);
        if (!cursor_page_ && ++cursor_bucket_ <= max_bucket_) {
            cursor_page_ = bucket_page(cursor_bucket_);
        }
    }
}

int HashTable::sync()
{
    if (readonly_) {
        return 0;
    }
    for (auto& [number, page] : cache_) {
        if (page->dirty && !write_page(*page)) {
            return -1;
        }
    }
    if (header_dirty_) {
        std::vector<unsigned char> bytes;
        store_header(bytes);
        if (!page_file_write(fd_, bytes.data(), bsize_, 0)) {
            return -1;
        }
        ++pages_written_;
        header_dirty_ = false;
    }
    // Pages freed before they were ever written leave the file short.
    const long long size = page_file_size(fd_);
    const long long wanted = (long long)(last_page() + 1) * bsize_;
    if (size >= 0 && size < wanted && !page_file_truncate(fd_, wanted)) {
        return -1;
    }
    return page_file_sync(fd_) ? 0 : -1;
}

int HashTable::close()
{
    const int result = temporary_name_.empty() ? sync() : 0;
    const int closed = page_file_close(fd_);
    fd_ = -1;
    return result == 0 && closed == 0 ? 0 : -1;
}

} // namespace tql70_hashdb
