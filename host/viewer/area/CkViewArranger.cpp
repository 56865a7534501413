#include "host/viewer/area/CkViewArranger.h"

#include "host/viewer/area/CkViewWindow.h"
#include "host/viewer/area/ViewTiling.h"
#include "zuCoreGui/CkMdiView.h"

#include <QMdiArea>
#include <QTimer>

#include <algorithm>

namespace {

double shapeOf(const CkMdiView* view) {
    // A view that follows another one shows a scene, which suits the shape of a screen.
    const QSize wanted = view != nullptr && view->connectedViewId() < 0 ? view->sizeHint() : QSize(16, 9);
    return wanted.isEmpty() ? 4.0 / 3.0 : double(wanted.width()) / wanted.height();
}

} // namespace

CkViewArranger::CkViewArranger(QMdiArea* pArea) : QObject(pArea), m_area(pArea) {}

QList<CkViewWindow*> CkViewArranger::windows() const {
    QList<CkViewWindow*> result;
    for (QMdiSubWindow* window : m_area->subWindowList(QMdiArea::CreationOrder)) {
        if (auto* const own = qobject_cast<CkViewWindow*>(window)) {
            result.append(own);
        }
    }
    return result;
}

void CkViewArranger::setAutomatic(bool bOn) {
    m_automatic = bOn;
    arrangeLater();
}

void CkViewArranger::arrangeLater() {
    if (!m_automatic || m_pending) {
        return;
    }
    m_pending = true;
    QTimer::singleShot(0, this, [this] {
        m_pending = false;
        if (m_automatic && !hasMaximizedWindow()) {
            tile();
        }
    });
}

void CkViewArranger::tile() {
    // Not QMdiArea's own tiling, which puts the active view first: views keep their places.
    QList<CkViewWindow*> tiled = windows();
    tiled.removeIf([](const CkViewWindow* window) { return window->isMinimized(); });
    QList<double> shapes;
    for (const CkViewWindow* window : std::as_const(tiled)) {
        shapes.append(shapeOf(qobject_cast<const CkMdiView*>(window->widget())));
    }
    const QList<QRect> places = ViewTiling::places(m_area->viewport()->size(), shapes);
    for (qsizetype i = 0; i < tiled.size(); ++i) {
        if (tiled[i]->isMaximized()) {
            tiled[i]->showNormal();
        }
        tiled[i]->setGeometry(places[i]);
    }
}

bool CkViewArranger::hasMaximizedWindow() const {
    const QList<CkViewWindow*> all = windows();
    return std::any_of(all.begin(), all.end(),
                       [](const CkViewWindow* window) { return window->isMaximized(); });
}

void CkViewArranger::cascade() {
    m_automatic = false;
    m_area->cascadeSubWindows();
}
