#include "plugins/zplToF/view3d/CkToFToolBar.h"

#include <QLabel>
#include <QMenu>
#include <QToolButton>
#include <QWidgetAction>

namespace {

/// Shows the text of the action as a label, in the tool bar and in its menu.
class CkToFLabelAction : public QWidgetAction {
public:
    using QWidgetAction::QWidgetAction;

protected:
    QWidget* createWidget(QWidget* pParent) override {
        auto* label = new QLabel(text(), pParent);
        // The margins of plain buttons; without them the text would touch the edge of the menu.
        label->setContentsMargins(6, 2, 6, 2);
        connect(this, &QAction::changed, label, [this, label] { label->setText(text()); });
        return label;
    }
};

} // namespace

void CkToFToolBar::addMenu(const QString& sText, QMenu* pMenu) {
    QAction* action = pMenu->menuAction();
    action->setText(sText);
    // By default made from the text, and trimmed.
    action->setIconText(sText);
    addAction(action);
    if (auto* button = qobject_cast<QToolButton*>(widgetForAction(action))) {
        // A tool bar's button opens the action's menu, but its own menu() is null.
        button->removeAction(action);
        button->setMenu(pMenu);
        button->setDefaultAction(action);
        button->setPopupMode(QToolButton::InstantPopup);
    }
}

void CkToFToolBar::addSpace() {
    auto* space = new QWidget(this);
    space->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    addWidget(space);
}

void CkToFToolBar::addLabel() {
    m_label = new CkToFLabelAction(this);
    addAction(m_label);
}

void CkToFToolBar::setLabelText(const QString& sText) {
    if (m_label != nullptr) {
        m_label->setText(sText);
    }
}
