#pragma once

#include "host/recording/SkDepthScale.h"

#include <optional>

class QDomElement;

/// How a recording is played, independent of the file and the position in it.
struct SkPlaybackSettings {
    enum EkPace : int {
        EveryFrame = 0, ///< as fast as the chain accepts them; each frame once, in order
        RealTime = 1    ///< at the recorded intervals, scaled by speed; late frames are skipped
    };
    static constexpr double kSlowestSpeed = 0.1;
    static constexpr double kFastestSpeed = 10.0;

    bool loop = false;
    EkPace pace = EveryFrame;
    double speed = 1.0; ///< of RealTime: 1 as recorded, 2 twice as fast; kSlowestSpeed to kFastestSpeed
    SkDepthScale scale;

    static EkPace toPace(int iPace) { return iPace == RealTime ? RealTime : EveryFrame; }
    /// The nearest speed within the range; std::nullopt for infinite and NaN ones.
    static std::optional<double> toSpeed(double fSpeed);

    void save(QDomElement& element) const;
    /// Missing and malformed attributes give the defaults.
    static SkPlaybackSettings load(const QDomElement& element);
};
