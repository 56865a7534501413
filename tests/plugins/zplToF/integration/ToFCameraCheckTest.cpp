#include "plugins/zplToF/integration/ToFCameraCheck.h"
#include "tests/plugins/zplToF/integration/ToFFixture.h"
#include "zuCore/CkChainManager.h"
#include "zuCore/CkPicBufAPI.h"

#include "zuCore/CkCameraParameters.h"

#include <gtest/gtest.h>

namespace {

TEST(ToFCameraCheck, ReadoutMode3AndFormat5EndWith4And13) {
    FakeCamera camera({3, 5});
    EXPECT_TRUE(ToFCameraCheck::switchCameraTo3dFormat(nullptr, camera.handle()));
    EXPECT_EQ(camera.value("tof_readout_mode"), 4);
    EXPECT_EQ(camera.value("imgdataformat"), 13);
    EXPECT_EQ(camera.log().commits, 1) << "both changes reach the camera together";
    EXPECT_EQ(camera.log().committed, (QStringList{"tof_readout_mode=4", "imgdataformat=13"}));
}

TEST(ToFCameraCheck, ReadoutMode2AndFormat1AreLeftUnchangedWithOneCommit) {
    FakeCamera camera({2, 1});
    EXPECT_TRUE(ToFCameraCheck::switchCameraTo3dFormat(nullptr, camera.handle()));
    EXPECT_EQ(camera.value("tof_readout_mode"), 2);
    EXPECT_EQ(camera.value("imgdataformat"), 1);
    EXPECT_EQ(camera.log().commits, 1);
    EXPECT_TRUE(camera.log().committed.isEmpty());
}

TEST(ToFCameraCheck, HybridCameraKeeps17AndReplaces6By18) {
    FakeCamera kept({-1, 17, 13});
    EXPECT_TRUE(ToFCameraCheck::switchCameraTo3dFormat(nullptr, kept.handle()));
    EXPECT_EQ(kept.value("imgdataformat"), 17);
    FakeCamera set({-1, 6, 13});
    EXPECT_TRUE(ToFCameraCheck::switchCameraTo3dFormat(nullptr, set.handle()));
    EXPECT_EQ(set.value("imgdataformat"), 18);
}

TEST(ToFCameraCheck, CameraWithoutDataFormatIsNeverChanged) {
    FakeCamera camera({3, -1});
    EXPECT_FALSE(ToFCameraCheck::switchCameraTo3dFormat(nullptr, camera.handle()));
    EXPECT_EQ(camera.value("tof_readout_mode"), 3);
    EXPECT_EQ(camera.log().commits, 0);
}

TEST(ToFCameraCheck, ViewAnswersFromItsBlockThoughItHoldsAnImage) {
    FakeAppDelegate app;
    auto* source = new FakeSource(FakeKind::AB);
    CkChain* chain = CkChainManager::instance()->createChain();
    ASSERT_TRUE(CkChainManager::instance()->insertAfter(chain, source, nullptr));
    {
        ViewWithImage view(source);
        view.image = std::make_unique<CkImageData>();
        SkPicBuf grey;
        CkImageMetadata metadata;
        describe(FakeKind::Grey, false, grey, metadata);
        view.image->setPicBuf(grey);
        view.image->setMetadata(metadata);

        SkToFKinds kinds;
        EXPECT_TRUE(ToFCameraCheck::imageFormatAtView(&view, kinds));
        EXPECT_TRUE(kinds.isAB);

        source->kind = FakeKind::Unknown;
        EXPECT_TRUE(ToFCameraCheck::imageFormatAtView(&view, kinds));
        EXPECT_FALSE(kinds.any()) << "without the block's answer the image counts, and it is grey";

        view.image.reset();
        EXPECT_FALSE(ToFCameraCheck::imageFormatAtView(&view, kinds));
    }
    CkChainManager::instance()->closeChain(chain);
}

struct SetUpCase {
    FakeCameraModel model;
    bool accepted;
    int readoutMode;
    int dataFormat;
};

/// Every readout mode with every format that has a meaning; expected values from the rules for each mode.
const SetUpCase kSetUpCases[] = {
    {{4, 11}, true, 4, 11},
    {{4, 13}, true, 4, 13},
    {{4, 0}, true, 4, 13},
    {{4, 6}, true, 4, 13},
    {{4, 17}, true, 4, 13},
    {{4, 18}, true, 4, 13},
    {{2, 0}, true, 2, 0},
    {{2, 1}, true, 2, 1},
    {{2, 5}, true, 2, 5},
    {{2, 6}, true, 2, 6},
    {{2, 11}, true, 2, 6},
    {{2, 13}, true, 2, 6},
    {{2, 18}, true, 2, 6},
    {{0, 13}, true, 4, 13},
    {{1, 6}, true, 4, 13},
    {{7, 11}, true, 4, 11},
    {{-1, 17, 13}, true, -1, 17},
    {{-1, 18, 13}, true, -1, 18},
    {{-1, 13, 13}, true, -1, 18},
    {{-1, 13, 0}, false, -1, 13},
    {{-1, -1, 13}, false, -1, -1},
    // A hybrid sensor that does have a readout mode is set up by it.
    {{2, 18, 13}, true, 2, 6},
    {{4, 17, 13}, true, 4, 13},
};

class SetUp : public ::testing::TestWithParam<SetUpCase> {};

TEST_P(SetUp, ReadoutAndFormat) {
    const SetUpCase& expected = GetParam();
    FakeCamera camera(expected.model);
    EXPECT_EQ(ToFCameraCheck::switchCameraTo3dFormat(nullptr, camera.handle()), expected.accepted);
    EXPECT_EQ(camera.value("tof_readout_mode"), expected.readoutMode);
    EXPECT_EQ(camera.value("imgdataformat"), expected.dataFormat);
    EXPECT_EQ(camera.log().commits, expected.accepted ? 1 : 0);
}
INSTANTIATE_TEST_SUITE_P(ToFCameraCheck, SetUp, ::testing::ValuesIn(kSetUpCases));

TEST(ToFCameraCheck, CameraThatRefusesTheCommitKeepsItsValues) {
    FakeCamera camera({3, 5, 0, true});
    EXPECT_FALSE(ToFCameraCheck::switchCameraTo3dFormat(nullptr, camera.handle()));
    EXPECT_EQ(camera.value("tof_readout_mode"), 3);
    EXPECT_EQ(camera.value("imgdataformat"), 5);
}

TEST(ToFCameraCheck, ValueThatIsRefusedTakesTheWholeBatchBack) {
    FakeCameraModel model{3, 5};
    model.refuseFormats = true;
    FakeCamera camera(model);
    EXPECT_FALSE(ToFCameraCheck::switchCameraTo3dFormat(nullptr, camera.handle()));
    EXPECT_EQ(camera.log().commits, 0);
    const CkCameraParam* readout = camera.parameters()->findParam(QStringLiteral("tof_readout_mode"));
    EXPECT_EQ(readout->paramValue().toInt(), 3);
    // The next commit does not contain any of it.
    EXPECT_TRUE(camera.parameters()->endCommitBatch(true));
    EXPECT_TRUE(camera.log().committed.isEmpty());
    EXPECT_EQ(camera.value("tof_readout_mode"), 3);
}

TEST(ToFCameraCheck, WhatIsAToFCamera) {
    FakeCamera withMode({0, -1});
    FakeCamera hybrid({-1, -1, 13});
    FakeCamera other({-1, 13, 12});
    EXPECT_TRUE(ToFCameraCheck::isToFCamera(withMode.handle()));
    EXPECT_TRUE(ToFCameraCheck::isToFCamera(hybrid.handle()));
    EXPECT_FALSE(ToFCameraCheck::isToFCamera(other.handle()));
    EXPECT_FALSE(ToFCameraCheck::isToFCamera(nullptr));
}

TEST(ToFCameraCheck, CameraThatHasGoneCountsAsNone) {
    FakeCamera camera({4, 13});
    void* gone = camera.handle();
    camera.close();
    EXPECT_FALSE(ToFCameraCheck::isToFCamera(gone));
    EXPECT_FALSE(ToFCameraCheck::switchCameraTo3dFormat(nullptr, gone));
}

TEST(ToFCameraCheck, ViewBelongsToToFCamera) {
    FakeAppDelegate app;
    FakeCamera tof({4, 13});
    FakeCamera other({-1, 13});
    app.viewCameras[5] = tof.handle();
    app.viewCameras[6] = other.handle();
    void* handle = &app;
    EXPECT_TRUE(ToFCameraCheck::viewBelongsToToFCamera(5, handle));
    EXPECT_EQ(handle, tof.handle());
    EXPECT_FALSE(ToFCameraCheck::viewBelongsToToFCamera(6, handle));
    EXPECT_EQ(handle, other.handle());
    EXPECT_FALSE(ToFCameraCheck::viewBelongsToToFCamera(7, handle));
    EXPECT_EQ(handle, nullptr);
}

struct KindCase {
    FakeKind kind;
    bool separate;
    bool known, isAB, isAminB, isPhaseShift, separatePhases, isHybrid;
};

const KindCase kKindCases[] = {
    {FakeKind::Unknown, false, false, false, false, false, false, false},
    {FakeKind::Grey, false, true, false, false, false, false, false},
    {FakeKind::AB, false, true, true, false, false, false, false},
    {FakeKind::AB, true, true, true, false, false, true, false},
    {FakeKind::AminB, false, true, false, true, false, false, false},
    {FakeKind::AminB, true, true, false, true, false, true, false},
    {FakeKind::PhaseShift, false, true, false, false, true, false, false},
    {FakeKind::Depth, false, true, false, false, true, false, false},
    {FakeKind::Hybrid, false, true, false, false, false, false, true},
};

class Kinds : public ::testing::TestWithParam<KindCase> {};

TEST_P(Kinds, OfABlockAndOfAView) {
    const KindCase& expected = GetParam();
    ToFFixture rig;
    rig.open(expected.kind, expected.separate);
    // Flags are overwritten, whatever they were.
    bool ab = true;
    bool aMinusB = true;
    bool phaseShift = true;
    bool separate = true;
    bool hybrid = true;
    const auto check = [&](const char* of) {
        EXPECT_EQ(ab, expected.isAB) << of;
        EXPECT_EQ(aMinusB, expected.isAminB) << of;
        EXPECT_EQ(phaseShift, expected.isPhaseShift) << of;
        EXPECT_EQ(separate, expected.separatePhases) << of;
        EXPECT_EQ(hybrid, expected.isHybrid) << of;
    };
    EXPECT_EQ(ToFCameraCheck::checkToFFormat(rig.source, ab, aMinusB, phaseShift, separate, hybrid),
              expected.known);
    check("block");
    ab = aMinusB = phaseShift = separate = hybrid = true;
    EXPECT_EQ(ToFCameraCheck::imageFormatAtView(rig.view, ab, aMinusB, phaseShift, separate, hybrid),
              expected.known);
    check("view");
}
INSTANTIATE_TEST_SUITE_P(ToFCameraCheck, Kinds, ::testing::ValuesIn(kKindCases));

TEST(ToFCameraCheck, BlockThatDeliversNoPicturesHasNoFormat) {
    CkChainable block;
    SkToFKinds kinds;
    EXPECT_FALSE(ToFCameraCheck::checkToFFormat(&block, kinds));
    EXPECT_FALSE(ToFCameraCheck::checkToFFormat(nullptr, kinds));
    EXPECT_FALSE(ToFCameraCheck::imageFormatAtView(nullptr, kinds));
}

TEST(ToFCameraCheck, SettingUpStartsTheStoppedChainOfTheView) {
    FakeCamera camera({4, 13});
    ToFFixture rig;
    rig.open(FakeKind::AB, false, &camera);
    ASSERT_TRUE(rig.chain()->stopped());
    EXPECT_TRUE(ToFCameraCheck::switchCameraTo3dFormat(rig.view, camera.handle()));
    EXPECT_TRUE(rig.chain()->started());
}

} // namespace
