#pragma once

#include <QDoubleSpinBox>
#include <QString>

#include <optional>

/// A spin box that accepts any number while the user types, also one outside its range, so that the user can
/// be told what was made of it. Reads decimal points and decimal commas. User-interface thread.
class CkNumberField : public QDoubleSpinBox {
    Q_OBJECT

public:
    struct SkTyped {
        QString text;                ///< without the unit
        std::optional<double> value; ///< none: not a number, the old value is kept
    };

    explicit CkNumberField(QWidget* pParent = nullptr);

    void setShowsTrailingZeros(bool bShow) { m_bTrailingZeros = bShow; }

    QString textFromValue(double fValue) const override;
    double valueFromText(const QString& sText) const override;
    QValidator::State validate(QString& sText, int& iPosition) const override;
    void fixup(QString& sText) const override;
    void stepBy(int iSteps) override;

signals:
    /// After Enter, or when the field lost the focus; the resulting value has been set.
    void typed(const CkNumberField::SkTyped& typed);

private:
    QString withoutUnit(const QString& sText) const;
    /// None for text that is no number or an ambiguous one: "1,500" where the decimal sign is a point.
    std::optional<double> number(const QString& sText) const;

    // Set in the const overrides in which the base class asks for the meaning of the text.
    mutable std::optional<SkTyped> m_typed;
    bool m_bTrailingZeros = true;
};
