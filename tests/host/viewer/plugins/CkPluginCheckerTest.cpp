#include "host/viewer/plugins/CkPluginChecker.h"

#include "host/viewer/plugins/CkPluginHost.h"
#include "host/viewer/plugins/CkPluginLoadMarker.h"
#include "host/viewer/plugins/PluginProbe.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <future>
#include <gmock/gmock.h>
#include <random>

using namespace std::chrono_literals;
using testing::HasSubstr;

namespace {

// For plug-ins that do return, on a busy machine.
constexpr auto kPatience = 60s;

class PluginChecker : public ::testing::Test {
protected:
    /// A copy of the test plug-in under a name that defines its behaviour.
    QString library(const QString& name) const {
        const QString copy = m_folder.filePath(QStringLiteral("plugins/%1.so").arg(name));
        QDir().mkpath(m_folder.filePath(QStringLiteral("plugins")));
        EXPECT_TRUE(QFile::copy(QStringLiteral(ZU_BAD_PLUGIN), copy));
        return copy;
    }

    SkPluginCheckOptions checks(bool again = false) const {
        SkPluginCheckOptions wanted;
        wanted.cacheFolder = m_folder.filePath(QStringLiteral("memory"));
        wanted.timeLimit = kPatience;
        wanted.again = again;
        return wanted;
    }

    /// The verdict on the library in a new start.
    std::string refusal(const QString& library, bool again = false) const {
        return CkPluginChecker(checks(again)).refusal(library).toStdString();
    }

    QTemporaryDir m_folder;
};

void overwrite(const QString& fileName, qint64 at, char value) {
    QFile file(fileName);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite) && file.seek(at));
    ASSERT_EQ(file.write(&value, 1), 1);
}

} // namespace

TEST_F(PluginChecker, LibrariesThatEndTheProgramAreRefusedByName) {
    ASSERT_FALSE(PluginProbe::program().isEmpty());
    struct SkCase {
        const char* place;
        const char* step;
    };
    const SkCase places[] = {{"library", "loaded and started"}, {"constructor", "loaded and started"},
                             {"version", "loaded and started"}, {"init", "loaded and started"},
                             {"name", "loaded and started"},    {"description", "loaded and started"},
                             {"destructor", "it was ended"}};
    CkPluginChecker gate(checks());
    for (const SkCase& entry : places) {
        for (const char* deed : {"aborts", "exits", "leaves", "crashes"}) {
            const QString name = QStringLiteral("%1-%2").arg(QLatin1String(entry.place), QLatin1String(deed));
            const std::string said = gate.refusal(library(name)).toStdString();
            EXPECT_THAT(said, HasSubstr(name.toStdString() + ".so"));
            EXPECT_THAT(said, HasSubstr("it ended the program while ")) << name.toStdString();
            EXPECT_THAT(said, HasSubstr(entry.step)) << name.toStdString();
        }
    }
    EXPECT_EQ(gate.refusal(library(QStringLiteral("good"))), QString());
}

TEST_F(PluginChecker, WhatThrowsIsRefusedWithTheException) {
    CkPluginChecker gate(checks());
    for (const char* place : {"library", "constructor", "version", "init", "name", "description"}) {
        const QString name = QLatin1String(place) + QStringLiteral("-throws");
        EXPECT_THAT(gate.refusal(library(name)).toStdString(),
                    HasSubstr(std::string("it failed with an exception: ") + place));
    }
    // A destructor's exception cannot be caught.
    EXPECT_THAT(gate.refusal(library(QStringLiteral("destructor-throws"))).toStdString(),
                HasSubstr("it ended the program while it was ended"));
}

TEST_F(PluginChecker, WhatHangsIsRefusedAfterTheTimeLimit) {
    std::vector<std::future<std::optional<QString>>> said;
    for (const char* place : {"library", "constructor", "init", "name", "destructor"}) {
        const QString copy = library(QLatin1String(place) + QStringLiteral("-hangs"));
        // In parallel, because each hangs until its time limit.
        said.push_back(std::async(std::launch::async, [copy] { return PluginProbe::refusal(copy, 8s); }));
    }
    for (auto& one : said) {
        const std::optional<QString> refusal = one.get();
        ASSERT_TRUE(refusal);
        EXPECT_THAT(refusal->toStdString(), HasSubstr("it did not come back within 8 s while "));
    }
}

