#pragma once

#include <QTimer>
#include <QWidget>

class CkCameraParam;
class CkTuningBar;
class CkValue;
class QCheckBox;
class QComboBox;
class QDoubleSpinBox;
class QLineEdit;

/// Edits one camera parameter: a tuning bar and a number for integers and floats, a box to tick for flags, a
/// list for enumerations. A change reaches the camera at once; what the camera refuses goes back to the old
/// value. Follows changes made elsewhere. Lives no longer than the parameter. User-interface thread.
class CkParamEditor : public QWidget {
    Q_OBJECT

public:
    explicit CkParamEditor(CkCameraParam* pParam, QWidget* pParent = nullptr);

    CkCameraParam* param() const { return m_pParam; }

signals:
    void refused(const QString& sName);

private:
    void createNumber();
    void createFlag();
    void createList();
    QString hint() const;
    void showValue(const CkValue& vValue);
    void showListValue(qint64 iValue);
    void apply(const CkValue& vValue);

    CkCameraParam* m_pParam;
    CkTuningBar* m_pBar = nullptr;
    QDoubleSpinBox* m_pNumber = nullptr;
    QCheckBox* m_pFlag = nullptr;
    QComboBox* m_pList = nullptr;
    QTimer m_delay; ///< gathers the steps of a drag so that the camera is not set for each of them
    double m_fDelayed = 0.0;
};
