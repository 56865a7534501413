#pragma once

#include "plugins/zplToF/calibration/CkToFCalibrateOffsetDlg.h"
#include "tests/support/FakeAppDelegate.h"
#include "tests/support/LocaleScope.h"
#include "tests/support/ModalDriver.h"
#include "tests/support/TestFrames.h"
#include "zuCore/CkImageData.h"
#include "zuCore/CkPicBufAPI.h"
#include "zuCoreGui/CkMdiView.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <cstring>
#include <gtest/gtest.h>
#include <map>
#include <memory>

/// Shows the frames that a test passes in, and keeps them all.
class FrameView : public CkMdiView {
public:
    const CkImageData* imageData(qint32 iFrameId) override {
        const auto found = m_frames.find(iFrameId);
        return found == m_frames.end() ? nullptr : found->second.get();
    }

    void show(std::unique_ptr<CkImageData> frame) {
        const qint32 iFrameId = m_iNext++;
        m_frames[iFrameId] = std::move(frame);
        emit receivedFrame(iFrameId);
    }

    /// Announces a frame that no longer exists.
    void announce(qint32 iFrameId) { emit receivedFrame(iFrameId); }

private:
    std::map<qint32, std::unique_ptr<CkImageData>> m_frames;
    qint32 m_iNext = 1;
};

class CalibrationTest : public testing::Test {
protected:
    static constexpr const char* key = "ToF.OptRealDistandeOffsetM";
    static constexpr const char* wrongKind =
        "Unexpected image format received. Calibration expects phase shift image as input.";

    LocaleScope locale{QLocale(QLocale::English, QLocale::UnitedStates)};
    FakeAppDelegate delegate;
    ModalDriver driver;
    std::unique_ptr<FrameView> view = std::make_unique<FrameView>();
    std::unique_ptr<CkToFCalibrateOffsetDlg> dialog;

    void open(CkMdiView* pView) {
        dialog = std::make_unique<CkToFCalibrateOffsetDlg>(pView, nullptr);
        dialog->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(dialog.get(), 30000));
        QApplication::setActiveWindow(dialog.get());
    }
    void open() { open(view.get()); }

    template <class Widget = QWidget>
    Widget* child(const char* name) {
        auto* widget = dialog->findChild<Widget*>(QLatin1String(name));
        EXPECT_NE(widget, nullptr) << name;
        return widget;
    }

    QPushButton* button(QDialogButtonBox::StandardButton button) {
        return child<QDialogButtonBox>("buttonBox")->button(button);
    }
    void click(QDialogButtonBox::StandardButton which) { QTest::mouseClick(button(which), Qt::LeftButton); }

    void typeDistance(const QString& sText) {
        auto* edit = child<QLineEdit>("edDistance");
        edit->setFocus();
        QTest::keyClick(edit, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(edit, sText);
    }

    void chooseInches() {
        child("cbUnit")->setFocus();
        QTest::keyClick(child("cbUnit"), Qt::Key_Down);
        ASSERT_EQ(child<QComboBox>("cbUnit")->currentIndex(), 1);
    }

    void chooseFrames(int iFrames) {
        auto* spin = child<QSpinBox>("spinAveraging");
        spin->setFocus();
        QTest::keyClick(spin, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(spin, QString::number(iFrames));
        ASSERT_EQ(spin->value(), iFrames);
    }

    QString progress() { return child<QLabel>("lbProgress")->text(); }

    static std::unique_ptr<CkImageData> phaseFrame(float fPhase, float fModulationFreq = 20.0F,
                                                   quint32 uiWidth = 16, quint32 uiHeight = 12) {
        CkImageMetadata metadata;
        metadata.channelNames = QStringList{QStringLiteral("Phase shift"), QStringLiteral("Confidence")};
        metadata.modulationFrequency = fModulationFreq;
        auto frame =
            makeFrame(SkPicBufInfo::of(uiWidth, uiHeight, 2, EkImageDataType::Float32, 32), metadata);
        for (quint32 y = 0; y < uiHeight; ++y) {
            for (quint32 x = 0; x < uiWidth; ++x) {
                const float pixel[2] = {fPhase, 0.25F};
                std::memcpy(frame->picBuf().row(y) + x * sizeof pixel, pixel, sizeof pixel);
            }
        }
        return frame;
    }

    static std::unique_ptr<CkImageData> greyFrame() {
        return makeFrame(SkPicBufInfo::of(16, 12, 1, EkImageDataType::UInt8, 8));
    }

    /// Shows a frame and delivers the queued notification.
    void feed(std::unique_ptr<CkImageData> frame) {
        view->show(std::move(frame));
        QCoreApplication::processEvents();
    }

    void feedPhases(int iFrames, float fPhase, float fModulationFreq = 20.0F) {
        for (int i = 0; i < iFrames; ++i) {
            feed(phaseFrame(fPhase, fModulationFreq));
        }
    }
};
