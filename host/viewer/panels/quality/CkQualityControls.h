#pragma once

#include "host/viewer/panels/quality/CkQualityMeter.h"

#include <QWidget>

class CkQualityHistory;
class CkQualityPlot;
class QComboBox;
class QDoubleSpinBox;
class QFormLayout;
class QGridLayout;
class QLabel;
class QPushButton;
class QToolButton;

/// The widgets of the quality panel: buttons, values, curve and settings. Measures nothing itself.
/// User-interface thread.
class CkQualityControls : public QWidget {
    Q_OBJECT

public:
    explicit CkQualityControls(QWidget* pParent = nullptr);

    SkQualityLens lens() const;
    /// Pixels of a higher confidence value are not valid.
    float confidenceLimit() const;
    bool drawsRegion() const;
    void setDrawsRegion(bool bDraw);

    /// The newest values, and the chosen one as a curve over the last frames.
    void showValues(const SkQualityValues& values, const CkQualityHistory& history);

    /// The present state of the controls.
    struct SkState {
        bool canDraw = false;       ///< there is a picture to draw on
        bool measures = false;      ///< there are values
        QString text;               ///< what is measured, or why nothing is
        QString reason;             ///< the tool tip of disabled controls
        double focalLengthMm = 0.0; ///< reported by the camera; 0: none
    };
    void showState(const SkState& state);

signals:
    void drawToggled(bool bOn);
    void restartRequested();
    void copyRequested();
    void saveRequested();
    /// Another quantity is to be plotted.
    void quantityChosen();
    /// The lens or the confidence limit was changed.
    void settingsChanged();

protected:
    void resizeEvent(QResizeEvent* pEvent) override;

private:
    void createButtons();
    void placeButtons();
    QFormLayout* createValues();
    QFormLayout* createSettings();
    QDoubleSpinBox* createNumber(const QString& sName, double fLow, double fHigh, double fStep,
                                 int iDecimals);

    QGridLayout* m_buttonGrid = nullptr;
    int m_buttonColumns = 0; ///< of the grid; 0 before the first layout
    QToolButton* m_draw = nullptr;
    QPushButton* m_restart = nullptr;
    QPushButton* m_copy = nullptr;
    QPushButton* m_save = nullptr;
    QLabel* m_text = nullptr;
    QList<QLabel*> m_numbers;
    QComboBox* m_quantity = nullptr;
    CkQualityPlot* m_plot = nullptr;
    QDoubleSpinBox* m_focalLength = nullptr;
    QDoubleSpinBox* m_cellSize = nullptr;
    QDoubleSpinBox* m_confidence = nullptr;
};
