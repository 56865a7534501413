#pragma once

#include "plugins/zplToF/cloud/SkToFOpticalPath.h"
#include "plugins/zplToF/cloud/ToFSettings.h"

class QSettings;
class QColor;

/// The options of a 3D view. Reading never fails: a value that is missing, of another type or not finite is
/// replaced by its default. Finite numbers without a meaning (a focal length of 0) are returned as they are.
struct SkToFViewSettings {
    bool showBBox = true;          ///< box around the measured volume
    bool regulateInputFps = false; ///< limit the rate of frames that are shown
    float maxInputFps = 5.0F;      ///< frames per second
    SkToFOpticalPath opticalPath;

    static SkToFViewSettings read(const QSettings& settings);
    /// Writes what the settings dialog stores when it is accepted: all but showBBox, which the view writes
    /// itself.
    void writeDialogValues(QSettings& settings) const;

    static float readDistanceOffset(const QSettings& settings, float fDefault);
    static int readPseudoColor(const QSettings& settings);
    static QColor readBackground(const QSettings& settings);
    static QColor defaultBackground();

    bool operator==(const SkToFViewSettings&) const = default;
};
