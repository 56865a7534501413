#include "host/viewer/base/ChainFile.h"
#include "host/viewer/panels/chain/CkChainTree.h"
#include "host/viewer/shell/CkChainFileController.h"
#include "tests/host/viewer/ViewerBlocks.h"
#include "tests/host/viewer/ViewerFixture.h"
#include "zuCore/CkRTTI.h"

#include <QFile>
#include <QProgressDialog>
#include <QThread>
#include <QTimer>
#include <QTreeWidget>
#include <gmock/gmock.h>
#include <sys/stat.h>

using testing::HasSubstr;

/// Loads its settings slowly.
class CkSlowBlock : public CkDemoBlock {
    Q_OBJECT
    Q_CLASSINFO("UniqueID", "test.CkSlowBlock")

public:
    Q_INVOKABLE CkSlowBlock() = default;
    bool loadSettings(const QDomElement& element) override {
        QThread::msleep(5);
        return CkDemoBlock::loadSettings(element);
    }
};

namespace {

class LargeChainFile : public ViewerFixture {
protected:
    void SetUp() override {
        ViewerFixture::SetUp();
        for (const QMetaObject* block : {&CkDemoBlock::staticMetaObject, &CkSlowBlock::staticMetaObject}) {
            ASSERT_TRUE(CkRTTI::instance()->registerClass(nullptr, block, QStringLiteral("CkChainable")));
        }
        ASSERT_TRUE(start());
    }

    static CkChain* chain() { return CkChainManager::instance()->chains().value(0); }

    /// Every block has a row in the chain panel, also after the panel has processed all changes.
    void expectAllListed(qsizetype count) {
        QCoreApplication::processEvents();
        const auto* const tree = window()->findChild<CkChainTree*>();
        ASSERT_NE(chain(), nullptr);
        const QList<CkChainable*> blocks = chain()->blocks();
        ASSERT_EQ(blocks.size(), count);
        for (const CkChainable* block : blocks) {
            const QTreeWidgetItem* const item = tree->itemOf(block);
            ASSERT_NE(item, nullptr);
            ASSERT_EQ(item->text(CkChainTree::BlockColumn), block->title());
            ASSERT_TRUE(item->parent() == nullptr || item->parent()->isExpanded());
        }
    }

    QString write(const QString& blocks) const {
        QFile file(m_folder.filePath(QStringLiteral("large.zuchain")));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(QStringLiteral("<zuchainfile version=\"1\"><chain version=\"1\">%1</chain></zuchainfile>")
                       .arg(blocks)
                       .toUtf8());
        return file.fileName();
    }

    static QString camera(int id) {
        return QStringLiteral(
                   "<block class=\"com.orvane.Pictor.CkCameraSource\" id=\"%1\" camera=\"sim:grey\"/>")
            .arg(id);
    }

    static QString demo(int id, const QString& predecessors) {
        return QStringLiteral(
                   "<block class=\"test.CkDemoBlock\" id=\"%1\" predecessors=\"%2\" setting=\"%1\"/>")
            .arg(id)
            .arg(predecessors);
    }

    QString m_error;
};

} // namespace

TEST_F(LargeChainFile, ARowOf999BlocksOpensAndIsListed) {
    QString row = camera(0);
    for (int i = 1; i < 999; ++i) {
        row += demo(i, QString::number(i - 1));
    }
    ASSERT_TRUE(window()->chainFiles()->open(write(row), m_error)) << qPrintable(m_error);
    EXPECT_EQ(area()->views().size(), 1);
    expectAllListed(999);
}

TEST_F(LargeChainFile, OnlyTheFirstOfManyEndsGetAView) {
    QString fan = camera(0);
    for (int i = 1; i < 999; ++i) {
        fan += demo(i, QStringLiteral("0"));
    }
    ASSERT_TRUE(window()->chainFiles()->open(write(fan), m_error)) << qPrintable(m_error);
    ASSERT_EQ(area()->views().size(), 16);
    const QList<CkChainable*> blocks = chain()->blocks();
    for (int i = 0; i < 16; ++i) {
        EXPECT_EQ(area()->views()[i]->dataProvider(), blocks[i + 1]);
    }
    expectAllListed(999);
}

TEST_F(LargeChainFile, DiamondsAreWalkedOnce) {
    QString diamonds = camera(0);
    int id = 0;
    for (int level = 0; level < 18; ++level) {
        diamonds += demo(id + 1, QString::number(id)) + demo(id + 2, QString::number(id)) +
                    demo(id + 3, QStringLiteral("%1 %2").arg(id + 1).arg(id + 2));
        id += 3;
    }
    CkChain* const loaded = ChainFile::load(write(diamonds), m_error);
    ASSERT_NE(loaded, nullptr) << qPrintable(m_error);
    ASSERT_EQ(loaded->blocks().size(), 55);
    // The view queries the cameras of all blocks on all paths to its block.
    auto* const view = new CkImageView(loaded->blocks().last());
    area()->addView(view);
    EXPECT_TRUE(view->cameraHandles().isEmpty());
    expectAllListed(55);
}

