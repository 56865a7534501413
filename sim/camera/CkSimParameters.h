#pragma once

#include "sim/camera/SkSimSettings.h"

#include "zuCore/CkCameraParameters.h"

#include <functional>
#include <vector>

/// Binds the parameters of a simulated camera to its settings. User-interface thread.
class CkSimParameters {
public:
    /// Adds the parameters of a kind, with their start values, to a camera's parameters, which must outlive
    /// this object.
    CkSimParameters(EkSimCameraKind kind, CkCameraParameters& parameters);

    /// The settings with the new values of the parameters being committed and the committed values of all
    /// others.
    SkSimSettings settings(const QList<CkCameraParam*>& committing) const;

private:
    struct SkBound {
        CkCameraParam* param = nullptr;
        std::function<void(SkSimSettings&, const CkValue&)> write;
    };

    EkSimCameraKind m_kind;
    std::vector<SkBound> m_bound;
};
