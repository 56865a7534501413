#include "host/viewer/plugins/CkProbeDelegate.h"

#include "zuCore/CkLut.h"
#include "zuCoreGui/CkMdiView.h"

#include <QMenuBar>
#include <QSettings>

CkProbeDelegate::CkProbeDelegate() {
    for (int id = FileMenu; id <= HelpMenu; ++id) {
        m_menus.append(m_window.menuBar()->addMenu(QString::number(id)));
    }
    setInstance(this);
}

CkProbeDelegate::~CkProbeDelegate() {
    setInstance(nullptr);
}

QSettings* CkProbeDelegate::settings() {
    return new QSettings(m_folder.filePath(QStringLiteral("settings.ini")), QSettings::IniFormat);
}

QMenu* CkProbeDelegate::mainMenu(int iMenuId) {
    return m_menus.value(iMenuId);
}

void CkProbeDelegate::addMdiView(CkMdiView* pView) {
    if (pView != nullptr) {
        pView->setParent(&m_window);
    }
}

CkLut* CkProbeDelegate::createLut(const SkPicBufInfo& info, const QList<void*>&) {
    return new CkLut(info.bitsPerChannel, info.channels, info.layoutFlag, info.dataType);
}
