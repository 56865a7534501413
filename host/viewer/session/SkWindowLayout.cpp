#include "host/viewer/session/SkWindowLayout.h"

#include "host/viewer/area/CkViewArea.h"
#include "host/viewer/base/CkViewerSettings.h"
#include "host/viewer/session/CkSessionMemory.h"
#include "host/viewer/shell/CkMainWindow.h"

#include <QSettings>

SkWindowLayout SkWindowLayout::of(const CkMainWindow& window) {
    std::optional<QByteArray> session;
    if (window.remembers() == CkMainWindow::EkRemembers::LayoutAndSession) {
        session = CkSessionMemory::describe(window);
    }
    return {window.saveGeometry(), window.saveState(), session, window.area()->arrangesItself()};
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
    // The file is replaced as a whole.
    settings->sync();
}
