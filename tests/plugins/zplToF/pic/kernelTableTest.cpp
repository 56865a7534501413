#include "plugins/zplToF/pic/kernels/PlainKernels.h"
#include "plugins/zplToF/pic/kernels/SimdKernels.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

// A vector kernel that is missing from its table changes no result, only the time: the plain loop takes its
// place.

namespace {

/// One entry of a table: its name and the bytes of its address.
struct TableEntry {
    std::string name;
    void* address = nullptr;
};

template <typename Kernel>
void append(std::vector<TableEntry>& entries, const std::string& name, const Kernel& kernel) {
    if constexpr (std::is_array_v<Kernel>) {
        size_t index = 0;
        for (const auto& element : kernel) {
            append(entries, name + "[" + std::to_string(index++) + "]", element);
        }
    } else {
        static_assert(sizeof(kernel) == sizeof(void*));
        TableEntry entry{name, nullptr};
        std::memcpy(&entry.address, &kernel, sizeof entry.address);
        entries.push_back(entry);
    }
}

std::vector<TableEntry> entriesOf(const SkToFKernels& kernels) {
    std::vector<TableEntry> entries;
    append(entries, "phaseConfidence", kernels.phaseConfidence);
    append(entries, "phase", kernels.phase);
    append(entries, "fillDark", kernels.fillDark);
    append(entries, "angle", kernels.angle);
    append(entries, "intensity", kernels.intensity);
    append(entries, "amplitude", kernels.amplitude);
    append(entries, "amplitudeOfDifference", kernels.amplitudeOfDifference);
    append(entries, "difference", kernels.difference);
    append(entries, "hybridIntensity", kernels.hybridIntensity);
    append(entries, "hybridAmplitude", kernels.hybridAmplitude);
    append(entries, "hybridDepth", kernels.hybridDepth);
    append(entries, "mergeSections", kernels.mergeSections);
    append(entries, "interleaveThree", kernels.interleaveThree);
    append(entries, "largestDepthOfPairs", kernels.largestDepthOfPairs);
    append(entries, "largestDepth", kernels.largestDepth);
    return entries;
}

TEST(KernelTable, EveryInstructionSetHasAKernelOfItsOwnForEveryOperation) {
    // Name, flag and entries fill the table: a new member must be listed above.
    const std::vector<TableEntry> plain = entriesOf(plainKernels());
    ASSERT_EQ(sizeof(SkToFKernels), (plain.size() + 2) * sizeof(void*));
    for (const SkToFKernels* const kernels : simdKernels()) {
        const std::vector<TableEntry> vectors = entriesOf(*kernels);
        for (size_t i = 0; i < plain.size(); ++i) {
            if (plain[i].address == nullptr) {
                EXPECT_EQ(vectors[i].address, nullptr) << kernels->sName << " " << plain[i].name;
            } else {
                EXPECT_NE(vectors[i].address, plain[i].address) << kernels->sName << " " << plain[i].name;
            }
        }
    }
}

TEST(KernelTable, NoTwoInstructionSetsShareAKernel) {
    const std::vector<const SkToFKernels*> sets = simdKernels();
    for (size_t set = 1; set < sets.size(); ++set) {
        const std::vector<TableEntry> narrow = entriesOf(*sets[set - 1]);
        const std::vector<TableEntry> wide = entriesOf(*sets[set]);
        for (size_t i = 0; i < wide.size(); ++i) {
            EXPECT_TRUE(wide[i].address == nullptr || wide[i].address != narrow[i].address)
                << sets[set]->sName << " " << wide[i].name;
        }
    }
}

} // namespace
