#pragma once

#include <cstddef>
#include <cstdint>

/// Records every allocation of the thread, by any function, during its lifetime. One at a time. With a
/// sanitizer, the hooks of its allocator are used.
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
