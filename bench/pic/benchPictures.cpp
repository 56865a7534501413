#include "bench/pic/benchPictures.h"

#include "zuCore/CkPicBufAPI.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <new>
#include <random>
#include <utility>

namespace {

constexpr double kPi = 3.14159265358979323846;

void put(BenchPicture& picture, quint32 x, quint32 y, quint32 channel, double value) {
    const auto sample = qint32(std::lround(value));
    const quint32 bytes = sampleBytes(picture.pic.dataType);
    std::memcpy(picture.pic.row(y) + (size_t(x) * picture.pic.channels + channel) * bytes, &sample, bytes);
}

bool isDark(std::mt19937& random) {
    return random() % 50 == 0;
}

BenchPicture wavePicture(quint32 phases, EkImageDataType type, bool difference) {
    constexpr quint32 kWidth = 640;
    constexpr quint32 kHeight = 480;
    const bool wide = sampleBytes(type) == 2;
    const double full = wide ? 4095.0 : 255.0;
    BenchPicture picture(kWidth, kHeight * phases, difference ? 1 : 2, type, wide ? 12 : 8);
    std::mt19937 random(1);
    for (quint32 y = 0; y < kHeight; ++y) {
        for (quint32 x = 0; x < kWidth; ++x) {
            const double angle = 2.0 * kPi * double(x + y) / double(kWidth + kHeight);
            const double amplitude = isDark(random) ? 0.0 : full * (0.05 + 0.3 * double(x) / kWidth);
            for (quint32 phase = 0; phase < phases; ++phase) {
                const double step = phases == 8 ? kPi / 4.0 : kPi / 2.0;
                const double wave = amplitude * std::cos(angle - step * phase);
                const double noise = amplitude == 0.0 ? 0.0 : double(random() % 9) - 4.0;
                const double a = std::clamp(full * 0.4 + wave + noise, 0.0, full);
                const double b = std::clamp(full * 0.4 - wave, 0.0, full);
                if (difference) {
                    put(picture, x, phase * kHeight + y, 0, wide ? a - b : std::clamp(a - b, -128.0, 127.0));
                } else {
                    put(picture, x, phase * kHeight + y, 0, a);
                    put(picture, x, phase * kHeight + y, 1, b);
                }
            }
        }
    }
    return picture;
}

} // namespace

BenchPicture::BenchPicture(quint32 width, quint32 height, quint32 channels, EkImageDataType type,
                           quint32 bits) {
    SkPicBufInfo info;
    info.width = width;
    info.height = height;
    info.channels = channels;
    info.dataType = type;
    info.bitsPerChannel = bits;
    info.lineSize = (width * channels * sampleBytes(type) + 255) / 256 * 256;
    if (!CkPicBufAPI::AllocPicBufFromHeap(pic, info)) {
        throw std::bad_alloc();
    }
    // Touches every page before anything is timed.
    std::memset(pic.data, 0, bytes());
}

BenchPicture::BenchPicture(BenchPicture&& other) noexcept : pic(std::exchange(other.pic, SkPicBuf())) {}

BenchPicture::~BenchPicture() {
    CkPicBufAPI::FreePicBuf(pic, true);
}

BenchPicture twoTapPicture(quint32 phases, EkImageDataType type) {
    return wavePicture(phases, type, false);
}

BenchPicture noisePicture(quint32 sections, EkImageDataType type) {
    const bool wide = sampleBytes(type) == 2;
    BenchPicture picture(832, 600 * sections, 3, type, wide ? 12 : 8);
    std::mt19937 random(3);
    for (quint32 y = 0; y < 600; ++y) {
        for (quint32 x = 0; x < 832; ++x) {
            const bool dark = isDark(random);
            for (quint32 sample = 0; sample < 3 * sections; ++sample) {
                put(picture, x, sample / 3 * 600 + y, sample % 3,
                    dark ? 0.0 : double(random() % (wide ? 4096 : 256)));
            }
        }
    }
    return picture;
}

BenchPicture differencePicture(quint32 phases, EkImageDataType type) {
    return wavePicture(phases, type, true);
}

BenchPicture hybridPicture(quint32 sections, EkImageDataType type) {
    constexpr quint32 kWidth = 832;
    constexpr quint32 kHeight = 600;
    const bool wide = sampleBytes(type) > 1;
    const double full = wide ? 4095.0 : 255.0;
    BenchPicture picture(kWidth, kHeight * sections, 3, type, wide ? 12 : 8);
    picture.pic.colorFilterArray = EkColorFilterArray::RawX3Hybrid;
    std::mt19937 random(2);
    for (quint32 y = 0; y < kHeight; ++y) {
        for (quint32 x = 0; x < kWidth; ++x) {
            // The pulse moves from window 1 through window 2 to window 3 as the distance grows.
            const double distance = 2.0 * double(y) / kHeight;
            const double energy = isDark(random) ? 0.0 : full * (0.1 + 0.6 * double(x) / kWidth);
            const double ambient = full * 0.05;
            double windows[3] = {ambient, ambient, ambient};
            const int first = distance < 1.0 ? 0 : 1;
            const double late = distance - first;
            windows[first] += energy * (1.0 - late);
            windows[first + 1] += energy * late;
            for (quint32 section = 0; section < sections; ++section) {
                const double gain = std::ldexp(1.0, int(section)) / (sections > 1 ? 2.0 : 1.0);
                for (quint32 window = 0; window < 3; ++window) {
                    const double noise = double(random() % 5) - 2.0;
                    put(picture, x, section * kHeight + y, window,
                        std::clamp(windows[window] * gain + noise, 0.0, full));
                }
            }
        }
    }
    return picture;
}
