// The main window's menus and the dialogs behind them.

#include "host/viewer/area/CkViewArea.h"
#include "host/viewer/base/CkFileOpener.h"
#include "host/viewer/base/CkViewerSettings.h"
#include "host/viewer/base/SaveFileName.h"
#include "host/viewer/base/ViewerVersion.h"
#include "host/viewer/panels/camera/CkCameraController.h"
#include "host/viewer/panels/log/CkLogPanel.h"
#include "host/viewer/picture/CkImageView.h"
#include "host/viewer/playback/CkRecordingController.h"
#include "host/viewer/shell/CkCommandLine.h"
#include "host/viewer/shell/CkMainWindow.h"
#include "host/viewer/shell/CkShortcutsDialog.h"
#include "zuCore/CkChain.h"

#include <QDir>
#include <QDockWidget>
#include <QDragEnterEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QSettings>
#include <QTimer>
#include <QUrl>

namespace {

QString chainFilter() {
    return CkMainWindow::tr("Chain files (*.zuchain);;All files (*)");
}

constexpr int kRecent = 8;

QString lastDirectory() {
    return CkViewerSettings::open()->value(CkViewerSettings::keyLastDirectory()).toString();
}

void setLastDirectory(const QString& fileName) {
    CkViewerSettings::open()->setValue(CkViewerSettings::keyLastDirectory(),
                                       QFileInfo(fileName).absolutePath());
}

// A source that was told of a move would delete its files.
void acceptAsCopy(QDropEvent& event) {
    event.setDropAction(Qt::CopyAction);
    event.setAccepted(event.possibleActions().testFlag(Qt::CopyAction));
}
} // namespace

void CkMainWindow::createFileMenu() {
    QMenu* file = menuBar()->addMenu(tr("&File"));
    m_menus.append(file);
    file->addAction(tr("&Open Chain..."), QKeySequence::Open, this, &CkMainWindow::openChainWithDialog);
    file->addAction(tr("Open R&ecording..."), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_O), this,
                    &CkMainWindow::openRecordingWithDialog)
        ->setObjectName(QStringLiteral("actOpenRecording"));
    m_pRecentMenu = file->addMenu(tr("Open &Recent"));
    m_pRecentMenu->setObjectName(QStringLiteral("menuRecentChains"));
    connect(file, &QMenu::aboutToShow, this, &CkMainWindow::fillRecentMenu);
    fillRecentMenu();
    m_pSaveChainAction =
        file->addAction(tr("&Save Chain..."), QKeySequence::Save, this, &CkMainWindow::saveChainWithDialog);
    file->addSeparator();
    file->addAction(tr("&Quit"), QKeySequence(Qt::CTRL | Qt::Key_Q), this, &QWidget::close);
}

QAction* CkMainWindow::createPanelAction(QDockWidget* pDock) {
    // The dock's own action hides a panel that stands behind another tab, and shows it there, out of sight.
    auto* action = new QAction(pDock->windowTitle(), this);
    action->setObjectName(QStringLiteral("act_") + pDock->objectName());
    action->setCheckable(true);
    connect(pDock, &QDockWidget::visibilityChanged, action, &QAction::setChecked);
    connect(action, &QAction::triggered, pDock, [pDock](bool bOn) {
        pDock->setVisible(bOn);
        if (bOn) {
            pDock->raise();
        }
    });
    return action;
}

