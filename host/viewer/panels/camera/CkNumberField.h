#pragma once

#include <QDoubleSpinBox>
#include <QString>

#include <optional>

/// A spin box that accepts any number while the user types, also one outside its range, so that the user can
/// be told how it was corrected. Reads decimal points and decimal commas. User-interface thread.
class CkNumberField : public QDoubleSpinBox {
    Q_OBJECT

public:
    struct SkTyped {
        QString text;                ///< without the unit
        std::optional<double> value; ///< nullopt: not a number, the old value is kept
    };

    explicit CkNumberField(QWidget* pParent = nullptr);

    void setShowsTrailingZeros(bool bShow) { m_trailingZeros = bShow; }

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
    /// std::nullopt for text that is not a number or is ambiguous: "1,500" where the decimal sign is a point.
    std::optional<double> number(const QString& sText) const;

    // Mutable: set in the const overrides that convert text for the base class.
    mutable std::optional<SkTyped> m_typed;
    bool m_trailingZeros = true;
};
