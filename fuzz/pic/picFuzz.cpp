#include "fuzz/pic/picFuzz.h"

#include "fuzz/FuzzBytes.h"

#include "plugins/zplToF/pic/CkToFPicAPI.h"
#include "plugins/zplToF/pic/kernels/ToFKernelChoice.h"

#include <bit>
#include <cmath>
#include <memory>
#include <vector>

namespace {

using Api = CkToFPicAPI;
constexpr uint64_t kMemoryLimit = 64 * 1024;

/// A descriptor with exactly the memory it describes, or none where that exceeds kMemoryLimit.
struct FuzzPicture {
    SkPicBuf pic;
    std::unique_ptr<uint8_t[]> memory;
    size_t bytes = 0;

    bool describesRows() const {
        return pic.width != 0 && pic.height != 0 && pic.channels != 0 &&
               uint64_t(pic.width) * pic.channels <= pic.lineSize / sampleBytes(pic.dataType);
    }
    uint64_t rowBytes() const { return uint64_t(pic.width) * pic.channels * sampleBytes(pic.dataType); }

    void allocate(FuzzBytes& input) {
        bytes = 16; // pixels of impossible descriptors must not be accessed
        if (describesRows()) {
            const uint64_t needed = uint64_t(pic.height - 1) * pic.lineSize + rowBytes();
            if (needed > kMemoryLimit) {
                return;
            }
            bytes = size_t(needed);
        }
        const size_t shift = input.byte() % 4;
        memory = std::make_unique<uint8_t[]>(bytes + shift);
        pic.data = memory.get() + shift;
        input.fill(pic.data, bytes);
    }
};

void describe(FuzzBytes& input, SkPicBufInfo& info, uint32_t channels, uint32_t type) {
    const bool likely = input.byte() % 8 != 0;
    info.width = input.smallOrAny(70);
    info.height = input.smallOrAny(40);
    info.channels = likely ? channels : input.smallOrAny(5);
    info.dataType = EkImageDataType(likely ? type : input.smallOrAny(13));
    info.bitsPerChannel = input.smallOrAny(34);
    const uint32_t row = info.width * info.channels * sampleBytes(info.dataType);
    info.lineSize = input.byte() % 16 == 0 ? input.word() : row + input.smallOrAny(9);
    info.colorFilterArray = EkColorFilterArray(channels == 3 && likely  ? 13U
                                               : input.byte() % 16 == 0 ? input.word()
                                                                        : 0U);
    info.layoutFlag = input.byte() % 32 == 31;
}

struct Call {
    int operation;
    int phases;
    float number;
    Api::AngleList angles;
    bool withAngles;
};

struct Shape {
    uint32_t sourceChannels;
    uint32_t sourceType;
    uint32_t resultChannels;
    uint32_t resultType;
};

constexpr int kOperationCount = 11;

Shape likelyShape(int operation, FuzzBytes& input) {
    const uint32_t wide = input.byte() % 2;
    const uint32_t taps = wide != 0 ? 4 : 2;
    const uint32_t signedType = wide != 0 ? 3 : 1;
    const uint32_t any = 2 + 2 * (input.byte() % 3U);
    switch (operation) {
    case 0:
        return {2, taps, 2, 9};
    case 1:
        return {1, signedType, 1, 9};
    case 2:
    case 3:
        return {2, taps, 1, taps};
    case 4:
        return {1, signedType, 1, taps};
    case 5:
        return {2, taps, 1, signedType};
    case 6:
    case 7:
        return {3, any == 2 ? taps : 6, 1, any == 2 ? taps : any};
    case 8:
        return {3, any, 2, 9};
    case 9:
        return {3, taps, 3, any};
    default:
        return {1, taps, 3, taps};
    }
}

bool perform(const Call& call, const SkPicBuf& source, SkPicBuf& result) {
    const Api::AngleList* angles = call.withAngles ? &call.angles : nullptr;
    switch (call.operation) {
    case 0:
        return Api::rawX2PicToPhaseShift_Confidence(source, result, call.phases, angles);
    case 1:
        return Api::rawAminBPicToPhaseShift(source, result, call.phases, angles);
    case 2:
        return Api::rawX2PicToIntensity(source, result, call.phases);
    case 3:
        return Api::rawX2PicToAmplitude(source, result, call.phases, angles);
    case 4:
        return Api::rawAminBPicToAmplitude(source, result, call.phases, angles);
    case 5:
        return Api::rawX2PicToRawAminB(source, result);
    case 6:
        return Api::rawHybridToIntensity(source, result);
    case 7:
        return Api::rawHybridToAmplitude(source, result);
    case 8:
        return Api::rawHybridToDepth_Confidence(source, result, call.number);
    case 9:
        return Api::processHdrFromImageSections(source, result);
    default:
        return Api::convertTestImageToHybridTof(source, result);
    }
}

bool sameBits(float first, float second) {
    return std::bit_cast<uint32_t>(first) == std::bit_cast<uint32_t>(second);
}

bool nearlySame(float first, float second) {
    return sameBits(first, second) || std::abs(first - second) <= 1e-6F;
}

bool hasAngles(const Call& call, const FuzzPicture& result) {
    return call.operation < 2 && call.phases != 1 && result.describesRows() &&
           result.pic.dataType == EkImageDataType::Float32;
}

/// Equal bits and value range; for an angle picture, the range within a millionth.
bool sameDescription(const Call& call, const FuzzPicture& first, const SkPicBuf& second) {
    const auto sameValue = hasAngles(call, first) ? nearlySame : sameBits;
    return first.pic.bitsPerChannel == second.bitsPerChannel &&
           sameValue(first.pic.minValue, second.minValue) && sameValue(first.pic.maxValue, second.maxValue);
}

/// Pixels equal byte for byte; the first channel of an angle picture within a millionth.
bool samePixels(const Call& call, const FuzzPicture& first, const uint8_t* second) {
    if (!hasAngles(call, first)) {
        return std::memcmp(first.pic.data, second, first.bytes) == 0;
    }
    for (uint32_t y = 0; y < first.pic.height; ++y) {
        const uint64_t start = uint64_t(y) * first.pic.lineSize;
        for (uint64_t sample = 0; sample < uint64_t(first.pic.width) * first.pic.channels; ++sample) {
            float a = 0.0F;
            float b = 0.0F;
            std::memcpy(&a, first.pic.data + start + 4 * sample, 4);
            std::memcpy(&b, second + start + 4 * sample, 4);
            const bool isAngle = sample % first.pic.channels == 0;
            if (!(isAngle ? nearlySame(a, b) : sameBits(a, b))) {
                return false;
            }
        }
    }
    return true;
}

bool paddingKept(const FuzzPicture& result, const std::vector<uint8_t>& before) {
    if (!result.describesRows()) {
        return true;
    }
    for (uint32_t y = 0; y + 1 < result.pic.height; ++y) {
        const size_t start = size_t(y) * result.pic.lineSize + size_t(result.rowBytes());
        const size_t end = size_t(y + 1) * result.pic.lineSize;
        if (std::memcmp(result.pic.data + start, before.data() + start, end - start) != 0) {
            return false;
        }
    }
    return true;
}

Call callFrom(int operation, FuzzBytes& input) {
    Call call{operation, 1, 0.0F, {}, input.byte() % 2 == 0};
    const uint8_t phaseKind = input.byte();
    call.phases = phaseKind < 240 ? 1 << (phaseKind % 4) : int(input.word());
    const uint32_t numberBits = input.word();
    std::memcpy(&call.number, &numberBits, 4);
    for (int count = input.byte() % 12; call.withAngles && count > 0; --count) {
        const uint8_t angle = input.byte();
        call.angles.push_back(angle < 240 ? (angle % 8) * 45 : qint32(input.word()));
    }
    return call;
}

std::string checkOperation(int operation, FuzzBytes& input) {
    const Call call = callFrom(operation, input);
    input.mask = uint8_t(input.byte() | 1U);

    const Shape shape = likelyShape(operation, input);
    FuzzPicture source;
    FuzzPicture result;
    describe(input, source.pic, shape.sourceChannels, shape.sourceType);
    if (operation == 10) {
        source.pic.colorFilterArray = EkColorFilterArray::None;
    }
    describe(input, result.pic, shape.resultChannels, shape.resultType);
    result.pic.minValue = -2.0F; // a value that no operation computes
    result.pic.maxValue = -3.0F;
    source.allocate(input);
    result.allocate(input);
    const bool overlapping =
        input.byte() % 16 == 15 && source.memory && result.memory && result.bytes <= source.bytes;
    if (overlapping) {
        result.pic.data = source.pic.data + (source.bytes - result.bytes);
    }

    const SkPicBuf descriptor = result.pic;
    const std::vector<uint8_t> before =
        result.pic.data == nullptr ? std::vector<uint8_t>()
                                   : std::vector<uint8_t>(result.pic.data, result.pic.data + result.bytes);
    std::vector<uint8_t> first;
    SkPicBuf firstDescription;
    bool firstAnswer = false;
    for (const SkToFKernels* kernels : ToFKernelChoice::available()) {
        result.pic = descriptor;
        if (!before.empty()) {
            std::memcpy(result.pic.data, before.data(), before.size());
        }
        ToFKernelChoice::pin(kernels);
        const bool answer = perform(call, source.pic, result.pic);
        ToFKernelChoice::pin(nullptr);
        if (result.pic.data == nullptr) {
            continue;
        }
        if (!answer && std::memcmp(result.pic.data, before.data(), before.size()) != 0) {
            return "a refused call wrote pixels";
        }
        if (!paddingKept(result, before)) {
            return "bytes beyond the pixels of a row were written";
        }
        if (kernels == ToFKernelChoice::available().front()) {
            firstAnswer = answer;
            firstDescription = result.pic;
            first.assign(result.pic.data, result.pic.data + result.bytes);
        } else if (answer != firstAnswer || !samePixels(call, result, first.data()) ||
                   !sameDescription(call, result, firstDescription)) {
            return "the plain loop and " + std::string(kernels->sName) + " disagree on operation " +
                   std::to_string(operation) + " of " + std::to_string(call.phases) +
                   " phases, sample type " + std::to_string(quint32(source.pic.dataType)) + ", width " +
                   std::to_string(result.pic.width);
        }
    }
    return {};
}

std::string checkDepthSearch(FuzzBytes& input) {
    FuzzPicture pairs;
    FuzzPicture depth;
    FuzzPicture confidence;
    describe(input, pairs.pic, 2, 9);
    describe(input, depth.pic, 1, 9);
    describe(input, confidence.pic, 1, 9);
    if (input.byte() % 4 != 0) {
        confidence.pic.width = depth.pic.width;
        confidence.pic.height = depth.pic.height;
        confidence.pic.lineSize = depth.pic.lineSize;
    }
    for (FuzzPicture* picture : {&pairs, &depth, &confidence}) {
        picture->allocate(input);
    }
    const uint32_t limitBits = input.word();
    float limit = 0.0F;
    std::memcpy(&limit, &limitBits, 4);
    float firstOfPairs = -7.0F;
    float firstOfTwo = -7.0F;
    for (const SkToFKernels* kernels : ToFKernelChoice::available()) {
        ToFKernelChoice::pin(kernels);
        float ofPairs = -7.0F;
        float ofTwo = -7.0F;
        Api::findMaxDepthClipConfidence(pairs.pic, ofPairs, limit);
        Api::findMaxDepthClipConfidence(depth.pic, confidence.pic, ofTwo, limit);
        ToFKernelChoice::pin(nullptr);
        if (kernels == ToFKernelChoice::available().front()) {
            firstOfPairs = ofPairs;
            firstOfTwo = ofTwo;
        } else if (!sameBits(ofPairs, firstOfPairs) || !sameBits(ofTwo, firstOfTwo)) {
            return std::string("the plain loop and ") + kernels->sName + " find different depths";
        }
    }
    return {};
}

std::string checkClassifiers(FuzzBytes& input) {
    SkPicBufInfo info;
    describe(input, info, input.byte() % 4, input.byte() % 12U);
    CkImageMetadata metadata;
    constexpr quint32 codes[] = {ToFFormatCode::kRawX2Bits8, ToFFormatCode::kAminusBBits12Alternate, 0};
    metadata.tofFormatCode = input.byte() % 2 == 0 ? codes[input.byte() % 3] : input.word();
    metadata.colorFilterArray = input.smallOrAny(14);
    metadata.phasesCount = qint32(input.smallOrAny(9));
    metadata.phaseSequenceLength = qint32(input.smallOrAny(9));
    metadata.sectionCount = input.smallOrAny(5);
    metadata.sectionMode = input.smallOrAny(5);
    for (int count = input.byte() % 4; count > 0; --count) {
        metadata.channelNames << (input.byte() % 2 == 0 ? QStringLiteral("Depth") : QString());
    }
    for (const CkImageMetadata* used :
         {static_cast<const CkImageMetadata*>(nullptr), static_cast<const CkImageMetadata*>(&metadata)}) {
        Api::incomingSeparatePhases(used);
        if (Api::detectPhasesCount(info, used) == 0) {
            return "no phases were counted";
        }
        if (Api::isRawX2ToFABPic(info, used) + Api::isRawToFAminBPic(info, used) +
                Api::isRawToFHybridPic(info, used) + Api::isDepthImage(info, used) >
            1) {
            return "a picture is of two kinds";
        }
        Api::isPhaseShiftImage(info, used);
    }
    return {};
}

} // namespace

std::string checkPicOperation(const uint8_t* bytes, size_t size) {
    FuzzBytes input(bytes, size);
    const int operation = input.byte() % (kOperationCount + 2);
    if (operation == kOperationCount) {
        return checkDepthSearch(input);
    }
    if (operation == kOperationCount + 1) {
        return checkClassifiers(input);
    }
    return checkOperation(operation, input);
}
