// The window fits small and high-resolution screens, whatever is open in it.

#include "tests/host/viewer/playback/RecordingViewFixture.h"

#include <QImage>
#include <QProcess>
#include <ostream>

namespace {

struct SkScreen {
    int width;
    int height;
    int factor; ///< device pixel ratio
    const char* language;
};

void PrintTo(const SkScreen& screen, std::ostream* stream) {
    *stream << screen.width << " x " << screen.height << " at " << screen.factor << ", " << screen.language;
}

class WindowSize : public RecordingViewFixture, public ::testing::WithParamInterface<SkScreen> {
protected:
    void SetUp() override {
        RecordingViewFixture::SetUp();
        const SkScreen& screen = GetParam();
        m_server.start("Xvfb", {"-displayfd", "1", "-nolisten", "tcp", "-screen", "0",
                                QStringLiteral("%1x%2x24").arg(screen.width).arg(screen.height)});
        ASSERT_TRUE(m_server.waitForStarted()) << qPrintable(m_server.errorString());
        QByteArray display;
        while (!display.endsWith('\n') && m_server.waitForReadyRead(Patience)) {
            display += m_server.readAll();
        }
        ASSERT_TRUE(display.endsWith('\n'));
        m_environment = QProcessEnvironment::systemEnvironment();
        m_environment.insert("DISPLAY", QLatin1Char(':') + QString::fromLatin1(display.trimmed()));
        m_environment.insert("QT_QPA_PLATFORM", "xcb");
        m_environment.insert("QT_SCALE_FACTOR", QString::number(screen.factor));
    }
    void TearDown() override {
        m_server.kill();
        m_server.waitForFinished(Patience);
        RecordingViewFixture::TearDown();
    }

    /// Size of the program's window, in device pixels, after some frames of these files and cameras.
    QSize sizeWith(const QStringList& opened) {
        QProcess viewer;
        viewer.setProcessEnvironment(m_environment);
        viewer.setProcessChannelMode(QProcess::ForwardedChannels);
        viewer.start(QStringLiteral(ZU_VIEWER),
                     opened + QStringList{"--language", GetParam().language, "--frames", "5", "--screenshot",
                                          path("window.png"), "--settings", path("small.ini")});
        EXPECT_TRUE(viewer.waitForFinished(2 * Patience));
        EXPECT_EQ(viewer.exitCode(), 0);
        return QImage(path("window.png")).size();
    }

    void expectFit(const QSize& window) const {
        const SkScreen& screen = GetParam();
        // A title bar is above it.
        EXPECT_LE(window.width(), screen.width);
        EXPECT_LE(window.height(), screen.height - 24 * screen.factor);
        // It is not too small, either.
        EXPECT_GE(window.width(), screen.width * 9 / 10);
        EXPECT_GE(window.height(), screen.height * 3 / 4);
    }

    QProcess m_server;
    QProcessEnvironment m_environment;
};

TEST_P(WindowSize, FitsTheScreenWithACameraAndIts3dView) {
    expectFit(sizeWith({"--camera", "sim:wave", "--3d"}));
}

TEST_P(WindowSize, FitsTheScreenWithARecording) {
    makeRecording(path("a.tif"), 10);
    expectFit(sizeWith({path("a.tif")}));
}

INSTANTIATE_TEST_SUITE_P(Screens, WindowSize,
                         ::testing::Values(SkScreen{1280, 720, 1, "en"}, SkScreen{1280, 720, 1, "de"},
                                           SkScreen{1920, 1080, 2, "de"}, SkScreen{1280, 720, 2, "de"}));

} // namespace
