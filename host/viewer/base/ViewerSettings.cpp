#include "host/viewer/base/ViewerSettings.h"

#include "zuCore/CkLut.h"

#include <QSettings>

namespace {
QString& fileName() {
    static QString name;
    return name;
}
} // namespace

void ViewerSettings::setFileName(const QString& sFileName) {
    fileName() = sFileName;
}

std::unique_ptr<QSettings> ViewerSettings::open() {
    if (fileName().isEmpty()) {
        return std::make_unique<QSettings>(QSettings::IniFormat, QSettings::UserScope,
                                           QStringLiteral("Orvane"), QStringLiteral("zuviewer"));
    }
    return std::make_unique<QSettings>(fileName(), QSettings::IniFormat);
}

QString ViewerSettings::pseudoColorKey(bool bFloat) {
    return bFloat ? QStringLiteral("Viewer/PseudoColorFloat") : QStringLiteral("Viewer/PseudoColorInteger");
}

int ViewerSettings::defaultPseudoColor(bool bFloat) {
    if (!bFloat) {
        return 0;
    }
    const QStringList names = CkLut::pseudoColorNames();
    for (const char* wanted : {"Turbo", "Jet", "Rainbow"}) {
        for (int i = 0; i < names.size(); ++i) {
            if (names[i].contains(QLatin1String(wanted), Qt::CaseInsensitive)) {
                return i;
            }
        }
    }
    return names.size() > 1 ? 1 : 0;
}

QString ViewerSettings::lastDirectory() {
    return open()->value(kLastDirectoryKey).toString();
}

void ViewerSettings::setLastDirectory(const QString& sDirectory) {
    open()->setValue(kLastDirectoryKey, sDirectory);
}
