#pragma once

#include <QList>
#include <QWidget>

/// The frame rates (bars) and drops (red on top) of the last minute, one bar per second. User-interface
/// thread.
class CkRateGraph : public QWidget {
    Q_OBJECT

public:
    static constexpr int kSeconds = 60;

    explicit CkRateGraph(QWidget* pParent = nullptr);

    /// Frames shown and frames lost in the last second.
    void add(double fFrames, double fDropped);
    void clear();

    /// Seconds shown so far, at most kSeconds.
    qsizetype count() const { return m_samples.size(); }

    QSize sizeHint() const override { return {2 * kSeconds + 2, 18}; }
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* pEvent) override;

private:
    struct SkSample {
        double frames = 0.0;
        double dropped = 0.0;
    };

    QList<SkSample> m_samples;
};
