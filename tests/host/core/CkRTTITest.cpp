#include "zuCore/CkRTTI.h"

#include "tests/host/core/chainBlocks.h"
#include "zuCore/CkCameraSource.h"

#include <QDomDocument>
#include <QTimer>
#include <gtest/gtest.h>
#include <memory>

class RttiTwin : public CkChainable {
    Q_OBJECT
    Q_CLASSINFO("UniqueID", "test.PassBlock")

public:
    Q_INVOKABLE RttiTwin() = default;
};

class RttiNoConstructor : public CkChainable {
    Q_OBJECT

public:
    Q_INVOKABLE explicit RttiNoConstructor(int) {}
};

/// Has no class information of its own.
class RttiHeir : public PassBlock {
    Q_OBJECT

public:
    Q_INVOKABLE RttiHeir() = default;
};

class RttiThrower : public CkChainable {
    Q_OBJECT

public:
    Q_INVOKABLE RttiThrower() { throw 1; }
};

namespace {

const QString base = QStringLiteral("CkChainable");

class CkRTTITest : public testing::Test {
protected:
    ~CkRTTITest() override { registry->unregisterPlugin(&plugin); }

    CkRTTI* const registry = CkRTTI::instance();
    QObject plugin;
};

} // namespace

TEST_F(CkRTTITest, CreatesByIdentifierAndByClassName) {
    ASSERT_TRUE(registry->registerClass(&plugin, &PassBlock::staticMetaObject, base));
    const std::unique_ptr<QObject> byId(registry->create(QStringLiteral("test.PassBlock")));
    const std::unique_ptr<QObject> byName(registry->create(QStringLiteral("PassBlock")));
    EXPECT_NE(qobject_cast<PassBlock*>(byId.get()), nullptr);
    EXPECT_NE(qobject_cast<PassBlock*>(byName.get()), nullptr);
    ASSERT_EQ(registry->classes(base).size(), 1);
    EXPECT_EQ(registry->classes(base).first().customName, QStringLiteral("Pass"));
    EXPECT_EQ(registry->classes(base).first().plugin, &plugin);
}

TEST_F(CkRTTITest, RegisteringTwiceIsNoErrorAndListsOnce) {
    EXPECT_TRUE(registry->registerClass(&plugin, &PassBlock::staticMetaObject, base));
    EXPECT_TRUE(registry->registerClass(&plugin, &PassBlock::staticMetaObject, base));
    EXPECT_EQ(registry->classes(base).size(), 1);
}

TEST_F(CkRTTITest, RefusesWithAReason) {
    ASSERT_TRUE(registry->registerClass(&plugin, &PassBlock::staticMetaObject, base));
    EXPECT_FALSE(registry->registerClass(&plugin, &QTimer::staticMetaObject, base));
    EXPECT_TRUE(registry->lastError().contains(QLatin1String("does not inherit")));
    EXPECT_FALSE(registry->registerClass(&plugin, &RttiNoConstructor::staticMetaObject, base));
    EXPECT_TRUE(registry->lastError().contains(QLatin1String("constructor")));
    EXPECT_FALSE(registry->registerClass(&plugin, &RttiTwin::staticMetaObject, base));
    EXPECT_TRUE(registry->lastError().contains(QLatin1String("taken by class \"PassBlock\"")));
    EXPECT_FALSE(registry->registerClass(&plugin, nullptr, base));
    EXPECT_EQ(registry->create(QStringLiteral("test.Nothing")), nullptr);
    EXPECT_TRUE(registry->lastError().contains(QLatin1String("test.Nothing")));
}

TEST_F(CkRTTITest, InheritedClassInformationDoesNotCount) {
    ASSERT_TRUE(registry->registerClass(&plugin, &PassBlock::staticMetaObject, base));
    EXPECT_EQ(CkRTTI::uniqueId(&RttiHeir::staticMetaObject), QStringLiteral("RttiHeir"));
    EXPECT_TRUE(registry->registerClass(&plugin, &RttiHeir::staticMetaObject, base));
    EXPECT_EQ(registry->classes(base).size(), 2);
}

TEST_F(CkRTTITest, ForgetsWhatAPluginRegistered) {
    QObject other;
    ASSERT_TRUE(registry->registerClass(&plugin, &PassBlock::staticMetaObject, base));
    ASSERT_TRUE(registry->registerClass(&other, &RttiHeir::staticMetaObject, base));
    registry->unregisterPlugin(&plugin);
    ASSERT_EQ(registry->classes(base).size(), 1);
    EXPECT_EQ(registry->classes(base).first().uniqueId, QStringLiteral("RttiHeir"));
    registry->unregisterPlugin(&other);
}

TEST_F(CkRTTITest, AConstructorThatThrowsGivesNull) {
    ASSERT_TRUE(registry->registerClass(&plugin, &RttiThrower::staticMetaObject, base));
    EXPECT_EQ(registry->create(QStringLiteral("RttiThrower")), nullptr);
    EXPECT_TRUE(registry->lastError().contains(QLatin1String("RttiThrower")));
}

TEST_F(CkRTTITest, TheHostsOwnSourceIsThereFromTheStart) {
    const std::unique_ptr<QObject> source(
        registry->create(QStringLiteral("com.orvane.Pictor.CkCameraSource")));
    ASSERT_NE(qobject_cast<CkCameraSource*>(source.get()), nullptr);
    EXPECT_STREQ(source->metaObject()->className(), "CkCameraSource");
    registry->unregisterPlugin(nullptr);
    EXPECT_EQ(registry->classes(QStringLiteral("CkImageSource")).size(), 1);
}

#include "CkRTTITest.moc"
