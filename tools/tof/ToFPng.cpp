#include "tools/tof/ToFPng.h"

#include <QtGlobal>

#include <csetjmp>
#include <new>
#include <png.h>

namespace {

void append(png_structp png, png_bytep bytes, size_t size) {
    auto* const target = static_cast<QByteArray*>(png_get_io_ptr(png));
    bool stored = true;
    try {
        target->append(reinterpret_cast<const char*>(bytes), qsizetype(size));
    } catch (const std::bad_alloc&) {
        stored = false; // an exception must not unwind through libpng
    }
    if (!stored) {
        png_error(png, "out of memory");
    }
}

void flush(png_structp /*png*/) {}

/// False on an error, which libpng reports by longjmp: no local may have a destructor.
bool write(png_structp png, png_infop info, const SkToFPngFormat& format, const char* samples) {
    if (setjmp(png_jmpbuf(png)) != 0) {
        return false;
    }
    const size_t rowBytes = size_t(format.width) * size_t(format.channels) * size_t(format.bits / 8);
    png_set_IHDR(png, info, format.width, format.height, format.bits,
                 format.channels == 3 ? PNG_COLOR_TYPE_RGB : PNG_COLOR_TYPE_GRAY, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    // Noisy samples gain little from filters, and readers stay simple without them.
    png_set_filter(png, PNG_FILTER_TYPE_BASE, PNG_FILTER_NONE);
    png_write_info(png, info);
    if (format.bits == 16 && Q_BYTE_ORDER == Q_LITTLE_ENDIAN) {
        png_set_swap(png);
    }
    for (quint32 y = 0; y < format.height; ++y) {
        png_write_row(png, reinterpret_cast<png_const_bytep>(samples + y * rowBytes));
    }
    png_write_end(png, info);
    return true;
}

bool fits(const SkToFPngFormat& format, qsizetype size) {
    const bool known =
        (format.bits == 8 || format.bits == 16) && (format.channels == 1 || format.channels == 3);
    const quint64 row = quint64(format.width) * quint64(format.channels) * quint64(format.bits / 8);
    return known && format.width != 0 && format.height != 0 && quint64(size) % row == 0 &&
           quint64(size) / row == format.height;
}

} // namespace

QByteArray encodePng(const SkToFPngFormat& format, const QByteArray& samples) {
    if (!fits(format, samples.size())) {
        return {};
    }
    QByteArray encoded;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png != nullptr ? png_create_info_struct(png) : nullptr;
    bool done = false;
    if (info != nullptr) {
        png_set_write_fn(png, &encoded, append, flush);
        // libpng's default limit is a million pixels per side; SkToFLimits already limits the recording.
        png_set_user_limits(png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
        done = write(png, info, format, samples.constData());
    }
    png_destroy_write_struct(&png, &info);
    return done ? encoded : QByteArray();
}
