#include "zuCore/CkPluginLoader.h"

#include "zuCore/CkPlugin.h"
#include "zuCore/CkRTTI.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gmock/gmock.h>
#include <memory>

using testing::HasSubstr;

namespace {

QString module(const char* name) {
    return QDir(QStringLiteral(TEST_PLUGIN_DIR)).filePath(QLatin1String(name) + QStringLiteral(".so"));
}

std::string refusal(CkPluginLoader& loader, const QString& fileName) {
    QString error;
    EXPECT_EQ(loader.load(fileName, &error), nullptr) << qPrintable(fileName);
    return error.toStdString();
}

bool blockIsRegistered() {
    const std::unique_ptr<QObject> block(CkRTTI::instance()->create(QStringLiteral("test.plugin.Block")));
    return block != nullptr;
}

} // namespace

TEST(CkPluginLoader, LoadsAGoodPluginAndCallsInitOnce) {
    CkPluginLoader loader;
    QString error;
    CkPlugin* const plugin = loader.load(module("testPluginGood"), &error);
    ASSERT_NE(plugin, nullptr) << qPrintable(error);
    EXPECT_EQ(plugin->name(), QStringLiteral("Test 1"));
    EXPECT_TRUE(blockIsRegistered());
    ASSERT_EQ(loader.plugins().size(), 1);
    EXPECT_EQ(loader.plugins().first().plugin, plugin);
    EXPECT_EQ(qobject_cast<CkPlugin*>(loader.plugins().first().object), plugin);
    EXPECT_EQ(loader.plugins().first().name, QStringLiteral("Test 1"));
    EXPECT_EQ(loader.plugins().first().description, QStringLiteral("Description"));
    EXPECT_EQ(loader.plugins().first().version, QStringLiteral("1.0.0"));

    EXPECT_EQ(loader.load(module("testPluginGood"), &error), plugin);
    EXPECT_EQ(plugin->name(), QStringLiteral("Test 1"));
    EXPECT_EQ(loader.plugins().size(), 1);
    CkRTTI::instance()->unregisterPlugin(loader.plugins().first().object);
}

TEST(CkPluginLoader, RefusalsNameTheFileAndTheReason) {
    struct SkCase {
        const char* file;
        const char* reason;
    };
    const SkCase cases[] = {
        {"testPluginForeign", "another program (\"org.example.Other.Plugin\")"},
        {"testPluginNoInterface", "interface of a viewer plug-in"},
        {"testPluginOtherMajor", "built for version 2.0.0 of the framework, this is version 1"},
        {"testPluginInitFalse", "could not be initialised"},
        {"testPluginInitThrows", "exception: init gone wrong"},
        {"testPluginConstructorThrows", "exception: constructor gone wrong"},
        {"testPluginMissingSymbol", "cannot be loaded"},
        {"testPluginNameThrows", "exception: name gone wrong"},
        {"testPluginDescriptionThrows", "failed with an exception."},
        {"testPluginVersionThrows", "exception: version gone wrong"},
        {"testLibraryNoQt", "not a Qt plug-in"},
        {"testThatIsNotThere", "cannot be read"},
    };
    CkPluginLoader loader;
    for (const SkCase& entry : cases) {
        const std::string error = refusal(loader, module(entry.file));
        EXPECT_THAT(error, HasSubstr(entry.file));
        EXPECT_THAT(error, HasSubstr(entry.reason)) << entry.file;
        // A class registered by a refused plug-in would be code of an unloaded library.
        EXPECT_FALSE(blockIsRegistered()) << entry.file;
    }
    EXPECT_TRUE(loader.plugins().isEmpty());
}

TEST(CkPluginLoader, RefusesFilesThatOnlyLookLikeLibraries) {
    const QTemporaryDir folder;
    const auto write = [&](const char* name, const QByteArray& content) {
        QFile file(folder.filePath(QLatin1String(name)));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    };
    QFile good(module("testPluginGood"));
    ASSERT_TRUE(good.open(QIODevice::ReadOnly));
    const QByteArray whole = good.readAll();
    write("text.so", "no library\n");
    write("empty.so", "");
    CkPluginLoader loader;
    EXPECT_THAT(refusal(loader, folder.filePath(QStringLiteral("text.so"))), HasSubstr("not a library"));
    EXPECT_THAT(refusal(loader, folder.filePath(QStringLiteral("empty.so"))), HasSubstr("not a library"));
    // The dynamic loader would accept the longer ones, and the program would crash at the first missing page.
    for (const qsizetype length : {4, 63, 64, 600, 4096, 8192, 12000}) {
        ASSERT_LT(length, whole.size());
        write("cut.so", whole.left(length));
        const std::string error = refusal(loader, folder.filePath(QStringLiteral("cut.so")));
        EXPECT_THAT(error, HasSubstr("cut.so")) << length;
        EXPECT_THAT(error, HasSubstr("cut off")) << length;
    }
    // Segments that claim to lie beyond the end of any file.
    QByteArray wild = whole;
    wild.replace(32, 8, QByteArray(8, char(0xff)));
    write("wild.so", wild);
    EXPECT_THAT(refusal(loader, folder.filePath(QStringLiteral("wild.so"))), HasSubstr("damaged"));
    EXPECT_THAT(refusal(loader, folder.path()), HasSubstr("cannot be read"));
}

TEST(CkPluginLoader, FolderLoadsTheGoodAndReportsTheBadInOrder) {
    const QTemporaryDir folder;
    ASSERT_TRUE(QFile::copy(module("testPluginGood"), folder.filePath(QStringLiteral("b.so"))));
    for (const char* name : {"a.so", "c.so"}) {
        QFile file(folder.filePath(QLatin1String(name)));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("junk");
    }
    QFile readme(folder.filePath(QStringLiteral("README.txt")));
    ASSERT_TRUE(readme.open(QIODevice::WriteOnly));
    readme.close();

    CkPluginLoader loader;
    const QStringList messages = loader.loadFolder(folder.path());
    ASSERT_EQ(messages.size(), 2);
    EXPECT_TRUE(messages[0].contains(QLatin1String("a.so")));
    EXPECT_TRUE(messages[1].contains(QLatin1String("c.so")));
    ASSERT_EQ(loader.plugins().size(), 1);
    EXPECT_TRUE(loader.plugins().first().fileName.endsWith(QLatin1String("b.so")));
    CkRTTI::instance()->unregisterPlugin(loader.plugins().first().object);

    const QStringList missing = loader.loadFolder(folder.filePath(QStringLiteral("nowhere")));
    ASSERT_EQ(missing.size(), 1);
    EXPECT_TRUE(missing.first().contains(QLatin1String("nowhere")));
}
