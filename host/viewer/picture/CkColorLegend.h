#pragma once

#include <QList>
#include <QRgb>
#include <QString>
#include <QWidget>

/// The colour bar beside a picture, labelled with the values that the colours represent. User-interface
/// thread.
class CkColorLegend : public QWidget {
    Q_OBJECT

public:
    explicit CkColorLegend(QWidget* pParent = nullptr);

    /// Colours from the lowest to the highest value.
    void setColours(const QList<QRgb>& colours);
    void setRange(double fLow, double fHigh, const QString& sTitle, const QString& sUnit);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

    /// Values at which the bar is labelled: at most iMaximum round numbers, from low to high.
    static QList<double> tickValues(double fLow, double fHigh, int iMaximum);

protected:
    void paintEvent(QPaintEvent* pEvent) override;

private:
    QList<QRgb> m_colours;
    QString m_title;
    QString m_unit;
    double m_low = 0.0;
    double m_high = 1.0;
};
