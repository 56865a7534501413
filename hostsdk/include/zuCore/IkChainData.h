#pragma once

#include "zuCore/zuCoreGlobal.h"

/// Base of everything that flows through a chain. The receiver owns it; a block that returns another object
/// than its input deletes the input.
class ZUCORE_EXPORT IkChainData {
public:
    virtual ~IkChainData();

    /// A second object with the same content, so that every branch of a chain can own one; null when memory
    /// allocation fails.
    virtual IkChainData* share() const = 0;

protected:
    IkChainData() = default;
    IkChainData(const IkChainData&) = default;
    IkChainData& operator=(const IkChainData&) = default;
};
