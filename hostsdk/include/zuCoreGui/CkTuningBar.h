#pragma once

#include "zuCore/CkValue.h"
#include "zuCoreGui/zuCoreGuiGlobal.h"

#include <QWidget>

/// A bar to tune a number: click and drag, wheel, arrow and page keys, Home and End. User-interface thread.
class ZUCOREGUI_EXPORT CkTuningBar : public QWidget {
    Q_OBJECT

public:
    explicit CkTuningBar(QWidget* pParent = nullptr);
    ~CkTuningBar() override;

    /// Limits and the step of wheel and arrow keys (dragging is continuous). A range that is empty, reversed
    /// or not finite disables the bar; the value is kept.
    void setRange(const CkValue& vMinimum, const CkValue& vMaximum, const CkValue& vStep);
    /// Clamped to a usable range. Emits no signal.
    void setValue(const CkValue& vValue);
    CkValue value() const { return {m_fValue}; }  ///< A floating-point number.
    double minimum() const { return m_fMinimum; } ///< As set by setRange.
    double maximum() const { return m_fMaximum; } ///< As set by setRange.
    double step() const { return m_fStep; }       ///< As set by setRange.
    bool hasUsableRange() const;                  ///< Whether the bar can be moved at all.

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

signals:
    /// The user changed the value.
    void valueChanged(CkValue value);

protected:
    void paintEvent(QPaintEvent* pEvent) override;
    void mousePressEvent(QMouseEvent* pEvent) override;
    void mouseMoveEvent(QMouseEvent* pEvent) override;
    void wheelEvent(QWheelEvent* pEvent) override;
    void keyPressEvent(QKeyEvent* pEvent) override;
    void changeEvent(QEvent* pEvent) override;

private:
    void changeByUser(double fValue);
    double valueAt(double fX) const;
    void updateUsability();

    double m_fMinimum = 0.0;
    double m_fMaximum = 1.0;
    double m_fStep = 0.1;
    double m_fValue = 0.0;
    int m_iWheelRest = 0;
    bool m_bDisabledByRange = false;
};
