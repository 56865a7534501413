#include "tests/plugins/zplToF/cloud/HeapWatch.h"

#include <malloc.h>
#include <pthread.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>

namespace {

std::atomic<bool> watching = false;
std::atomic<pthread_t> watched = {};
std::atomic<size_t> leaveOutFrom = SIZE_MAX;
std::atomic<size_t> leftOutCount = 0;
std::atomic<size_t> largestBytes = 0;
std::atomic<size_t> liveBytes = 0;
std::atomic<size_t> peakBytes = 0;

bool isWatched() {
    return watching && pthread_equal(watched, pthread_self());
}

void allocated(size_t asked, size_t usable) {
    if (!isWatched()) {
        return;
    }
    if (asked >= leaveOutFrom) {
        ++leftOutCount;
        return;
    }
    if (asked > largestBytes) {
        largestBytes = asked;
    }
    liveBytes += usable;
    if (liveBytes > peakBytes) {
        peakBytes = liveBytes.load();
    }
}

void freed(size_t usable) {
    if (isWatched()) {
        liveBytes -= liveBytes < usable ? liveBytes.load() : usable;
    }
}

} // namespace

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)

extern "C" {
int __sanitizer_install_malloc_and_free_hooks(void (*)(const volatile void*, size_t),
                                              void (*)(const volatile void*));
size_t __sanitizer_get_allocated_size(const volatile void*);
}

namespace {

[[maybe_unused]] const int installed = __sanitizer_install_malloc_and_free_hooks(
    [](const volatile void*, size_t size) { allocated(size, size); },
    [](const volatile void* memory) {
        if (memory) {
            freed(__sanitizer_get_allocated_size(memory));
        }
    });

} // namespace

#else

// The allocator of the C library, under the names it provides for programs that replace the public ones.
extern "C" {
void* __libc_malloc(size_t);
void* __libc_calloc(size_t, size_t);
void* __libc_realloc(void*, size_t);
void* __libc_memalign(size_t, size_t);
void __libc_free(void*);

void* malloc(size_t size) {
    void* memory = __libc_malloc(size);
    allocated(size, malloc_usable_size(memory));
    return memory;
}

void* calloc(size_t count, size_t size) {
    void* memory = __libc_calloc(count, size);
    allocated(count * size, malloc_usable_size(memory));
    return memory;
}

void* realloc(void* old, size_t size) {
    freed(malloc_usable_size(old));
    void* memory = __libc_realloc(old, size);
    allocated(size, malloc_usable_size(memory));
    return memory;
}

void* memalign(size_t alignment, size_t size) {
    void* memory = __libc_memalign(alignment, size);
    allocated(size, malloc_usable_size(memory));
    return memory;
}

void* aligned_alloc(size_t alignment, size_t size) {
    return memalign(alignment, size);
}

int posix_memalign(void** memory, size_t alignment, size_t size) {
    *memory = memalign(alignment, size);
    return *memory ? 0 : ENOMEM;
}

void free(void* memory) {
    freed(malloc_usable_size(memory));
    __libc_free(memory);
}
}

#endif

HeapWatch::HeapWatch(size_t uiLeaveOutFrom) {
    watched = pthread_self();
    leaveOutFrom = uiLeaveOutFrom;
    leftOutCount = 0;
    largestBytes = 0;
    liveBytes = 0;
    peakBytes = 0;
    watching = true;
}

HeapWatch::~HeapWatch() {
    watching = false;
}

size_t HeapWatch::largest() const {
    return largestBytes;
}

size_t HeapWatch::peak() const {
    return peakBytes;
}

size_t HeapWatch::leftOut() const {
    return leftOutCount;
}
