#include "host/viewer/shell/CkPictureMenu.h"

#include "host/viewer/area/CkViewArea.h"
#include "host/viewer/picture/CkImageCanvas.h"
#include "host/viewer/picture/CkImageView.h"

#include <QMenu>

CkPictureMenu::CkPictureMenu(QMenu* menu, CkViewArea* area, const QList<QAction*>& furtherActions,
                             QObject* parent)
    : QObject(parent), m_area(area) {
    addZoomActions(menu);
    menu->addSeparator();
    addContrastActions(menu);
    menu->addSeparator();
    addChannelActions(menu);
    menu->addSeparator();
    add(menu, tr("&Save Picture..."), Qt::CTRL | Qt::Key_P, [](CkImageView& view) { view.saveWithDialog(); });
    menu->addSeparator();
    menu->addActions(furtherActions);
    // Panels and the views' tool bars change the same settings.
    connect(menu, &QMenu::aboutToShow, this, &CkPictureMenu::refresh);
}

QAction* CkPictureMenu::add(QMenu* menu, const QString& text, const QKeySequence& key, const Change& change) {
    QAction* action = menu->addAction(text, key, this, [this, change] {
        if (CkImageView* view = activePicture()) {
            change(*view);
            emit viewChanged();
            refresh();
        }
    });
    m_pictureActions.append(action);
    return action;
}

void CkPictureMenu::addZoomActions(QMenu* menu) {
    add(menu, tr("Zoom to &Fit"), Qt::CTRL | Qt::Key_0,
        [](CkImageView& view) { view.canvas()->zoomToFit(); });
    add(menu, tr("&Original Size (1:1)"), Qt::CTRL | Qt::Key_Slash,
        [](CkImageView& view) { view.canvas()->zoomToOriginal(); });
    add(menu, tr("Zoom &In"), Qt::CTRL | Qt::Key_Plus, [](CkImageView& view) { view.canvas()->zoomIn(); });
    add(menu, tr("Zoom O&ut"), Qt::CTRL | Qt::Key_Minus, [](CkImageView& view) { view.canvas()->zoomOut(); });
}

void CkPictureMenu::addContrastActions(QMenu* menu) {
    m_autoContrast = add(menu, tr("&Automatic Contrast"), Qt::CTRL | Qt::SHIFT | Qt::Key_A,
                         [](CkImageView& view) { view.setAutoContrast(!view.autoContrast()); });
    QAction* full = add(menu, tr("Full &Range"), Qt::CTRL | Qt::SHIFT | Qt::Key_F,
                        [](CkImageView& view) { view.setFullRange(); });
    m_saturated = add(menu, tr("&Mark Saturated"), Qt::CTRL | Qt::SHIFT | Qt::Key_M,
                      [](CkImageView& view) { view.setMarksSaturated(!view.marksSaturated()); });
    m_contrastActions = {m_autoContrast, full, m_saturated};
    m_legend = add(menu, tr("&Legend"), Qt::CTRL | Qt::Key_L,
                   [](CkImageView& view) { view.setShowsLegend(!view.showsLegend()); });
    for (QAction* action : {m_autoContrast, m_saturated, m_legend}) {
        action->setCheckable(true);
    }
}

void CkPictureMenu::addChannelActions(QMenu* menu) {
    m_channelActions = {add(menu, tr("&Next Channel"), Qt::CTRL | Qt::Key_Down,
                            [](CkImageView& view) { view.stepChannel(1); }),
                        add(menu, tr("&Previous Channel"), Qt::CTRL | Qt::Key_Up,
                            [](CkImageView& view) { view.stepChannel(-1); })};
}

CkImageView* CkPictureMenu::activePicture() const {
    return qobject_cast<CkImageView*>(m_area->activeView());
}

void CkPictureMenu::refresh() {
    const CkImageView* view = activePicture();
    for (QAction* action : std::as_const(m_pictureActions)) {
        action->setEnabled(view != nullptr);
        action->setToolTip(view != nullptr                   ? QString()
                           : m_area->activeView() != nullptr ? tr("The active view is not a picture view")
                                                             : tr("No view is open"));
    }
    if (view != nullptr) {
        refreshForPicture(*view);
    }
    m_autoContrast->setChecked(view != nullptr && view->autoContrast());
    m_saturated->setChecked(view != nullptr && view->marksSaturated());
    m_legend->setChecked(view != nullptr && view->showsLegend());
}

void CkPictureMenu::refreshForPicture(const CkImageView& view) {
    const auto limit = [](const QList<QAction*>& actions, bool possible, const QString& reason) {
        for (QAction* action : actions) {
            action->setEnabled(possible);
            action->setToolTip(possible ? QString() : reason);
        }
    };
    limit(m_contrastActions, !view.showsColours(), tr("A colour picture is shown as it is"));
    if (!view.showsColours()) {
        const QString unknown = view.saturationReason();
        limit({m_saturated}, unknown.isEmpty(), unknown);
    }
    limit(m_channelActions, view.channelCount() > 1, tr("The picture has only one channel"));
}
