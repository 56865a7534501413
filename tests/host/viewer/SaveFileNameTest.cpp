#include "files/SaveFileName.h"

#include "ModalDriver.h"

#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <memory>

namespace {

const QList<SkSaveForm> kForms = {{"PNG (*.png)", "png"}, {"TIFF (*.tif)", "tif"}};

class SaveFileName : public ::testing::Test {
protected:
    void typeAndAccept(QWidget* dialog, const QString& name) {
        auto* edit = dialog->findChild<QLineEdit*>("fileNameEdit");
        ASSERT_NE(edit, nullptr);
        edit->setText(name);
        QMetaObject::invokeMethod(dialog, "accept");
    }
    QString path(const char* name) const { return QDir(m_folder.path()).filePath(QLatin1String(name)); }
    QString ask() { return askSaveFileName(nullptr, "Save", m_folder.path(), kForms, m_iForm); }

    QTemporaryDir m_folder;
    ModalDriver m_driver;
    int m_iForm = -1;
};

TEST_F(SaveFileName, AFileIsNotReplacedUnaskedWhenItsEndingWasNotTyped) {
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

TEST_F(SaveFileName, TheEndingIsThatOfTheChosenForm) {
    m_driver.expectWindow([this](QWidget* dialog) { typeAndAccept(dialog, "two"); });
    EXPECT_EQ(ask(), path("two.png"));
    EXPECT_EQ(m_iForm, 0);
    m_driver.expectWindow([this](QWidget* dialog) {
        auto* types = dialog->findChild<QComboBox*>("fileTypeCombo");
        ASSERT_NE(types, nullptr);
        QTest::keyClick(types, Qt::Key_Down);
        typeAndAccept(dialog, "two");
    });
    EXPECT_EQ(ask(), path("two.tif"));
    EXPECT_EQ(m_iForm, 1);
    EXPECT_TRUE(m_driver.boxes.isEmpty());
}

TEST_F(SaveFileName, AnEndingThatWasTypedStays) {
    m_driver.expectWindow([this](QWidget* dialog) { typeAndAccept(dialog, "three.dat"); });
    EXPECT_EQ(ask(), path("three.dat"));
}

TEST_F(SaveFileName, NothingIsSavedWhenTheParentGoesMeanwhile) {
    auto parent = std::make_unique<QWidget>();
    m_driver.expectWindow([&parent](QWidget*) { parent.reset(); });
    EXPECT_EQ(askSaveFileName(parent.get(), "Save", m_folder.path(), kForms, m_iForm), QString());
}

} // namespace
