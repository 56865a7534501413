#pragma once

#include "zuCore/zuCoreGlobal.h"

/// Anything that flows through a chain. The one it is handed to owns it; a block that returns something else
/// than its input deletes the input.
class ZUCORE_EXPORT IkChainData {
public:
    virtual ~IkChainData();

    /// A second object for the same content, so that every branch of a chain can own one; null when
    /// memory is short.
    virtual IkChainData* share() const = 0;

protected:
    IkChainData() = default;
    IkChainData(const IkChainData&) = default;
    IkChainData& operator=(const IkChainData&) = default;
};
