// tql_qsort: the Bentley-McIlroy engineered quicksort ("Engineering a Sort
// Function", 1993): word-wise swaps, insertion sort for small ranges,
// median-of-three or pseudo-median-of-nine pivots, and a three-way
// partition that keeps elements equal to the pivot out of the recursion.
#include <tql70/process_env.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace {

using Compare = int (*)(const void*, const void*);

// How elements are exchanged: whole 32-bit words when the base address and
// the element size are multiples of 4, bytes otherwise. The word count is
// a template argument for the common sizes (one word for 4-byte elements,
// two for 8-byte ones such as pointers), so the exchange compiles to a few
// moves; 0 means the count is taken from the element size at run time.
enum class SwapKind { kWords, kBytes };

template <SwapKind Kind, size_t Words>
class Sorter {
public:
    Sorter(size_t size, Compare compare) : size_(size), compare_(compare) {}

    void sort(char* a, size_t n);

private:
    // The element size; a constant when the word count is fixed.
    size_t es() const
    {
        if constexpr (Kind == SwapKind::kWords && Words != 0) {
            return Words * 4;
        } else {
            return size_;
        }
    }

    static void swap_word(char* a, char* b)
    {
        uint32_t t;
        std::memcpy(&t, a, 4);
        std::memcpy(a, b, 4);
        std::memcpy(b, &t, 4);
    }

    void swap(char* a, char* b) const
    {
        if constexpr (Kind == SwapKind::kBytes) {
            for (size_t i = 0; i < size_; ++i) {
                std::swap(a[i], b[i]);
            }
        } else if constexpr (Words != 0) {
            for (size_t i = 0; i < Words * 4; i += 4) {
                swap_word(a + i, b + i);
            }
        } else {
            for (size_t i = 0; i < es(); i += 4) {
                swap_word(a + i, b + i);
            }
        }
    }

    // Exchanges the n bytes at a with the n bytes at b, element by element.
    void swap_range(char* a, char* b, size_t n) const
    {
        for (; n > 0; n -= es(), a += es(), b += es()) {
            swap(a, b);
        }
    }

    char* median_of_three(char* a, char* b, char* c) const
    {
        return compare_(a, b) < 0 ? (compare_(b, c) < 0 ? b : (compare_(a, c) < 0 ? c : a))
                                  : (compare_(b, c) > 0 ? b : (compare_(a, c) < 0 ? a : c));
    }

    void insertion_sort(char* a, size_t n) const
    {
        char* const end = a + n * es();
        for (char* m = a + es(); m < end; m += es()) {
            for (char* l = m; l > a && compare_(l - es(), l) > 0; l -= es()) {
                swap(l, l - es());
            }
        }
    }

    size_t size_;
    Compare compare_;
};

template <SwapKind Kind, size_t Words>
void Sorter<Kind, Words>::sort(char* a, size_t n)
{
    const size_t es = this->es();
    for (;;) {
        if (n < 7) {
            insertion_sort(a, n);
            return;
        }
        // Pivot: the middle element, the median of three for mid-sized
        // ranges, the pseudo-median of nine above 40 elements.
        char* pm = a + (n / 2) * es;
        if (n > 7) {
            char* pl = a;
            char* pn = a + (n - 1) * es;
            if (n > 40) {
                const size_t d = (n / 8) * es;
                pl = median_of_three(pl, pl + d, pl + 2 * d);
                pm = median_of_three(pm - d, pm, pm + d);
                pn = median_of_three(pn - 2 * d, pn - d, pn);
            }
            pm = median_of_three(pl, pm, pn);
        }
        swap(a, pm);

        // Partition a[1..n-1] around the pivot in a[0]: elements equal to
        // it gather at both ends ([a, pa) and (pd, end)), smaller ones
        // behind pa, larger ones before pd.
        char* pa = a + es;
        char* pb = pa;
        char* pc = a + (n - 1) * es;
        char* pd = pc;
        bool swapped = false;
        for (;;) {
            int r;
            while (pb <= pc && (r = compare_(pb, a)) <= 0) {
                if (r == 0) {
                    swapped = true;
                    swap(pa, pb);
                    pa += es;
                }
                pb += es;
            }
            while (pb <= pc && (r = compare_(pc, a)) >= 0) {
                if (r == 0) {
                    swapped = true;
                    swap(pc, pd);
                    pd -= es;
                }
                pc -= es;
            }
            if (pb > pc) {
                break;
            }
            swap(pb, pc);
            swapped = true;
            pb += es;
            pc -= es;
        }
        // A pass without a single exchange suggests a range that is
        // already nearly in order: finish it by insertion.
        if (!swapped) {
            insertion_sort(a, n);
            return;
        }

        // Move the equal elements from both ends into the middle.
        char* const end = a + n * es;
        size_t s = std::min(static_cast<size_t>(pa - a), static_cast<size_t>(pb - pa));
        swap_range(a, pb - s, s);
        s = std::min(static_cast<size_t>(pd - pc), static_cast<size_t>(end - pd - es));
        swap_range(pb, end - s, s);

        // Sort the smaller side by recursion and the larger one by the
        // loop, so the stack stays logarithmic whatever the input. The
        // order in which the two disjoint sides are sorted does not
        // change the result.
        size_t left = static_cast<size_t>(pb - pa) / es;
        size_t right = static_cast<size_t>(pd - pc) / es;
        char* right_start = end - right * es;
        if (left <= right) {
            if (left > 1) {
                sort(a, left);
            }
            if (right <= 1) {
                return;
            }
            a = right_start;
            n = right;
        } else {
            if (right > 1) {
                sort(right_start, right);
            }
            if (left <= 1) {
                return;
            }
            n = left;
        }
    }
}

} // namespace

extern "C" void tql_qsort(void* base, size_t count, size_t size, int (*compare)(const void*, const void*))
{
    if (!base || !compare || count < 2 || size == 0) {
        return;
    }
    char* const a = static_cast<char*>(base);
    if (reinterpret_cast<uintptr_t>(base) % 4 != 0 || size % 4 != 0) {
        Sorter<SwapKind::kBytes, 0>(size, compare).sort(a, count);
    } else if (size == 4) {
        Sorter<SwapKind::kWords, 1>(size, compare).sort(a, count);
    } else if (size == 8) {
        Sorter<SwapKind::kWords, 2>(size, compare).sort(a, count);
    } else {
        Sorter<SwapKind::kWords, 0>(size, compare).sort(a, count);
    }
}
