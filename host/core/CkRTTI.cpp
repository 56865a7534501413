#include "zuCore/CkRTTI.h"

#include "zuCore/CkCameraSource.h"

#include <QCoreApplication>
#include <QMetaClassInfo>
#include <QMetaObject>
#include <algorithm>

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(CkRTTI)
};

QString classInformation(const QMetaObject* metaObject, const char* key) {
    const int index = metaObject->indexOfClassInfo(key);
    // Inherited class information identifies the base class, not this one.
    return index < metaObject->classInfoOffset() ? QString::fromLatin1(metaObject->className())
                                                 : QString::fromUtf8(metaObject->classInfo(index).value());
}

bool inheritsClass(const QMetaObject* metaObject, const QString& baseClassName) {
    for (; metaObject != nullptr; metaObject = metaObject->superClass()) {
        if (baseClassName == QLatin1String(metaObject->className())) {
            return true;
        }
    }
    return false;
}

bool hasDefaultConstructor(const QMetaObject* metaObject) {
    for (int i = 0; i < metaObject->constructorCount(); ++i) {
        if (metaObject->constructor(i).parameterCount() == 0) {
            return true;
        }
    }
    return false;
}

} // namespace

CkRTTI* CkRTTI::instance() {
    static CkRTTI* const registry = [] {
        static CkRTTI made;
        made.registerClass(nullptr, &CkCameraSource::staticMetaObject, QStringLiteral("CkImageSource"));
        return &made;
    }();
    return registry;
}

bool CkRTTI::registerClass(QObject* pPlugin, const QMetaObject* pMetaObject, const QString& sBaseClassName) {
    if (pMetaObject == nullptr) {
        m_sLastError = Texts::tr("No class was given to register.");
        return false;
    }
    const QString className = QString::fromLatin1(pMetaObject->className());
    if (!inheritsClass(pMetaObject, sBaseClassName)) {
        m_sLastError = Texts::tr("Class \"%1\" does not inherit \"%2\".").arg(className, sBaseClassName);
        return false;
    }
    if (!hasDefaultConstructor(pMetaObject)) {
        m_sLastError = Texts::tr("Class \"%1\" has no invokable default constructor.").arg(className);
        return false;
    }
    const QString id = uniqueId(pMetaObject);
    for (const SkRegisteredClass& known : std::as_const(m_classes)) {
        if (known.uniqueId != id) {
            continue;
        }
        if (known.metaObject != pMetaObject) {
            m_sLastError = Texts::tr("Identifier \"%1\" of class \"%2\" is taken by class \"%3\".")
                               .arg(id, className, QLatin1String(known.metaObject->className()));
            return false;
        }
        if (known.baseClassName == sBaseClassName) {
            return true;
        }
    }
    m_classes.append({id, classInformation(pMetaObject, "CustomName"), sBaseClassName, pMetaObject, pPlugin});
    return true;
}

void CkRTTI::unregisterPlugin(QObject* pPlugin) {
    // Null means the host's own classes, which are never unregistered.
    if (pPlugin != nullptr) {
        m_classes.removeIf([pPlugin](const SkRegisteredClass& known) { return known.plugin == pPlugin; });
    }
}

QList<SkRegisteredClass> CkRTTI::classes(const QString& sBaseClassName) const {
    QList<SkRegisteredClass> found;
    std::copy_if(m_classes.cbegin(), m_classes.cend(), std::back_inserter(found),
                 [&sBaseClassName](const SkRegisteredClass& known) {
                     return sBaseClassName.isEmpty() || known.baseClassName == sBaseClassName;
                 });
    return found;
}

QObject* CkRTTI::create(const QString& sUniqueIdOrClassName) const {
    auto found = std::find_if(m_classes.cbegin(), m_classes.cend(), [&](const SkRegisteredClass& known) {
        return known.uniqueId == sUniqueIdOrClassName;
    });
    if (found == m_classes.cend()) {
        found = std::find_if(m_classes.cbegin(), m_classes.cend(), [&](const SkRegisteredClass& known) {
            return sUniqueIdOrClassName == QLatin1String(known.metaObject->className());
        });
    }
    if (found == m_classes.cend()) {
        m_sLastError = Texts::tr("There is no class \"%1\".").arg(sUniqueIdOrClassName);
        return nullptr;
    }
    // A plug-in's constructor may throw; the host continues without the object.
    try {
        if (QObject* const object = found->metaObject->newInstance()) {
            return object;
        }
    } catch (...) {
    }
    m_sLastError = Texts::tr("An object of class \"%1\" could not be made.").arg(sUniqueIdOrClassName);
    return nullptr;
}

QString CkRTTI::uniqueId(const QMetaObject* pMetaObject) {
    return pMetaObject == nullptr ? QString() : classInformation(pMetaObject, "UniqueID");
}
