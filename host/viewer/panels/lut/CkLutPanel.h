#pragma once

#include <QPointer>
#include <QTimer>
#include <QWidget>

class CkHistogramWidget;
class CkImageView;
class CkMdiView;
class CkViewArea;
class QCheckBox;
class QComboBox;
class QDoubleSpinBox;
class QLabel;
class QPushButton;

/// Controls of the active view's look-up table: colour map, contrast window, gamma, saturation, histogram.
/// For views that are not picture views only the map can be chosen. User-interface thread.
class CkLutPanel : public QWidget {
    Q_OBJECT

public:
    explicit CkLutPanel(CkViewArea* pArea, QWidget* pParent = nullptr);

public slots:
    /// Shows the active view's table, after another view became active or its table was changed elsewhere.
    void refresh();

private:
    void createControls();
    QComboBox* createMapBox();
    QDoubleSpinBox* createNumber(const QString& sName);
    void applyMap(int iIndex);
    void applyFlags();
    void applyWindow();
    void showContrast();
    void showWindow();
    void clearWindow();
    void setContrastEnabled(bool bEnabled, const QString& sWhy);

    CkViewArea* m_pArea;
    QComboBox* m_pMapBox = nullptr;
    QCheckBox* m_pAutoBox = nullptr;
    QCheckBox* m_pSaturationBox = nullptr;
    QDoubleSpinBox* m_pLow = nullptr;
    QDoubleSpinBox* m_pHigh = nullptr;
    QDoubleSpinBox* m_pGamma = nullptr;
    QPushButton* m_pFullButton = nullptr;
    QLabel* m_pSummary = nullptr;
    CkHistogramWidget* m_pHistogram = nullptr;
    QPointer<CkMdiView> m_view;
    QPointer<CkImageView> m_imageView;
    QTimer m_delay; ///< numbers that change with every frame are shown a few times a second only
};
