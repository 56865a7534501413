#include "host/viewer/base/ViewerLanguage.h"
#include "host/viewer/shell/CkStatusBar.h"
#include "tests/host/viewer/ViewerFixture.h"
#include "tests/support/LocaleScope.h"

#include <QAbstractButton>
#include <QAction>
#include <QDialogButtonBox>
#include <QDockWidget>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QSet>
#include <QSignalSpy>
#include <QToolButton>

// The whole program in German: texts of the program, its libraries, the plug-in and Qt.

namespace {

QString utf8(const char* text) {
    return QString::fromUtf8(text);
}

class German : public ViewerFixture {
protected:
    static void SetUpTestSuite() { EXPECT_EQ(ViewerLanguage::apply("de").language(), QLocale::German); }
};

TEST_F(German, MenusAndPanelsSpeakIt) {
    ASSERT_TRUE(start());
    QStringList titles;
    for (const QAction* action : window()->menuBar()->actions()) {
        titles.append(action->text());
    }
    EXPECT_TRUE(titles.contains("&Datei"));
    EXPECT_TRUE(titles.contains("&Kamera"));
    EXPECT_TRUE(titles.contains("&Hilfe"));
    EXPECT_EQ(window()->findChild<QDockWidget*>("dockLog")->windowTitle(), "Protokoll");
    // Object names, which scripts and plug-ins depend on, are not translated.
    EXPECT_NE(window()->findChild<QAction*>("actStartCamera"), nullptr);
    EXPECT_EQ(window()->windowTitle(), "zuviewer");
}

TEST_F(German, PluginAndToolkitSpeakItToo) {
    m_options.pluginPaths = QStringList{ZU_TOF_PLUGIN};
    m_options.cameras = QStringList{"sim:wave"};
    ASSERT_TRUE(start());
    ASSERT_TRUE(waitForFrame(firstView()));
    QStringList texts;
    for (const QToolButton* button : window()->findChildren<QToolButton*>()) {
        texts.append(button->text());
    }
    EXPECT_TRUE(texts.contains(utf8("3D-Ansicht öffnen"))) << qPrintable(texts.join(", "));
    EXPECT_EQ(window()->findChild<QPushButton*>("btnStart")->text(), "Stoppen");
    const QDialogButtonBox box(QDialogButtonBox::Cancel);
    EXPECT_EQ(box.button(QDialogButtonBox::Cancel)->text(), "Abbrechen");
}

TEST_F(German, NumbersFollowTheLanguage) {
    m_options.cameras = QStringList{"sim:grey"};
    ASSERT_TRUE(start());
    ASSERT_TRUE(waitForFrame(firstView()));
    const CkStatusBar* status = window()->viewStatusBar();
    ASSERT_TRUE(QTest::qWaitFor([&] { return status->rateText().contains(','); }, 30'000))
        << qPrintable(status->rateText());
    EXPECT_TRUE(status->rateText().endsWith("Bilder/s")) << qPrintable(status->rateText());
}

TEST_F(German, OneIsNotMany) {
    ASSERT_TRUE(start());
    const auto text = [](const char* context, const char* source, int count) {
        return QCoreApplication::translate(context, source, nullptr, count);
    };
    EXPECT_EQ(text("CkRecordingPanel", "%n frame(s), %1, %2", 1), "1 Bild, %1, %2");
    EXPECT_EQ(text("CkRecordingPanel", "%n frame(s), %1, %2", 0), "0 Bilder, %1, %2");
    EXPECT_EQ(text("CkRecordingManager", "%n frame(s) were lost.", 1), "1 Bild ging verloren.");
    EXPECT_EQ(text("CkRecordingManager", "%n frame(s) were lost.", 3), "3 Bilder gingen verloren.");
    EXPECT_EQ(text("PictureText", "%n channel(s)", 2), utf8("2 Kanäle"));
}

TEST_F(German, NoTwoEntriesOfAMenuShareALetter) {
    m_options.cameras = QStringList{"sim:grey"};
    ASSERT_TRUE(start());
    const auto check = [](const QString& title, const QList<QAction*>& actions) {
        QSet<QChar> taken;
        for (const QAction* action : actions) {
            const qsizetype at = action->text().indexOf('&');
            if (at >= 0) {
                const QChar letter = action->text()[at + 1].toLower();
                EXPECT_FALSE(taken.contains(letter)) << qPrintable(title + ": " + action->text());
                taken.insert(letter);
            }
        }
    };
    check("menu bar", window()->menuBar()->actions());
    for (QAction* action : window()->menuBar()->actions()) {
        emit action->menu()->aboutToShow();
        check(action->text(), action->menu()->actions());
    }
}

TEST(ViewerLanguage, IsReadFromTheCommandLineBeforeAnythingElse) {
    EXPECT_EQ(ViewerLanguage::requested({"zuviewer", "--language", "de", "--help"}), "de");
    EXPECT_EQ(ViewerLanguage::requested({"zuviewer", "--3d", "--language=en"}), "en");
    EXPECT_EQ(ViewerLanguage::requested({"zuviewer", "--language", "fr"}), "");
    EXPECT_EQ(ViewerLanguage::requested({"zuviewer", "--language"}), "");
    EXPECT_EQ(ViewerLanguage::requested({"zuviewer", "--", "--language", "de"}), "");
    EXPECT_EQ(ViewerLanguage::requested({"zuviewer"}), "");
}

TEST(ViewerLanguage, KeepsTheTerritoryOfALocaleInThatLanguage) {
    const LocaleScope vienna{QLocale(QLocale::German, QLocale::Austria)};
    EXPECT_EQ(ViewerLanguage::apply("de").territory(), QLocale::Austria);
    EXPECT_EQ(ViewerLanguage::apply("en").language(), QLocale::English);
}

} // namespace
