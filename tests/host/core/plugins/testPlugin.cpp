#include "zuCore/CkChainable.h"
#include "zuCore/CkPlugin.h"
#include "zuCore/CkRTTI.h"
#include "zuCore/zuCoreVersion.h"

#include <stdexcept>

// A valid plug-in; each definition breaks it in one way.

#ifdef TEST_FOREIGN_IID
#define TEST_IID "org.example.Other.Plugin"
#else
#define TEST_IID "com.orvane.Pictor.TestPlugin"
#endif

#ifdef TEST_MISSING_SYMBOL
int functionThatNobodyDefines();
#endif

class PluginBlock : public CkChainable {
    Q_OBJECT
    Q_CLASSINFO("UniqueID", "test.plugin.Block")

public:
    Q_INVOKABLE PluginBlock() = default;
};

#ifdef TEST_NO_INTERFACE
class TestPlugin : public QObject {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID TEST_IID)
};
#else
class TestPlugin : public QObject, public CkPlugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID TEST_IID)
    Q_INTERFACES(CkPlugin)

public:
    TestPlugin() {
#ifdef TEST_CONSTRUCTOR_THROWS
        throw std::runtime_error("constructor gone wrong");
#endif
    }

    bool init() override {
        ++m_iInits;
        CkRTTI::instance()->registerClass(this, &PluginBlock::staticMetaObject,
                                          QStringLiteral("CkChainable"));
#if defined(TEST_INIT_FALSE)
        return false;
#elif defined(TEST_INIT_THROWS)
        throw std::runtime_error("init gone wrong");
#elif defined(TEST_MISSING_SYMBOL)
        return functionThatNobodyDefines() == 0;
#else
        return true;
#endif
    }
    QString name() const override {
#ifdef TEST_NAME_THROWS
        throw std::runtime_error("name gone wrong");
#endif
        return QStringLiteral("Test %1").arg(m_iInits);
    }
    QString author() const override {
        return QStringLiteral("Author");
    }
    QString description() const override {
#ifdef TEST_DESCRIPTION_THROWS
        throw 1;
#endif
        return QStringLiteral("Description");
    }
    void version(int& major, int& minor, int& patch) const override {
#ifdef TEST_VERSION_THROWS
        throw std::runtime_error("version gone wrong");
#endif
        zuCoreVersion(major, minor, patch);
#ifdef TEST_OTHER_MAJOR
        ++major;
#endif
    }
    QString website() const override {
        return QStringLiteral("https://example.org");
    }
    void activeViewChanged(int) override {}
    void viewAboutToClose(int) override {}
    void viewGotNewImage(int, const CkImageData*) override {}
    void newCameraConnected(void*) override {}

private:
    int m_iInits = 0;
};
#endif

#include "testPlugin.moc"
