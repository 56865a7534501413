#include "plugins/zplToF/CkToFPlugin.h"
#include "plugins/zplToF/calibration/CkToFCalibrateOffsetDlg.h"
#include "plugins/zplToF/chain/CkToFProcessCnbl.h"
#include "plugins/zplToF/chain/CkToFProcessWidget.h"
#include "plugins/zplToF/opticalpath/CkToFOpticalPathSettingsDlg.h"
#include "plugins/zplToF/view3d/3dMdiView.h"
#include "tests/plugins/zplToF/integration/ToFFixture.h"
#include "tests/support/FakeAppDelegate.h"
#include "tests/support/LocaleScope.h"

#include <QAction>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMetaClassInfo>
#include <QRadioButton>
#include <QToolBar>
#include <QToolButton>
#include <gtest/gtest.h>
#include <memory>

// The plug-in's texts for a German user: those that are translated, and those that must not be.

namespace {
QString utf8(const char* text) {
    return QString::fromUtf8(text);
}

class ToFGermanTest : public testing::Test {
protected:
    LocaleScope locale{QLocale(QLocale::German, QLocale::Germany)};
    FakeAppDelegate app;
    std::unique_ptr<CkToFPlugin> plugin = std::make_unique<CkToFPlugin>();
};

std::unique_ptr<CkToFOpticalPathSettingsDlg> settingsDialog() {
    return std::make_unique<CkToFOpticalPathSettingsDlg>(EkDepthDataType::PhaseShift, 20.0F, true, 0.5F, 0.0F,
                                                         1.0F, true, 3.5F, QPointF(), 10.0F, 0.0F, false,
                                                         true, 0x303080U, false, 5.0F);
}
} // namespace

TEST_F(ToFGermanTest, TheMenuIsGermanItsObjectNamesAreNot) {
    ASSERT_TRUE(plugin->init());
    const QMenu* menu = app.mainMenu(IkAppDelegate::PluginMenu)->findChild<QMenu*>();
    ASSERT_NE(menu, nullptr);
    EXPECT_EQ(menu->title(), "Time-of-Flight-Verarbeitung (ToF)");
    const QList<QAction*> actions = menu->actions();
    ASSERT_EQ(actions.size(), 3);
    EXPECT_EQ(actions[0]->text(), utf8("ToF-3D-Ansicht öffnen"));
    EXPECT_EQ(actions[0]->objectName(), "menuOpenToF3dView");
    EXPECT_EQ(actions[1]->text(), utf8("Alle ToF-Verarbeitungsansichten öffnen"));
    EXPECT_EQ(actions[2]->text(), "Abstandsversatz kalibrieren...");
    EXPECT_EQ(plugin->name(), "Darstellung von ToF-Bildern");
    EXPECT_EQ(plugin->author(), "Orvane");
    EXPECT_EQ(plugin->website(), "https://www.orvane.com");
}

TEST_F(ToFGermanTest, TheCamerasPanelIsGermanItsObjectNamesAreNot) {
    const FakeCamera camera({4, 13});
    ASSERT_TRUE(plugin->init());
    const QWidget* panel = app.cameraPanels.value(camera.handle());
    ASSERT_NE(panel, nullptr);
    EXPECT_EQ(panel->findChild<QLabel*>()->text(), "ToF:");
    ASSERT_NE(panel->findChild<QToolButton*>("btnToF3D"), nullptr);
    EXPECT_EQ(panel->findChild<QToolButton*>("btnToF3D")->text(), utf8("3D-Ansicht öffnen"));
    ASSERT_NE(panel->findChild<QToolButton*>("btnToFAllViews"), nullptr);
    EXPECT_EQ(panel->findChild<QToolButton*>("btnToFAllViews")->text(),
              utf8("Alle ToF-Verarbeitungsansichten öffnen"));
}

TEST(ToFGermanActions, MessagesAreGerman) {
    const LocaleScope locale{QLocale(QLocale::German, QLocale::Germany)};
    FakeCamera camera({-1, 13});
    ToFFixture rig;
    const CkToFPlugin plugin;
    rig.open(FakeKind::AB, false, &camera);
    rig.actions.calibrateOffset();
    ASSERT_EQ(rig.boxes.size(), 1U);
    EXPECT_EQ(rig.boxes[0].title, "Fehler");
    EXPECT_EQ(rig.boxes[0].text, "Die aktive Kamera ist keine ToF-Kamera.");
}

