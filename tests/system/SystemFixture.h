#pragma once

#include "ViewerFixture.h"
#include "zuCore/CkCameraParameters.h"

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
    void* openStopped(const char* id) { return desk()->openCamera(QLatin1String(id), true); }
    void* openWaveCamera() { return openStopped("sim:wave"); }

    static CkCameraParam* param(void* camera, const char* name) {
        return CkCameraManager::instance()->cameraParameters(camera)->findParam(QLatin1String(name));
    }
    static void set(void* camera, const char* name, double value) {
        ASSERT_NE(param(camera, name), nullptr) << name;
        ASSERT_TRUE(param(camera, name)->setParamValue(CkValue(value))) << name;
        ASSERT_TRUE(param(camera, name)->commit()) << name;
    }

    /// Opens the plug-in's sub-menu of the menu bar and clicks an entry.
    void clickPluginMenu(const char* objectName) {
        QMenu* host = window()->menu(3);
        auto* action = host->findChild<QAction*>(QLatin1String(objectName));
        ASSERT_NE(action, nullptr) << objectName;
        auto* menu = qobject_cast<QMenu*>(action->parent());
        ASSERT_NE(menu, nullptr);
        ASSERT_TRUE(action->isEnabled()) << objectName;
        QMenuBar* bar = window()->menuBar();
        QTest::mouseClick(bar, Qt::LeftButton, {}, bar->actionGeometry(host->menuAction()).center());
        ASSERT_TRUE(QTest::qWaitFor([host] { return host->isVisible(); }, 30'000));
        QTest::mouseClick(host, Qt::LeftButton, {}, host->actionGeometry(menu->menuAction()).center());
        ASSERT_TRUE(QTest::qWaitFor([menu] { return menu->isVisible(); }, 30'000));
        QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(action).center());
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

    /// Waits for more frames of a view.
    static bool waitForFrames(CkMdiView* view, int count) {
        QSignalSpy frames(view, &CkMdiView::receivedFrame);
        return QTest::qWaitFor([&] { return frames.count() >= count; }, 60'000);
    }

    /// What the button of a message box is clicked for; the texts of the boxes that came.
    QMessageBox::StandardButton m_answer = QMessageBox::Ok;
    QStringList m_boxes;
    /// Looks after a dialog that is no message box.
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
