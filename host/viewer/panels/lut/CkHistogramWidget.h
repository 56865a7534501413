#pragma once

#include "host/viewer/picture/PictureColours.h"
#include "host/viewer/picture/PictureStatistics.h"

#include <QWidget>

/// Histogram of a picture with the contrast window over it; the window's ends can be dragged. User-interface
/// thread.
class CkHistogramWidget : public QWidget {
    Q_OBJECT

public:
    explicit CkHistogramWidget(QWidget* pParent = nullptr);

    void showStatistics(const SkPictureStatistics& statistics, const SkDisplayWindow& window, bool bEditable);
    void clear();

    QSize sizeHint() const override { return {240, 96}; }
    QSize minimumSizeHint() const override { return {120, 72}; }

signals:
    /// The user dragged an end of the window.
    void windowDragged(const SkDisplayWindow& window);

protected:
    void paintEvent(QPaintEvent* pEvent) override;
    void mousePressEvent(QMouseEvent* pEvent) override;
    void mouseMoveEvent(QMouseEvent* pEvent) override;
    void mouseReleaseEvent(QMouseEvent* pEvent) override;

private:
    enum class EkEnd : int { None, Low, High };

    double toX(double fValue) const;
    double toValue(double fX) const;
    void updateRange();

    SkPictureStatistics m_statistics;
    SkDisplayWindow m_window;
    SkDisplayWindow m_range; ///< values at the left and right border
    EkEnd m_dragged = EkEnd::None;
    bool m_editable = false;
    bool m_empty = true;
};
