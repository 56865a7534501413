#include "plugins/zplToF/view3d/CkToFToolBar.h"

#include <QLabel>
#include <QMenu>
#include <QToolButton>
#include <QWidgetAction>

namespace {

/// The text of the action as a label, in as many places as ask for one.
class CkToFLabelAction : public QWidgetAction {
public:
    using QWidgetAction::QWidgetAction;

protected:
    QWidget* createWidget(QWidget* pParent) override {
        auto* label = new QLabel(text(), pParent);
        // Plain buttons have this space around their texts; an item of a menu would stick to its edge.
        label->setContentsMargins(6, 2, 6, 2);
        connect(this, &QAction::changed, label, [this, label] { label->setText(text()); });
        return label;
    }
};

} // namespace

void CkToFToolBar::addMenu(const QString& sText, QMenu* pMenu) {
    QAction* action = pMenu->menuAction();
    action->setText(sText);
    // Otherwise made of the text, and trimmed.
    action->setIconText(sText);
    addAction(action);
    if (auto* button = qobject_cast<QToolButton*>(widgetForAction(action))) {
        // A button made for an action opens the action's menu without knowing it as its own.
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
    m_pLabel = new CkToFLabelAction(this);
    addAction(m_pLabel);
}

void CkToFToolBar::setLabelText(const QString& sText) {
    if (m_pLabel != nullptr) {
        m_pLabel->setText(sText);
    }
}
