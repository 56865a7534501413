#pragma once

#include <QString>
#include <QWidget>

#include <vector>

/// A curve over the last frames, with a scale. User-interface thread.
class CkQualityPlot : public QWidget {
    Q_OBJECT

public:
    explicit CkQualityPlot(QWidget* pParent = nullptr);

    /// The newest value last; a value that is not finite leaves a gap. More values than the width of the
    /// widget in pixels are not needed.
    void showValues(const std::vector<double>& values, const QString& sUnit);

    QSize sizeHint() const override { return {260, 90}; }
    QSize minimumSizeHint() const override { return {120, 80}; }

protected:
    void paintEvent(QPaintEvent* pEvent) override;

private:
    std::vector<double> m_values;
    QString m_unit;
};
