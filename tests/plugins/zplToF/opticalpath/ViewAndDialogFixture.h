#pragma once

#include "plugins/zplToF/opticalpath/CkToFOpticalPathSettingsDlg.h"
#include "tests/plugins/zplToF/view3d/ViewFixture.h"
#include "tests/support/LocaleScope.h"
#include "tests/support/ModalDriver.h"

#include <QDialogButtonBox>
#include <QLineEdit>
#include <QPushButton>
#include <QSettings>

/// Keys of QSettings in the order in which they were written, see ViewAndDialogTest.cpp.
inline QStringList settingsWrites;

/// The 3D view with its settings dialog, opened and operated as a user does.
class ViewAndDialogTest : public ViewTest {
protected:
    ViewAndDialogTest() { settingsWrites.clear(); }

    /// Opens the dialog and calls work, which has to close it.
    void withDialog(CkToF3DMdiView& view, std::function<void()> work) {
        settingsWrites.clear();
        driver.expectWindow([this, work](QWidget* pWindow) {
            dialog = qobject_cast<CkToFOpticalPathSettingsDlg*>(pWindow);
            ASSERT_NE(dialog, nullptr);
            QApplication::setActiveWindow(dialog);
            work();
            if (dialog != nullptr && dialog->isVisible()) {
                ADD_FAILURE() << "the dialog was left open";
                dialog->reject();
            }
        });
        action(view, "Settings...")->trigger();
        EXPECT_EQ(driver.pending(), 0);
        EXPECT_TRUE(dialog.isNull());
    }

    template <class Widget = QWidget>
    Widget* child(const char* name) {
        return dialog->findChild<Widget*>(QLatin1String(name));
    }

    void type(const char* name, const QString& sText) {
        auto* edit = child<QLineEdit>(name);
        edit->setFocus();
        QTest::keyClick(edit, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(edit, sText);
    }

    void toggle(const char* name) {
        QTest::mouseClick(child(name), Qt::LeftButton, Qt::NoModifier, QPoint(8, child(name)->height() / 2));
    }

    void click(QDialogButtonBox::StandardButton button) {
        QTest::mouseClick(child<QDialogButtonBox>("buttonBox")->button(button), Qt::LeftButton);
    }

    /// Keys in the settings, but for the colour map, which the view stores with its first frame.
    QStringList storedKeys() {
        QStringList keys = QSettings(m_host.settingsFile(), QSettings::IniFormat).allKeys();
        keys.removeAll("ToF.LUTPseudoColor");
        keys.sort();
        return keys;
    }

    /// A view opened on a frame; the kind of its data decides the initial threshold.
    std::unique_ptr<CkToF3DMdiView> openOn(std::unique_ptr<CkImageData> frame) {
        m_host.registerView(&m_source);
        m_source.shown = std::move(frame);
        return open();
    }

    /// A wall at a quarter of the range; the confidence grows from 0.5 at the left to 2 at the right.
    static std::unique_ptr<CkImageData> wall(quint64 uiFrameNumber = 0) {
        return TestFrame::phase(
            16, 12,
            [](int x, int) {
                return DepthPixel{1.5707964F, 0.5F + 0.1F * float(x)};
            },
            uiFrameNumber);
    }

    LocaleScope locale{QLocale(QLocale::English, QLocale::UnitedStates)};
    ModalDriver driver;
    QPointer<CkToFOpticalPathSettingsDlg> dialog;
};
