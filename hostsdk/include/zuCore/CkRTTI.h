#pragma once

#include "zuCore/zuCoreGlobal.h"

#include <QHash>
#include <QList>
#include <QObject>
#include <QString>

/// A class that the host can create.
struct SkRegisteredClass {
    QString uniqueId;      ///< class information "UniqueID", or the class name without one
    QString customName;    ///< class information "CustomName", or the class name without one
    QString baseClassName; ///< under which it was registered
    const QMetaObject* metaObject = nullptr; ///< never null in the registry
    QObject* plugin = nullptr;               ///< that registered it; null for the host itself
};

/// Registry of creatable classes. User-interface thread.
class ZUCORE_EXPORT CkRTTI {
public:
    static CkRTTI* instance(); ///< Never null.

    /// Makes a class creatable under a base class name. False, with lastError set, when the class does not
    /// inherit that base, cannot be default-constructed through its meta-object, or its unique identifier is
    /// used by another class. Registering the same class twice is allowed.
    bool registerClass(QObject* pPlugin, const QMetaObject* pMetaObject, const QString& sBaseClassName);
    /// Removes everything that a plug-in registered.
    void unregisterPlugin(QObject* pPlugin);

    /// In order of registration; all bases when the name is empty.
    QList<SkRegisteredClass> classes(const QString& sBaseClassName = QString()) const;

    /// A new object of the class with this unique identifier or class name, owned by the caller; null, with
    /// lastError set, when there is none.
    QObject* create(const QString& sUniqueIdOrClassName) const;

    QString lastError() const { return m_sLastError; } ///< Of the last call that failed; translated.

    /// Unique identifier of an object's class, as registered or from its class information.
    static QString uniqueId(const QMetaObject* pMetaObject);

private:
    CkRTTI() = default;

    QList<SkRegisteredClass> m_classes;
    mutable QString m_sLastError;
};
