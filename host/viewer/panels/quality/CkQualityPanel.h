#pragma once

#include "host/viewer/panels/quality/CkMeasuredRegions.h"
#include "host/viewer/panels/quality/CkSaturationMonitor.h"
#include "host/viewer/panels/quality/CkViewMeasurement.h"
#include "host/viewer/picture/CkImageView.h"

#include <QPointer>
#include <QTimer>
#include <QWidget>

#include <map>

class CkMdiView;
class CkQualityControls;
class CkRegionOverlay;
class CkViewArea;
class QAction;

/// Measures the quality of the active view's picture within a region: mean, spread, plane, valid pixels;
/// shows them live and as a curve, and copies and saves them. A view without a picture (a point cloud) is
/// measured in the depth picture of its chain. All views of a chain with pictures of the same size share the
/// region. Measures nothing while it is hidden. User-interface thread.
class CkQualityPanel : public QWidget {
    Q_OBJECT

public:
    explicit CkQualityPanel(CkViewArea* pArea, QWidget* pParent = nullptr);
    ~CkQualityPanel() override;

    /// The view that is measured, or null.
    CkImageView* measuredView() const { return m_source; }
    const QRect& region() const { return m_current.region(); }
    void setRegion(const QRect& region);
    /// Of the frame measured last.
    const SkQualityValues& values() const { return m_current.values(); }
    const CkQualityHistory& history() const { return m_current.history(); }

    /// The actions of the buttons, with shortcuts, for a menu.
    const QList<QAction*>& menuActions() const { return m_actions; }

    /// False, with sError set, when the file cannot be written.
    bool saveHistory(const QString& sFileName, QString& sError) const;

public slots:
    /// Connected to the dock's visibilityChanged: Qt also reports a panel in a background tab as visible.
    void setShownByDock(bool bShown);
    /// Drops the frames so far.
    void restart();
    void copy();

signals:
    /// The user starts to draw a region while the panel is hidden; the receiver raises it.
    void raiseRequested();

protected:
    void showEvent(QShowEvent* pEvent) override;
    void hideEvent(QHideEvent* pEvent) override;

private:
    QAction* addMenuAction(const QString& sText, const char* name, const QKeySequence& key);
    void createActions();
    void allowMeasuring(bool bOn, const QString& sWhy);
    bool isOnScreen() const { return isVisible() && m_shownByDock; }
    void follow();
    void release();
    void applySettings();
    void measure(const CkImageData* pFrame);
    void showRegion();
    void showNumbers();
    void updateControls();
    QString stateText(const QString& sNothing) const;
    void saveWithDialog();

    CkViewArea* m_area;
    CkQualityControls* m_controls;
    QAction* m_drawAction = nullptr;
    QList<QAction*> m_actions;

    QPointer<CkImageView> m_source;
    QPointer<CkRegionOverlay> m_overlay;
    CkMeasuredRegions m_regions;
    CkSaturationMonitor m_saturation;
    CkViewMeasurement m_current;
    std::map<int, CkViewMeasurement> m_suspended; ///< of views not measured at present, by identifier
    bool m_shownByDock = true;
    QTimer m_delay; ///< numbers that change with every frame are shown a few times a second only
};
