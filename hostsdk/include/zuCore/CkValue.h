#pragma once

#include "zuCore/zuCoreGlobal.h"

#include <QMetaType>
#include <QString>
#include <variant>

/// A number, flag or text exchanged between controls and camera parameters. Plain value; conversions never
/// fail: impossible ones give 0, false or an empty text, and numbers out of range saturate.
class ZUCORE_EXPORT CkValue {
public:
    /** The type of the stored value. */ enum class EkType { None, Int, Float, Bool, String };

    CkValue() = default;
    CkValue(int iValue) : m_value(qint64(iValue)) {}    // NOLINT(google-explicit-constructor)
    CkValue(qint64 iValue) : m_value(iValue) {}         // NOLINT(google-explicit-constructor)
    CkValue(double fValue) : m_value(fValue) {}         // NOLINT(google-explicit-constructor)
    CkValue(float fValue) : m_value(double(fValue)) {}  // NOLINT(google-explicit-constructor)
    CkValue(bool bValue) : m_value(bValue) {}           // NOLINT(google-explicit-constructor)
    CkValue(const QString& sValue) : m_value(sValue) {} // NOLINT(google-explicit-constructor)

    EkType type() const { return EkType(m_value.index()); } ///< None: nothing was set.
    bool isValid() const { return type() != EkType::None; } ///< A value was set.

    /// Truncates towards zero.
    qint64 toInt64() const;
    int toInt() const;                                  ///< Saturates.
    double toDouble() const;                            ///< 0 for a text that is no number.
    float toFloat() const { return float(toDouble()); } ///< toDouble in single precision.
    /// Numbers: not 0. Texts: "true" or a number that is not 0.
    bool toBool() const;
    /// Numbers in the C locale, floats in the shortest exact form.
    QString toString() const;

    bool operator==(const CkValue&) const = default;

private:
    std::variant<std::monostate, qint64, double, bool, QString> m_value;
};

Q_DECLARE_METATYPE(CkValue)
