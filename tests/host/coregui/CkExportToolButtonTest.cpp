#include "zuCoreGui/CkExportToolButton.h"
#include "tests/support/FakeAppDelegate.h"
#include "tests/support/ModalDriver.h"

#include <QClipboard>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>
#include <memory>

namespace {
const QString kFilter = QStringLiteral("PLY (*.ply)");
const QByteArray kText = "ply\nformat ascii 1.0\n1.5 -2 0.25\n";

QByteArray contents(const QString& sFile) {
    QFile file(sFile);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no such file");
}

class CkExportToolButtonTest : public testing::Test {
protected:
    CkExportToolButtonTest() {
        QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
        delegate.directory = folder.path();
    }

    void expectName(const QString& sName) {
        driver.expectWindow([this, sName](QWidget* pWindow) {
            auto* dialog = qobject_cast<QFileDialog*>(pWindow);
            ASSERT_NE(dialog, nullptr);
            startedIn = dialog->directory().absolutePath();
            filters = dialog->nameFilters();
            if (sName.isEmpty()) {
                QTest::keyClick(dialog, Qt::Key_Escape);
                return;
            }
            auto* name = dialog->findChild<QLineEdit*>("fileNameEdit");
            ASSERT_NE(name, nullptr);
            // Not typed, because that would open a list of completions, which consumes the next Enter.
            name->setText(sName);
            QTest::keyClick(name, Qt::Key_Return);
        });
    }

    bool exportToFile() {
        return CkExportToolButton::exportText(kText, CkExportToolButton::File, nullptr, kFilter);
    }

    QTemporaryDir folder;
    FakeAppDelegate delegate;
    ModalDriver driver;
    QString startedIn;
    QStringList filters;
};
} // namespace

TEST_F(CkExportToolButtonTest, NumbersOfTheWaysArePartOfTheInterface) {
    EXPECT_EQ(int(CkExportToolButton::Clipboard), 1);
    EXPECT_EQ(int(CkExportToolButton::File), 8);
}

TEST_F(CkExportToolButtonTest, WritesTheTextAsItIsAndRemembersTheFolder) {
    ASSERT_TRUE(QDir(folder.path()).mkdir("inner"));
    expectName(folder.filePath("inner/cloud.ply"));
    EXPECT_TRUE(exportToFile());
    EXPECT_EQ(startedIn, folder.path());
    EXPECT_EQ(filters, QStringList{kFilter});
    EXPECT_EQ(contents(folder.filePath("inner/cloud.ply")), kText);
    EXPECT_EQ(delegate.directory, folder.filePath("inner"));
    EXPECT_TRUE(driver.boxes.isEmpty());
}

TEST_F(CkExportToolButtonTest, AddsTheFiltersSuffixToANameWithoutOne) {
    expectName("cloud");
    EXPECT_TRUE(exportToFile());
    EXPECT_EQ(contents(folder.filePath("cloud.ply")), kText);
}

TEST_F(CkExportToolButtonTest, KeepsASuffixOfTheUsersOwn) {
    expectName("cloud.txt");
    EXPECT_TRUE(exportToFile());
    EXPECT_EQ(contents(folder.filePath("cloud.txt")), kText);
}

TEST_F(CkExportToolButtonTest, CancellingWritesNothingAndKeepsTheFolder) {
    expectName(QString());
    EXPECT_FALSE(exportToFile());
    EXPECT_EQ(driver.pending(), 0);
    EXPECT_TRUE(QDir(folder.path()).isEmpty());
    EXPECT_EQ(delegate.directory, folder.path());
    EXPECT_TRUE(delegate.calls.isEmpty());
    EXPECT_TRUE(driver.boxes.isEmpty());
}

TEST_F(CkExportToolButtonTest, AFileThatCannotBeWrittenIsToldWithItsNameAndTheReason) {
    // No user can create files there; root can write to read-only folders.
    const QString sName = QStringLiteral("/proc/cloud.ply");
    expectName(sName);
    EXPECT_FALSE(exportToFile());
    ASSERT_EQ(driver.boxes.size(), 1);
    EXPECT_EQ(driver.boxes[0].title, "Error");
    EXPECT_EQ(driver.boxes[0].icon, QMessageBox::Critical);
    const QStringList lines = driver.boxes[0].text.split('\n');
    ASSERT_EQ(lines.size(), 2);
    EXPECT_TRUE(lines[0].contains(sName));
    EXPECT_TRUE(lines[1].contains("No such file") || lines[1].contains("denied")) << lines[1].toStdString();
}

