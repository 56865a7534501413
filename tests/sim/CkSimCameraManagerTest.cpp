#include "sim/camera/CkSimCameraDriver.h"
#include "tests/sim/SimFrames.h"

#include "zuCore/CkCameraManager.h"

#include <gtest/gtest.h>

TEST(CkSimCamera, worksThroughTheCameraManager) {
    CkCameraManager* manager = CkCameraManager::instance();
    manager->addDriver(std::make_unique<CkSimCameraDriver>());
    QString sError;
    void* handle = manager->openCamera(CkSimCameraDriver::kWaveId, &sError);
    ASSERT_NE(handle, nullptr) << sError.toStdString();
    SkCameraInfo info;
    ASSERT_TRUE(manager->cameraInfo(handle, info));
    EXPECT_EQ(info.id, CkSimCameraDriver::kWaveId);
    ASSERT_NE(manager->cameraParameters(handle)->findParam("tof_readout_mode"), nullptr);

    SimFrames receiver;
    manager->addFrameReceiver(handle, &receiver, receiver.receiver());
    ASSERT_TRUE(manager->startAcquisition(handle, &sError)) << sError.toStdString();
    ASSERT_TRUE(receiver.waitFor(3));
    EXPECT_TRUE(manager->isAcquiring(handle));
    SkPicBufInfo format;
    CkImageMetadata metadata;
    ASSERT_TRUE(manager->frameInfo(handle, format, &metadata));
    EXPECT_EQ(format.height, 1920U);
    EXPECT_EQ(metadata.tofFormatCode, 0x80ab0f0cU);
    manager->stopAcquisition(handle);
    EXPECT_FALSE(manager->isAcquiring(handle));
    manager->removeFrameReceiver(&receiver);
    manager->closeCamera(handle);
    EXPECT_FALSE(manager->isOpen(handle));
    for (const SimFrames::Frame& frame : receiver.take()) {
        EXPECT_EQ(frame->picBuf().channels, 2U);
    }
}
