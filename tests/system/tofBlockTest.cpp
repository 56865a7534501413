#include "host/viewer/panels/chain/CkChainPanel.h"
#include "host/viewer/panels/chain/CkChainTree.h"
#include "host/viewer/shell/CkChainFileController.h"
#include "tests/system/SystemFixture.h"

#include <QRadioButton>
#include <QTextBrowser>

// The processing block in the viewer's chain panel.

namespace {

const QString kToFBlock = QStringLiteral("com.orvane.Pictor.CkToFProcessCnbl");

/// A running wave camera with the block after it.
class ToFBlock : public SystemFixture {
protected:
    void SetUp() override {
        SystemFixture::SetUp();
        ASSERT_TRUE(start());
        camera = openWaveCamera();
        ASSERT_TRUE(cameras()->start(camera));
        ASSERT_TRUE(waitForFrame(firstView()));
        panel = window()->chainPanel();
        block = panel->addBlock(kToFBlock, false);
        ASSERT_NE(block, nullptr);
    }

    void* camera = nullptr;
    CkChainPanel* panel = nullptr;
    CkChainable* block = nullptr;
};

TEST_F(ToFBlock, BlockIsAddedConfiguredExplainedAndSavedFromThePanel) {
    EXPECT_EQ(block->title(), "ToF Amplitude");
    QCoreApplication::processEvents();
    panel->tree()->selectBlock(block);
    panel->configureSelected();
    auto* dialog = window()->findChild<QDialog*>("configureBlockDialog");
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(dialog->windowTitle(), "ToF Image Processing");
    const QList<QRadioButton*> choices = dialog->findChildren<QRadioButton*>();
    ASSERT_EQ(choices.size(), 7);
    for (QRadioButton* choice : choices) {
        if (choice->text().startsWith("Phase shift (depth)")) {
            choice->click();
        }
    }
    EXPECT_EQ(block->title(), "ToF Depth");
    EXPECT_TRUE(block->chain()->started());
    dialog->close();
    panel->helpSelected();
    auto* help = window()->findChild<QDialog*>("blockHelpDialog");
    ASSERT_NE(help, nullptr);
    EXPECT_TRUE(help->findChild<QTextBrowser*>()->toPlainText().startsWith("Processes ToF images."));
    help->close();

    const QString file = m_folder.filePath("depth.zuchain");
    QString error;
    ASSERT_TRUE(window()->chainFiles()->saveActive(file, error)) << qPrintable(error);
    cameras()->closeAllCameras();
    ASSERT_TRUE(window()->chainFiles()->open(file, error)) << qPrintable(error);
    EXPECT_EQ(blockTitles(), QStringList{"ToF Depth"});
    EXPECT_TRUE(waitForFrame(firstView()));
}

TEST_F(ToFBlock, ErrorOfTheBlockShowsWhileTheCameraSendsTheWrongPictures) {
    QCoreApplication::processEvents();
    EXPECT_EQ(panel->tree()->shownError(block), "");
    set(camera, "tof_readout_mode", 0);
    EXPECT_TRUE(QTest::qWaitFor(
        [this] { return panel->tree()->shownError(block).startsWith("The input image must be RAWX2 image"); },
        30'000));
    set(camera, "tof_readout_mode", 4);
    EXPECT_TRUE(QTest::qWaitFor([this] { return panel->tree()->shownError(block).isEmpty(); }, 30'000));
    QSignalSpy frames(firstView(), &CkMdiView::receivedFrame);
    EXPECT_TRUE(frames.wait(30'000));
}

} // namespace
