#pragma once

#include <QElapsedTimer>
#include <QPointer>
#include <QStatusBar>
#include <QTimer>

class CkMdiView;
class CkRateGraph;
class CkViewArea;
class QLabel;

/// Pixel under the mouse, frame rate and drops of the active view. User-interface thread.
class CkStatusBar : public QStatusBar {
    Q_OBJECT

public:
    explicit CkStatusBar(CkViewArea* pArea, QWidget* pParent = nullptr);

    QString pixelText() const;
    QString rateText() const;
    QString dropText() const;

    /// Frames that a view or its chain dropped since the chain was started.
    static quint64 droppedBy(const CkMdiView* pView);

private:
    void follow();
    void refresh();

    CkViewArea* m_area;
    QLabel* m_pixel;
    QLabel* m_rate;
    QLabel* m_drops;
    CkRateGraph* m_graph;
    QPointer<CkMdiView> m_view;
    QPointer<CkMdiView> m_counted;
    QTimer m_timer;
    QElapsedTimer m_clock;
    int m_frames = 0;
    quint64 m_dropped = 0; ///< at the last refresh
};
