#pragma once

#include "zuCore/CkPlugin.h"

#include <QObject>
#include <QStringList>

/// A plug-in that records the calls of the viewer in its property "calls", and adds a button named
/// "probeButton" to every camera's panel.
class CkProbePlugin : public QObject, public CkPlugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "com.orvane.Pictor.CkProbePlugin")
    Q_INTERFACES(CkPlugin)
    Q_PROPERTY(QStringList calls MEMBER m_calls)

public:
    bool init() override;
    QString name() const override { return QStringLiteral("Probe"); }
    QString author() const override { return QStringLiteral("Orvane"); }
    QString description() const override { return QStringLiteral("Writes down what it is told."); }
    void version(int& major, int& minor, int& patch) const override;
    QString website() const override { return QStringLiteral("https://www.orvane.com"); }

    void activeViewChanged(int viewId) override;
    void viewAboutToClose(int viewId) override;
    void viewGotNewImage(int viewId, const CkImageData* pData) override;
    void newCameraConnected(void* cameraHandle) override;

private:
    /// Throws while the property "throws" is true.
    void throwIfAsked(const char* call);

    QStringList m_calls;
};
