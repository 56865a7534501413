#include "host/viewer/base/pluralNumber.h"
#include "host/viewer/picture/PictureText.h"
#include "tests/host/viewer/ViewerPictures.h"

#include <QCoreApplication>
#include <gtest/gtest.h>

// No language has been set: the plurals of the English texts are installed at start.

namespace {

std::string text(const char* context, const char* source, int count) {
    return QCoreApplication::translate(context, source, nullptr, count).toStdString();
}

} // namespace

TEST(EnglishPlurals, OneFrameIsNotOneFrames) {
    EXPECT_EQ(text("CkRecordingPanel", "%n frame(s), %1, %2", 1), "1 frame, %1, %2");
    EXPECT_EQ(text("CkRecordingPanel", "%n frame(s), %1, %2", 0), "0 frames, %1, %2");
    EXPECT_EQ(text("CkRecordingPanel", "%n frame(s), %1, %2", 21), "21 frames, %1, %2");
    EXPECT_EQ(text("CkRecordingManager", "%n frame(s) were lost.", 1), "1 frame was lost.");
    EXPECT_EQ(text("CkRecordingManager", "%n frame(s) were lost.", 2), "2 frames were lost.");
    EXPECT_EQ(text("CkQualityPlot", "last %n frame(s)", 1), "last frame");
    EXPECT_EQ(text("CkQualityPlot", "last %n frame(s)", 200), "last 200 frames");
    EXPECT_EQ(text("CkUnattendedRun", "Only %1 of %n frame(s) came.", 1), "Only %1 of 1 frame came.");
}

TEST(EnglishPlurals, APictureHasOneChannelOrMore) {
    const auto format = [](quint32 channels) {
        const auto frame = makeFrame<quint16>(EkImageDataType::UInt16, 8, 4, channels, 12,
                                              [](quint32, quint32, quint32) { return quint16(0); });
        return PictureText::format(frame->picBuf()).toStdString();
    };
    EXPECT_EQ(format(1), "8 x 4, 1 channel, 12 bit unsigned");
    EXPECT_EQ(format(2), "8 x 4, 2 channels, 12 bit unsigned");
}

TEST(EnglishPlurals, CountsBeyondWhatATextTakesStayAtTheLargest) {
    EXPECT_EQ(pluralNumber(1), 1);
    EXPECT_EQ(pluralNumber(-1), 0);
    EXPECT_EQ(pluralNumber(5'000'000'000), 2'147'483'647);
}
