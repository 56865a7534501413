#pragma once

#include "plugins/zplToF/cloud/SkToFOpticalPath.h"

#include <QElapsedTimer>

/// Limits how often frames are shown. A frame that arrives too early is dropped, not queued.
class CkToFInputRegulator {
public:
    /// Whether a frame that arrives now is dropped. A limit that is not a number above 0 has no effect.
    bool dropsFrame(bool bRegulate, float fMaxFps) const {
        return drops(bRegulate, fMaxFps, m_inputTimer.isValid() ? m_inputTimer.elapsed() : -1);
    }
    /// Starts the interval to the next frame.
    void frameShown() { m_inputTimer.start(); }

    /// The same for a frame that arrives iElapsedMs whole milliseconds after the last one shown; negative
    /// when there was none.
    static bool drops(bool bRegulate, float fMaxFps, qint64 iElapsedMs) {
        return bRegulate && float_is_positive(fMaxFps) && iElapsedMs > 0 &&
               1000.0 / double(fMaxFps) > double(iElapsedMs);
    }

private:
    QElapsedTimer m_inputTimer; ///< since the last frame shown
};
