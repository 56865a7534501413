#include "host/viewer/plugins/CkPluginChecker.h"

#include "host/viewer/plugins/CkPluginHost.h"
#include "host/viewer/plugins/CkPluginLoadMarker.h"
#include "host/viewer/plugins/CkPluginProbe.h"

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

// For those that come back, on a machine that is busy with other things.
constexpr auto kPatience = 60s;

class PluginChecker : public ::testing::Test {
protected:
    /// A copy of the test plug-in under a name that says what it does.
    QString library(const QString& name) const {
        const QString copy = m_folder.filePath(QStringLiteral("plugins/%1.so").arg(name));
        QDir().mkpath(m_folder.filePath(QStringLiteral("plugins")));
        EXPECT_TRUE(QFile::copy(QStringLiteral(ZU_BAD_PLUGIN), copy));
        return copy;
    }

    SkPluginCheckOptions checks(bool again = false) const {
        SkPluginCheckOptions wanted;
        wanted.memoryFolder = m_folder.filePath(QStringLiteral("memory"));
        wanted.timeLimit = kPatience;
        wanted.again = again;
        return wanted;
    }

    /// What a new start says of the library.
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

TEST_F(PluginChecker, WhateverEndsAProgramIsRefusedWithItsName) {
    ASSERT_FALSE(CkPluginProbe::program().isEmpty());
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
        // All at the same time: nothing else happens while they hang.
        said.push_back(std::async(std::launch::async, [copy] { return CkPluginProbe::refusal(copy, 8s); }));
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
    EXPECT_TRUE(CkPluginLoadMarker::takeLeftBehind(checks().memoryFolder).isEmpty());
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
    // Another time.
    const QDateTime time = QFileInfo(copy).lastModified().addSecs(-100);
    QFile file(copy);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite) && file.setFileTime(time, QFileDevice::FileModificationTime));
    file.close();
    EXPECT_EQ(refusal(copy), "");
    EXPECT_EQ(probes(), 2);
    // Another content of the same size and time, in a text that nobody asks for.
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const qsizetype unread = file.readAll().indexOf("Nobody asks for the author");
    file.close();
    ASSERT_GT(unread, 0);
    overwrite(copy, unread, 'n');
    ASSERT_TRUE(file.open(QIODevice::ReadWrite) && file.setFileTime(time, QFileDevice::FileModificationTime));
    file.close();
    EXPECT_EQ(refusal(copy), "");
    EXPECT_EQ(probes(), 3);
    // Another place.
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
    // Without the probe nothing could be found out anew.
    const CkPluginVerdictCache verdicts(checks().memoryFolder + QStringLiteral("/verdicts.json"),
                                        QStringLiteral("another program"));
    const auto stamp = SkLibraryStamp::of(copy);
    ASSERT_TRUE(stamp);
    EXPECT_FALSE(verdicts.find(copy, *stamp));
    EXPECT_EQ(refusal(copy), said);
}

TEST_F(PluginChecker, DamagedMemoryOnlyMakesItLookAgain) {
    const QString copy = library(QStringLiteral("good"));
    QDir().mkpath(checks().memoryFolder);
    for (const char* content : {"", "{", "[1]", "{\"libraries\": 3}", "{\"libraries\": {\"a\": [1]}}"}) {
        QFile file(checks().memoryFolder + QStringLiteral("/verdicts.json"));
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
    // What a program that ended left there.
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

// Copies of a good library with a few bits turned over: whatever they do, the program that wants to load them
// goes on.
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
    // Flips that nothing reads leave a library as good as it was; most are not of that kind.
    EXPECT_GE(host.problems().size(), 10);
}
