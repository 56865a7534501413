#pragma once

#include <cstddef>
#include <cstdint>

/// Watches every allocation of the thread, by whatever function, from its construction to its end. One at a
/// time. Where a sanitizer keeps the heap, its hooks are used.
class HeapWatch {
public:
    /// Allocations from uiLeaveOutFrom bytes on are counted, and otherwise left out.
    explicit HeapWatch(size_t uiLeaveOutFrom = SIZE_MAX);
    ~HeapWatch();
    HeapWatch(const HeapWatch&) = delete;
    HeapWatch& operator=(const HeapWatch&) = delete;

    size_t largest() const; ///< bytes of the largest single allocation so far
    size_t leftOut() const; ///< number of allocations left out
    size_t peak() const;    ///< most bytes in use at once beyond those in use at the start
};