TEST_F(ToFGermanTest, BothDialogsAreGerman) {
    const auto settings = settingsDialog();
    EXPECT_EQ(settings->windowTitle(), "Einstellungen der 3D-Ansicht");
    EXPECT_EQ(settings->findChild<QLabel*>("label")->text(), "Brennweite des Objektivs:");
    EXPECT_TRUE(settings->findChild<QLabel*>("lbControls")->text().startsWith("Bedienung der 3D-Ansicht:\n"));
    EXPECT_TRUE(settings->findChild<QLineEdit*>("edLensFocalLength")->toolTip().startsWith("Brennweite"));
    EXPECT_EQ(settings->findChild<QLineEdit*>("edLensFocalLength")->text(), "3,50");
    const CkToFCalibrateOffsetDlg calibration(nullptr, nullptr);
    EXPECT_EQ(calibration.windowTitle(), "ToF-Abstandsversatz kalibrieren");
    EXPECT_EQ(calibration.findChild<QLabel*>("lbDistance")->text(), "Kameraabstand:");
}

TEST_F(ToFGermanTest, TheToolBarOfTheViewIsGermanTheZoomFactorsAreNot) {
    const CkToF3DMdiView view(-1, -1, nullptr, nullptr);
    EXPECT_EQ(view.windowTitle(), "ToF-3D-Ansicht");
    const auto* toolBar = view.findChild<QToolBar*>();
    ASSERT_NE(toolBar, nullptr);
    QStringList texts;
    for (const QAction* action : toolBar->actions()) {
        if (!action->text().isEmpty()) {
            texts << action->text();
        }
    }
    EXPECT_EQ(texts, (QStringList{"Einstellungen...", "Z-Zoom ", "Bildschirmfoto", "Daten exportieren",
                                  "Ausgangsposition"}));
    QStringList factors;
    for (const QMenu* menu : toolBar->findChildren<QMenu*>()) {
        for (const QAction* action : menu->actions()) {
            factors << action->text();
        }
    }
    EXPECT_EQ(factors.mid(0, 9),
              (QStringList{"0.2x", "0.5x", "1x", "2x", "5x", "10x", "20x", "50x", "100x"}));
}

TEST_F(ToFGermanTest, TheBlocksTransformsAreGermanThoseOfRawFormatsAndStoredNamesAreNot) {
    CkToFProcessCnbl block;
    const CkToFProcessWidget widget(&block);
    EXPECT_EQ(widget.windowTitle(), "ToF-Bildverarbeitung");
    QStringList texts;
    for (const auto* button : widget.findChildren<QRadioButton*>()) {
        texts << button->text();
    }
    ASSERT_EQ(texts.size(), 7);
    EXPECT_TRUE(texts[0].startsWith(utf8("Intensität [")));
    EXPECT_TRUE(texts[1].startsWith("Amplitude [Eingang"));
    EXPECT_TRUE(texts[2].startsWith("Phasenverschiebung (Tiefe) und Konfidenz ["));
    EXPECT_EQ(texts[3], utf8("Einzeln von der Kamera kommende Phasen zusammenfügen"));
    EXPECT_EQ(texts.mid(4),
              (QStringList{"Set metadata as RawX2 phases image with (A and B)",
                           "RawX2 (A and B) to signed Raw (A-B)", "Set metadata as Raw Hybrid ToF image"}));
    // Programs read these.
    const QMetaObject* metaObject = block.metaObject();
    EXPECT_STREQ(metaObject->classInfo(metaObject->indexOfClassInfo("CustomName")).value(),
                 "ToF Image Processing");
    QString sHelp;
    block.help(sHelp);
    EXPECT_TRUE(sHelp.startsWith("Verarbeitet ToF-Bilder.<ul>")) << sHelp.toStdString();
}

TEST_F(ToFGermanTest, TheLanguageGoesWithThePlugin) {
    plugin.reset();
    EXPECT_EQ(settingsDialog()->windowTitle(), "3D View Settings");
}

TEST_F(ToFGermanTest, EveryGermanSpeakingCountryIsServedOtherLanguagesStayEnglish) {
    plugin.reset();
    for (const char* name : {"de_AT", "de_CH", "de"}) {
        const LocaleScope scope{QLocale(QLatin1String(name))};
        const CkToFPlugin speaking;
        EXPECT_EQ(settingsDialog()->windowTitle(), "Einstellungen der 3D-Ansicht") << name;
    }
    for (const char* name : {"en_GB", "fr_FR", "C"}) {
        const LocaleScope scope{QLocale(QLatin1String(name))};
        const CkToFPlugin silent;
        EXPECT_EQ(settingsDialog()->windowTitle(), "3D View Settings") << name;
    }
}
