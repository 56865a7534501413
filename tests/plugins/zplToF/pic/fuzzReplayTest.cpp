#include "fuzz/pic/picFuzz.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

// The fuzz target's checks with a fixed sequence of inputs, so that every build runs them.

namespace {

TEST(FuzzReplay, PseudoRandomInputsKeepEveryPromise) {
    std::mt19937 random(20260101);
    for (int count = 0; count < 60000; ++count) {
        std::vector<uint8_t> input(random() % 120);
        for (uint8_t& byte : input) {
            byte = uint8_t(random());
        }
        ASSERT_EQ(checkPicOperation(input.data(), input.size()), "") << "input " << count;
    }
}

TEST(FuzzReplay, ConstantInputsKeepEveryPromise) {
    for (int value = 0; value < 256; ++value) {
        for (size_t size = 0; size < 100; size += 7) {
            std::vector<uint8_t> input(size, uint8_t(value));
            if (size > 0) {
                input[0] = uint8_t(value + int(size));
            }
            ASSERT_EQ(checkPicOperation(input.data(), input.size()), "") << value << ' ' << size;
        }
    }
}

} // namespace
