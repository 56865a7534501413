#include "zuCoreGui/CkTuningBar.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>

namespace {
constexpr int kWheelNotch = 120; // eighths of a degree, as QWheelEvent counts
constexpr int kPageSteps = 10;
constexpr double kDefaultSteps = 100.0;

// All sizes scale with the text height, so that the bar matches labels beside it at any font and scaling.
double handleRadius(const QFontMetrics& metrics) {
    return 0.42 * metrics.height();
}

constexpr double kRingWidth = 2.0;
} // namespace

CkTuningBar::CkTuningBar(QWidget* pParent) : QWidget(pParent) {
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setAttribute(Qt::WA_Hover);
}

CkTuningBar::~CkTuningBar() = default;

bool CkTuningBar::hasUsableRange() const {
    return std::isfinite(m_fMinimum) && std::isfinite(m_fMaximum) && m_fMinimum < m_fMaximum &&
           std::isfinite(m_fMaximum - m_fMinimum);
}

void CkTuningBar::setRange(const CkValue& vMinimum, const CkValue& vMaximum, const CkValue& vStep) {
    m_fMinimum = vMinimum.toDouble();
    m_fMaximum = vMaximum.toDouble();
    const double fStep = vStep.toDouble();
    if (hasUsableRange()) {
        m_fStep = std::isfinite(fStep) && fStep > 0.0 ? fStep : (m_fMaximum - m_fMinimum) / kDefaultSteps;
        m_fValue = std::clamp(m_fValue, m_fMinimum, m_fMaximum);
    }
    updateUsability();
    update();
}

void CkTuningBar::setValue(const CkValue& vValue) {
    const double fValue = vValue.toDouble();
    if (std::isnan(fValue)) {
        return;
    }
    m_fValue = hasUsableRange() ? std::clamp(fValue, m_fMinimum, m_fMaximum) : fValue;
    update();
}

QSize CkTuningBar::sizeHint() const {
    return {fontMetrics().averageCharWidth() * 28, minimumSizeHint().height()};
}

QSize CkTuningBar::minimumSizeHint() const {
    const int iHeight = int(std::ceil(2.0 * (handleRadius(fontMetrics()) + kRingWidth + 1.0)));
    return {iHeight * 4, iHeight};
}

void CkTuningBar::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QPalette::ColorGroup group = isEnabled() ? QPalette::Active : QPalette::Disabled;
    const QColor clHighlight =
        isEnabled() ? palette().color(group, QPalette::Highlight) : palette().color(group, QPalette::Mid);
    const QColor clOutline = palette().color(group, QPalette::Dark);
    const double fRadius = handleRadius(fontMetrics());
    const double fMargin = fRadius + kRingWidth + 1.0;
    const double fMiddle = height() / 2.0;
    const double fLength = std::max(0.0, width() - 2.0 * fMargin);
    const double fShare = hasUsableRange() ? (m_fValue - m_fMinimum) / (m_fMaximum - m_fMinimum) : 0.0;
    const bool bMirrored = layoutDirection() == Qt::RightToLeft;
    const double fHandle = fMargin + fLength * (bMirrored ? 1.0 - fShare : fShare);

    const double fGroove = std::max(4.0, 0.5 * fRadius);
    const QRectF groove(fMargin - fGroove / 2, fMiddle - fGroove / 2, fLength + fGroove, fGroove);
    painter.setPen(QPen(clOutline, 1.0));
    painter.setBrush(palette().color(group, QPalette::Base));
    painter.drawRoundedRect(groove, fGroove / 2, fGroove / 2);
    if (hasUsableRange()) {
        QRectF filled = groove;
        if (bMirrored) {
            filled.setLeft(fHandle);
        } else {
            filled.setRight(fHandle);
        }
        QPainterPath path;
        path.addRoundedRect(groove, fGroove / 2, fGroove / 2);
        painter.setPen(Qt::NoPen);
        painter.setBrush(clHighlight);
        painter.setClipPath(path);
        painter.drawRect(filled);
        painter.setClipping(false);
    }

    const QPointF centre(fHandle, fMiddle);
    if (hasFocus()) {
        painter.setPen(QPen(clHighlight, kRingWidth));
        painter.setBrush(Qt::NoBrush);
        painter.drawEllipse(centre, fRadius + kRingWidth / 2, fRadius + kRingWidth / 2);
    }
    const QColor clHandle = palette().color(group, QPalette::Button);
    painter.setPen(QPen(clOutline, 1.0));
    painter.setBrush(isEnabled() && underMouse() ? clHandle.lighter(108) : clHandle);
    painter.drawEllipse(centre, fRadius - 0.5, fRadius - 0.5);
    if (hasUsableRange()) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(clHighlight);
        painter.drawEllipse(centre, 0.4 * fRadius, 0.4 * fRadius);
    }
}

