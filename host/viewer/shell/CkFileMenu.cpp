#include "host/viewer/shell/CkFileMenu.h"

#include "host/viewer/base/CkFileOpener.h"
#include "host/viewer/base/SaveFileName.h"
#include "host/viewer/base/ViewerSettings.h"
#include "host/viewer/shell/CkChainFileController.h"
#include "zuCore/CkChain.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QMenu>
#include <QMessageBox>
#include <QPointer>
#include <QSettings>

namespace {

constexpr int kRecentFiles = 8;

void rememberDirectory(const QString& fileName) {
    ViewerSettings::setLastDirectory(QFileInfo(fileName).absolutePath());
}

void addRecent(const QString& fileName) {
    const QString path = QFileInfo(fileName).absoluteFilePath();
    QStringList recent = CkFileMenu::recentFiles();
    recent.removeAll(path);
    recent.prepend(path);
    ViewerSettings::open()->setValue(ViewerSettings::kRecentChainsKey, recent.mid(0, kRecentFiles));
}

} // namespace

CkFileMenu::CkFileMenu(QMenu* menu, CkFileOpener* opener, CkChainFileController* chains, QWidget* window)
    : QObject(window), m_window(window), m_opener(opener), m_chains(chains) {
    menu->addAction(tr("&Open Chain..."), QKeySequence::Open, this, &CkFileMenu::openChainWithDialog);
    menu->addAction(tr("Open R&ecording..."), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_O), this,
                    &CkFileMenu::openRecordingWithDialog)
        ->setObjectName(QStringLiteral("actOpenRecording"));
    m_recentMenu = menu->addMenu(tr("Open &Recent"));
    m_recentMenu->setObjectName(QStringLiteral("menuRecentChains"));
    connect(menu, &QMenu::aboutToShow, this, &CkFileMenu::fillRecentMenu);
    fillRecentMenu();
    m_saveChain =
        menu->addAction(tr("&Save Chain..."), QKeySequence::Save, this, &CkFileMenu::saveChainWithDialog);
    menu->addSeparator();
    menu->addAction(tr("&Quit"), QKeySequence(Qt::CTRL | Qt::Key_Q), window, &QWidget::close);
    connect(opener, &CkFileOpener::opened, this, &addRecent);
    connect(chains, &CkChainFileController::used, this, &addRecent);
}

void CkFileMenu::openOrReport(const QString& fileName) {
    QString error;
    if (!m_opener->open(fileName, error) && !error.isEmpty()) {
        auto* box = new QMessageBox(QMessageBox::Warning, tr("Open"), error, QMessageBox::Ok, m_window);
        box->setObjectName(QStringLiteral("openChainBox"));
        box->setAttribute(Qt::WA_DeleteOnClose);
        box->setModal(false);
        box->show();
    }
}

void CkFileMenu::openAll(const QStringList& fileNames) {
    for (const QString& name : fileNames) {
        rememberDirectory(name);
        openOrReport(name);
    }
}

void CkFileMenu::openChainWithDialog() {
    openAll(QFileDialog::getOpenFileNames(m_window, tr("Open Chain"), ViewerSettings::lastDirectory(),
                                          tr("Chain files (*.zuchain);;All files (*)")));
}

void CkFileMenu::openRecordingWithDialog() {
    openAll(QFileDialog::getOpenFileNames(m_window, tr("Open Recording"), ViewerSettings::lastDirectory(),
                                          m_opener->dialogFilter(QStringLiteral("recording"))));
}

QStringList CkFileMenu::recentFiles() {
    return ViewerSettings::open()->value(ViewerSettings::kRecentChainsKey).toStringList();
}

void CkFileMenu::fillRecentMenu() {
    m_recentMenu->clear();
    for (const QString& name : recentFiles()) {
        // An ampersand in the name must not become a mnemonic.
        const QString text = QDir::toNativeSeparators(name).replace(QLatin1Char('&'), QLatin1String("&&"));
        m_recentMenu->addAction(text, this, [this, name] { openOrReport(name); });
    }
    m_recentMenu->setEnabled(!m_recentMenu->isEmpty());
    m_recentMenu->menuAction()->setToolTip(m_recentMenu->isEmpty() ? tr("No file was opened yet")
                                                                   : tr("Files opened or saved last"));
}

void CkFileMenu::saveChainWithDialog() {
    // While the dialog is open, another view may become active and this one's camera may be unplugged.
    const QPointer<CkChain> chain(m_chains->activeChain());
    if (!chain) {
        return;
    }
    int format = 0;
    const QString name =
        askSaveFileName(m_window,
                        {.title = tr("Save Chain"),
                         .start = ViewerSettings::lastDirectory(),
                         .formats = {{tr("Chain files (*.zuchain)"), QStringLiteral("zuchain")},
                                     {tr("All files (*)"), QStringLiteral("zuchain")}}},
                        format);
    if (name.isEmpty()) {
        return;
    }
    rememberDirectory(name);
    QString error = tr("The chain has been closed in the meantime.");
    if (!chain || !m_chains->save(*chain, name, error)) {
        QMessageBox::warning(m_window, tr("Save Chain"), error);
    }
}

void CkFileMenu::refresh() {
    const bool chain = m_chains->activeChain() != nullptr;
    m_saveChain->setEnabled(chain);
    m_saveChain->setToolTip(chain ? tr("Save the active view's chain")
                                  : tr("The active view shows no chain"));
}
