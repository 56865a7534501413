#include "plugins/zplToF/integration/SkToFMessage.h"
#include "tests/support/FakeAppDelegate.h"
#include "tests/support/ModalDriver.h"

#include <QAbstractButton>
#include <QPushButton>
#include <gtest/gtest.h>

namespace {

// The box as the user sees it, answered by keys.

class ToFMessageBox : public ::testing::Test {
protected:
    void SetUp() override {
        app.window = &window;
        driver.onBox = [this](QMessageBox* box) {
            buttons = box->standardButtons();
            defaultButton = box->standardButton(box->defaultButton());
            modal = box->isModal();
            QTest::keyClick(box, key);
        };
    }

    QWidget window;
    FakeAppDelegate app;
    ModalDriver driver;
    Qt::Key key = Qt::Key_Return;
    QMessageBox::StandardButtons buttons;
    QMessageBox::StandardButton defaultButton = QMessageBox::NoButton;
    bool modal = false;
};

TEST_F(ToFMessageBox, QuestionStandsOnTheMainWindowAndEnterMeansYes) {
    const SkToFMessage question{QMessageBox::Question, "Invalid input image", "Update?",
                                QMessageBox::Yes | QMessageBox::No, QMessageBox::Yes};
    EXPECT_EQ(showToFMessage(question), QMessageBox::Yes);
    ASSERT_EQ(driver.boxes.size(), 1);
    EXPECT_EQ(driver.boxes[0].title, "Invalid input image");
    EXPECT_EQ(driver.boxes[0].text, "Update?");
    EXPECT_EQ(driver.boxes[0].icon, QMessageBox::Question);
    EXPECT_EQ(driver.boxes[0].parent, &window);
    EXPECT_EQ(buttons, QMessageBox::Yes | QMessageBox::No);
    EXPECT_EQ(defaultButton, QMessageBox::Yes);
    EXPECT_TRUE(modal);
}

TEST_F(ToFMessageBox, EscapeMeansCancel) {
    key = Qt::Key_Escape;
    EXPECT_EQ(showToFMessage({QMessageBox::Question, "Invalid input image", "Update?",
                              QMessageBox::Yes | QMessageBox::Cancel, QMessageBox::Yes}),
              QMessageBox::Cancel);
    EXPECT_EQ(buttons, QMessageBox::Yes | QMessageBox::Cancel);
}

TEST_F(ToFMessageBox, MainWindowThatGoesWhileTheBoxIsOpenMeansNoButton) {
    auto* own = new QWidget;
    app.window = own;
    driver.onBox = [own](QMessageBox*) { delete own; };
    EXPECT_EQ(showToFMessage({QMessageBox::Question, "Invalid input image", "Update?",
                              QMessageBox::Yes | QMessageBox::Cancel, QMessageBox::Yes}),
              QMessageBox::NoButton);
    EXPECT_EQ(driver.boxes.size(), 1);
}

TEST_F(ToFMessageBox, ErrorHasOneButton) {
    key = Qt::Key_Escape;
    EXPECT_EQ(showToFMessage({QMessageBox::Critical, "Error", "No.", QMessageBox::Ok, QMessageBox::Ok}),
              QMessageBox::Ok);
    ASSERT_EQ(driver.boxes.size(), 1);
    EXPECT_EQ(driver.boxes[0].icon, QMessageBox::Critical);
    EXPECT_EQ(buttons, QMessageBox::Ok);
}

} // namespace
