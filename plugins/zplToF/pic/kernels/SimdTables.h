#pragma once

#include "plugins/zplToF/pic/kernels/SimdTargets.h"

#include <hwy/highway.h>

#include <array>
#include <cstring>
#include <vector>

/// The instruction sets that have kernels, from the narrowest vectors to the widest.
inline constexpr int64_t kSimdTargets[] = {HWY_SSE4, HWY_AVX2, HWY_AVX3};

/// A table of functions for each instruction set that was compiled in and that this processor supports. Table
/// has a member sName, the name of the instruction set. Not copyable; immutable after construction.
template <typename Table>
class CkToFSimdTables {
public:
    /// Each table starts as a copy of plain, which leaves the plain loop where there is no vector version.
    /// add fills in the functions of an instruction set, and returns false when it was not compiled in.
    template <typename Add>
    CkToFSimdTables(const Table& plain, const Add& add) {
        const int64_t supported = hwy::SupportedTargets();
        for (size_t i = 0; i < m_tables.size(); ++i) {
            Table& table = m_tables[i];
            table = plain;
            table.sName = hwy::TargetName(kSimdTargets[i]);
            if ((supported & kSimdTargets[i]) != 0 && add(kSimdTargets[i], table)) {
                m_usable.push_back(&table);
            }
        }
    }
    CkToFSimdTables(const CkToFSimdTables&) = delete;
    CkToFSimdTables& operator=(const CkToFSimdTables&) = delete;

    const std::vector<const Table*>& usable() const { return m_usable; }

    /// The table with this name, or null.
    const Table* find(const char* sName) const {
        for (const Table* const table : m_usable) {
            if (std::strcmp(table->sName, sName) == 0) {
                return table;
            }
        }
        return nullptr;
    }

private:
    std::array<Table, std::size(kSimdTargets)> m_tables{};
    std::vector<const Table*> m_usable;
};
