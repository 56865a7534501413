#pragma once

#include "zuCore/CkValue.h"

#include <QList>
#include <QObject>
#include <QString>

class CkCameraParameters;

/// One parameter of a camera. Lives as long as the camera's CkCameraParameters; user-interface thread.
///
/// A value is set first (setParamValue) and takes effect when it is committed, alone (commit) or together
/// with others (CkCameraParameters::addParamCommitToBatch, endCommitBatch).
class ZUCORE_EXPORT CkCameraParam : public QObject {
    Q_OBJECT

public:
    /** The type of a value. */ enum class EkKind { Integer, Float, Bool, Enumeration };
    /// A choice of an enumeration.
    struct SkEnumEntry {
        qint64 value = 0; ///< sent to the camera
        QString text;     ///< to be displayed, translated
    };
    /// The definition of a parameter.
    struct SkDescription {
        QString name;                  ///< the driver's name, unique within the camera
        QString displayName;           ///< to be displayed, translated
        QString toolTip;               ///< to be displayed, translated; may be empty
        QString unit;                  ///< "us", "MHz", "1/s"; empty for none
        EkKind kind = EkKind::Integer; ///< of value and limits
        CkValue value;                 ///< the committed one
        double minimum = 0.0;          ///< inclusive; Integer and Float; no limits unless minimum < maximum
        double maximum = 0.0;          ///< inclusive
        double step = 1.0; ///< values are minimum plus a whole number of steps; 0 or less: any value (Float)
        QList<SkEnumEntry> entries;   ///< Enumeration
        bool readOnly = false;        ///< the camera refuses other values
        bool acceptsUnlisted = false; ///< Enumeration: values without an entry are accepted too
    };

    CkCameraParam(const SkDescription& description, CkCameraParameters* pParent); ///< The parent owns it.
    ~CkCameraParam() override;

    QString name() const { return m_description.name; }                ///< The driver's.
    const SkDescription& description() const { return m_description; } ///< With the committed value.

    /// The value set last, committed or not.
    CkValue paramValue() const { return m_pending; }
    /// The value in effect in the camera.
    CkValue committedValue() const { return m_description.value; }

    /// Sets a value, clamped to limits and step, converted to the parameter's kind. False, with the value
    /// unchanged, when it is read-only, names no entry of an enumeration, or is not a number for a Float.
    bool setParamValue(const CkValue& vValue);

    /// Sends the set value to the camera now. False, with the old value restored, when the camera refuses.
    bool commit();

signals:
    /// The committed value changed, for any reason.
    void valueChanged(const CkValue& vValue);
    /// The pending value (set, not committed yet) changed.
    void pendingValueChanged(const CkValue& vValue);

private:
    friend class CkCameraParameters;

    SkDescription m_description;
    CkValue m_pending;
};