TEST_F(PluginChecker, TheHostLoadsTheGoodOneAmongTheBad) {
    for (const char* name :
         {"constructor-aborts", "destructor-leaves", "good", "init-crashes", "name-exits"}) {
        library(QLatin1String(name));
    }
    CkPluginHost host(checks());
    host.load(m_folder.filePath(QStringLiteral("plugins")));
    ASSERT_EQ(host.plugins().size(), 1);
    EXPECT_EQ(host.plugins().first().name, "good");
    EXPECT_EQ(host.plugins().first().fileName, m_folder.filePath(QStringLiteral("plugins/good.so")));
    ASSERT_EQ(host.problems().size(), 4);
    EXPECT_THAT(host.problems()[1].toStdString(), HasSubstr("destructor-leaves.so"));
    EXPECT_TRUE(CkPluginLoadMarker::takeLeftBehind(checks().cacheFolder).isEmpty());
}

TEST_F(PluginChecker, TheLogNamesWhatWasLoaded) {
    const QString copy = library(QStringLiteral("good"));
    CkPluginHost host(checks());
    testing::internal::CaptureStderr();
    host.load(copy);
    const std::string said = testing::internal::GetCapturedStderr();
    ASSERT_EQ(host.plugins().size(), 1);
    const QString expected = QStringLiteral("Plug-in \"good\" %1 loaded from %2\n");
    EXPECT_THAT(said, HasSubstr(expected.arg(host.plugins().first().version, copy).toStdString()));
}

TEST_F(PluginChecker, OnlyNewAndChangedLibrariesAreProbed) {
    const QString trace = m_folder.filePath(QStringLiteral("trace"));
    qputenv("ZU_TEST_TRACE", QFile::encodeName(trace));
    const auto probes = [&] { return QFileInfo(trace).size(); };
    const QString copy = library(QStringLiteral("good"));
    EXPECT_EQ(refusal(copy), "");
    EXPECT_EQ(probes(), 1);
    EXPECT_EQ(refusal(copy), "");
    EXPECT_EQ(probes(), 1);
    // Another time stamp.
    const QDateTime time = QFileInfo(copy).lastModified().addSecs(-100);
    QFile file(copy);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite) && file.setFileTime(time, QFileDevice::FileModificationTime));
    file.close();
    EXPECT_EQ(refusal(copy), "");
    EXPECT_EQ(probes(), 2);
    // Different content with the same size and time, in a text that is never queried.
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const qsizetype unread = file.readAll().indexOf("Nobody asks for the author");
    file.close();
    ASSERT_GT(unread, 0);
    overwrite(copy, unread, 'n');
    ASSERT_TRUE(file.open(QIODevice::ReadWrite) && file.setFileTime(time, QFileDevice::FileModificationTime));
    file.close();
    EXPECT_EQ(refusal(copy), "");
    EXPECT_EQ(probes(), 3);
    // Another path.
    EXPECT_EQ(refusal(library(QStringLiteral("twin"))), "");
    EXPECT_EQ(probes(), 4);
    EXPECT_EQ(refusal(copy), "");
    EXPECT_EQ(probes(), 4);
    EXPECT_EQ(refusal(copy, true), "");
    EXPECT_EQ(probes(), 5);
    qunsetenv("ZU_TEST_TRACE");
}

TEST_F(PluginChecker, ARefusalIsRememberedToo) {
    const QString copy = library(QStringLiteral("init-aborts"));
    const std::string said = refusal(copy);
    EXPECT_THAT(said, HasSubstr("it ended the program"));
    // Without the probe, no library could be checked again.
    const CkPluginVerdictCache verdicts(checks().cacheFolder + QStringLiteral("/verdicts.json"),
                                        QStringLiteral("another program"));
    const auto stamp = SkLibraryStamp::of(copy);
    ASSERT_TRUE(stamp);
    EXPECT_FALSE(verdicts.find(copy, *stamp));
    EXPECT_EQ(refusal(copy), said);
}

