#include "host/viewer/shell/CkViewMenu.h"

#include "host/viewer/area/CkViewArea.h"
#include "host/viewer/shell/CkPanelDocks.h"

#include <QAction>
#include <QMenu>

CkViewMenu::CkViewMenu(QMenu* menu, CkViewArea* area, CkPanelDocks* docks, QObject* parent)
    : QObject(parent), m_area(area), m_docks(docks) {
    addViewActions(menu);
    menu->addSeparator();
    addPanelActions(menu);
    menu->addSeparator();
    m_fullScreen = menu->addAction(tr("F&ull Screen"));
    m_fullScreen->setShortcut(Qt::Key_F11);
    m_fullScreen->setCheckable(true);
    connect(m_fullScreen, &QAction::triggered, this, &CkViewMenu::fullScreenRequested);
}

void CkViewMenu::addViewActions(QMenu* menu) {
    m_viewActions.append(
        menu->addAction(tr("&Tile"), QKeySequence(Qt::CTRL | Qt::Key_T), m_area, &CkViewArea::tile));
    m_viewActions.append(
        menu->addAction(tr("C&ascade"), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_T), this, [this] {
            m_area->cascade();
            m_arrange->setChecked(m_area->arrangesItself());
        }));
    m_arrange = menu->addAction(tr("Arrange Auto&matically"));
    m_arrange->setShortcut(QKeySequence(Qt::CTRL | Qt::ALT | Qt::Key_T));
    m_arrange->setCheckable(true);
    m_arrange->setChecked(m_area->arrangesItself());
    m_arrange->setToolTip(tr("Tile the views whenever one is opened or closed"));
    connect(m_arrange, &QAction::triggered, m_area, &CkViewArea::setArrangesItself);
    m_viewActions.append(menu->addAction(tr("&Next View"), QKeySequence(Qt::CTRL | Qt::Key_PageDown), m_area,
                                         &CkViewArea::activateNextView));
    m_viewActions.append(menu->addAction(tr("&Previous View"), QKeySequence(Qt::CTRL | Qt::Key_PageUp),
                                         m_area, &CkViewArea::activatePreviousView));
    m_viewActions.append(menu->addAction(tr("&Close View"), QKeySequence(Qt::CTRL | Qt::Key_W), this,
                                         [this] { m_area->closeView(m_area->activeViewId()); }));
}

void CkViewMenu::addPanelActions(QMenu* menu) {
    menu->addActions(m_docks->createActions());
    menu->addAction(tr("&Default Layout"), QKeySequence(Qt::ALT | Qt::Key_0), this, &CkViewMenu::resetLayout)
        ->setToolTip(tr("Put the panels back where they were in the beginning"));
    menu->addAction(tr("Search the &Log"), QKeySequence::Find, this, &CkViewMenu::logSearchRequested);
}

void CkViewMenu::resetLayout() {
    m_docks->reset();
    m_area->setArrangesItself(true);
    m_arrange->setChecked(true);
}

void CkViewMenu::setFullScreenChecked(bool checked) {
    m_fullScreen->setChecked(checked);
}

void CkViewMenu::refresh() {
    const bool view = m_area->activeView() != nullptr;
    for (QAction* action : std::as_const(m_viewActions)) {
        action->setEnabled(view);
        action->setToolTip(view ? QString() : tr("No view is open"));
    }
    m_arrange->setChecked(m_area->arrangesItself());
}