TEST_F(CkExportToolButtonTest, AFailureLeavesTheFileThatWasThereUntouched) {
    const QString sFile = folder.filePath("cloud.ply");
    QFile before(sFile);
    ASSERT_TRUE(before.open(QIODevice::WriteOnly));
    before.write("before");
    before.close();
    expectName("cloud.ply");
    // Confirms overwriting, and replaces the file by a folder before that.
    driver.onBox = [&](QMessageBox* pBox) {
        if (pBox->icon() == QMessageBox::Warning) {
            ASSERT_TRUE(QFile::rename(sFile, folder.filePath("kept")));
            ASSERT_TRUE(QDir(folder.path()).mkdir("cloud.ply"));
            ASSERT_TRUE(QFile::rename(folder.filePath("kept"), folder.filePath("cloud.ply/kept")));
            QTest::mouseClick(pBox->button(QMessageBox::Yes), Qt::LeftButton);
        } else {
            QTest::keyClick(pBox, Qt::Key_Return);
        }
    };
    EXPECT_FALSE(exportToFile());
    ASSERT_EQ(driver.boxes.size(), 2);
    EXPECT_TRUE(driver.boxes[1].text.contains("cloud.ply"));
    EXPECT_EQ(contents(folder.filePath("cloud.ply/kept")), "before");
}

TEST_F(CkExportToolButtonTest, OverwritesAFileAfterTheUserAgreed) {
    QFile before(folder.filePath("cloud.ply"));
    ASSERT_TRUE(before.open(QIODevice::WriteOnly));
    before.write("before");
    before.close();
    expectName("cloud");
    driver.onBox = [](QMessageBox* pBox) {
        QTest::mouseClick(pBox->button(QMessageBox::Yes), Qt::LeftButton);
    };
    EXPECT_TRUE(exportToFile());
    EXPECT_EQ(driver.boxes.size(), 1);
    EXPECT_EQ(contents(folder.filePath("cloud.ply")), kText);
}

TEST_F(CkExportToolButtonTest, CopiesToTheClipboardAsUtf8) {
    const QString sText = QStringLiteral("1.5 µm");
    EXPECT_TRUE(
        CkExportToolButton::exportText(sText.toUtf8(), CkExportToolButton::Clipboard, nullptr, kFilter));
    EXPECT_EQ(QGuiApplication::clipboard()->text(), sText);
}

TEST_F(CkExportToolButtonTest, AnUnknownWayExportsNothing) {
    EXPECT_FALSE(CkExportToolButton::exportText(kText, 3, nullptr, kFilter));
    EXPECT_TRUE(driver.boxes.isEmpty());
}

TEST_F(CkExportToolButtonTest, WorksWithoutAnApplication) {
    IkAppDelegate::setInstance(nullptr);
    expectName(folder.filePath("cloud.ply"));
    EXPECT_TRUE(exportToFile());
    EXPECT_EQ(contents(folder.filePath("cloud.ply")), kText);
}

TEST_F(CkExportToolButtonTest, TheParentMayCloseWhileTheFileDialogIsOpen) {
    auto parent = std::make_unique<QWidget>();
    driver.expectWindow([&](QWidget* pWindow) {
        EXPECT_EQ(pWindow->parentWidget(), parent.get());
        parent.reset();
    });
    EXPECT_FALSE(CkExportToolButton::exportText(kText, CkExportToolButton::File, parent.get(), kFilter));
    EXPECT_EQ(parent, nullptr);
    EXPECT_EQ(driver.pending(), 0);
    EXPECT_TRUE(QDir(folder.path()).isEmpty());
    EXPECT_TRUE(delegate.calls.isEmpty());
}

TEST_F(CkExportToolButtonTest, TheParentMayCloseWhileAnErrorIsTold) {
    auto parent = std::make_unique<QWidget>();
    expectName(QStringLiteral("/proc/cloud.ply"));
    driver.onBox = [&](QMessageBox* pBox) {
        EXPECT_EQ(pBox->parentWidget(), parent.get());
        parent.reset();
    };
    EXPECT_FALSE(CkExportToolButton::exportText(kText, CkExportToolButton::File, parent.get(), kFilter));
    EXPECT_EQ(parent, nullptr);
    EXPECT_EQ(driver.boxes.size(), 1);
}

TEST_F(CkExportToolButtonTest, TheMenuTellsTheWayThatTheUserChose) {
    CkExportToolButton button;
    QSignalSpy requests(&button, SIGNAL(exportRequested(int)));
    ASSERT_EQ(button.menu()->actions().size(), 2);
    button.menu()->actions().at(0)->trigger();
    button.menu()->actions().at(1)->trigger();
    ASSERT_EQ(requests.count(), 2);
    EXPECT_EQ(requests.at(0).at(0).toInt(), 1);
    EXPECT_EQ(requests.at(1).at(0).toInt(), 8);
}
