#pragma once

#include <QHash>
#include <QRect>
#include <QString>

class CkImageView;

/// The measured regions. All views of a chain whose pictures have the same size share one, so that a region
/// drawn on the depth picture also holds for the phase. User-interface thread.
class CkMeasuredRegions {
public:
    /// In pixels of the picture. Default: the middle quarter of each side of a picture of this size.
    QRect region(const CkImageView& view, const QSize& size);
    void setRegion(const CkImageView& view, const QRect& region);

private:
    QHash<QString, QRect> m_regions; ///< by chain and size
};
