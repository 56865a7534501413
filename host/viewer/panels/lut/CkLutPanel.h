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

    CkViewArea* m_area;
    QComboBox* m_mapBox = nullptr;
    QCheckBox* m_autoBox = nullptr;
    QCheckBox* m_saturationBox = nullptr;
    QDoubleSpinBox* m_low = nullptr;
    QDoubleSpinBox* m_high = nullptr;
    QDoubleSpinBox* m_gamma = nullptr;
    QPushButton* m_fullButton = nullptr;
    QLabel* m_summary = nullptr;
    CkHistogramWidget* m_histogram = nullptr;
    QPointer<CkMdiView> m_view;
    QPointer<CkImageView> m_imageView;
    QTimer m_delay; ///< numbers that change with every frame are shown a few times a second only
};
