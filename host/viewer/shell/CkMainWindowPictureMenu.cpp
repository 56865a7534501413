// The menus of what the active view shows: its picture, and the chain behind it.

#include "host/viewer/area/CkViewArea.h"
#include "host/viewer/panels/chain/CkChainPanel.h"
#include "host/viewer/panels/lut/CkLutPanel.h"
#include "host/viewer/panels/quality/CkQualityPanel.h"
#include "host/viewer/picture/CkImageCanvas.h"
#include "host/viewer/picture/CkImageView.h"
#include "host/viewer/shell/CkMainWindow.h"

#include <QMenu>
#include <QMenuBar>

namespace {

CkImageView* pictureOf(const CkViewArea* area) {
    return qobject_cast<CkImageView*>(area->activeView());
}

} // namespace

void CkMainWindow::createPictureMenu() {
    QMenu* menu = menuBar()->addMenu(tr("P&icture"));
    menu->setToolTipsVisible(true);
    const auto add = [this, menu](const QString& sText, const QKeySequence& key, auto what) {
        QAction* action = menu->addAction(sText, key, this, [this, what] {
            if (CkImageView* view = pictureOf(m_pArea)) {
                what(view);
                m_pLutPanel->refresh();
                updatePictureActions();
            }
        });
        m_pictureActions.append(action);
        return action;
    };
    add(tr("Zoom to &Fit"), Qt::CTRL | Qt::Key_0, [](CkImageView* pView) { pView->canvas()->zoomToFit(); });
    add(tr("&Original Size (1:1)"), Qt::CTRL | Qt::Key_Slash,
        [](CkImageView* pView) { pView->canvas()->zoomToOriginal(); });
    add(tr("Zoom &In"), Qt::CTRL | Qt::Key_Plus, [](CkImageView* pView) { pView->canvas()->zoomIn(); });
    add(tr("Zoom O&ut"), Qt::CTRL | Qt::Key_Minus, [](CkImageView* pView) { pView->canvas()->zoomOut(); });
    menu->addSeparator();
    m_pAutoContrastAction = add(tr("&Automatic Contrast"), Qt::CTRL | Qt::SHIFT | Qt::Key_A,
                                [](CkImageView* pView) { pView->setAutoContrast(!pView->autoContrast()); });
    QAction* full = add(tr("Full &Range"), Qt::CTRL | Qt::SHIFT | Qt::Key_F,
                        [](CkImageView* pView) { pView->setFullRange(); });
    m_pSaturatedAction = add(tr("&Mark Saturated"), Qt::CTRL | Qt::SHIFT | Qt::Key_M,
                             [](CkImageView* pView) { pView->setMarksSaturated(!pView->marksSaturated()); });
    m_contrastActions = {m_pAutoContrastAction, full, m_pSaturatedAction};
    m_pLegendAction = add(tr("&Legend"), Qt::CTRL | Qt::Key_L,
                          [](CkImageView* pView) { pView->setShowsLegend(!pView->showsLegend()); });
    for (QAction* action : {m_pAutoContrastAction, m_pSaturatedAction, m_pLegendAction}) {
        action->setCheckable(true);
    }
    menu->addSeparator();
    m_channelActions = {
        add(tr("&Next Channel"), Qt::CTRL | Qt::Key_Down, [](CkImageView* pView) { pView->stepChannel(1); }),
        add(tr("&Previous Channel"), Qt::CTRL | Qt::Key_Up,
            [](CkImageView* pView) { pView->stepChannel(-1); })};
    menu->addSeparator();
    add(tr("&Save Picture..."), Qt::CTRL | Qt::Key_P, [](CkImageView* pView) { pView->saveWithDialog(); });
    menu->addSeparator();
    menu->addActions(m_pQualityPanel->menuActions());
    // Panel and tool bar switch the same.
    connect(menu, &QMenu::aboutToShow, this, &CkMainWindow::updatePictureActions);
}

void CkMainWindow::updatePictureActions() {
    const CkImageView* view = pictureOf(m_pArea);
    const auto limit = [](const QList<QAction*>& actions, bool bPossible, const QString& sWhy) {
        for (QAction* action : actions) {
            action->setEnabled(bPossible);
            action->setToolTip(bPossible ? QString() : sWhy);
        }
    };
    if (view != nullptr) {
        limit(m_contrastActions, !view->showsColours(), tr("A colour picture is shown as it is"));
        if (!view->showsColours()) {
            const QString untold = view->saturationReason();
            limit({m_pSaturatedAction}, untold.isEmpty(), untold);
        }
        limit(m_channelActions, view->channelCount() > 1, tr("The picture has only one channel"));
    }
    m_pAutoContrastAction->setChecked(view != nullptr && view->autoContrast());
    m_pSaturatedAction->setChecked(view != nullptr && view->marksSaturated());
    m_pLegendAction->setChecked(view != nullptr && view->showsLegend());
}

void CkMainWindow::createChainMenu() {
    QMenu* menu = menuBar()->addMenu(tr("Chai&n"));
    menu->setToolTipsVisible(true);
    menu->addMenu(m_pChainPanel->addMenu());
    menu->addActions(m_pChainPanel->blockActions());
}
