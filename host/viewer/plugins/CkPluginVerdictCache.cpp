#include "host/viewer/plugins/CkPluginVerdictCache.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>

namespace {

constexpr qint64 kMaximumBytes = 1024 * 1024;

const QString kHost = QStringLiteral("host");
const QString kLibraries = QStringLiteral("libraries");
const QString kSize = QStringLiteral("size");
const QString kTime = QStringLiteral("time");
const QString kHash = QStringLiteral("hash");
const QString kRefusal = QStringLiteral("refusal");

} // namespace

std::optional<SkLibraryStamp> SkLibraryStamp::of(const QString& sLibrary) {
    const QFileInfo info(sLibrary);
    QFile file(sLibrary);
    QCryptographicHash hash(QCryptographicHash::Sha256);
    if (!info.isFile() || !file.open(QIODevice::ReadOnly) || !hash.addData(&file)) {
        return {};
    }
    return SkLibraryStamp{info.size(), info.lastModified().toMSecsSinceEpoch(), hash.result().toHex()};
}

CkPluginVerdictCache::CkPluginVerdictCache(const QString& sFileName, const QString& sHost)
    : m_fileName(sFileName), m_host(sHost) {
    read();
}

std::optional<QString> CkPluginVerdictCache::find(const QString& sLibrary,
                                                  const SkLibraryStamp& stamp) const {
    const auto found = m_verdicts.constFind(sLibrary);
    return found != m_verdicts.cend() && found->stamp == stamp ? std::optional(found->refusal) : std::nullopt;
}

void CkPluginVerdictCache::insert(const QString& sLibrary, const SkLibraryStamp& stamp,
                                  const QString& sRefusal) {
    m_verdicts.insert(sLibrary, {stamp, sRefusal});
    m_verdicts.removeIf([](const auto& entry) { return !QFileInfo::exists(entry.key()); });
    write();
}

void CkPluginVerdictCache::clear() {
    m_verdicts.clear();
    write();
}

void CkPluginVerdictCache::read() {
    QFile file(m_fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        return;
    }
    const QJsonObject root = QJsonDocument::fromJson(file.read(kMaximumBytes)).object();
    if (root.value(kHost).toString() != m_host) {
        return;
    }
    const QJsonObject libraries = root.value(kLibraries).toObject();
    for (auto it = libraries.begin(); it != libraries.end(); ++it) {
        const QJsonObject entry = it.value().toObject();
        SkVerdict verdict;
        verdict.stamp.size = entry.value(kSize).toInteger(-1);
        verdict.stamp.timeMs = entry.value(kTime).toInteger();
        verdict.stamp.hash = entry.value(kHash).toString().toLatin1();
        verdict.refusal = entry.value(kRefusal).toString();
        m_verdicts.insert(it.key(), verdict);
    }
}

void CkPluginVerdictCache::write() const {
    QJsonObject libraries;
    for (auto it = m_verdicts.cbegin(); it != m_verdicts.cend(); ++it) {
        libraries.insert(it.key(), QJsonObject{{kSize, it->stamp.size},
                                               {kTime, it->stamp.timeMs},
                                               {kHash, QString::fromLatin1(it->stamp.hash)},
                                               {kRefusal, it->refusal}});
    }
    QDir().mkpath(QFileInfo(m_fileName).absolutePath());
    QSaveFile file(m_fileName);
    if (file.open(QIODevice::WriteOnly)) {
        file.write(QJsonDocument(QJsonObject{{kHost, m_host}, {kLibraries, libraries}}).toJson());
        file.commit();
    }
}
