#include "host/viewer/shell/CkChainFileController.h"
#include "host/viewer/base/ChainFile.h"
#include "host/viewer/shell/CkFileMenu.h"
#include "tests/host/viewer/panels/chain/ChainPanelFixture.h"
#include "zuCore/CkCameraSource.h"
#include "zuCoreGui/IkAppDelegate.h"

#include <QDropEvent>
#include <QFile>
#include <QMenu>
#include <QMessageBox>
#include <QMimeData>

namespace {

TEST_F(ChainPanel, ChainFileRestoresTheSameBlocksWithTheirSettings) {
    auto* first = qobject_cast<CkDemoBlock*>(panel()->addBlock(kDemo, false));
    ASSERT_NE(first, nullptr);
    first->m_iSetting = 17;
    settle();
    tree()->selectBlock(chain()->imageSources().first());
    auto* branch = qobject_cast<CkDemoBlock*>(panel()->addBlock(kDemo, true));
    ASSERT_NE(branch, nullptr);
    branch->m_iSetting = 23;
    const QString file = m_folder.filePath("test.zuchain");
    QString error;
    ASSERT_TRUE(window()->chainFiles()->saveActive(file, error)) << qPrintable(error);
    cameras()->closeAllCameras();
    ASSERT_TRUE(area()->views().isEmpty());

    // The camera is opened again for the file.
    ASSERT_TRUE(window()->chainFiles()->open(file, error)) << qPrintable(error);
    ASSERT_EQ(CkChainManager::instance()->chains().size(), 1);
    const CkChain* loaded = CkChainManager::instance()->chains().first();
    QList<int> settings;
    for (const CkChainable* block : loaded->blocks()) {
        if (const auto* demo = qobject_cast<const CkDemoBlock*>(block)) {
            settings.append(demo->m_iSetting);
        }
    }
    EXPECT_EQ(settings, QList<int>({17, 23}));
    ASSERT_EQ(area()->views().size(), 2);
    for (CkMdiView* view : area()->views()) {
        EXPECT_TRUE(waitForFrame(view));
    }
}

TEST_F(ChainPanel, ChainFileOfTwoCamerasStartsBoth) {
    void* wave = cameras()->openCamera("sim:wave", false);
    ASSERT_NE(wave, nullptr);
    CkChain* both = chain();
    both->stop();
    ASSERT_TRUE(CkChainManager::instance()->insertAfter(both, new CkCameraSource(wave), nullptr));
    const QString file = m_folder.filePath("two.zuchain");
    QString error;
    ASSERT_TRUE(ChainFile::save(both, file, error)) << qPrintable(error);
    cameras()->closeAllCameras();

    ASSERT_TRUE(window()->chainFiles()->open(file, error)) << qPrintable(error);
    const QList<void*> opened = CkCameraManager::instance()->openedCameras();
    EXPECT_EQ(opened.size(), 2);
    for (void* camera : opened) {
        EXPECT_TRUE(CkCameraManager::instance()->isAcquiring(camera));
        EXPECT_NE(cameras()->panel(camera), nullptr);
    }
    ASSERT_EQ(area()->views().size(), 2);
    for (CkMdiView* view : area()->views()) {
        EXPECT_TRUE(waitForFrame(view));
    }
}

TEST_F(ChainPanel, DroppedAndRecentFilesOpen) {
    const QString file = m_folder.filePath("drop.zuchain");
    QString error;
    ASSERT_TRUE(window()->chainFiles()->saveActive(file, error)) << qPrintable(error);
    QMimeData content;
    content.setUrls({QUrl::fromLocalFile(file), QUrl::fromLocalFile(m_folder.filePath("none.zuchain"))});
    QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &content, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(window(), &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent drop(QPointF(5, 5), Qt::CopyAction, &content, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(window(), &drop);
    EXPECT_TRUE(drop.isAccepted());
    settle();
    EXPECT_EQ(CkChainManager::instance()->chains().size(), 2);
    auto* box = window()->findChild<QMessageBox*>("openChainBox");
    ASSERT_NE(box, nullptr);
    EXPECT_TRUE(box->text().contains("none.zuchain"));
    box->close();
    EXPECT_EQ(CkFileMenu::recentFiles(), QStringList{file});
    emit window()->menu(IkAppDelegate::FileMenu)->aboutToShow();
    auto* recent = window()->findChild<QMenu*>("menuRecentChains");
    ASSERT_EQ(recent->actions().size(), 1);
    recent->actions().first()->trigger();
    EXPECT_EQ(CkChainManager::instance()->chains().size(), 3);
}

TEST_F(ChainPanel, AChainFileThatCannotBeLoadedLeavesNoCameraOpen) {
    const QString fileName = m_folder.filePath("unknown.zuchain");
    QFile file(fileName);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(
        "<zuchainfile version=\"1\"><chain version=\"1\">"
        "<block class=\"com.orvane.Pictor.CkCameraSource\" id=\"0\" predecessors=\"\" camera=\"sim:wave\"/>"
        "<block class=\"com.orvane.Pictor.CkCameraSource\" id=\"1\" predecessors=\"\" camera=\"sim:grey\"/>"
        "<block class=\"not.there\" id=\"2\" predecessors=\"0\"/></chain></zuchainfile>");
    file.close();
    const QList<void*> before = CkCameraManager::instance()->openedCameras();
    ASSERT_EQ(before.size(), 1);
    QString error;
    EXPECT_FALSE(window()->chainFiles()->open(fileName, error));
    EXPECT_TRUE(error.contains("not.there")) << qPrintable(error);
    EXPECT_EQ(CkCameraManager::instance()->openedCameras(), before);
    EXPECT_NE(cameras()->panel(before.first()), nullptr);
    EXPECT_EQ(CkChainManager::instance()->chains().size(), 1);
}

TEST_F(ChainPanel, UnusableChainFilesAreRefusedWithTheirName) {
    const auto write = [this](const char* name, const QByteArray& content) {
        const QString fileName = m_folder.filePath(QLatin1String(name));
        QFile file(fileName);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        return fileName;
    };
    const qsizetype before = CkChainManager::instance()->chains().size();
    const QStringList files = {
        write("empty.zuchain", ""),
        write("text.zuchain", "no xml at all"),
        write("foreign.zuchain", "<svg version=\"1\"/>"),
        write("newer.zuchain", "<zuchainfile version=\"9\"><chain/></zuchainfile>"),
        write("hollow.zuchain", "<zuchainfile version=\"1\"><chain/></zuchainfile>"),
        write("unknown.zuchain",
              "<zuchainfile version=\"1\"><chain><block class=\"x\"/></chain></zuchainfile>"),
        write("deep.zuchain", "<zuchainfile version=\"1\"><chain>" + QByteArray("<a>").repeated(500'000)),
        m_folder.filePath("missing.zuchain")};
    for (const QString& file : files) {
        QString error;
        EXPECT_FALSE(window()->chainFiles()->open(file, error)) << qPrintable(file);
        EXPECT_TRUE(error.contains(QFileInfo(file).fileName())) << qPrintable(error);
    }
    EXPECT_EQ(CkChainManager::instance()->chains().size(), before);
    QString error;
    EXPECT_FALSE(window()->chainFiles()->saveActive(m_folder.filePath("no/such/folder/a.zuchain"), error));
    EXPECT_TRUE(error.contains("a.zuchain"));
}

} // namespace
