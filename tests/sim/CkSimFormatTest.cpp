#include "sim/camera/CkSimCameraDriver.h"
#include "tests/sim/SimFrames.h"

#include "tests/support/TestPicture.h"
#include "zuCore/CkPicBufAPI.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

namespace {

std::unique_ptr<IkCamera> openCamera(const QString& sId) {
    CkSimCameraDriver driver;
    return driver.open(sId, nullptr);
}

/// The expected frame, written out.
struct SkExpected {
    quint32 width = 640;
    quint32 height = 480;
    quint32 channels = 1;
    EkImageDataType type = EkImageDataType::UInt8;
    quint32 bits = 8;
    quint32 arrangement = 0;
    QStringList names = {"Grey"};
    quint32 formatCode = 0;
    qint32 phasesCount = 0;
    size_t images = 1;
};

void expectFormat(const SkExpected& expected, const SkPicBufInfo& info, const CkImageMetadata& metadata) {
    EXPECT_EQ(info.width, expected.width);
    EXPECT_EQ(info.height, expected.height);
    EXPECT_EQ(info.channels, expected.channels);
    EXPECT_EQ(info.dataType, expected.type);
    EXPECT_EQ(info.bitsPerChannel, expected.bits);
    EXPECT_EQ(quint32(info.colorFilterArray), expected.arrangement);
    EXPECT_EQ(info.storageFormat, EkDataStorageFormat::Interleaved);
    EXPECT_FALSE(info.layoutFlag);
    EXPECT_GE(info.lineSize, info.width * info.channels * sampleBytes(info.dataType));
    EXPECT_EQ(metadata.colorFilterArray, expected.arrangement);
    EXPECT_EQ(metadata.channelNames, expected.names);
    EXPECT_EQ(metadata.tofFormatCode, expected.formatCode);
    EXPECT_EQ(metadata.phasesCount, expected.phasesCount);
}

void expectSameInfo(const SkPicBufInfo& first, const SkPicBufInfo& second) {
    EXPECT_EQ(first.width, second.width);
    EXPECT_EQ(first.height, second.height);
    EXPECT_EQ(first.lineSize, second.lineSize);
    EXPECT_EQ(first.channels, second.channels);
    EXPECT_EQ(first.bitsPerChannel, second.bitsPerChannel);
    EXPECT_EQ(first.linePadding, second.linePadding);
    EXPECT_EQ(first.dataType, second.dataType);
    EXPECT_EQ(first.storageFormat, second.storageFormat);
    EXPECT_EQ(first.colorFilterArray, second.colorFilterArray);
    EXPECT_EQ(first.layoutFlag, second.layoutFlag);
}

/// frameInfo describes the first image of a set, except for what only a delivered frame has.
void expectInfoOfFrame(const IkCamera& camera, const CkImageData& frame) {
    SkPicBufInfo info;
    CkImageMetadata metadata;
    ASSERT_TRUE(camera.frameInfo(info, &metadata));
    expectSameInfo(info, frame.picBuf());
    EXPECT_EQ(metadata.timestampNs, 0);
    EXPECT_GT(frame.metadata().timestampNs, 0);
    metadata.timestampNs = frame.metadata().timestampNs;
    metadata.frameNumber = frame.metadata().frameNumber;
    EXPECT_EQ(metadata, frame.metadata());
    ASSERT_TRUE(camera.frameInfo(info, nullptr));
}

/// Whether the picture holds more than one value.
bool isPainted(const SkPicBuf& picture) {
    const quint32 pixelBytes = picture.channels * sampleBytes(picture.dataType);
    for (quint32 row = 0; row < picture.height; row += 8) {
        for (quint32 column = 0; column < picture.width; ++column) {
            if (std::memcmp(picture.data, picture.row(row) + size_t(column) * pixelBytes, pixelBytes) != 0) {
                return true;
            }
        }
    }
    return false;
}

SkExpected expectedWave(int readout, int format, int phases, bool separate, int converter) {
    SkExpected expected;
    const quint32 wideBits = quint32(converter);
    const quint32 stacked = separate ? 1U : quint32(phases);
    const bool isDifference = readout == 2 && (format == 0 || format == 1 || format == 5 || format == 6);
    const bool isTaps = readout == 4 && (format == 11 || format == 13);
    if (!isDifference && !isTaps) {
        if (format == 1 || format == 6 || format == 13 || format == 18) {
            expected.type = EkImageDataType::UInt16;
            expected.bits = wideBits;
        }
        return expected;
    }
    expected.height = 480 * stacked;
    expected.phasesCount = qint32(stacked);
    expected.images = separate ? size_t(phases) : 1;
    if (isTaps) {
        expected.channels = 2;
        expected.names = {"A", "B"};
        expected.arrangement = 8;
        expected.type = format == 11 ? EkImageDataType::UInt8 : EkImageDataType::UInt16;
        expected.bits = format == 11 ? 8 : wideBits;
        expected.formatCode = format == 11 ? 0x80ab0f08U : 0x80ab0f0cU;
        return expected;
    }
    const bool bytes = format == 0 || format == 5;
    expected.names = QStringList{"A-B"};
    expected.arrangement = 9;
    expected.type = bytes ? EkImageDataType::Int8 : EkImageDataType::Int16;
    expected.bits = bytes ? 8 : wideBits;
    expected.formatCode = bytes ? 0x80a05f08U : 0x80a05f0cU;
    return expected;
}

} // namespace

