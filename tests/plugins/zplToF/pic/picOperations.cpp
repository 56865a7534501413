#include "tests/plugins/zplToF/pic/picOperations.h"

namespace {

using Type = EkImageDataType;
using Angles = CkToFPicAPI::AngleList;
using Api = CkToFPicAPI;

void addWave(std::vector<PicOperation>& all, bool wide) {
    const std::string bits = wide ? "16" : "8";
    const Type taps = wide ? Type::UInt16 : Type::UInt8;
    const Type difference = wide ? Type::Int16 : Type::Int8;
    all.push_back({"PhaseConfidence" + bits, taps, 2, Type::Float32, 2, true, true,
                   [](const SkPicBuf& s, SkPicBuf& r, int n, const Angles* a) {
                       return Api::rawX2PicToPhaseShift_Confidence(s, r, n, a);
                   }});
    all.push_back({"PhaseOfDifference" + bits, difference, 1, Type::Float32, 1, true, true,
                   [](const SkPicBuf& s, SkPicBuf& r, int n, const Angles* a) {
                       return Api::rawAminBPicToPhaseShift(s, r, n, a);
                   }});
    all.push_back({"Intensity" + bits, taps, 2, taps, 1, true, false,
                   [](const SkPicBuf& s, SkPicBuf& r, int n, const Angles*) {
                       return Api::rawX2PicToIntensity(s, r, n);
                   }});
    all.push_back({"Amplitude" + bits, taps, 2, taps, 1, true, false,
                   [](const SkPicBuf& s, SkPicBuf& r, int n, const Angles* a) {
                       return Api::rawX2PicToAmplitude(s, r, n, a);
                   }});
    all.push_back({"AmplitudeOfDifference" + bits, difference, 1, taps, 1, true, false,
                   [](const SkPicBuf& s, SkPicBuf& r, int n, const Angles* a) {
                       return Api::rawAminBPicToAmplitude(s, r, n, a);
                   }});
    all.push_back(
        {"Difference" + bits, taps, 2, difference, 1, false, false,
         [](const SkPicBuf& s, SkPicBuf& r, int, const Angles*) { return Api::rawX2PicToRawAminB(s, r); }});
}

void addHybrid(std::vector<PicOperation>& all, Type type) {
    const std::string bits = std::to_string(8 * sampleBytes(type));
    all.push_back({"HybridDepth" + bits, type, 3, Type::Float32, 2, false, false,
                   [](const SkPicBuf& s, SkPicBuf& r, int n, const Angles*) {
                       return Api::rawHybridToDepth_Confidence(s, r, n == 1 ? 0.0F : 30e-9F);
                   }});
    for (const Type result : {Type::UInt8, Type::UInt16, Type::UInt32}) {
        const std::string pair = bits + "To" + std::to_string(8 * sampleBytes(result));
        if (result == type || type == Type::UInt32) {
            all.push_back({"HybridIntensity" + pair, type, 3, result, 1, false, false,
                           [](const SkPicBuf& s, SkPicBuf& r, int, const Angles*) {
                               return Api::rawHybridToIntensity(s, r);
                           }});
            all.push_back({"HybridAmplitude" + pair, type, 3, result, 1, false, false,
                           [](const SkPicBuf& s, SkPicBuf& r, int, const Angles*) {
                               return Api::rawHybridToAmplitude(s, r);
                           }});
        }
        if (type != Type::UInt32 && result != Type::UInt8) {
            all.push_back({"MergeSections" + pair, type, 3, result, 3, true, false,
                           [](const SkPicBuf& s, SkPicBuf& r, int, const Angles*) {
                               return Api::processHdrFromImageSections(s, r);
                           }});
        }
    }
    if (type != Type::UInt32) {
        all.push_back({"TestImage" + bits, type, 1, type, 3, true, false,
                       [](const SkPicBuf& s, SkPicBuf& r, int, const Angles*) {
                           return Api::convertTestImageToHybridTof(s, r);
                       }});
    }
}

} // namespace

std::vector<PicOperation> everyPicOperation() {
    std::vector<PicOperation> all;
    addWave(all, false);
    addWave(all, true);
    addHybrid(all, Type::UInt8);
    addHybrid(all, Type::UInt16);
    addHybrid(all, Type::UInt32);
    return all;
}
