#include <QtCore>
#include <zuCore/CkPlugin.h>
#include <zuCore/zuCoreVersion.h>

class Outside : public QObject, public CkPlugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "com.orvane.Pictor.Outside")
    Q_INTERFACES(CkPlugin)
public:
    bool init() override { return qInfo("outside plug-in initialised"), true; }
    QString name() const override { return "Outside"; }
    QString author() const override { return "Somebody"; }
    QString description() const override { return "A plug-in built against the installed SDK."; }
    void version(int& major, int& minor, int& patch) const override { zuCoreVersion(major, minor, patch); }
    QString website() const override { return {}; }
    void activeViewChanged(int) override {}
    void viewAboutToClose(int) override {}
    void viewGotNewImage(int, const CkImageData*) override {}
    void newCameraConnected(void*) override {}
};
#include "Outside.moc"