TEST(CkSimFormat, waveCameraDeliversWhatItSaysInEveryMode) {
    const auto camera = openCamera(CkSimCameraDriver::kWaveId);
    ASSERT_TRUE(camera);
    ASSERT_TRUE(commitSim(*camera, {{"framerate", 200.0}, {"sim_noise", false}}));
    for (const int readout : {2, 4, 3}) {
        for (const int format : {0, 1, 5, 6, 7, 11, 13, 18}) {
            for (const int phases : {1, 2, 4, 8}) {
                for (const int separate : {0, 1}) {
                    for (const int converter : {12, 16}) {
                        if (converter == 16 && phases != 4) {
                            continue;
                        }
                        SCOPED_TRACE(testing::Message()
                                     << "readout " << readout << ", format " << format << ", " << phases
                                     << " phases, separate " << separate << ", converter " << converter);
                        ASSERT_TRUE(commitSim(*camera, {{"tof_readout_mode", readout},
                                                        {"imgdataformat", format},
                                                        {"tof_phases", phases},
                                                        {"tof_phase_images", separate},
                                                        {"sim_converter_bits", converter}}));
                        const SkExpected expected =
                            expectedWave(readout, format, phases, separate == 1, converter);
                        const auto frames = simSet(*camera, expected.images);
                        ASSERT_EQ(frames.size(), expected.images);
                        expectInfoOfFrame(*camera, *frames.front());
                        const bool measures = expected.phasesCount > 0;
                        for (size_t index = 0; index < frames.size(); ++index) {
                            const CkImageMetadata& metadata = frames[index]->metadata();
                            expectFormat(expected, frames[index]->picBuf(), metadata);
                            EXPECT_TRUE(isPainted(frames[index]->picBuf()));
                            EXPECT_EQ(metadata.modulationFrequency, measures ? 20.0F : 0.0F);
                            const bool sequence = measures && separate == 1;
                            const int step = phases == 8 ? 45 : 90;
                            EXPECT_EQ(metadata.phaseSequenceLength, sequence ? phases : 0);
                            EXPECT_EQ(metadata.phaseSequenceIndex, sequence ? int(index) : 0);
                            EXPECT_EQ(metadata.phaseAngle, sequence ? int(index) * step : 0);
                            EXPECT_EQ(metadata.hybridPulseDuration, 0.0F);
                            EXPECT_EQ(metadata.sectionCount, 0U);
                            EXPECT_EQ(metadata.frameNumber, index);
                            EXPECT_EQ(frames[index]->picBuf().additionalData.frameNumber, index);
                        }
                        if (HasFailure()) {
                            return;
                        }
                    }
                }
            }
        }
    }
}

