#include "host/viewer/session/SkWindowLayout.h"

#include "host/viewer/area/CkViewArea.h"
#include "host/viewer/base/ViewerSettings.h"
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
    const auto settings = ViewerSettings::open();
    return {settings->value(ViewerSettings::kGeometryKey).toByteArray(),
            settings->value(ViewerSettings::kStateKey).toByteArray(), std::nullopt,
            settings->value(ViewerSettings::kArrangeKey, true).toBool()};
}

void SkWindowLayout::applyTo(QMainWindow& window, CkViewArea& area) const {
    window.restoreGeometry(geometry);
    window.restoreState(state);
    area.setArrangesItself(arrange);
}

void SkWindowLayout::save(const SkWindowLayout* pBefore) const {
    const auto settings = ViewerSettings::open();
    if (pBefore == nullptr || pBefore->geometry != geometry) {
        settings->setValue(ViewerSettings::kGeometryKey, geometry);
    }
    if (pBefore == nullptr || pBefore->state != state) {
        settings->setValue(ViewerSettings::kStateKey, state);
    }
    if (pBefore == nullptr || pBefore->arrange != arrange) {
        settings->setValue(ViewerSettings::kArrangeKey, arrange);
    }
    if (session && (pBefore == nullptr || pBefore->session != session)) {
        settings->setValue(ViewerSettings::kSessionKey, *session);
    }
    // QSettings replaces the file as a whole.
    settings->sync();
}
