#include "host/viewer/base/CkFileOpener.h"

#include <QFile>
#include <QFileInfo>

namespace {

QString patterns(const QStringList& suffixes) {
    QStringList result;
    for (const QString& suffix : suffixes) {
        result.append(QStringLiteral("*.") + suffix);
    }
    return result.join(QLatin1Char(' '));
}

} // namespace

CkFileOpener::CkFileOpener(QObject* pParent) : QObject(pParent) {}

void CkFileOpener::addKind(const SkFileKind& kind) {
    m_kinds.append(kind);
}

const SkFileKind* CkFileOpener::find(const QString& sFileName, QString& sError) const {
    const QFileInfo info(sFileName);
    if (info.isDir()) {
        sError = tr("\"%1\" is a folder; open the files in it.").arg(sFileName);
        return nullptr;
    }
    // Reading a pipe or a device may block forever.
    if (info.exists() && !info.isFile()) {
        sError = tr("\"%1\" is no ordinary file.").arg(sFileName);
        return nullptr;
    }
    QFile file(sFileName);
    if (!file.open(QIODevice::ReadOnly)) {
        sError = tr("\"%1\" cannot be read: %2.").arg(sFileName, file.errorString());
        return nullptr;
    }
    const QByteArray bytes = file.read(kFirstBytes);
    for (const SkFileKind& kind : m_kinds) {
        if (kind.recognises && kind.recognises(bytes)) {
            return &kind;
        }
    }
    const QString suffix = info.suffix().toLower();
    for (const SkFileKind& kind : m_kinds) {
        if (kind.suffixes.contains(suffix)) {
            return &kind;
        }
    }
    QStringList titles;
    for (const SkFileKind& kind : m_kinds) {
        titles.append(kind.title);
    }
    sError = tr("\"%1\" is of no kind that can be opened here (%2).")
                 .arg(sFileName, titles.join(QStringLiteral(", ")));
    return nullptr;
}

QString CkFileOpener::kindOf(const QString& sFileName, QString& sError) const {
    const SkFileKind* kind = find(sFileName, sError);
    return kind != nullptr ? kind->id : QString();
}

bool CkFileOpener::open(const QString& sFileName, QString& sError) {
    sError.clear();
    const SkFileKind* kind = find(sFileName, sError);
    if (kind == nullptr) {
        return false;
    }
    // A copy, because opening a file may add kinds.
    const QString id = kind->id;
    const auto open = kind->open;
    const QString path = QFileInfo(sFileName).absoluteFilePath();
    if (!open(path, sError)) {
        return false;
    }
    emit opened(path, id);
    return true;
}

QString CkFileOpener::dialogFilter(const QString& sId) const {
    QStringList filters;
    QStringList all;
    for (const SkFileKind& kind : m_kinds) {
        if (sId.isEmpty() || kind.id == sId) {
            filters.append(QStringLiteral("%1 (%2)").arg(kind.title, patterns(kind.suffixes)));
            all += kind.suffixes;
        }
    }
    if (filters.size() > 1) {
        filters.prepend(tr("Everything that can be opened (%1)").arg(patterns(all)));
    }
    filters.append(tr("All files (*)"));
    return filters.join(QStringLiteral(";;"));
}