TEST(CkSimFormat, hybridCameraDeliversWhatItSaysInEveryMode) {
    const auto camera = openCamera(CkSimCameraDriver::kHybridId);
    ASSERT_TRUE(camera);
    EXPECT_EQ(camera->parameters()->cameraInfo().sensorType, 13U);
    EXPECT_EQ(camera->parameters()->findParam("tof_readout_mode"), nullptr);
    ASSERT_TRUE(
        commitSim(*camera, {{"framerate", 200.0}, {"sim_noise", false}, {"hybrid_pulse_duration", 30.0}}));
    for (const int format : {17, 18, 0, 6, 13}) {
        for (const int sections : {1, 2, 3, 4}) {
            for (const int separate : {0, 1}) {
                for (const int mode : {0, 3}) {
                    SCOPED_TRACE(testing::Message()
                                 << "format " << format << ", " << sections << " sections, separate "
                                 << separate << ", mode " << mode);
                    ASSERT_TRUE(commitSim(*camera, {{"imgdataformat", format},
                                                    {"hybrid_sections", sections},
                                                    {"hybrid_section_images", separate},
                                                    {"hybrid_section_mode", mode}}));
                    SkExpected expected;
                    expected.width = 832;
                    expected.height = 600;
                    const bool measures = format == 17 || format == 18;
                    if (format == 18 || format == 6 || format == 13) {
                        expected.type = EkImageDataType::UInt16;
                        expected.bits = 12;
                    }
                    if (measures) {
                        const quint32 stacked = separate == 1 ? 1U : quint32(sections);
                        expected.height = 600 * stacked;
                        expected.channels = 3;
                        expected.names = QStringList{"X1", "X2", "X3"};
                        expected.arrangement = 13;
                        expected.phasesCount = qint32(stacked);
                        expected.images = (separate == 1 ? size_t(sections) : 1) + (mode == 3 ? 1 : 0);
                    }
                    const auto frames = simSet(*camera, expected.images);
                    ASSERT_EQ(frames.size(), expected.images);
                    expectInfoOfFrame(*camera, *frames.front());
                    for (size_t index = 0; index < frames.size(); ++index) {
                        const CkImageMetadata& metadata = frames[index]->metadata();
                        expectFormat(expected, frames[index]->picBuf(), metadata);
                        EXPECT_TRUE(isPainted(frames[index]->picBuf()));
                        EXPECT_EQ(metadata.hybridPulseDuration, measures ? 30e-9F : 0.0F);
                        EXPECT_EQ(metadata.sectionIndex, measures ? index : 0U);
                        EXPECT_EQ(metadata.sectionCount, measures ? expected.images : 0U);
                        EXPECT_EQ(metadata.sectionMode, measures ? quint32(mode) : 0U);
                        EXPECT_EQ(metadata.modulationFrequency, 0.0F);
                        EXPECT_EQ(metadata.phaseSequenceLength, 0);
                        EXPECT_EQ(metadata.frameNumber, index);
                    }
                    if (HasFailure()) {
                        return;
                    }
                }
            }
        }
    }
}

TEST(CkSimFormat, greyCameraIsNoToFCamera) {
    const auto camera = openCamera(CkSimCameraDriver::kGreyId);
    ASSERT_TRUE(camera);
    EXPECT_NE(camera->parameters()->cameraInfo().sensorType, 13U);
    EXPECT_EQ(camera->parameters()->findParam("tof_readout_mode"), nullptr);
    EXPECT_EQ(camera->parameters()->findParam("imgdataformat"), nullptr);
    const auto frames = simSet(*camera, 1);
    ASSERT_EQ(frames.size(), 1U);
    expectFormat(SkExpected{}, frames[0]->picBuf(), frames[0]->metadata());
    expectInfoOfFrame(*camera, *frames[0]);
    EXPECT_TRUE(isPainted(frames[0]->picBuf()));
    EXPECT_EQ(frames[0]->metadata().modulationFrequency, 0.0F);
}

TEST(CkSimFormat, framesTellCameraAndExposure) {
    const auto camera = openCamera(CkSimCameraDriver::kWaveId);
    ASSERT_TRUE(commitSim(*camera, {{"exposure", 250.0},
                                    {"framerate", 12.5},
                                    {"tof_modulation_frequency", 37.5},
                                    {"lens_focal_length", 6.0}}));
    auto frames = simSet(*camera, 1);
    ASSERT_EQ(frames.size(), 1U);
    const CkImageMetadata& metadata = frames[0]->metadata();
    EXPECT_EQ(metadata.cameraName, camera->parameters()->cameraInfo().name);
    EXPECT_EQ(metadata.cameraSerial, camera->parameters()->cameraInfo().serial);
    EXPECT_FALSE(metadata.cameraName.isEmpty());
    EXPECT_FALSE(metadata.cameraSerial.isEmpty());
    EXPECT_FLOAT_EQ(metadata.exposureTimeUs, 250.0F);
    EXPECT_FLOAT_EQ(metadata.frameRate, 12.5F);
    EXPECT_FLOAT_EQ(metadata.modulationFrequency, 37.5F);
    EXPECT_EQ(metadata.lensFocalLength, 0.0F) << "the focal length is reported only on request";
    ASSERT_TRUE(commitSim(*camera, {{"lens_report", true}}));
    frames = simSet(*camera, 1);
    ASSERT_EQ(frames.size(), 1U);
    EXPECT_FLOAT_EQ(frames[0]->metadata().lensFocalLength, 6.0F);
}

