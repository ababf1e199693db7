// The unstable sort that orders the clusters, written out so that clusters
// of equal size come out in the same order on every build and runtime: an
// introsort with sorting networks for 2 to 5 elements, insertion sort up to
// 6, a median-of-three (median-of-five from 1000 up) pivot partition and a
// heap-sort fallback past depth 2*log2(n). For records that are not
// trivially copyable this is step for step what LLVM libc++ 14's std::sort
// does, so clusters keep the order that library gives.
#ifndef PAVONA_SRC_NEON_CLUSTER_SORT_H_
#define PAVONA_SRC_NEON_CLUSTER_SORT_H_

#include <iterator>
#include <utility>

#include "base/sample_types.h"

namespace pavona::internal {

namespace sort_detail {

using std::swap;

// Sorts three elements with 2 or 3 comparisons; returns the swaps made.
template <class It, class Compare>
unsigned sort3(It x, It y, It z, Compare& comp) {
  if (!comp(*y, *x)) {
    if (!comp(*z, *y)) return 0;
    swap(*y, *z);
    if (comp(*y, *x)) {
      swap(*x, *y);
      return 2;
    }
    return 1;
  }
  if (comp(*z, *y)) {
    swap(*x, *z);
    return 1;
  }
  swap(*x, *y);
  if (comp(*z, *y)) {
    swap(*y, *z);
    return 2;
  }
  return 1;
}

template <class It, class Compare>
unsigned sort4(It x1, It x2, It x3, It x4, Compare& comp) {
  unsigned swaps = sort3(x1, x2, x3, comp);
  if (comp(*x4, *x3)) {
    swap(*x3, *x4);
    ++swaps;
    if (comp(*x3, *x2)) {
      swap(*x2, *x3);
      ++swaps;
      if (comp(*x2, *x1)) {
        swap(*x1, *x2);
        ++swaps;
      }
    }
  }
  return swaps;
}

template <class It, class Compare>
unsigned sort5(It x1, It x2, It x3, It x4, It x5, Compare& comp) {
  unsigned swaps = sort4(x1, x2, x3, x4, comp);
  if (comp(*x5, *x4)) {
    swap(*x4, *x5);
    ++swaps;
    if (comp(*x4, *x3)) {
      swap(*x3, *x4);
      ++swaps;
      if (comp(*x3, *x2)) {
        swap(*x2, *x3);
        ++swaps;
        if (comp(*x2, *x1)) {
          swap(*x1, *x2);
          ++swaps;
        }
      }
    }
  }
  return swaps;
}

// Insertion sort after sorting the first three; needs at least 3 elements.
template <class It, class Compare>
void insertionSort3(It first, It last, Compare& comp) {
  using Value = typename std::iterator_traits<It>::value_type;
  It j = first + 2;
  sort3(first, first + 1, j, comp);
  for (It i = j + 1; i != last; ++i) {
    if (comp(*i, *j)) {
      Value t(std::move(*i));
      It k = j;
      j = i;
      do {
        *j = std::move(*k);
        j = k;
      } while (j != first && comp(t, *--k));
      *j = std::move(t);
    }
    j = i;
  }
}

// Like insertionSort3 but gives up after 8 moved elements; returns whether
// the range is sorted.
template <class It, class Compare>
bool insertionSortIncomplete(It first, It last, Compare& comp) {
  using Value = typename std::iterator_traits<It>::value_type;
  switch (last - first) {
    case 0:
    case 1:
      return true;
    case 2:
      if (comp(*--last, *first)) swap(*first, *last);
      return true;
    case 3:
      sort3(first, first + 1, --last, comp);
      return true;
    case 4:
      sort4(first, first + 1, first + 2, --last, comp);
      return true;
    case 5:
      sort5(first, first + 1, first + 2, first + 3, --last, comp);
      return true;
  }
  It j = first + 2;
  sort3(first, first + 1, j, comp);
  constexpr unsigned kLimit = 8;
  unsigned moved = 0;
  for (It i = j + 1; i != last; ++i) {
    if (comp(*i, *j)) {
      Value t(std::move(*i));
      It k = j;
      j = i;
      do {
        *j = std::move(*k);
        j = k;
      } while (j != first && comp(t, *--k));
      *j = std::move(t);
      if (++moved == kLimit) return ++i == last;
    }
    j = i;
  }
  return true;
}

template <class It, class Compare>
void siftDown(It first, Compare& comp,
              typename std::iterator_traits<It>::difference_type len,
              It start) {
  using Diff = typename std::iterator_traits<It>::difference_type;
  using Value = typename std::iterator_traits<It>::value_type;
  Diff child = start - first;
  if (len < 2 || (len - 2) / 2 < child) return;
  child = 2 * child + 1;
  It childIt = first + child;
  if (child + 1 < len && comp(*childIt, *(childIt + 1))) {
    ++childIt;
    ++child;
  }
  if (comp(*childIt, *start)) return;
  Value top(std::move(*start));
  do {
    *start = std::move(*childIt);
    start = childIt;
    if ((len - 2) / 2 < child) break;
    child = 2 * child + 1;
    childIt = first + child;
    if (child + 1 < len && comp(*childIt, *(childIt + 1))) {
      ++childIt;
      ++child;
    }
  } while (!comp(*childIt, top));
  *start = std::move(top);
}

// The introsort's last resort: build a max-heap, then pop it in place.
template <class It, class Compare>
void heapSort(It first, It last, Compare& comp) {
  using Diff = typename std::iterator_traits<It>::difference_type;
  const Diff n = last - first;
  if (n == 0) return;
  if (n > 1) {
    for (Diff start = (n - 2) / 2; start >= 0; --start) {
      siftDown(first, comp, n, first + start);
    }
  }
  for (Diff len = n; len > 1; --last, --len) {
    swap(*first, *(last - 1));
    siftDown(first, comp, len - 1, first);
  }
}

template <class It, class Compare>
void introsort(It first, It last, Compare& comp,
               typename std::iterator_traits<It>::difference_type depth) {
  using Diff = typename std::iterator_traits<It>::difference_type;
  // Insertion sort limit for records that are not trivially copyable.
  constexpr Diff kInsertionLimit = 6;
  while (true) {
    const Diff len = last - first;
    switch (len) {
      case 0:
      case 1:
        return;
      case 2:
        if (comp(*--last, *first)) swap(*first, *last);
        return;
      case 3:
        sort3(first, first + 1, --last, comp);
        return;
      case 4:
        sort4(first, first + 1, first + 2, --last, comp);
        return;
      case 5:
        sort5(first, first + 1, first + 2, first + 3, --last, comp);
        return;
    }
    if (len <= kInsertionLimit) {
      insertionSort3(first, last, comp);
      return;
    }
    if (depth == 0) {
      heapSort(first, last, comp);
      return;
    }
    --depth;
    It m = first;
    It lm1 = last - 1;
    unsigned swaps;
    if (len >= 1000) {
      Diff delta = len / 2;
      m += delta;
      delta /= 2;
      swaps = sort5(first, first + delta, m, m + delta, lm1, comp);
    } else {
      m += len / 2;
      swaps = sort3(first, m, lm1, comp);
    }
    // *m is the pivot: partition into [first, i) before it and [i, last)
    // not before it. *lm1 is known not to come before the pivot.
    It i = first;
    It j = lm1;
    bool restart = false;
    if (!comp(*i, *m)) {
      // *first ties with the pivot, so the downward scan needs a guard.
      while (true) {
        if (i == --j) {
          // Nothing after *first comes before it: split off the run that
          // ties with *first instead, and sort what follows it.
          ++i;
          j = last;
          if (!comp(*first, *--j)) {
            while (true) {
              if (i == j) return;  // every element ties
              if (comp(*first, *i)) {
                swap(*i, *j);
                ++swaps;
                ++i;
                break;
              }
              ++i;
            }
          }
          if (i == j) return;
          while (true) {
            while (!comp(*first, *i)) ++i;
            while (comp(*first, *--j)) {
            }
            if (i >= j) break;
            swap(*i, *j);
            ++swaps;
            ++i;
          }
          first = i;
          restart = true;
          break;
        }
        if (comp(*j, *m)) {
          swap(*i, *j);
          ++swaps;
          break;
        }
      }
      if (restart) continue;
    }
    ++i;
    if (i < j) {
      while (true) {
        while (comp(*i, *m)) ++i;
        while (!comp(*--j, *m)) {
        }
        if (i > j) break;
        swap(*i, *j);
        ++swaps;
        if (m == i) m = j;  // follow the pivot if it just moved
        ++i;
      }
    }
    if (i != m && comp(*m, *i)) {
      swap(*i, *m);
      ++swaps;
    }
    // A partition without swaps hints at sorted input: try finishing both
    // sides by a bounded insertion sort first.
    if (swaps == 0) {
      const bool firstSorted = insertionSortIncomplete(first, i, comp);
      if (insertionSortIncomplete(i + 1, last, comp)) {
        if (firstSorted) return;
        last = i;
        continue;
      }
      if (firstSorted) {
        first = ++i;
        continue;
      }
    }
    // Recurse into the smaller side, loop on the larger.
    if (i - first < last - i) {
      introsort(first, i, comp, depth);
      first = ++i;
    } else {
      introsort(i + 1, last, comp, depth);
      last = i;
    }
  }
}

template <class Diff>
Diff floorLog2(Diff n) {
  Diff log2 = 0;
  while (n > 1) {
    ++log2;
    n >>= 1;
  }
  return log2;
}

}  // namespace sort_detail

// Sorts [first, last) so that no element is preceded by one that `comp`
// orders after it. Elements that tie keep no defined order, but always the
// same one for the same input.
template <class It, class Compare>
void unstableSort(It first, It last, Compare comp) {
  sort_detail::introsort(first, last, comp,
                         2 * sort_detail::floorLog2(last - first));
}

// Larger member lists first; equal sizes tie.
struct MoreMembersFirst {
  bool operator()(const Cluster& a, const Cluster& b) const {
    return a.points.size() > b.points.size();
  }
};

extern template void unstableSort<Cluster*, MoreMembersFirst>(Cluster*,
                                                              Cluster*,
                                                              MoreMembersFirst);

}  // namespace pavona::internal

#endif  // PAVONA_SRC_NEON_CLUSTER_SORT_H_
