#include "host/viewer/panels/lut/CkLutPanel.h"
#include "host/viewer/base/ViewerSettings.h"
#include "tests/host/viewer/ViewerFixture.h"
#include "zuCore/CkImageData.h"
#include "zuCore/CkLut.h"
#include "zuCoreGui/IkAppDelegate.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QSettings>
#include <cmath>

namespace {

TEST_F(ViewerSession, AutomaticContrastIsTheBusinessOfOneView) {
    ASSERT_TRUE(start());
    void* camera = openGrey();
    ASSERT_TRUE(cameras()->start(camera));
    ASSERT_TRUE(waitForFrame(firstView()));
    auto* automatic = window()->lutPanel()->findChild<QCheckBox*>("lutAuto");
    ASSERT_TRUE(QTest::qWaitFor([&] { return automatic->isEnabled(); }, 20'000));
    EXPECT_TRUE(automatic->isChecked());
    automatic->click();
    EXPECT_FALSE(firstView()->autoContrast());
    auto* later = qobject_cast<CkImageView*>(area()->view(cameras()->openView(camera)));
    EXPECT_TRUE(later->autoContrast());
    EXPECT_FALSE(firstView()->autoContrast());
    // The same through the menu.
    area()->setActiveView(firstView()->viewId());
    firstView()->setAutoContrast(true);
    QAction* entry = nullptr;
    for (QAction* action : window()->findChildren<QAction*>()) {
        entry = action->shortcut() == QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_A) ? action : entry;
    }
    ASSERT_NE(entry, nullptr);
    entry->trigger();
    EXPECT_FALSE(firstView()->autoContrast());
    EXPECT_TRUE(qobject_cast<CkImageView*>(area()->view(cameras()->openView(camera)))->autoContrast());
}

TEST_F(ViewerSession, TheColourPanelShowsNothingOfAnotherViewForOneWithoutAPicture) {
    ASSERT_TRUE(start());
    void* camera = openGrey();
    ASSERT_TRUE(cameras()->start(camera));
    ASSERT_TRUE(waitForFrame(firstView()));
    firstView()->setWindow({12.0, 34.0});
    const auto* low = window()->lutPanel()->findChild<QDoubleSpinBox*>("lutLow");
    const auto* high = window()->lutPanel()->findChild<QDoubleSpinBox*>("lutHigh");
    ASSERT_TRUE(QTest::qWaitFor([&] { return low->value() == 12.0 && high->value() == 34.0; }, 20'000));
    cameras()->stop(camera);
    auto* empty = qobject_cast<CkImageView*>(area()->view(cameras()->openView(camera)));
    ASSERT_EQ(area()->activeView(), empty);
    ASSERT_FALSE(empty->hasPicture());
    for (const QDoubleSpinBox* number : {low, high}) {
        EXPECT_EQ(number->text(), "");
        EXPECT_FALSE(number->isEnabled());
        EXPECT_EQ(number->toolTip(), "There is no picture yet");
    }
    // The values of its own picture, as soon as there is one.
    ASSERT_TRUE(cameras()->start(camera));
    ASSERT_TRUE(waitForFrame(empty));
    cameras()->stop(camera);
    // The field shows whole counts.
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return low->isEnabled() && std::abs(high->value() - empty->window().high) <= 0.5; }, 20'000))
        << high->value() << " of " << empty->window().high;
    EXPECT_NE(high->value(), 34.0);
    area()->setActiveView(firstView()->viewId());
    EXPECT_EQ(low->value(), 12.0);
}

TEST_F(ViewerSession, LutPanelColoursTheActiveViewAndIsRemembered) {
    m_options.cameras = QStringList{"sim:grey"};
    ASSERT_TRUE(start());
    CkImageView* view = firstView();
    ASSERT_TRUE(waitForFrame(view));
    auto* maps = window()->lutPanel()->findChild<QComboBox*>("lutMap");
    ASSERT_TRUE(maps->isEnabled());
    EXPECT_EQ(maps->currentIndex(), 0);
    const auto isGrey = [view] {
        const QImage& image = view->shownImage();
        for (int x = 0; x < image.width(); x += 7) {
            const QRgb pixel = image.pixel(x, image.height() / 2);
            if (qRed(pixel) != qGreen(pixel) || qGreen(pixel) != qBlue(pixel)) {
                return false;
            }
        }
        return true;
    };
    EXPECT_TRUE(isGrey());
    const int jet = maps->findText("Jet");
    ASSERT_GT(jet, 0);
    maps->setCurrentIndex(jet);
    emit maps->activated(jet);
    EXPECT_EQ(view->viewLut(nullptr, nullptr, nullptr)->pseudoColorIndex(), jet);
    EXPECT_FALSE(isGrey());
    // A new table for such pictures starts with what the user chose.
    const std::unique_ptr<CkLut> lut(
        IkAppDelegate::instance()->createLut(view->currentImage()->picBuf(), {}));
    EXPECT_EQ(lut->pseudoColorIndex(), jet);
    EXPECT_EQ(ViewerSettings::open()->value(ViewerSettings::pseudoColorKey(false)).toInt(), jet);
}

} // namespace
