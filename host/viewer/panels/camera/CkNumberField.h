#pragma once

#include <QDoubleSpinBox>
#include <QString>

#include <optional>

/// A spin box into which every number can be typed, also beyond its range, so that who types one is told what
/// became of it. Decimal points and decimal commas are both read. User-interface thread.
class CkNumberField : public QDoubleSpinBox {
    Q_OBJECT

public:
    struct SkTyped {
        QString text;                ///< without the unit
        std::optional<double> value; ///< none: not a number, the old value stays
    };

    explicit CkNumberField(QWidget* pParent = nullptr);

    void setShowsTrailingZeros(bool bShow) { m_bTrailingZeros = bShow; }

    QString textFromValue(double fValue) const override;
    double valueFromText(const QString& sText) const override;
    QValidator::State validate(QString& sText, int& iPosition) const override;
    void fixup(QString& sText) const override;
    void stepBy(int iSteps) override;

signals:
    /// After Enter, or when the field was left: the value that what was typed led to is set.
    void typed(const CkNumberField::SkTyped& typed);

private:
    QString withoutUnit(const QString& sText) const;
    /// None for what is no number, or could be one of two: "1,500" where the decimal sign is a point.
    std::optional<double> number(const QString& sText) const;

    // Set where the base class asks what the text means, which it does in constant functions.
    mutable std::optional<SkTyped> m_typed;
    bool m_bTrailingZeros = true;
};