TEST_F(PluginChecker, DamagedMemoryOnlyMakesItLookAgain) {
    const QString copy = library(QStringLiteral("good"));
    QDir().mkpath(checks().cacheFolder);
    for (const char* content : {"", "{", "[1]", "{\"libraries\": 3}", "{\"libraries\": {\"a\": [1]}}"}) {
        QFile file(checks().cacheFolder + QStringLiteral("/verdicts.json"));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        file.close();
        EXPECT_EQ(refusal(copy), "") << content;
    }
}

TEST_F(PluginChecker, MarksOfProgramsThatStillRunAreNoSuspicion) {
    const QString folder = m_folder.filePath(QStringLiteral("marks"));
    {
        const CkPluginLoadMarker mark(folder, QStringLiteral("/a.so"));
        EXPECT_TRUE(CkPluginLoadMarker::takeLeftBehind(folder).isEmpty());
        EXPECT_EQ(QDir(folder).entryList(QDir::Files).size(), 1);
    }
    EXPECT_TRUE(QDir(folder).entryList(QDir::Files).isEmpty());
    // Left behind by a program that ended.
    QFile left(folder + QStringLiteral("/loading-17"));
    ASSERT_TRUE(left.open(QIODevice::WriteOnly));
    left.write("/plug-ins/b.so");
    left.close();
    EXPECT_EQ(CkPluginLoadMarker::takeLeftBehind(folder), QStringList{QStringLiteral("/plug-ins/b.so")});
    EXPECT_TRUE(CkPluginLoadMarker::takeLeftBehind(folder).isEmpty());
}

TEST_F(PluginChecker, WhatEndedOneStartIsLeftOutOfTheNextAndNamed) {
    const QString copy = library(QStringLiteral("init-viewer-aborts"));
    const auto run = [&](const QStringList& more) {
        QProcess viewer;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("XDG_CACHE_HOME"), m_folder.filePath(QStringLiteral("cache")));
        viewer.setProcessEnvironment(environment);
        viewer.setProcessChannelMode(QProcess::MergedChannels);
        viewer.start(QStringLiteral(ZU_VIEWER),
                     QStringList{QStringLiteral("--settings"), m_folder.filePath(QStringLiteral("s.ini")),
                                 QStringLiteral("--plugin-path"), copy, QStringLiteral("--camera"),
                                 QStringLiteral("sim:grey"), QStringLiteral("--frames"),
                                 QStringLiteral("1")} +
                         more);
        EXPECT_TRUE(viewer.waitForFinished(120'000));
        const bool well = viewer.exitStatus() == QProcess::NormalExit && viewer.exitCode() == 0;
        return (well ? "lived " : "ended ") + viewer.readAll().toStdString();
    };
    EXPECT_THAT(run({}), HasSubstr("ended "));
    const std::string second = run({});
    EXPECT_THAT(second, testing::StartsWith("lived "));
    EXPECT_THAT(second, HasSubstr("init-viewer-aborts.so\" was left out"));
    EXPECT_THAT(run({}), testing::StartsWith("lived "));
    EXPECT_THAT(run({QStringLiteral("--check-plugins")}), testing::StartsWith("ended "));
}

// Copies of a good library with a few bits turned over: whatever they do, the program that loads them
// survives.
TEST_F(PluginChecker, LibrariesWithTurnedBitsDoNotEndTheProgram) {
    QFile good(library(QStringLiteral("good")));
    ASSERT_TRUE(good.open(QIODevice::ReadOnly));
    const QByteArray whole = good.readAll();
    for (unsigned seed = 0; seed < 40; ++seed) {
        std::mt19937 random(seed);
        QByteArray bytes = whole;
        for (unsigned flip = 0; flip <= seed % 8; ++flip) {
            const auto place = qsizetype(random() % quint32(bytes.size()));
            bytes[place] = char(bytes[place] ^ (1 << random() % 8));
        }
        QFile copy(m_folder.filePath(QStringLiteral("plugins/turned%1.so").arg(seed)));
        ASSERT_TRUE(copy.open(QIODevice::WriteOnly));
        copy.write(bytes);
    }
    CkPluginHost host(checks());
    host.load(m_folder.filePath(QStringLiteral("plugins")));
    EXPECT_EQ(host.plugins().size() + host.problems().size(), 41);
    EXPECT_EQ(host.plugins().first().name, "good");
    // Flipped bits in unused parts have no effect; most are in used ones.
    EXPECT_GE(host.problems().size(), 10);
}
