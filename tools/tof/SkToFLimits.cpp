#include "tools/tof/SkToFLimits.h"

#include "tools/tof/CkToFArguments.h"

#include <algorithm>
#include <limits>

void SkToFLimits::addOptions(CkToFArguments& options) {
    const SkToFLimits usual;
    options.addValue(QStringLiteral("memory"), QStringLiteral("MIB"),
                     QStringLiteral("Memory for the frames that are processed at a time; larger ones are "
                                    "refused. %1 by default.")
                         .arg(usual.memoryBytes >> 20U));
    options.addValue(QStringLiteral("max-pages"), QStringLiteral("N"),
                     QStringLiteral("Reads a file up to this page; %1 by default.").arg(usual.reading.pages));
    options.addValue(QStringLiteral("max-expansion"), QStringLiteral("N"),
                     QStringLiteral("Refuses pages that declare more than N times their compressed "
                                    "bytes, and more than %1 MiB; %2 by default.")
                         .arg(SkReadLimits::kSmallPictureBytes >> 20U)
                         .arg(usual.reading.expansion));
}

bool SkToFLimits::read(const CkToFArguments& options) {
    auto memory = qint64(memoryBytes >> 20U);
    auto expansion = qint64(reading.expansion);
    if (!options.readNumber(QStringLiteral("memory"), 1, memory) ||
        !options.readNumber(QStringLiteral("max-pages"), 1, reading.pages) ||
        !options.readNumber(QStringLiteral("max-expansion"), 1, expansion)) {
        return false;
    }
    constexpr qint64 mostMiB = std::numeric_limits<qint64>::max() >> 20U;
    memoryBytes = quint64(std::min(memory, mostMiB)) << 20U;
    reading.expansion = quint32(std::min<qint64>(expansion, std::numeric_limits<quint32>::max()));
    reading.unpackedBytes = memoryBytes;
    return true;
}
