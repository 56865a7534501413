#pragma once

#include "tests/host/viewer/ViewerFixture.h"
#include "zuCore/CkCameraParameters.h"
#include "zuCore/CkChainable.h"

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QImage>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <QSettings>
#include <QSignalSpy>
#include <QTimer>
#include <QToolButton>
#include <functional>

/// The real viewer with the built plug-in, which it finds by file name in its plug-in folder; driven by the
/// mouse. Boxes and dialogs are answered from a timer while they are open.
class SystemFixture : public ViewerFixture {
protected:
    void SetUp() override {
        ViewerFixture::SetUp();
        m_watch.setInterval(50);
        QObject::connect(&m_watch, &QTimer::timeout, &m_watch, [this] { answerOpenBox(); });
        m_watch.start();
    }

    void TearDown() override {
        m_watch.stop();
        ViewerFixture::TearDown();
    }

    /// Opens a camera with a view on it, stopped.
    void* openStopped(const char* id) { return cameras()->openCamera(QLatin1String(id), true); }
    void* openWaveCamera() { return openStopped("sim:wave"); }

    static CkCameraParam* param(void* camera, const char* name) {
        return CkCameraManager::instance()->cameraParameters(camera)->findParam(QLatin1String(name));
    }
    static void set(void* camera, const char* name, double value) {
        ASSERT_NE(param(camera, name), nullptr) << name;
        ASSERT_TRUE(param(camera, name)->setParamValue(CkValue(value))) << name;
        ASSERT_TRUE(param(camera, name)->commit()) << name;
    }

    /// Opens a menu through its parent menus, as a user does.
    void openMenu(QMenu* menu) {
        if (auto* above = qobject_cast<QMenu*>(menu->parentWidget())) {
            ASSERT_NO_FATAL_FAILURE(openMenu(above));
            QTest::mouseClick(above, Qt::LeftButton, {}, above->actionGeometry(menu->menuAction()).center());
        } else {
            QMenuBar* bar = window()->menuBar();
            QTest::mouseClick(bar, Qt::LeftButton, {}, bar->actionGeometry(menu->menuAction()).center());
        }
        ASSERT_TRUE(QTest::qWaitFor([menu] { return menu->isVisible(); }, 30'000));
    }
    void clickEntry(QMenu* menu, QAction* entry) {
        ASSERT_TRUE(entry->isEnabled()) << qPrintable(entry->text());
        ASSERT_NO_FATAL_FAILURE(openMenu(menu));
        QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(entry).center());
    }
    /// For a menu that is filled each time it opens.
    void clickOnlyEntry(const char* menuName) {
        auto* menu = window()->findChild<QMenu*>(QLatin1String(menuName));
        ASSERT_NE(menu, nullptr) << menuName;
        ASSERT_NO_FATAL_FAILURE(openMenu(menu));
        ASSERT_EQ(menu->actions().size(), 1) << menuName;
        QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(menu->actions()[0]).center());
    }
    QAction* pluginAction(const char* objectName) const {
        return window()->menu(3)->findChild<QAction*>(QLatin1String(objectName));
    }
    void clickPluginMenu(const char* objectName) {
        QAction* action = pluginAction(objectName);
        ASSERT_NE(action, nullptr) << objectName;
        auto* menu = qobject_cast<QMenu*>(action->parent());
        ASSERT_NE(menu, nullptr);
        clickEntry(menu, action);
    }

    void clickToolButton(const char* objectName) {
        auto* button = window()->findChild<QToolButton*>(QLatin1String(objectName));
        ASSERT_NE(button, nullptr) << objectName;
        QTest::mouseClick(button, Qt::LeftButton);
    }

    QList<CkMdiView*> views(bool threeD) const {
        QList<CkMdiView*> found;
        for (CkMdiView* view : area()->views()) {
            if ((qstrcmp(view->metaObject()->className(), "CkToF3DMdiView") == 0) == threeD) {
                found << view;
            }
        }
        return found;
    }

    /// Titles of the blocks after the source of the only chain.
    static QStringList blockTitles() {
        const QList<CkChain*> chains = CkChainManager::instance()->chains();
        EXPECT_EQ(chains.size(), 1);
        QStringList titles;
        for (const CkChainable* block : chains.value(0)->blocks()) {
            titles << block->title();
        }
        return titles.mid(1);
    }

    /// Waits for more frames of a view.
    static bool waitForFrames(CkMdiView* view, int count) {
        QSignalSpy frames(view, &CkMdiView::receivedFrame);
        return QTest::qWaitFor([&] { return frames.count() >= count; }, 60'000);
    }

    /// The button to click in message boxes, and the texts of the boxes that were shown.
    QMessageBox::StandardButton m_answer = QMessageBox::Ok;
    QStringList m_boxes;
    /// Handles a dialog other than a message box.
    std::function<void(QDialog*)> m_onDialog;

private:
    void answerOpenBox() {
        QWidget* modal = QApplication::activeModalWidget();
        if (auto* box = qobject_cast<QMessageBox*>(modal)) {
            if (QAbstractButton* button = box->button(m_answer)) {
                m_boxes << box->text();
                QTest::mouseClick(button, Qt::LeftButton);
            } else {
                m_boxes << QStringLiteral("unexpected: ") + box->text();
                box->reject();
            }
        } else if (auto* dialog = qobject_cast<QDialog*>(modal); dialog != nullptr && m_onDialog) {
            m_onDialog(dialog);
        }
    }

    QTimer m_watch;
};
