#pragma once

#include <QAbstractButton>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QSpinBox>
#include <QStringList>
#include <QWidget>

/// Widgets that are clipped or overlap in a shown window; empty when there are none.
inline QStringList layoutFaults(const QWidget* pWindow) {
    QStringList faults;
    QList<std::pair<QString, QRect>> placed;
    const auto children = pWindow->findChildren<QWidget*>();
    for (const QWidget* child : children) {
        const bool bLabel = qobject_cast<const QLabel*>(child) != nullptr;
        const bool bControl = qobject_cast<const QAbstractButton*>(child) ||
                              qobject_cast<const QLineEdit*>(child) ||
                              qobject_cast<const QComboBox*>(child) || qobject_cast<const QSpinBox*>(child);
        const bool bInner = qobject_cast<const QSpinBox*>(child->parentWidget()) != nullptr;
        if (!child->isVisibleTo(pWindow) || bInner || (!bLabel && !bControl)) {
            continue;
        }
        const QString sName =
            child->objectName().isEmpty() ? child->metaObject()->className() : child->objectName();
        const QRect at(child->mapTo(pWindow, QPoint()), child->size());
        if (!pWindow->rect().contains(at)) {
            faults << sName + " leaves the window";
        }
        const auto* label = qobject_cast<const QLabel*>(child);
        const bool bWraps = label != nullptr && label->wordWrap();
        const int iNeeded = bWraps ? label->heightForWidth(label->width()) : child->sizeHint().height();
        if (child->height() < iNeeded) {
            faults << sName + " is cut off below";
        }
        // Edits may be narrower than their text; labels must show all of it.
        if (!bWraps && qobject_cast<const QLineEdit*>(child) == nullptr &&
            child->width() < child->sizeHint().width()) {
            faults << sName + " is cut off at the side";
        }
        for (const auto& [sOther, other] : placed) {
            if (other.intersects(at)) {
                faults << sName + " lies over " + sOther;
            }
        }
        placed.append({sName, at});
    }
    return faults;
}