void CkMainWindow::createViewMenu() {
    QMenu* view = menuBar()->addMenu(tr("&View"));
    m_menus.append(view);
    m_viewActions.append(
        view->addAction(tr("&Tile"), QKeySequence(Qt::CTRL | Qt::Key_T), m_pArea, &CkViewArea::tile));
    m_viewActions.append(
        view->addAction(tr("C&ascade"), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_T), this, [this] {
            m_pArea->cascade();
            m_pArrangeAction->setChecked(m_pArea->arrangesItself());
        }));
    m_pArrangeAction = view->addAction(tr("Arrange Auto&matically"));
    m_pArrangeAction->setShortcut(QKeySequence(Qt::CTRL | Qt::ALT | Qt::Key_T));
    m_pArrangeAction->setCheckable(true);
    m_pArrangeAction->setChecked(m_pArea->arrangesItself());
    m_pArrangeAction->setToolTip(tr("Tile the views whenever one comes or goes"));
    connect(m_pArrangeAction, &QAction::triggered, m_pArea, &CkViewArea::setArrangesItself);
    m_viewActions.append(view->addAction(tr("&Next View"), QKeySequence(Qt::CTRL | Qt::Key_PageDown), m_pArea,
                                         &CkViewArea::activateNextView));
    m_viewActions.append(view->addAction(tr("&Previous View"), QKeySequence(Qt::CTRL | Qt::Key_PageUp),
                                         m_pArea, &CkViewArea::activatePreviousView));
    m_viewActions.append(view->addAction(tr("&Close View"), QKeySequence(Qt::CTRL | Qt::Key_W), this,
                                         [this] { m_pArea->closeView(m_pArea->activeViewId()); }));
    view->addSeparator();
    for (qsizetype i = 0; i < m_docks.size(); ++i) {
        QAction* toggle = createPanelAction(m_docks[i]);
        if (i < 9) {
            toggle->setShortcut(QKeySequence(Qt::ALT | Qt::Key(Qt::Key_1 + i)));
        }
        view->addAction(toggle);
    }
    view->addAction(tr("&Default Layout"), QKeySequence(Qt::ALT | Qt::Key_0), this,
                    &CkMainWindow::resetLayout)
        ->setToolTip(tr("Put the panels back where they were in the beginning"));
    view->addAction(tr("Search the &Log"), QKeySequence::Find, this, [this] {
        m_pLogDock->show();
        m_pLogPanel->focusSearch();
    });
    view->addSeparator();
    m_pFullScreenAction = view->addAction(tr("F&ull Screen"));
    m_pFullScreenAction->setShortcut(Qt::Key_F11);
    m_pFullScreenAction->setCheckable(true);
    connect(m_pFullScreenAction, &QAction::triggered, this, &CkMainWindow::setFullScreen);
}

void CkMainWindow::createRecordingMenu() {
    // Not one of the menus that plug-ins know by number.
    QMenu* recording = menuBar()->addMenu(tr("&Recording"));
    recording->setObjectName(QStringLiteral("menuRecording"));
    recording->setToolTipsVisible(true);
    recording->addActions(m_pRecordings->menuActions());
    connect(recording, &QMenu::aboutToShow, m_pRecordings, &CkRecordingController::refresh);
}

void CkMainWindow::createHelpMenu() {
    QMenu* help = menuBar()->addMenu(tr("&Help"));
    m_menus.append(help);
    help->addAction(tr("&Keyboard and Mouse"), QKeySequence(Qt::Key_F1), this, [this] {
        auto* dialog = new CkShortcutsDialog(menuBar(), this);
        dialog->setAttribute(Qt::WA_DeleteOnClose);
        dialog->show();
    });
    help->addAction(tr("&About"), QKeySequence(Qt::SHIFT | Qt::Key_F1), this, &CkMainWindow::showAbout);
}

void CkMainWindow::updateActions() {
    const CkMdiView* view = m_pArea->activeView();
    const bool picture = qobject_cast<const CkImageView*>(view) != nullptr;
    const bool chain = activeChain() != nullptr;
    m_pSaveChainAction->setEnabled(chain);
    m_pSaveChainAction->setToolTip(chain ? tr("Save the active view's chain")
                                         : tr("The active view shows no chain"));
    for (QAction* action : m_viewActions) {
        action->setEnabled(view != nullptr);
        action->setToolTip(view != nullptr ? QString() : tr("No view is open"));
    }
    for (QAction* action : m_pictureActions) {
        action->setEnabled(picture);
        action->setToolTip(picture           ? QString()
                           : view != nullptr ? tr("The active view is no picture view")
                                             : tr("No view is open"));
    }
    updatePictureActions();
}

void CkMainWindow::openChainWithDialog() {
    const QStringList names =
        QFileDialog::getOpenFileNames(this, tr("Open Chain"), lastDirectory(), chainFilter());
    for (const QString& name : names) {
        setLastDirectory(name);
        openOrTell(name);
    }
}

void CkMainWindow::openRecordingWithDialog() {
    const QStringList names = QFileDialog::getOpenFileNames(
        this, tr("Open Recording"), lastDirectory(), m_pOpener->dialogFilter(QStringLiteral("recording")));
    for (const QString& name : names) {
        setLastDirectory(name);
        openOrTell(name);
    }
}

