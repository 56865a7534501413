#include "host/viewer/panels/camera/CkCameraPanel.h"
#include "tests/host/viewer/ViewerFixture.h"
#include "zuCoreGui/IkAppDelegate.h"

#include <QFile>

namespace {

TEST_F(ViewerSession, PluginIsNotifiedOfEverythingInOrder) {
    m_options.pluginPaths = QStringList{ZU_PROBE_PLUGIN};
    ASSERT_TRUE(start());
    ASSERT_FALSE(m_session->plugins()->plugins().isEmpty());
    const QObject* probe = m_session->plugins()->plugins().last().object;
    const auto calls = [probe] { return probe->property("calls").toStringList(); };
    EXPECT_EQ(calls().last(), "init");
    const qsizetype before = calls().size();
    void* camera = openGrey();
    const int id = firstView()->viewId();
    // The panel exists before the plug-in is notified of the camera.
    EXPECT_TRUE(calls().mid(before).contains("camera with panel"));
    EXPECT_NE(cameras()->panel(camera)->findChild<QWidget*>("probeButton"), nullptr);
    EXPECT_TRUE(calls().contains(QStringLiteral("active %1").arg(id)));
    ASSERT_TRUE(cameras()->start(camera));
    ASSERT_TRUE(waitForFrame(firstView()));
    EXPECT_TRUE(calls().last().startsWith(QStringLiteral("image %1 ").arg(id))) << qPrintable(calls().last());
    ASSERT_TRUE(IkAppDelegate::instance()->closeView(id));
    EXPECT_TRUE(calls().contains(QStringLiteral("closing %1 alive").arg(id)));
    EXPECT_EQ(calls().last(), "active -1");
    EXPECT_EQ(IkAppDelegate::instance()->mdiView(id), nullptr);
}

TEST_F(ViewerSession, APluginThatThrowsTakesNothingDown) {
    m_options.pluginPaths = QStringList{ZU_PROBE_PLUGIN};
    ASSERT_TRUE(start());
    ASSERT_FALSE(m_session->plugins()->plugins().isEmpty());
    QObject* probe = m_session->plugins()->plugins().last().object;
    probe->setProperty("throws", true);
    void* camera = openGrey();
    const int id = firstView()->viewId();
    ASSERT_TRUE(cameras()->start(camera));
    ASSERT_TRUE(waitForFrame(firstView()));
    EXPECT_TRUE(IkAppDelegate::instance()->closeView(id));
    const QStringList calls = probe->property("calls").toStringList();
    for (const char* call :
         {"newCameraConnected", "activeViewChanged", "viewGotNewImage", "viewAboutToClose"}) {
        EXPECT_TRUE(calls.contains(QStringLiteral("threw in ") + QLatin1String(call))) << call;
    }
}

TEST_F(ViewerSession, BrokenPluginsAreNamedAndTheRestStarts) {
    const QString folder = m_folder.filePath("plugins");
    ASSERT_TRUE(QDir().mkpath(folder));
    QFile broken(folder + "/libbroken.so");
    ASSERT_TRUE(broken.open(QIODevice::WriteOnly));
    broken.write("this is no library");
    broken.close();
    QFile truncated(folder + "/libtruncated.so");
    QFile whole(QStringLiteral(ZU_PROBE_PLUGIN));
    ASSERT_TRUE(whole.open(QIODevice::ReadOnly) && truncated.open(QIODevice::WriteOnly));
    truncated.write(whole.read(3000));
    truncated.close();
    ASSERT_TRUE(QFile::copy(ZU_PROBE_PLUGIN, folder + "/libzprobe.so"));
    m_options.pluginPaths = QStringList{folder, m_folder.filePath("nowhere")};
    m_options.cameras = QStringList{"sim:grey"};
    ASSERT_TRUE(start());
    const QString problems = m_session->plugins()->problems().join('\n');
    EXPECT_TRUE(problems.contains("libbroken.so")) << qPrintable(problems);
    EXPECT_TRUE(problems.contains("libtruncated.so")) << qPrintable(problems);
    EXPECT_TRUE(problems.contains("nowhere")) << qPrintable(problems);
    EXPECT_EQ(m_session->plugins()->problems().size(), 3);
    EXPECT_TRUE(m_session->plugins()->plugins().last().fileName.endsWith("libzprobe.so"));
    EXPECT_TRUE(waitForFrame(firstView()));
}

} // namespace
