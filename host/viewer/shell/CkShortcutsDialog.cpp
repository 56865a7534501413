#include "host/viewer/shell/CkShortcutsDialog.h"

#include <QAction>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QMenu>
#include <QMenuBar>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace {

QString plain(const QString& text) {
    QString result = text;
    return result.remove(QLatin1Char('&'));
}

void collectFrom(const QMenu* menu, const QString& path, QList<QPair<QString, QString>>& result) {
    for (const QAction* action : menu->actions()) {
        if (action->menu() != nullptr) {
            collectFrom(action->menu(), path + QStringLiteral(" \u203a ") + plain(action->text()), result);
        } else if (!action->shortcut().isEmpty()) {
            result.append({action->shortcut().toString(QKeySequence::NativeText),
                           path + QStringLiteral(" \u203a ") + plain(action->text())});
        }
    }
}

} // namespace

QList<QPair<QString, QString>> CkShortcutsDialog::collect(const QMenuBar* pMenuBar) {
    QList<QPair<QString, QString>> result;
    for (const QAction* action : pMenuBar->actions()) {
        if (action->menu() != nullptr) {
            collectFrom(action->menu(), plain(action->text()), result);
        }
    }
    return result;
}

CkShortcutsDialog::CkShortcutsDialog(const QMenuBar* pMenuBar, QWidget* pParent) : QDialog(pParent) {
    setWindowTitle(tr("Keyboard and Mouse"));
    setObjectName(QStringLiteral("shortcutsDialog"));
    resize(560, 560);
    auto* tree = new QTreeWidget(this);
    tree->setColumnCount(2);
    tree->setHeaderLabels({tr("Key"), tr("What it does")});
    tree->setRootIsDecorated(false);
    for (const auto& [key, meaning] : collect(pMenuBar)) {
        new QTreeWidgetItem(tree, {key, meaning});
    }
    new QTreeWidgetItem(tree, {tr("Mouse wheel"), tr("In a picture: zoom about the mouse")});
    new QTreeWidgetItem(tree, {tr("Drag, arrow keys"), tr("In a picture: move it")});
    new QTreeWidgetItem(tree, {tr("Double click"), tr("In a picture: whole picture or 1:1")});
    new QTreeWidgetItem(tree, {tr("Right click"), tr("In a picture: context menu")});
    new QTreeWidgetItem(tree, {QStringLiteral("O"), tr("In a 3D view: distance along the ray or the axis")});
    new QTreeWidgetItem(tree, {tr("Left button, drag"), tr("In a 3D view: move the scene")});
    new QTreeWidgetItem(tree, {tr("Right button, drag"), tr("In a 3D view: turn the scene")});
    new QTreeWidgetItem(tree, {tr("Mouse wheel"), tr("In a 3D view: nearer or further away")});
    tree->header()->setSectionResizeMode(0, QHeaderView::ResizeToContents);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(tree, 1);
    layout->addWidget(buttons);
}
