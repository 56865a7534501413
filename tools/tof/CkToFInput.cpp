#include "tools/tof/CkToFInput.h"

#include "tools/tof/CkToFProgress.h"
#include "tools/tof/base/ToFText.h"

#include "plugins/zplToF/pic/CkToFPicAPI.h"
#include "zuCore/SkToFSetPosition.h"
#include "zuCore/zuCoreVersion.h"

#include <QFileInfo>

#include <algorithm>

namespace {

constexpr qint64 kPagesPerProgress = 256;

/// The position of a page in its set.
struct SkPagePosition {
    bool separate = false; ///< part of a set
    bool begins = true;
    qint64 length = 1; ///< pages of the set, with the reference section
};

SkPagePosition pagePosition(const SkFrameDescription& description) {
    const CkImageMetadata& metadata = description.metadata;
    if (!CkToFPicAPI::incomingSeparatePhases(&metadata)) {
        return {};
    }
    const auto position =
        SkToFSetPosition::of(metadata, CkToFPicAPI::isRawToFHybridPic(description.info, &metadata));
    return {true, position.isFirstToArrive(), position.count + position.references};
}

// Images may be repeated, so a set ends at twice its length at the latest, even if the next set lacks its
// first image.
bool isFull(const SkToFGroup& group, qint64 length) {
    return group.count >= 2 * std::max<qint64>(length, 1);
}

} // namespace

void SkToFGroup::add(const SkFrameDescription& description) {
    const SkPicBufInfo& info = description.info;
    const quint64 page = (quint64(info.lineSize) + info.linePadding) * info.height;
    bytes += page;
    pixels += quint64(info.width) * info.height;
    largestPage = std::max(largestPage, page);
    width = info.width;
    const bool twoFloats = info.dataType == EkImageDataType::Float32 && info.channels == 2;
    maybeTof = maybeTof || twoFloats || description.metadata.tofFormatCode != 0 ||
               info.colorFilterArray != EkColorFilterArray::None;
}

bool CkToFInput::open(const QString& sFileName) {
    CkToFProgress progress(QStringLiteral("Opening"));
    QString error;
    const bool opened = m_reader.open(sFileName, &error, [&progress](qint64, double share) {
        progress.show(qint64(share * 100), 100);
        return true;
    });
    if (!opened) {
        ToFConsole::error(error);
        return false;
    }
    if (!m_reader.damage().isEmpty()) {
        reportError(m_reader.damage());
    }
    return true;
}

std::vector<SkToFGroup> CkToFInput::groups() const {
    std::vector<SkToFGroup> groups;
    CkToFProgress progress(QStringLiteral("Scanning"));
    bool open = false;
    for (qint64 page = 0; page < m_reader.frameCount(); ++page) {
        if (page % kPagesPerProgress == 0) {
            progress.show(page, m_reader.frameCount());
        }
        SkFrameDescription description;
        const bool readable = m_reader.describe(page, description, nullptr);
        const SkPagePosition position = readable ? pagePosition(description) : SkPagePosition();
        if (!open || !position.separate || position.begins || isFull(groups.back(), position.length)) {
            groups.push_back({.first = page, .count = 0});
        }
        SkToFGroup& group = groups.back();
        ++group.count;
        if (readable) {
            group.add(description);
            // Processing allocates the angle list for the declared length, even when most images are missing.
            const quint64 length = position.separate ? quint64(std::max<qint64>(position.length, 1)) : 1;
            group.bytes = std::max(group.bytes, length * sizeof(qint32));
        }
        open = position.separate;
    }
    return groups;
}

QString CkToFInput::tooMuchMemory(const SkToFGroup& group, quint64 uiBytes) const {
    if (uiBytes <= m_limits.memoryBytes) {
        return {};
    }
    return QStringLiteral("\"%1\", page %2: processing %3 needs %4 MiB; --memory %4 allows that.")
        .arg(m_reader.fileName(), QString::number(group.first + 1),
             group.count == 1 ? QStringLiteral("it")
                              : QStringLiteral("this set of %1 pages").arg(group.count),
             QString::number((uiBytes >> 20U) + 1));
}

int CkToFInput::exitCode() const {
    return m_errors.isEmpty() ? ToFSuccess : ToFDamaged;
}

bool CkToFInput::isInput(const QString& sFileName) const {
    const QString input = QFileInfo(m_reader.fileName()).canonicalFilePath();
    if (input.isEmpty() || QFileInfo(sFileName).canonicalFilePath() != input) {
        return false;
    }
    ToFConsole::error(QStringLiteral("\"%1\" is the input; it is not overwritten.").arg(sFileName));
    return true;
}

QString tofIncompleteSet(const SkToFGroup& group, const QString& sMissing) {
    return QStringLiteral(" The set of page %1 %2.")
        .arg(group.count == 1
                 ? QString::number(group.first + 1)
                 : QStringLiteral("%1 to %2").arg(group.first + 1).arg(group.first + group.count))
        .arg(sMissing);
}

bool tofMayBeRecording(const QString& sFileName) {
    const QString ending = tofSuffix(sFileName);
    const QStringList known{QString(), QStringLiteral("tif"), QStringLiteral("tiff")};
    if (known.contains(ending)) {
        return true;
    }
    ToFConsole::error(QStringLiteral("\"%1\": a recording is written as .tif or .tiff, not as .%2.")
                          .arg(sFileName, ending));
    return false;
}

QString tofSoftware() {
    int major = 0;
    int minor = 0;
    int patch = 0;
    zuCoreVersion(major, minor, patch);
    return QStringLiteral("tof %1.%2.%3").arg(major).arg(minor).arg(patch);
}