TEST(CkSimFormat, separateImagesAreThePartsOfTheStackedOne) {
    const auto camera = openCamera(CkSimCameraDriver::kWaveId);
    ASSERT_TRUE(commitSim(*camera, {{"framerate", 200.0}}));
    const auto stacked = simSet(*camera, 1);
    ASSERT_TRUE(commitSim(*camera, {{"tof_phase_images", 1}}));
    const auto separate = simSet(*camera, 4);
    ASSERT_EQ(stacked.size(), 1U);
    ASSERT_EQ(separate.size(), 4U);
    for (quint32 index = 0; index < 4; ++index) {
        const SkPicBuf& part = separate[index]->picBuf();
        EXPECT_EQ(part.additionalData.timestampNs, stacked[0]->picBuf().additionalData.timestampNs);
        for (quint32 row = 0; row < 480; ++row) {
            ASSERT_EQ(std::memcmp(part.row(row), stacked[0]->picBuf().row(index * 480 + row), 640 * 4), 0);
        }
    }
}

TEST(CkSimFormat, trueDistancesBelongToTheFrame) {
    const auto camera = openCamera(CkSimCameraDriver::kWaveId);
    const auto* sim = static_cast<const CkSimCamera*>(camera.get());
    ASSERT_TRUE(commitSim(*camera, {{"framerate", 2.0}, {"sim_noise", false}, {"sim_converter_bits", 16}}));
    SimFrames receiver;
    camera->setPaused(true);
    ASSERT_TRUE(camera->start(receiver.receiver(), nullptr));
    for (int step = 0; step < 3; ++step) {
        camera->step();
    }
    ASSERT_TRUE(receiver.waitFor(3));
    camera->stop();
    const auto frames = receiver.take();
    std::vector<float> middle;
    for (size_t index = 0; index < 3; ++index) {
        const SkPicBuf& frame = frames[index]->picBuf();
        EXPECT_EQ(frame.additionalData.timestampNs, qint64(index) * 500000000) << "half a second a set";
        SkPicBuf truth;
        ASSERT_TRUE(sim->trueDistance(frame.additionalData.timestampNs, truth));
        ASSERT_EQ(truth.width, 640U);
        ASSERT_EQ(truth.height, 480U);
        int compared = 0;
        for (quint32 row = 0; row < 480; ++row) {
            const auto* distances = reinterpret_cast<const float*>(truth.row(row));
            for (quint32 column = 0; column < 640; ++column) {
                const auto difference = [&](quint32 phase) {
                    const auto* taps = reinterpret_cast<const quint16*>(frame.row(phase * 480 + row));
                    return double(taps[2 * column]) - double(taps[2 * column + 1]);
                };
                const double x = difference(0) - difference(2);
                const double y = difference(1) - difference(3);
                // Counts are rounded by 1/2: a pointer of at least 400 is right to 2 sqrt(2) / 400 rad.
                if (std::hypot(x, y) < 400.0) {
                    continue;
                }
                ++compared;
                double phase = std::atan2(y, x);
                if (phase < 0.0) {
                    phase += 2.0 * 3.141592653589793;
                }
                ASSERT_NEAR(phase / (2.0 * 3.141592653589793) * 7.4925635, double(distances[column]), 0.0086);
            }
        }
        EXPECT_GT(compared, 200000);
        middle.push_back(truth.minValue);
        CkPicBufAPI::FreePicBuf(truth);
    }
    EXPECT_NE(middle[0], middle[2]) << "the sphere moves";

    TestPicture wrong(640, 480, 2, EkImageDataType::Float32);
    EXPECT_FALSE(sim->trueDistance(0, *wrong));
}

TEST(CkSimFormat, parametersTellWhatTheyAre) {
    for (const QString& sId :
         {CkSimCameraDriver::kWaveId, CkSimCameraDriver::kHybridId, CkSimCameraDriver::kGreyId}) {
        const auto camera = openCamera(sId);
        ASSERT_TRUE(camera);
        ASSERT_FALSE(camera->parameters()->params().isEmpty());
        for (const CkCameraParam* param : camera->parameters()->params()) {
            SCOPED_TRACE(param->name().toStdString());
            const CkCameraParam::SkDescription& description = param->description();
            EXPECT_FALSE(description.displayName.isEmpty());
            EXPECT_FALSE(description.toolTip.isEmpty());
            if (description.kind == CkCameraParam::EkKind::Float ||
                description.kind == CkCameraParam::EkKind::Integer) {
                EXPECT_LT(description.minimum, description.maximum);
                EXPECT_GE(description.value.toDouble(), description.minimum);
                EXPECT_LE(description.value.toDouble(), description.maximum);
                EXPECT_GT(description.step, 0.0);
            }
            if (description.kind == CkCameraParam::EkKind::Enumeration) {
                bool listed = false;
                for (const CkCameraParam::SkEnumEntry& entry : description.entries) {
                    listed = listed || entry.value == description.value.toInt64();
                }
                EXPECT_TRUE(listed);
            }
        }
    }
}
