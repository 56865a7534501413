#pragma once

#include "host/viewer/panels/camera/CkCameraMenu.h"
#include "tests/host/viewer/ViewerFixture.h"

#include <QAbstractButton>
#include <QAbstractSpinBox>
#include <QAction>
#include <QComboBox>
#include <QLineEdit>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMenuBar>

/// Visits all controls of the window: menu entries, actions, buttons, fields.
class ControlsFixture : public ViewerFixture {
protected:
    struct SkEntry {
        const QAction* action;
        QString path;
        QString menuName;
    };

    static void collect(const QMenu* menu, const QString& path, QList<SkEntry>& entries) {
        for (const QAction* action : menu->actions()) {
            const QString text = path + " > " + action->text();
            if (action->menu() != nullptr) {
                entries.append({action, text, action->menu()->objectName()});
                collect(action->menu(), text, entries);
            } else if (!action->isSeparator()) {
                entries.append({action, text, menu->objectName()});
            }
        }
    }

    QList<SkEntry> menuEntries() const {
        // Includes entries that are created only when a menu opens.
        for (QMenu* menu : window()->findChildren<QMenu*>()) {
            emit menu->aboutToShow();
        }
        QList<SkEntry> entries;
        for (const QAction* action : window()->menuBar()->actions()) {
            collect(action->menu(), action->text(), entries);
        }
        return entries;
    }

    /// Whether the entry is in a menu whose contents change, such as a list of cameras.
    static bool isListed(const SkEntry& entry) {
        static const QStringList s_lists = {"menuRecentChains", "menuCloseCamera", "menuUnplugCamera",
                                            "menuPlugInCamera", "menuOpenCamera",  "menuAddBlock"};
        for (const QString& name : s_lists) {
            if (entry.menuName == name) {
                return true;
            }
        }
        const auto* parent = qobject_cast<const QMenu*>(entry.action->parent());
        return parent != nullptr && parent->parent() != nullptr &&
               s_lists.contains(parent->parent()->objectName());
    }

    void expectReasons(const char* state) {
        window()->cameraMenu()->refresh();
        for (const SkEntry& entry : menuEntries()) {
            if (!entry.action->isEnabled()) {
                EXPECT_TRUE(saysMore(entry.action)) << state << ": " << qPrintable(entry.path);
            }
        }
        for (const QAction* action : window()->findChildren<QAction*>()) {
            if (!action->isEnabled() && !action->isSeparator() && !isOfTheToolkit(action)) {
                EXPECT_TRUE(saysMore(action))
                    << state << ": " << qPrintable(action->text()) << qPrintable(action->objectName());
            }
        }
        for (const QWidget* widget : window()->findChildren<QWidget*>()) {
            const bool control = qobject_cast<const QAbstractButton*>(widget) != nullptr ||
                                 qobject_cast<const QComboBox*>(widget) != nullptr ||
                                 qobject_cast<const QAbstractSpinBox*>(widget) != nullptr ||
                                 qobject_cast<const QLineEdit*>(widget) != nullptr;
            if (control && !widget->isEnabled() && !isOfTheToolkit(widget)) {
                // A control without a tool tip shows that of its parent.
                const QWidget* told = widget;
                while (told != nullptr && told->toolTip().isEmpty() && !told->isWindow()) {
                    told = told->parentWidget();
                }
                EXPECT_TRUE(told != nullptr && !told->toolTip().isEmpty())
                    << state << ": " << widget->metaObject()->className() << ' '
                    << qPrintable(widget->objectName());
            }
        }
    }

    /// Without a tool tip, QAction::toolTip() returns the text.
    static bool saysMore(const QAction* action) {
        QString text = action->text();
        text.remove('&');
        if (text.endsWith("...")) {
            text.chop(3);
        }
        return action->toolTip() != text && !action->toolTip().isEmpty();
    }

    /// Parts that Qt builds into its own widgets: arrows of tab bars, undo of text fields, window menus.
    static bool isOfTheToolkit(const QObject* object) {
        for (const QObject* o = object; o != nullptr; o = o->parent()) {
            if (o->objectName().startsWith("qt_") ||
                qobject_cast<const QMdiSubWindow*>(o->parent()) != nullptr) {
                return qobject_cast<const CkMdiView*>(o) == nullptr;
            }
            if (qobject_cast<const CkMdiView*>(o) != nullptr) {
                return false;
            }
        }
        const QObject* parent = object->parent();
        return parent != nullptr && (parent->inherits("QTabBar") || parent->inherits("QLineEdit"));
    }
};
