#pragma once

#include <QObject>
#include <QStringList>

class CkChainFileController;
class CkFileOpener;
class QAction;
class QMenu;
class QWidget;

/// Fills the File menu: opening files with dialogs or from the list of recent ones, saving chains.
/// User-interface thread.
class CkFileMenu : public QObject {
    Q_OBJECT

public:
    /// Dialogs open above the window, which becomes the parent.
    CkFileMenu(QMenu* menu, CkFileOpener* opener, CkChainFileController* chains, QWidget* window);

    /// Opens a file of any kind; a message box reports why it cannot be opened.
    void openOrReport(const QString& fileName);

    /// Files opened or saved last, newest first.
    static QStringList recentFiles();

public slots:
    void openChainWithDialog();
    void saveChainWithDialog();
    /// Enables the actions that apply to the active view.
    void refresh();

private:
    void openRecordingWithDialog();
    void openAll(const QStringList& fileNames);
    void fillRecentMenu();

    QWidget* m_window;
    CkFileOpener* m_opener;
    CkChainFileController* m_chains;
    QMenu* m_recentMenu = nullptr;
    QAction* m_saveChain = nullptr;
};
