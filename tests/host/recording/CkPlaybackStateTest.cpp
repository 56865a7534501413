#include "host/recording/CkPlaybackState.h"

#include <gtest/gtest.h>

namespace {
using EkMode = CkPlaybackState::EkMode;
}

TEST(CkPlaybackStateTest, FramesAreWantedWhileTheChainRunsAndPlaybackIsOn) {
    CkPlaybackState state;
    EXPECT_EQ(state.mode(), EkMode::Paused);
    EXPECT_EQ(state.position(), -1);
    EXPECT_TRUE(state.play(10));
    EXPECT_FALSE(state.play(10));
    EXPECT_FALSE(state.needsFrames());
    state.setChainRuns(true);
    EXPECT_TRUE(state.needsFrames());
    EXPECT_TRUE(state.pause());
    EXPECT_FALSE(state.pause());
    EXPECT_FALSE(state.needsFrames());
    state.play(10);
    state.close();
    EXPECT_FALSE(state.needsFrames());
}

TEST(CkPlaybackStateTest, AStepPausesAgainAfterItsFrame) {
    CkPlaybackState state;
    state.setChainRuns(true);
    state.step();
    state.step();
    EXPECT_EQ(state.mode(), EkMode::Stepping);
    state.frameDelivered(0);
    EXPECT_TRUE(state.needsFrames());
    EXPECT_EQ(state.position(), 0);
    state.frameUnreadable(1);
    EXPECT_FALSE(state.needsFrames());
    EXPECT_EQ(state.mode(), EkMode::Paused);
    EXPECT_EQ(state.position(), 0) << "nothing of the second one was shown";
    EXPECT_EQ(state.next(), 2);
    EXPECT_FALSE(state.pause()) << "stepping is no playing";
}

TEST(CkPlaybackStateTest, AStepEndsPlaybackAndReportsIt) {
    CkPlaybackState state;
    EXPECT_FALSE(state.step()) << "was paused";
    EXPECT_FALSE(state.step()) << "was stepping";
    state.play(10);
    EXPECT_TRUE(state.step());
    EXPECT_EQ(state.mode(), EkMode::Stepping);
    state.frameDelivered(0);
    EXPECT_EQ(state.mode(), EkMode::Paused) << "the steps before play() are gone";
}

TEST(CkPlaybackStateTest, ClosingIsFinal) {
    CkPlaybackState state;
    state.close();
    EXPECT_FALSE(state.play(10));
    EXPECT_FALSE(state.step());
    EXPECT_FALSE(state.pause());
    state.seek(3);
    EXPECT_EQ(state.mode(), EkMode::Closing);
}

TEST(CkPlaybackStateTest, ASeekReplacesPendingStepsAndTheFrameThatIsBeingRead) {
    CkPlaybackState state;
    state.setChainRuns(true);
    state.step();
    state.step();
    const quint64 before = state.generation();
    state.seek(7);
    EXPECT_NE(state.generation(), before);
    EXPECT_EQ(state.next(), 7);
    state.frameDelivered(7);
    EXPECT_EQ(state.mode(), EkMode::Paused);
    state.play(10);
    state.seek(3);
    EXPECT_EQ(state.mode(), EkMode::Playing);
    state.frameDelivered(3);
    EXPECT_EQ(state.mode(), EkMode::Playing);
}

TEST(CkPlaybackStateTest, PlayStartsOverAfterTheLastFrameAndCountsSkippedFramesAnew) {
    CkPlaybackState state;
    state.play(2);
    state.frameDelivered(1);
    state.addSkipped(3);
    state.addSkipped(2);
    EXPECT_EQ(state.skipped(), 5);
    EXPECT_TRUE(state.end());
    EXPECT_EQ(state.mode(), EkMode::Paused);
    EXPECT_EQ(state.next(), 2);
    EXPECT_EQ(state.skipped(), 5);
    EXPECT_TRUE(state.play(2));
    EXPECT_EQ(state.next(), 0);
    EXPECT_EQ(state.skipped(), 0);
    state.frameDelivered(0);
    state.pause();
    state.play(2);
    EXPECT_EQ(state.next(), 1) << "continues where it was paused";
}

TEST(CkPlaybackStateTest, TheEndDropsPendingStepsWithoutHavingPlayed) {
    CkPlaybackState state;
    state.setChainRuns(true);
    state.step();
    state.step();
    EXPECT_FALSE(state.end());
    EXPECT_EQ(state.mode(), EkMode::Paused);
    state.step();
    state.frameDelivered(0);
    EXPECT_EQ(state.mode(), EkMode::Paused) << "one step left of three would be a step too many";
}

TEST(CkPlaybackStateTest, AnotherFileStartsAtItsFirstFrame) {
    CkPlaybackState state;
    state.play(10);
    state.frameDelivered(4);
    state.addSkipped(1);
    const quint64 before = state.generation();
    state.rewind();
    EXPECT_NE(state.generation(), before);
    EXPECT_EQ(state.next(), 0);
    EXPECT_EQ(state.position(), -1);
    EXPECT_EQ(state.skipped(), 0);
    EXPECT_EQ(state.mode(), EkMode::Playing);
}
