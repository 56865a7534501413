#include "host/viewer/base/SaveFileName.h"

#include "tests/support/ModalDriver.h"

#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTimer>
#include <gtest/gtest.h>
#include <memory>

namespace {

const QList<SkSaveFormat> kFormats = {{"PNG (*.png)", "png"}, {"TIFF (*.tif)", "tif"}};

class SaveFileName : public ::testing::Test {
protected:
    void typeAndAccept(QWidget* dialog, const QString& name) {
        auto* edit = dialog->findChild<QLineEdit*>("fileNameEdit");
        ASSERT_NE(edit, nullptr);
        edit->setText(name);
        QMetaObject::invokeMethod(dialog, "accept");
    }
    QString path(const char* name) const { return QDir(m_folder.path()).filePath(QLatin1String(name)); }
    QString ask(EkUnknownSuffix unknownSuffix = EkUnknownSuffix::Accept, QWidget* pParent = nullptr) {
        return ask(kFormats, unknownSuffix, pParent);
    }
    QString ask(const QList<SkSaveFormat>& formats, EkUnknownSuffix unknownSuffix,
                QWidget* pParent = nullptr) {
        return askSaveFileName(
            pParent,
            {.title = "Save", .start = m_folder.path(), .formats = formats, .unknownSuffix = unknownSuffix},
            m_format);
    }

    QTemporaryDir m_folder;
    ModalDriver m_driver;
    int m_format = -1;
};

TEST_F(SaveFileName, AFileIsNotReplacedUnaskedWhenItsSuffixWasNotTyped) {
    QFile file(path("one.png"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.close();
    m_driver.onBox = [](QMessageBox* box) { box->button(QMessageBox::No)->click(); };
    m_driver.expectWindow([this](QWidget* dialog) {
        typeAndAccept(dialog, "one");
        EXPECT_TRUE(dialog->isVisible());
        static_cast<QDialog*>(dialog)->reject();
    });
    EXPECT_EQ(ask(), QString());
    ASSERT_EQ(m_driver.boxes.size(), 1);
    EXPECT_TRUE(m_driver.boxes[0].text.contains("one.png")) << qPrintable(m_driver.boxes[0].text);
}

TEST_F(SaveFileName, TheSuffixIsThatOfTheChosenFormat) {
    m_driver.expectWindow([this](QWidget* dialog) { typeAndAccept(dialog, "two"); });
    EXPECT_EQ(ask(), path("two.png"));
    EXPECT_EQ(m_format, 0);
    m_driver.expectWindow([this](QWidget* dialog) {
        auto* types = dialog->findChild<QComboBox*>("fileTypeCombo");
        ASSERT_NE(types, nullptr);
        QTest::keyClick(types, Qt::Key_Down);
        typeAndAccept(dialog, "two");
    });
    EXPECT_EQ(ask(), path("two.tif"));
    EXPECT_EQ(m_format, 1);
    EXPECT_TRUE(m_driver.boxes.isEmpty());
}

TEST_F(SaveFileName, ATypedSuffixStays) {
    m_driver.expectWindow([this](QWidget* dialog) { typeAndAccept(dialog, "three.dat"); });
    EXPECT_EQ(ask(), path("three.dat"));
}

TEST_F(SaveFileName, ATypedSuffixDecidesTheFormat) {
    const QList<SkSaveFormat> formats = {{"PNG, as seen (*.png)", "png", 0},
                                         {"JPEG, as seen (*.jpg)", "jpg", 0},
                                         {"PNG, as measured (*.png)", "png", 1},
                                         {"TIFF, as measured (*.tif)", "tif", 1}};
    const auto format = [&](const QString& name, int steps) {
        m_driver.expectWindow([this, name, steps](QWidget* dialog) {
            for (int i = 0; i < steps; ++i) {
                QTest::keyClick(dialog->findChild<QComboBox*>("fileTypeCombo"), Qt::Key_Down);
            }
            typeAndAccept(dialog, name);
        });
        EXPECT_EQ(ask(formats, EkUnknownSuffix::Refuse), path(qPrintable(name)));
        return m_format;
    };
    EXPECT_EQ(format("a.jpg", 0), 1);
    EXPECT_EQ(format("a.JPEG", 0), 1);
    EXPECT_EQ(format("a.png", 1), 0);
    EXPECT_EQ(format("a.tiff", 0), 3);
    EXPECT_EQ(format("a.tif", 3), 3);
    // With a format of measured values chosen, a measured one is used.
    EXPECT_EQ(format("a.png", 3), 2);
    EXPECT_EQ(format("a.png", 2), 2);
    EXPECT_TRUE(m_driver.boxes.isEmpty());
}

TEST_F(SaveFileName, AnUnknownSuffixIsRefusedAndTheDialogOpensAgain) {
    m_driver.expectWindow([this](QWidget* dialog) { typeAndAccept(dialog, "four.bmp"); });
    // The same dialog again.
    QTimer again;
    QObject::connect(&again, &QTimer::timeout, &again, [this] {
        QWidget* const dialog = QApplication::activeModalWidget();
        if (m_driver.boxes.size() == 1 && qobject_cast<QFileDialog*>(dialog) != nullptr) {
            EXPECT_EQ(dialog->findChild<QLineEdit*>("fileNameEdit")->text(), "four.bmp");
            typeAndAccept(dialog, "four.png");
        }
    });
    again.start(20);
    EXPECT_EQ(ask(EkUnknownSuffix::Refuse), path("four.png"));
    again.stop();
    ASSERT_EQ(m_driver.boxes.size(), 1);
    EXPECT_EQ(m_driver.boxes[0].text.toStdString(),
              "\"four.bmp\": files with the extension .bmp cannot be written here.\n\n"
              "Possible extensions: .png, .tif.");
}

TEST_F(SaveFileName, ANumberAfterADotIsNoSuffix) {
    EXPECT_EQ(fileSuffix("room 1.5"), "");
    EXPECT_EQ(fileSuffix("2026-11-21 14.30.00 Depth"), "");
    EXPECT_EQ(fileSuffix("room"), "");
    EXPECT_EQ(fileSuffix("a.folder/room"), "");
    EXPECT_EQ(fileSuffix("/a.b/Room.1.TIFF"), "tiff");
    EXPECT_EQ(fileSuffix("a.mp4"), "mp4");
    QFile file(path("room 1.5.png"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.close();
    m_driver.expectWindow([this](QWidget* dialog) { typeAndAccept(dialog, "room 1.4"); });
    EXPECT_EQ(ask(EkUnknownSuffix::Refuse), path("room 1.4.png"));
    EXPECT_TRUE(m_driver.boxes.isEmpty());
    // An existing file is not replaced without confirmation.
    m_driver.onBox = [](QMessageBox* box) { box->button(QMessageBox::Yes)->click(); };
    m_driver.expectWindow([this](QWidget* dialog) { typeAndAccept(dialog, "room 1.5"); });
    EXPECT_EQ(ask(EkUnknownSuffix::Refuse), path("room 1.5.png"));
    ASSERT_EQ(m_driver.boxes.size(), 1);
    EXPECT_TRUE(m_driver.boxes[0].text.startsWith("room 1.5.png already exists"));
}

TEST_F(SaveFileName, NothingIsSavedWhenTheParentIsDeletedMeanwhile) {
    auto parent = std::make_unique<QWidget>();
    m_driver.expectWindow([&parent](QWidget*) { parent.reset(); });
    EXPECT_EQ(ask(EkUnknownSuffix::Accept, parent.get()), QString());
}

} // namespace
