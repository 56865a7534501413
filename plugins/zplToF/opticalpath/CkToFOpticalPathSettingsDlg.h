#pragma once

#include "zuCore/CkValue.h"
#include "zuCore/EkImageDataType.h"

#include <QDialog>
#include <QPointF>
#include <memory>

class QAbstractButton;
class QLineEdit;
namespace Ui {
class CkToFOpticalPathSettingsDlg;
}

/// Dialog "3D View Settings": optical path, confidence threshold, bounding box, background and refresh limit
/// of a 3D view. Knows no view: it is constructed with values and emits a signal for each change that acts at
/// once; the other values are read from it after dialogValuesChanged (Apply) or after it was accepted (OK).
/// User-interface thread.
///
/// A value that the user has not edited is returned exactly as it was given, however the field rounds it.
class CkToFOpticalPathSettingsDlg : public QDialog {
    Q_OBJECT

public:
    /// fModulationFreq in MHz, fLensFocalLength and ptCenterOffset (right, up) in mm, fChipCellSize in
    /// micrometres, fRealDistOffset in m, uiBgColor 0xRRGGBB, fMaxInputFps in frames per second. Without
    /// confidence the threshold row is disabled. An empty threshold range disables the bar alone.
    CkToFOpticalPathSettingsDlg(EkDepthDataType depthDataType, float fModulationFreq,
                                bool bConfidenceAvailable, float fConfidenceThreshold, float fThresholdMin,
                                float fThresholdMax, bool bCompensate, float fLensFocalLength,
                                QPointF ptCenterOffset, float fChipCellSize, float fRealDistOffset,
                                bool bOrthoDistance, bool bShowBBox, unsigned int uiBgColor,
                                bool bLimitInputFps, float fMaxInputFps, QWidget* pParent = nullptr);
    ~CkToFOpticalPathSettingsDlg() override;

    // Values as of the last Apply or OK; before that as given.
    float modulationFreq() const { return m_values.fModulationFreq; }
    bool compensate() const { return m_values.bCompensate; }
    float lensFocalLength() const { return m_values.fLensFocalLength; }
    QPointF centerOffset() const { return m_values.ptCenterOffset; }
    /// Micrometres. A caller that stores millimetres compares with the value it passed in before dividing: a
    /// float does not always survive the conversion and back.
    float chipCellSize() const { return m_values.fChipCellSize; }
    float realDistOffset() const { return m_values.fRealDistOffset; }
    bool orthoDistance() const { return m_values.bOrthoDistance; }
    bool limitInputFps() const { return m_values.bLimitInputFps; }
    float maxInputFps() const { return m_values.fMaxInputFps; }
    /// Follows the bar at once.
    float confidenceThreshold() const { return m_confidenceThreshold; }

    /// Reads the values from the controls. A field that holds no number, or a focal length or cell size not
    /// above 0, keeps its value. Always true.
    bool writeValuesFromControls();

signals:
    /// Apply: the values have been read from the controls.
    void dialogValuesChanged();
    void confidenceThresholdChanged(float);
    void bboxVisibityChanged(bool);
    /// 0xRRGGBB.
    void bgColorChanged(uint);

public slots:
    void on_buttonBox_accepted();
    void on_buttonBox_clicked(QAbstractButton* pButton);
    void onConfThresholdSliderValueChanged(const CkValue& value);
    void on_chkBoundingBox_toggled(bool bOn);
    void onBgColorPickedChanged();

private:
    struct SkValues {
        float fModulationFreq;
        bool bCompensate;
        float fLensFocalLength;
        QPointF ptCenterOffset;
        float fChipCellSize;
        float fRealDistOffset;
        bool bOrthoDistance;
        bool bLimitInputFps;
        float fMaxInputFps;
    };

    void fillEdit(QLineEdit* pEdit, double fValue, char cFormat = 'f');
    bool readEdit(QLineEdit* pEdit, float& fValue, bool bPositiveOnly = false);
    void setUpThreshold(bool bConfidenceAvailable, float fThresholdMin, float fThresholdMax);
    void explainLabels();
    void alignColumns();

    std::unique_ptr<Ui::CkToFOpticalPathSettingsDlg> m_ui;
    SkValues m_values;
    float m_confidenceThreshold;
};