void CkTuningBar::mousePressEvent(QMouseEvent* pEvent) {
    if (pEvent->button() != Qt::LeftButton || !hasUsableRange()) {
        pEvent->ignore();
        return;
    }
    changeByUser(valueAt(pEvent->position().x()));
}

void CkTuningBar::mouseMoveEvent(QMouseEvent* pEvent) {
    if (!(pEvent->buttons() & Qt::LeftButton) || !hasUsableRange()) {
        pEvent->ignore();
        return;
    }
    changeByUser(valueAt(pEvent->position().x()));
}

void CkTuningBar::wheelEvent(QWheelEvent* pEvent) {
    if (!hasUsableRange()) {
        pEvent->ignore();
        return;
    }
    // High-resolution wheels and touch pads send fractions of a notch.
    m_iWheelRest += pEvent->angleDelta().y() != 0 ? pEvent->angleDelta().y() : pEvent->angleDelta().x();
    const int iNotches = m_iWheelRest / kWheelNotch;
    m_iWheelRest -= iNotches * kWheelNotch;
    if (iNotches != 0) {
        changeByUser(m_fValue + iNotches * m_fStep);
    }
    pEvent->accept();
}

void CkTuningBar::keyPressEvent(QKeyEvent* pEvent) {
    if (!hasUsableRange()) {
        QWidget::keyPressEvent(pEvent);
        return;
    }
    const double fForward = layoutDirection() == Qt::RightToLeft ? -m_fStep : m_fStep;
    switch (pEvent->key()) {
    case Qt::Key_Left:
        changeByUser(m_fValue - fForward);
        break;
    case Qt::Key_Right:
        changeByUser(m_fValue + fForward);
        break;
    case Qt::Key_Down:
        changeByUser(m_fValue - m_fStep);
        break;
    case Qt::Key_Up:
        changeByUser(m_fValue + m_fStep);
        break;
    case Qt::Key_PageDown:
        changeByUser(m_fValue - kPageSteps * m_fStep);
        break;
    case Qt::Key_PageUp:
        changeByUser(m_fValue + kPageSteps * m_fStep);
        break;
    case Qt::Key_Home:
        changeByUser(m_fMinimum);
        break;
    case Qt::Key_End:
        changeByUser(m_fMaximum);
        break;
    default:
        QWidget::keyPressEvent(pEvent);
        return;
    }
    pEvent->accept();
}

void CkTuningBar::changeEvent(QEvent* pEvent) {
    if (pEvent->type() == QEvent::EnabledChange) {
        updateUsability();
    }
    if (pEvent->type() == QEvent::FontChange) {
        updateGeometry();
    }
    QWidget::changeEvent(pEvent);
}

void CkTuningBar::changeByUser(double fValue) {
    const double fNew = std::clamp(fValue, m_fMinimum, m_fMaximum);
    if (fNew == m_fValue) {
        return;
    }
    m_fValue = fNew;
    update();
    emit valueChanged(CkValue(fNew));
}

double CkTuningBar::valueAt(double fX) const {
    const double fMargin = handleRadius(fontMetrics()) + kRingWidth + 1.0;
    const double fLength = width() - 2.0 * fMargin;
    double fShare = fLength > 0.0 ? std::clamp((fX - fMargin) / fLength, 0.0, 1.0) : 0.0;
    if (layoutDirection() == Qt::RightToLeft) {
        fShare = 1.0 - fShare;
    }
    return m_fMinimum + fShare * (m_fMaximum - m_fMinimum);
}

void CkTuningBar::updateUsability() {
    const bool bUsable = hasUsableRange();
    if (!bUsable && isEnabled()) {
        m_bDisabledByRange = true;
        setEnabled(false);
    } else if (bUsable && m_bDisabledByRange) {
        m_bDisabledByRange = false;
        setEnabled(true);
    }
}
