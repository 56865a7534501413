#include "host/viewer/panels/chain/CkBlockDialogs.h"

#include "zuCore/CkChainable.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QTextBrowser>
#include <QVBoxLayout>

namespace {

// Not modal, with one widget above a Close button.
QDialog* openDialog(QWidget* owner, const QString& title, QWidget* content) {
    auto* dialog = new QDialog(owner->window());
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowTitle(title);
    auto* layout = new QVBoxLayout(dialog);
    layout->addWidget(content, 1);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, dialog);
    layout->addWidget(buttons);
    QObject::connect(buttons, &QDialogButtonBox::rejected, dialog, &QDialog::close);
    return dialog;
}

} // namespace

CkBlockDialogs::CkBlockDialogs(QWidget* pOwner) : QObject(pOwner), m_owner(pOwner) {}

CkBlockDialogs::~CkBlockDialogs() {
    // The dialogs belong to the window, but a settings widget must not outlive the panel that opened it.
    const QList<QPointer<QDialog>> open = m_settings.values();
    for (const QPointer<QDialog>& dialog : open) {
        delete dialog;
    }
}

bool CkBlockDialogs::configure(CkChainable* pBlock) {
    if (QDialog* open = m_settings.value(pBlock)) {
        open->raise();
        open->activateWindow();
        return true;
    }
    QWidget* settings = pBlock->configurationWidget();
    if (settings == nullptr) {
        return false;
    }
    const QString title = settings->windowTitle().isEmpty() ? pBlock->title() : settings->windowTitle();
    QDialog* dialog = openDialog(m_owner, title, settings);
    dialog->setObjectName(QStringLiteral("configureBlockDialog"));
    connect(dialog, &QObject::destroyed, this, [this] {
        m_settings.removeIf([](const auto& entry) { return entry.value().isNull(); });
        emit closed();
    });
    // Deleted together with the block, which the settings widget refers to.
    connect(pBlock, &QObject::destroyed, dialog, [dialog] { delete dialog; });
    m_settings.insert(pBlock, dialog);
    dialog->show();
    return true;
}

void CkBlockDialogs::close(const CkChainable* pBlock) {
    delete m_settings.take(pBlock);
}

void CkBlockDialogs::help(CkChainable* pBlock) {
    QString text;
    pBlock->help(text);
    auto* browser = new QTextBrowser;
    browser->setOpenExternalLinks(true);
    browser->setHtml(text);
    QDialog* dialog = openDialog(m_owner, tr("Help: %1").arg(pBlock->title()), browser);
    dialog->setObjectName(QStringLiteral("blockHelpDialog"));
    dialog->resize(520, 320);
    dialog->show();
}
