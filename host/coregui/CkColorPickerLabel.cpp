#include "zuCoreGui/CkColorPickerLabel.h"

#include <QColorDialog>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPointer>

CkColorPickerLabel::CkColorPickerLabel(QWidget* pParent) : QLabel(pParent) {
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::PointingHandCursor);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setAttribute(Qt::WA_Hover);
}

CkColorPickerLabel::~CkColorPickerLabel() = default;

void CkColorPickerLabel::setPickerColor(const QColor& clColor) {
    if (!clColor.isValid()) {
        return;
    }
    m_clColor = clColor;
    m_clColor.setAlpha(255);
    update();
}

QSize CkColorPickerLabel::sizeHint() const {
    const int iHeight = fontMetrics().height() + 10;
    return {iHeight * 5 / 2, iHeight};
}

QSize CkColorPickerLabel::minimumSizeHint() const {
    return sizeHint();
}

void CkColorPickerLabel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QPalette::ColorGroup group = isEnabled() ? QPalette::Active : QPalette::Disabled;
    const QRectF swatch = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    QColor clFill = m_clColor;
    if (!isEnabled()) {
        clFill.setAlphaF(0.35F);
    }
    const bool bHot = isEnabled() && underMouse();
    painter.setPen(QPen(palette().color(group, bHot ? QPalette::Highlight : QPalette::Dark), 1.0));
    painter.setBrush(clFill);
    painter.drawRoundedRect(swatch, 3.0, 3.0);
    if (hasFocus()) {
        // A light ring in between keeps the focus ring visible on a swatch of the same colour.
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(palette().color(group, QPalette::Base), 4.0));
        painter.drawRoundedRect(QRectF(rect()).adjusted(2.0, 2.0, -2.0, -2.0), 3.0, 3.0);
        painter.setPen(QPen(palette().color(group, QPalette::Highlight), 2.0));
        painter.drawRoundedRect(QRectF(rect()).adjusted(1.0, 1.0, -1.0, -1.0), 3.0, 3.0);
    }
}

void CkColorPickerLabel::mouseReleaseEvent(QMouseEvent* pEvent) {
    if (pEvent->button() == Qt::LeftButton && rect().contains(pEvent->position().toPoint())) {
        pEvent->accept();
        pick();
    } else {
        pEvent->ignore();
    }
}

void CkColorPickerLabel::keyPressEvent(QKeyEvent* pEvent) {
    switch (pEvent->key()) {
    case Qt::Key_Space:
    case Qt::Key_Return:
    case Qt::Key_Enter:
        pEvent->accept();
        pick();
        break;
    default:
        QLabel::keyPressEvent(pEvent);
    }
}

void CkColorPickerLabel::pick() {
    // The window, and with it the dialog, may be deleted while the dialog is open.
    const QPointer<QColorDialog> dialog(new QColorDialog(m_clColor, this));
    const int iResult = dialog->exec();
    if (!dialog) {
        return;
    }
    const QColor clChosen = dialog->selectedColor();
    delete dialog;
    if (iResult == QDialog::Accepted && clChosen.isValid() && clChosen.rgb() != m_clColor.rgb()) {
        setPickerColor(clChosen);
        emit colorChanged();
    }
}
