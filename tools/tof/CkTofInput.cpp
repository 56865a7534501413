#include "tof/CkTofInput.h"

#include "tof/tofEnding.h"

#include "pic/CkToFPicAPI.h"
#include "zuCore/zuCoreVersion.h"

#include <QFileInfo>

namespace {

constexpr qint64 shownComplaints = 5;

} // namespace

bool CkTofInput::open(const QString& sFileName) {
    CkTofConsole::CkProgress progress(QStringLiteral("Opening"));
    QString error;
    const bool opened = m_reader.open(sFileName, &error, [&progress](qint64, double share) {
        progress.show(qint64(share * 100), 100);
        return true;
    });
    if (!opened) {
        CkTofConsole::error(error);
        return false;
    }
    if (!m_reader.damage().isEmpty()) {
        complain(m_reader.damage());
    }
    return true;
}

std::vector<SkTofGroup> CkTofInput::groups() const {
    std::vector<SkTofGroup> groups;
    bool open = false;
    for (qint64 page = 0; page < m_reader.frameCount(); ++page) {
        SkFrameDescription description;
        bool separate = false;
        bool begins = true;
        if (m_reader.describe(page, description, nullptr)) {
            const CkImageMetadata& metadata = description.metadata;
            const bool hybrid = CkToFPicAPI::isRawToFHybridPic(description.info, &metadata);
            separate = CkToFPicAPI::incomingSeparatePhases(&metadata);
            begins = hybrid ? metadata.sectionIndex == 0 : metadata.phaseSequenceIndex == 0;
        }
        if (separate && !begins && open) {
            ++groups.back().count;
        } else {
            groups.push_back({page, 1});
        }
        open = separate;
    }
    return groups;
}

void CkTofInput::complain(const QString& sMessage) {
    ++m_iComplaints;
    if (m_iComplaints <= shownComplaints) {
        CkTofConsole::error(sMessage);
    } else if (m_iComplaints == shownComplaints + 1) {
        CkTofConsole::error(QStringLiteral("Further errors of this kind are not shown."));
    }
}

int CkTofInput::exitCode() const {
    return m_iComplaints == 0 ? TofSuccess : TofDamaged;
}

bool CkTofInput::isInput(const QString& sFileName) const {
    const QString input = QFileInfo(m_reader.fileName()).canonicalFilePath();
    if (input.isEmpty() || QFileInfo(sFileName).canonicalFilePath() != input) {
        return false;
    }
    CkTofConsole::error(QStringLiteral("\"%1\" is the input; it is not overwritten.").arg(sFileName));
    return true;
}

QString tofIncompleteSet(const SkTofGroup& group, const QString& sMissing) {
    return QStringLiteral(" The set of page %1 %2.")
        .arg(group.count == 1
                 ? QString::number(group.first + 1)
                 : QStringLiteral("%1 to %2").arg(group.first + 1).arg(group.first + group.count))
        .arg(sMissing);
}

bool tofMayBeRecording(const QString& sFileName) {
    const QString ending = tofEnding(sFileName);
    const QStringList known{QString(), QStringLiteral("tif"), QStringLiteral("tiff")};
    if (known.contains(ending)) {
        return true;
    }
    CkTofConsole::error(QStringLiteral("\"%1\": a recording is written as .tif or .tiff, not as .%2.")
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
