#include "host/viewer/session/SkWindowLayout.h"

#include "host/viewer/area/CkViewArea.h"
#include "host/viewer/base/CkViewerSettings.h"
#include "host/viewer/session/SessionWriter.h"

#include <QMainWindow>
#include <QSettings>

SkWindowLayout SkWindowLayout::of(const QMainWindow& window, const CkViewArea& area, EkSessionScope scope) {
    std::optional<QByteArray> session;
    if (scope == EkSessionScope::LayoutAndSession) {
        session = SessionWriter::write(area);
    }
    return {window.saveGeometry(), window.saveState(), session, area.arrangesItself()};
}

SkWindowLayout SkWindowLayout::load() {
    const auto settings = CkViewerSettings::open();
    return {settings->value(CkViewerSettings::keyGeometry()).toByteArray(),
            settings->value(CkViewerSettings::keyState()).toByteArray(), std::nullopt,
            settings->value(CkViewerSettings::keyArrange(), true).toBool()};
}

void SkWindowLayout::applyTo(QMainWindow& window, CkViewArea& area) const {
    window.restoreGeometry(geometry);
    window.restoreState(state);
    area.setArrangesItself(arrange);
}

void SkWindowLayout::save(const SkWindowLayout* pBefore) const {
    const auto settings = CkViewerSettings::open();
    if (pBefore == nullptr || pBefore->geometry != geometry) {
        settings->setValue(CkViewerSettings::keyGeometry(), geometry);
    }
    if (pBefore == nullptr || pBefore->state != state) {
        settings->setValue(CkViewerSettings::keyState(), state);
    }
    if (pBefore == nullptr || pBefore->arrange != arrange) {
        settings->setValue(CkViewerSettings::keyArrange(), arrange);
    }
    if (session && (pBefore == nullptr || pBefore->session != session)) {
        settings->setValue(CkViewerSettings::keySession(), *session);
    }
    // QSettings replaces the file as a whole.
    settings->sync();
}