TEST_F(LargeChainFile, TooManySourcesAreRefused) {
    QString cameras;
    for (int i = 0; i < 100; ++i) {
        cameras += camera(i);
    }
    CkChain* const loaded = ChainFile::load(write(cameras), m_error);
    ASSERT_NE(loaded, nullptr) << qPrintable(m_error);
    CkChainManager::instance()->closeChain(loaded);
    EXPECT_FALSE(window()->chainFiles()->open(write(cameras + camera(100)), m_error));
    EXPECT_THAT(m_error.toStdString(),
                HasSubstr("block\" number 101 in line 1: the chain has more than 100 sources"));
    EXPECT_TRUE(CkChainManager::instance()->chains().isEmpty());
}

TEST_F(LargeChainFile, BlocksOfAHundredThousandAttributesAreRefused) {
    QString attributes;
    for (int i = 0; i < 100'000; ++i) {
        attributes += QStringLiteral(" a%1='1'").arg(i);
    }
    EXPECT_FALSE(window()->chainFiles()->open(write(QStringLiteral("<block%1/>").arg(attributes)), m_error));
    EXPECT_THAT(m_error.toStdString(), HasSubstr("large.zuchain: line 1"));
    EXPECT_THAT(m_error.toStdString(), HasSubstr("more than 1000 attributes"));
}

TEST_F(LargeChainFile, PipesAndDevicesAreRefusedAsRecordings) {
    const QString pipe = m_folder.filePath(QStringLiteral("pipe.tif"));
    ASSERT_EQ(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    for (const QString& name : {pipe, QStringLiteral("/dev/zero"), m_folder.path()}) {
        const QString block =
            QStringLiteral("<block class=\"com.orvane.Pictor.CkVideoSource\" id=\"0\" file=\"%1\"/>")
                .arg(name);
        EXPECT_FALSE(window()->chainFiles()->open(write(block), m_error)) << qPrintable(name);
        EXPECT_THAT(m_error.toStdString(), HasSubstr("large.zuchain"));
        EXPECT_THAT(m_error.toStdString(),
                    HasSubstr("\"" + name.toStdString() + "\": This is no ordinary file."));
        EXPECT_TRUE(CkChainManager::instance()->chains().isEmpty());
    }
    // A missing recording, however, is not an error.
    const QString missing =
        QStringLiteral("<block class=\"com.orvane.Pictor.CkVideoSource\" id=\"0\" file=\"/nowhere/a.tif\"/>");
    EXPECT_TRUE(window()->chainFiles()->open(write(missing), m_error)) << qPrintable(m_error);
}

TEST_F(LargeChainFile, ProgressCountsBlocksAndCallsOff) {
    const QString file = write(camera(0) + demo(1, "0") + demo(2, "1") + demo(3, "2"));
    QList<QPair<qsizetype, qsizetype>> told;
    CkChain* loaded = ChainFile::load(file, m_error, [&](qsizetype read, qsizetype all) {
        told.append({read, all});
        return true;
    });
    ASSERT_NE(loaded, nullptr) << qPrintable(m_error);
    EXPECT_EQ(told, (QList<QPair<qsizetype, qsizetype>>{{1, 4}, {2, 4}, {3, 4}, {4, 4}}));
    CkChainManager::instance()->closeChain(loaded);
    told.clear();
    loaded = ChainFile::load(file, m_error, [&](qsizetype read, qsizetype all) {
        told.append({read, all});
        return read < 2;
    });
    EXPECT_EQ(loaded, nullptr);
    EXPECT_EQ(told.size(), 2);
    EXPECT_THAT(m_error.toStdString(), HasSubstr("called off"));
    EXPECT_TRUE(CkChainManager::instance()->chains().isEmpty());
}

TEST_F(LargeChainFile, ADialogCallsTheLoadingOff) {
    QString slow = camera(0);
    for (int i = 1; i < 900; ++i) {
        slow += QStringLiteral("<block class=\"test.CkSlowBlock\" id=\"%1\" predecessors=\"0\"/>").arg(i);
    }
    QTimer press;
    bool pressed = false;
    QObject::connect(&press, &QTimer::timeout, [&] {
        if (auto* const dialog = window()->findChild<QProgressDialog*>(QStringLiteral("openingChain"))) {
            EXPECT_EQ(dialog->maximum(), 900);
            EXPECT_THAT(dialog->labelText().toStdString(), HasSubstr("large.zuchain\": block "));
            pressed = true;
            dialog->cancel();
        }
    });
    press.start(1);
    m_error = QStringLiteral("not touched");
    EXPECT_FALSE(window()->chainFiles()->open(write(slow), m_error));
    EXPECT_TRUE(pressed);
    EXPECT_TRUE(m_error.isEmpty()) << qPrintable(m_error);
    EXPECT_TRUE(CkChainManager::instance()->chains().isEmpty());
    EXPECT_EQ(CkCameraManager::instance()->openedCameraCount(), 0);
    EXPECT_EQ(window()->findChild<QProgressDialog*>(QStringLiteral("openingChain")), nullptr);
}

#include "CkLargeChainFileTest.moc"
