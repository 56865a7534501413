#include "tests/support/FakeAppDelegate.h"
#include "zuCore/CkPlugin.h"
#include "zuCore/CkPluginLoader.h"
#include "zuCore/CkRTTI.h"

#include <QJsonObject>
#include <QMetaClassInfo>
#include <QMetaMethod>
#include <QPluginLoader>
#include <gtest/gtest.h>

namespace {

// The library as users have it: loaded by its file name, nothing of it linked into the test.

TEST(ToFPluginLibrary, MetadataNamesInterfaceAndClassAndNothingElse) {
    const QPluginLoader loader(QStringLiteral(ZPLTOF_FILE));
    const QJsonObject metadata = loader.metaData();
    EXPECT_EQ(metadata.value("IID").toString(), "com.orvane.Pictor.CkToFPlugin");
    EXPECT_EQ(metadata.value("className").toString(), "CkToFPlugin");
    EXPECT_TRUE(metadata.value("MetaData").toObject().isEmpty());
}

TEST(ToFPluginLibrary, InstanceOffersTheInterfaceByNameAndByIdentifier) {
    QPluginLoader loader(QStringLiteral(ZPLTOF_FILE));
    QObject* instance = loader.instance();
    ASSERT_NE(instance, nullptr) << qPrintable(loader.errorString());
    EXPECT_NE(qobject_cast<CkPlugin*>(instance), nullptr);
    EXPECT_NE(instance->qt_metacast("CkPlugin"), nullptr);
    EXPECT_EQ(instance->qt_metacast("CkPlugin"), instance->qt_metacast("com.orvane.CkPlugin"));

    const QMetaObject* meta = instance->metaObject();
    EXPECT_STREQ(meta->className(), "CkToFPlugin");
    const QStringList expected{"on_actOpenToF3dView()",   "on_actOpenToF3dViewStartAcq()",
                               "on_actOpenAllToFViews()", "on_actOpenAllToFViewsStartAcq()",
                               "on_actCalibrateOffset()", "enableMainMenuItems(int)"};
    QStringList found;
    for (int index = meta->methodOffset(); index < meta->methodCount(); ++index) {
        found << QString::fromLatin1(meta->method(index).methodSignature());
        EXPECT_EQ(meta->method(index).methodType(), QMetaMethod::Slot);
    }
    EXPECT_EQ(found, expected);
    EXPECT_EQ(meta->propertyCount(), meta->propertyOffset());
}

TEST(ToFPluginLibrary, LoadsIntoAHostAndRegistersItsBlock) {
    FakeAppDelegate app;
    CkPluginLoader loader;
    QString error;
    CkPlugin* plugin = loader.load(QStringLiteral(ZPLTOF_FILE), &error);
    ASSERT_NE(plugin, nullptr) << qPrintable(error);
    EXPECT_EQ(plugin->name(), "ToF Images Visualization");
    const std::unique_ptr<QObject> block(
        CkRTTI::instance()->create(QStringLiteral("com.orvane.Pictor.CkToFProcessCnbl")));
    ASSERT_NE(block, nullptr);
    const QMetaObject* meta = block->metaObject();
    EXPECT_STREQ(meta->className(), "CkToFProcessCnbl");
    EXPECT_STREQ(meta->classInfo(meta->indexOfClassInfo("CustomName")).value(), "ToF Image Processing");
    EXPECT_STREQ(meta->classInfo(meta->indexOfClassInfo("UniqueID")).value(),
                 "com.orvane.Pictor.CkToFProcessCnbl");
}

} // namespace
