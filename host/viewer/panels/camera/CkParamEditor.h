#pragma once

#include "host/viewer/panels/camera/CkNumberField.h"

#include <QTimer>

class CkCameraParam;
class CkTuningBar;
class CkValue;
class QCheckBox;
class QComboBox;
class QHBoxLayout;
class QLabel;

/// Edits one camera parameter: a tuning bar and a number for integers and floats, a check box for flags, a
/// list for enumerations. A change is sent to the camera at once; when the camera refuses it, the old value
/// is restored. A line below tells the user when a typed value was corrected or refused. Follows changes made
/// elsewhere. Must not outlive the parameter. User-interface thread.
class CkParamEditor : public QWidget {
    Q_OBJECT

public:
    explicit CkParamEditor(CkCameraParam* pParam, QWidget* pParent = nullptr);

    CkCameraParam* param() const { return m_param; }
    /// How the value typed last was corrected; empty when it was set unchanged.
    QString remark() const;

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
    void applyNumber(double fValue);
    void remarkOn(const CkNumberField::SkTyped& typed);
    void setRemark(const QString& sRemark);
    QString numberText(const CkValue& vValue) const;

    CkCameraParam* m_param;
    QHBoxLayout* m_row = nullptr;
    QLabel* m_remark = nullptr;
    CkTuningBar* m_bar = nullptr;
    CkNumberField* m_number = nullptr;
    QCheckBox* m_flag = nullptr;
    QComboBox* m_list = nullptr;
    QTimer m_delay; ///< merges the steps of a drag into fewer changes of the camera
    double m_delayed = 0.0;
    bool m_refused = false; ///< the camera refused the value being typed
};
