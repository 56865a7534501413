#include "tests/host/recording/VideoSourceFixture.h"

#include "host/recording/CkOpenProgressScope.h"
#include "tests/support/HostileFiles.h"

#include <QDomDocument>

TEST_F(CkVideoSourceTest, WhatCannotBeOpenedChangesNothing) {
    openFrames(2);
    QString error;
    EXPECT_FALSE(m_source->openFile(path("missing.tif"), &error));
    EXPECT_THAT(error.toStdString(), ::testing::HasSubstr("missing.tif"));
    EXPECT_EQ(m_source->frameCount(), 2);
    EXPECT_FALSE(m_source->openFile(path("a.tif"), &error, [](qint64, double) { return false; }));
    EXPECT_EQ(m_source->frameCount(), 2);
}

TEST_F(CkVideoSourceTest, LoadingSettingsReportsTheSearchForFrames) {
    record(path("a.tif"), 3);
    QDomDocument doc;
    QDomElement element = doc.createElement(QStringLiteral("block"));
    element.setAttribute(QStringLiteral("file"), path("a.tif"));
    qint64 found = 0;
    bool goesOn = true;
    {
        const CkOpenProgressScope progress([&](qint64 frames, double) {
            found = frames;
            return goesOn;
        });
        ASSERT_TRUE(m_source->loadSettings(element));
        EXPECT_EQ(found, 3);
        EXPECT_EQ(m_source->frameCount(), 3);
        goesOn = false;
        CkVideoSource other;
        ASSERT_TRUE(other.loadSettings(element));
        EXPECT_EQ(other.frameCount(), 0);
        EXPECT_THAT(other.errorMessage().toStdString(), ::testing::HasSubstr("cancelled"));
    }
    CkVideoSource after;
    ASSERT_TRUE(after.loadSettings(element));
    EXPECT_EQ(after.frameCount(), 3);
}

TEST_F(CkVideoSourceTest, ADamagedRecordingPlaysAndSaysWhatIsWrong) {
    record(path("whole.tif"), 4);
    const QByteArray bytes = contents(path("whole.tif"));
    setContents(path("cut.tif"), bytes.left(bytes.size() - 3));
    ASSERT_TRUE(m_source->openFile(path("cut.tif"), nullptr));
    EXPECT_THAT(m_source->errorMessage().toStdString(), ::testing::HasSubstr("cut.tif\", page 4: "));
    ASSERT_TRUE(m_chain->start());
    m_source->play();
    EXPECT_EQ(m_sink.waitFor(3), counted(0, 3));
}

TEST_F(CkVideoSourceTest, SettingsComeBack) {
    openFrames(2);
    m_source->setLoop(true);
    m_source->setPace(SkPlaybackSettings::RealTime);
    m_source->setSpeed(0.25);
    QDomDocument doc;
    QDomElement element = doc.createElement(QStringLiteral("block"));
    ASSERT_TRUE(m_source->saveSettings(doc, element));
    CkVideoSource other;
    ASSERT_TRUE(other.loadSettings(element));
    EXPECT_EQ(other.fileName(), path("a.tif"));
    EXPECT_TRUE(other.isLoop());
    EXPECT_EQ(other.pace(), int(SkPlaybackSettings::RealTime));
    const std::unique_ptr<CkChainable> copy(other.clone());
    ASSERT_NE(qobject_cast<CkVideoSource*>(copy.get()), nullptr);
    EXPECT_EQ(qobject_cast<CkVideoSource*>(copy.get())->frameCount(), 2);
    EXPECT_EQ(other.speed(), 0.25);
    EXPECT_EQ(qobject_cast<CkVideoSource*>(copy.get())->speed(), 0.25);
    // Older chain files have no speed.
    element.removeAttribute(QStringLiteral("speed"));
    ASSERT_TRUE(other.loadSettings(element));
    EXPECT_EQ(other.speed(), 1.0);

    element.setAttribute(QStringLiteral("file"), path("gone.tif"));
    CkVideoSource lost;
    EXPECT_TRUE(lost.loadSettings(element));
    EXPECT_THAT(lost.errorMessage().toStdString(), ::testing::HasSubstr("gone.tif"));
    // The recording may be on a disk that is not mounted: its name must be kept.
    QDomElement again = doc.createElement(QStringLiteral("block"));
    ASSERT_TRUE(lost.saveSettings(doc, again));
    EXPECT_EQ(again.attribute(QStringLiteral("file")), path("gone.tif"));
}

TEST_F(CkVideoSourceTest, ThousandsOfUnreadablePagesAreToldOfOnce) {
    HostileTiff tiff(path("torn.tif"));
    const quint32 strip = tiff.append(QByteArray(2, '\1'));
    const auto page = HostileTiff::page(1, 1, 16, COMPRESSION_NONE, strip, 2);
    tiff.addPage(page);
    for (int i = 0; i < 5000; ++i) {
        tiff.addPage({{TIFFTAG_SUBFILETYPE, TIFF_LONG, 1, 0}});
    }
    tiff.addPage(page);
    ASSERT_TRUE(tiff.close());
    QString error;
    ASSERT_TRUE(m_source->openFile(path("torn.tif"), &error)) << qPrintable(error);
    std::atomic<int> signalled{0};
    QObject::connect(
        m_source, &CkChainable::errorMessageChanged, m_source, [&signalled] { ++signalled; },
        Qt::DirectConnection);
    m_chain->start();
    m_source->play();
    EXPECT_EQ(m_sink.waitFor(2), (Numbers{0, 5001}));
    waitForPosition(5001);
    // The first error, then at most two per second, and the rest at the end.
    EXPECT_GE(signalled, 2);
    EXPECT_LT(signalled, 500);
    const std::string text = m_source->errorMessage().toStdString();
    EXPECT_THAT(text, ::testing::AllOf(::testing::HasSubstr("torn.tif\", page 5001: "),
                                       ::testing::HasSubstr("(5000 pages in a row)")));
}
