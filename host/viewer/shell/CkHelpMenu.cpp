#include "host/viewer/shell/CkHelpMenu.h"

#include "host/viewer/base/ViewerVersion.h"
#include "host/viewer/shell/CkShortcutsDialog.h"

#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>

CkHelpMenu::CkHelpMenu(QMenu* menu, QMenuBar* menuBar, QWidget* window)
    : QObject(window), m_menuBar(menuBar), m_window(window) {
    menu->addAction(tr("&Keyboard and Mouse"), QKeySequence(Qt::Key_F1), this, &CkHelpMenu::showShortcuts);
    menu->addAction(tr("&About"), QKeySequence(Qt::SHIFT | Qt::Key_F1), this, &CkHelpMenu::showAbout);
}

void CkHelpMenu::showShortcuts() {
    auto* dialog = new CkShortcutsDialog(m_menuBar, m_window);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->show();
}

void CkHelpMenu::showAbout() {
    QString text = QStringLiteral("<h3>%1</h3>").arg(ViewerVersion::text());
    text += tr("<p>Viewer for industrial cameras.</p><p><b>Plug-ins</b></p>");
    if (m_pluginTexts.isEmpty()) {
        text += tr("<p>none</p>");
    }
    for (const QString& plugin : m_pluginTexts) {
        text += QStringLiteral("<p>%1</p>").arg(plugin.toHtmlEscaped());
    }
    QMessageBox::about(m_window, tr("About zuviewer"), text);
}
