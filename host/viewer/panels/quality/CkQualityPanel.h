#pragma once

#include "host/viewer/panels/quality/CkQualityHistory.h"
#include "host/viewer/panels/quality/CkQualityMeter.h"
#include "host/viewer/panels/quality/CkSaturationMonitor.h"

#include <QHash>
#include <QPointer>
#include <QTimer>
#include <QWidget>

#include <map>

class CkImageView;
class CkMdiView;
class CkQualityPlot;
class CkRegionOverlay;
class CkViewArea;
class QAction;
class QComboBox;
class QDoubleSpinBox;
class QGridLayout;
class QLabel;
class QPushButton;
class QToolButton;

/// How good the active view's picture is within a region: mean, spread, plane, valid pixels; live, as a
/// curve, to be copied and saved. A view that shows no picture itself (a point cloud) is measured in the
/// depth picture of its chain. All views of a chain with pictures of the same size share the region. Does
/// nothing while it is hidden. User-interface thread.
class CkQualityPanel : public QWidget {
    Q_OBJECT

public:
    explicit CkQualityPanel(CkViewArea* pArea, QWidget* pParent = nullptr);
    ~CkQualityPanel() override;

    /// The view that is measured, or null.
    CkImageView* measuredView() const { return m_source; }
    const QRect& region() const { return m_now.meter.region(); }
    void setRegion(const QRect& region);
    /// Of the frame measured last.
    const SkQualityValues& values() const { return m_now.values; }
    const CkQualityHistory& history() const { return m_now.history; }

    /// What the buttons do, with shortcuts, for a menu.
    const QList<QAction*>& menuActions() const { return m_actions; }

    /// False, with sError set, when the file cannot be written.
    bool saveHistory(const QString& sFileName, QString& sError) const;

public slots:
    /// A panel behind another tab counts as shown, though nobody sees it: what holds the panel says so here.
    void setInSight(bool bInSight);
    /// Forgets the frames so far.
    void restart();
    void copy();

signals:
    /// A region is to be drawn, and the panel is not in sight.
    void sightWanted();

protected:
    void showEvent(QShowEvent* pEvent) override;
    void hideEvent(QHideEvent* pEvent) override;
    void resizeEvent(QResizeEvent* pEvent) override;

private:
    /// What is known of a view; kept while another one is measured.
    struct SkMeasurement {
        CkQualityMeter meter;
        CkQualityHistory history;
        SkQualityValues values;
        const void* pixels = nullptr; ///< of the frame measured last, to know it again
        QString saturationReason;     ///< why saturated pixels may count as valid; empty: they do not
    };

    void createControls();
    void placeButtons();
    QDoubleSpinBox* createNumber(const QString& sName, double fLow, double fHigh, double fStep,
                                 int iDecimals);
    void createActions();
    void allowMeasuring(bool bOn, const QString& sWhy);
    void follow();
    void release();
    CkImageView* sourceFor(CkMdiView* pView) const;
    QString regionKey() const;
    void applySettings();
    void measure(const CkImageData* pFrame);
    void chooseRegion(const QSize& size);
    void showRegion();
    /// False for a frame that is better left out.
    bool findSaturated(const CkImageData& frame, std::vector<bool>& saturated);
    void showNumbers();
    void saveWithDialog();
    void updateControls();

    CkViewArea* m_pArea;
    QGridLayout* m_pButtons = nullptr;
    int m_iButtonColumns = 0;
    QToolButton* m_pDraw = nullptr;
    QPushButton* m_pRestart = nullptr;
    QPushButton* m_pCopy = nullptr;
    QPushButton* m_pSave = nullptr;
    QAction* m_pDrawAction = nullptr;
    QList<QAction*> m_actions;
    QLabel* m_pWhere = nullptr;
    QList<QLabel*> m_numbers;
    QComboBox* m_pQuantity = nullptr;
    CkQualityPlot* m_pPlot = nullptr;
    QDoubleSpinBox* m_pFocalLength = nullptr;
    QDoubleSpinBox* m_pCellSize = nullptr;
    QDoubleSpinBox* m_pConfidence = nullptr;

    QPointer<CkImageView> m_source;
    QPointer<CkRegionOverlay> m_overlay;
    QHash<QString, QRect> m_regions;
    CkSaturationMonitor m_watch;
    SkMeasurement m_now;
    std::map<int, SkMeasurement> m_kept; ///< by the views' identifiers
    bool m_bInSight = true;
    QTimer m_delay; ///< numbers that change with every frame are shown a few times a second only
};
