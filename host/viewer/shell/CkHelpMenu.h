#pragma once

#include <QObject>
#include <QStringList>

class QMenu;
class QMenuBar;
class QWidget;

/// Fills the Help menu: the list of shortcuts, and information about the program. User-interface thread.
class CkHelpMenu : public QObject {
    Q_OBJECT

public:
    /// The list shows the shortcuts of all menus of the bar. Dialogs open above the window, which becomes the
    /// parent.
    CkHelpMenu(QMenu* menu, QMenuBar* menuBar, QWidget* window);

    /// Texts for Help > About: one line per loaded plug-in.
    void setPluginTexts(const QStringList& texts) { m_pluginTexts = texts; }

private:
    void showShortcuts();
    void showAbout();

    QMenuBar* m_menuBar;
    QWidget* m_window;
    QStringList m_pluginTexts;
};
