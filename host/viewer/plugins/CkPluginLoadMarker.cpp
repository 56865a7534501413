#include "host/viewer/plugins/CkPluginLoadMarker.h"

#include <QDir>
#include <QFile>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace {

const QString kPrefix = QStringLiteral("loading-");
constexpr size_t kMaximumBytes = 16 * 1024;

QString readLocked(const QString& fileName) {
    const int file =
        ::open(QFile::encodeName(fileName).constData(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
    QString library;
    if (file >= 0 && ::flock(file, LOCK_EX | LOCK_NB) == 0) {
        QByteArray content(qsizetype(kMaximumBytes), '\0');
        const ssize_t got = ::read(file, content.data(), kMaximumBytes);
        library = QFile::decodeName(content.left(got > 0 ? got : 0));
        QFile::remove(fileName);
    }
    if (file >= 0) {
        ::close(file);
    }
    return library;
}

} // namespace

CkPluginLoadMarker::CkPluginLoadMarker(const QString& sFolder, const QString& sLibrary) {
    QDir().mkpath(sFolder);
    m_fileName = QDir(sFolder).filePath(kPrefix + QString::number(::getpid()));
    // Renamed last, so that no other viewer finds the file before it is locked.
    const QByteArray unnamed =
        QFile::encodeName(QDir(sFolder).filePath(QStringLiteral("new-%1").arg(::getpid())));
    m_file = ::open(unnamed.constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (m_file < 0) {
        return;
    }
    const QByteArray path = QFile::encodeName(sLibrary);
    if (::flock(m_file, LOCK_EX | LOCK_NB) != 0 ||
        ::write(m_file, path.constData(), size_t(path.size())) != path.size() ||
        ::rename(unnamed.constData(), QFile::encodeName(m_fileName).constData()) != 0) {
        ::unlink(unnamed.constData());
    }
}

CkPluginLoadMarker::~CkPluginLoadMarker() {
    if (m_file >= 0) {
        QFile::remove(m_fileName);
        ::close(m_file);
    }
}

QStringList CkPluginLoadMarker::takeLeftBehind(const QString& sFolder) {
    QStringList libraries;
    const QDir folder(sFolder);
    for (const QString& name : folder.entryList({kPrefix + QLatin1Char('*')}, QDir::Files)) {
        const QString library = readLocked(folder.filePath(name));
        if (!library.isEmpty()) {
            libraries.append(library);
        }
    }
    return libraries;
}