void CkMainWindow::createFileOpener() {
    m_pOpener = new CkFileOpener(this);
    SkFileKind chain;
    chain.id = QStringLiteral("chain");
    chain.title = tr("Chain files");
    chain.suffixes = QStringList{QStringLiteral("zuchain")};
    chain.recognises = [](const QByteArray& bytes) { return bytes.contains("<zuchainfile"); };
    chain.open = [this](const QString& name, QString& error) { return openChainFile(name, error); };
    m_pOpener->addKind(chain);
    m_pRecordings->addFileKinds(m_pOpener);
    connect(m_pOpener, &CkFileOpener::opened, this, &CkMainWindow::addRecent);
}

void CkMainWindow::openOrTell(const QString& sFileName) {
    QString error;
    if (!m_pOpener->open(sFileName, error) && !error.isEmpty()) {
        auto* box = new QMessageBox(QMessageBox::Warning, tr("Open"), error, QMessageBox::Ok, this);
        box->setObjectName(QStringLiteral("openChainBox"));
        box->setAttribute(Qt::WA_DeleteOnClose);
        box->setModal(false);
        box->show();
    }
}

QStringList CkMainWindow::recentChains() {
    return CkViewerSettings::open()->value(CkViewerSettings::keyRecentChains()).toStringList();
}

void CkMainWindow::addRecent(const QString& sFileName) {
    const QString path = QFileInfo(sFileName).absoluteFilePath();
    QStringList recent = recentChains();
    recent.removeAll(path);
    recent.prepend(path);
    CkViewerSettings::open()->setValue(CkViewerSettings::keyRecentChains(), recent.mid(0, kRecent));
}

void CkMainWindow::fillRecentMenu() {
    m_pRecentMenu->clear();
    for (const QString& name : recentChains()) {
        // No letter of a key, but part of the name.
        const QString text = QDir::toNativeSeparators(name).replace(QLatin1Char('&'), QLatin1String("&&"));
        m_pRecentMenu->addAction(text, this, [this, name] { openOrTell(name); });
    }
    m_pRecentMenu->setEnabled(!m_pRecentMenu->isEmpty());
    m_pRecentMenu->menuAction()->setToolTip(m_pRecentMenu->isEmpty() ? tr("No file was opened yet")
                                                                     : tr("Files opened or saved last"));
}

void CkMainWindow::dragEnterEvent(QDragEnterEvent* pEvent) {
    for (const QUrl& url : pEvent->mimeData()->urls()) {
        if (url.isLocalFile()) {
            acceptAsCopy(*pEvent);
            return;
        }
    }
}

void CkMainWindow::dropEvent(QDropEvent* pEvent) {
    QStringList files;
    for (const QUrl& url : pEvent->mimeData()->urls()) {
        if (url.isLocalFile()) {
            files.append(url.toLocalFile());
        }
    }
    acceptAsCopy(*pEvent);
    // The program that the files come from waits until this returns.
    QTimer::singleShot(0, this, [this, files] {
        for (const QString& file : files) {
            openOrTell(file);
        }
    });
}

void CkMainWindow::saveChainWithDialog() {
    // Another view may become active while the dialog is open, and this one's camera be unplugged.
    const QPointer<CkChain> chain(activeChain());
    if (!chain) {
        return;
    }
    int form = 0;
    const QString name = askSaveFileName(this, tr("Save Chain"), lastDirectory(),
                                         {{tr("Chain files (*.zuchain)"), QStringLiteral("zuchain")},
                                          {tr("All files (*)"), QStringLiteral("zuchain")}},
                                         form);
    if (name.isEmpty()) {
        return;
    }
    setLastDirectory(name);
    QString error = tr("The chain has been closed in the meantime.");
    if (!chain || !saveChain(*chain, name, error)) {
        QMessageBox::warning(this, tr("Save Chain"), error);
    }
}

void CkMainWindow::showAbout() {
    QString text = QStringLiteral("<h3>%1</h3>").arg(ViewerVersion::text());
    text += tr("<p>Viewer for industrial cameras.</p><p><b>Plug-ins</b></p>");
    if (m_pluginTexts.isEmpty()) {
        text += tr("<p>none</p>");
    }
    for (const QString& plugin : m_pluginTexts) {
        text += QStringLiteral("<p>%1</p>").arg(plugin.toHtmlEscaped());
    }
    QMessageBox::about(this, tr("About zuviewer"), text);
}
