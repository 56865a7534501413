#include "zuCore/CkPluginLoader.h"

#include "zuCore/CkPlugin.h"
#include "zuCore/CkRTTI.h"
#include "zuCore/zuCoreVersion.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonObject>
#include <QLibrary>
#include <QPluginLoader>
#include <elf.h>
#include <exception>

namespace {

const auto kIidPrefix = QLatin1String("com.orvane.Pictor.");

/// True when the file contains every segment that is mapped into memory. The dynamic loader does
/// not check that; the first access past the end of a truncated file would end the program.
bool hasAllSegments(QFile& file) {
    Elf64_Ehdr header;
    if (file.read(reinterpret_cast<char*>(&header), sizeof(header)) != qint64(sizeof(header)) ||
        header.e_ident[EI_CLASS] != ELFCLASS64 || header.e_phentsize != sizeof(Elf64_Phdr)) {
        return false;
    }
    for (quint32 i = 0; i < header.e_phnum; ++i) {
        Elf64_Phdr segment;
        const quint64 offset = header.e_phoff + quint64(i) * sizeof(segment);
        if (offset < header.e_phoff || offset > quint64(file.size()) || !file.seek(qint64(offset)) ||
            file.read(reinterpret_cast<char*>(&segment), sizeof(segment)) != qint64(sizeof(segment))) {
            return false;
        }
        const quint64 end = segment.p_offset + segment.p_filesz;
        if (end < segment.p_offset || end > quint64(file.size())) {
            return false;
        }
    }
    return true;
}

/// Why the file cannot be a library at all, or empty.
QString fileRefusal(const QString& fileName) {
    QFile file(fileName);
    if (!QFileInfo(fileName).isFile() || !file.open(QIODevice::ReadOnly)) {
        return CkPluginLoader::tr("the file cannot be read.");
    }
    if (file.peek(SELFMAG) != QByteArray(ELFMAG)) {
        return CkPluginLoader::tr("it is not a library.");
    }
    return hasAllSegments(file)
               ? QString()
               : CkPluginLoader::tr("it is damaged, cut off, or made for another kind of machine.");
}

QString identityRefusal(const QPluginLoader& loader) {
    const QString iid = loader.metaData().value(QLatin1String("IID")).toString();
    if (iid.isEmpty()) {
        return CkPluginLoader::tr("it is not a Qt plug-in (%1).").arg(loader.errorString());
    }
    return iid.startsWith(kIidPrefix)
               ? QString()
               : CkPluginLoader::tr("it is a plug-in for another program (\"%1\").").arg(iid);
}

/// Runs plug-in code and turns an exception into a reason for refusal. The exception is destroyed when this
/// returns, so that the library that defined it can be unloaded.
template <class Function>
QString callRefusal(Function function) {
    try {
        return function();
    } catch (const std::exception& error) {
        return CkPluginLoader::tr("it failed with an exception: %1")
            .arg(QString::fromLocal8Bit(error.what()));
    } catch (...) {
        return CkPluginLoader::tr("it failed with an exception.");
    }
}

QString pluginRefusal(CkPluginLoader::SkLoadedPlugin& loaded) {
    CkPlugin* const plugin = loaded.plugin;
    if (plugin == nullptr) {
        return CkPluginLoader::tr("it does not have the interface of a viewer plug-in.");
    }
    int major = 0;
    int minor = 0;
    int patch = 0;
    plugin->version(major, minor, patch);
    if (major != kZuCoreVersionMajor) {
        return CkPluginLoader::tr("it was built for version %1.%2.%3 of the framework, this is version %4.")
            .arg(major)
            .arg(minor)
            .arg(patch)
            .arg(kZuCoreVersionMajor);
    }
    if (!plugin->init()) {
        return CkPluginLoader::tr("it could not be initialised.");
    }
    loaded.name = plugin->name();
    loaded.description = plugin->description();
    loaded.version = QStringLiteral("%1.%2.%3").arg(major).arg(minor).arg(patch);
    return {};
}

} // namespace

CkPluginLoader::CkPluginLoader(QObject* pParent) : QObject(pParent) {}

// The libraries stay loaded: their blocks, widgets and translations may exist until the end of the process.
CkPluginLoader::~CkPluginLoader() = default;

CkPlugin* CkPluginLoader::load(const QString& sFileName, QString* psError) {
    const QString path = QFileInfo(sFileName).absoluteFilePath();
    for (const SkLoadedPlugin& loaded : std::as_const(m_plugins)) {
        if (QFileInfo(loaded.fileName) == QFileInfo(path)) {
            return loaded.plugin;
        }
    }
    QPluginLoader loader;
    // All symbols are resolved now: a missing one refuses the library here instead of ending the program
    // later.
    loader.setLoadHints(QLibrary::ResolveAllSymbolsHint);
    QString reason = fileRefusal(path);
    if (reason.isEmpty()) {
        loader.setFileName(path);
        reason = identityRefusal(loader);
    }
    SkLoadedPlugin fresh;
    fresh.fileName = path;
    if (reason.isEmpty()) {
        reason = callRefusal([&] {
            fresh.object = loader.instance();
            if (fresh.object == nullptr) {
                return CkPluginLoader::tr("it cannot be loaded (%1).").arg(loader.errorString());
            }
            fresh.plugin = qobject_cast<CkPlugin*>(fresh.object);
            return pluginRefusal(fresh);
        });
    }
    if (reason.isEmpty()) {
        m_plugins.append(fresh);
        return fresh.plugin;
    }
    if (fresh.object != nullptr) {
        CkRTTI::instance()->unregisterPlugin(fresh.object);
    }
    if (loader.isLoaded()) {
        callRefusal([&] {
            loader.unload();
            return QString();
        });
    }
    if (psError != nullptr) {
        *psError = tr("Plug-in \"%1\" was refused: %2").arg(QDir::toNativeSeparators(sFileName), reason);
    }
    return nullptr;
}

QStringList CkPluginLoader::loadFolder(const QString& sFolder) {
    const QDir folder(sFolder);
    if (!folder.exists()) {
        return {tr("There is no plug-in folder \"%1\".").arg(QDir::toNativeSeparators(sFolder))};
    }
    QStringList messages;
    const QStringList names = folder.entryList(QDir::Files, QDir::Name);
    for (const QString& name : names) {
        QString error;
        if (QLibrary::isLibrary(name) && load(folder.filePath(name), &error) == nullptr) {
            messages.append(error);
        }
    }
    return messages;
}
