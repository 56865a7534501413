#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

/// Reads numbers from the front of an input; zeros follow the end.
class FuzzBytes {
public:
    FuzzBytes(const uint8_t* input, size_t inputSize) : bytes(input), size(inputSize) {}

    uint8_t byte() { return at < size ? bytes[at++] : uint8_t(0); }
    uint32_t word() {
        uint32_t value = 0;
        for (int count = 0; count < 4; ++count) {
            value = value << 8 | byte();
        }
        return value;
    }
    /// Usually a number below the limit, sometimes any number.
    uint32_t smallOrAny(uint32_t limit) {
        const uint8_t kind = byte();
        return kind >= 250 ? word() : (uint32_t(kind) << 8 | byte()) % limit;
    }
    bool ended() const { return at >= size; }

    /// Fills memory with the rest of the input, repeated with variations.
    void fill(uint8_t* target, size_t count) {
        uint32_t state = word() | 1U;
        for (size_t index = 0; index < count; ++index) {
            state = state * 1664525U + 1013904223U;
            target[index] = uint8_t((state >> 24) & (mask | (state >> 11)));
        }
    }
    uint8_t mask = 0xFF;

private:
    const uint8_t* bytes;
    size_t size;
    size_t at = 0;
};
