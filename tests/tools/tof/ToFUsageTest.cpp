#include "tests/tools/tof/ToFFixture.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QRegularExpression>

namespace {

class ToFUsageTest : public ToFFixture {};

const char* const kCommands[] = {"info", "record", "process", "cloud", "image", "accuracy"};

} // namespace

TEST_F(ToFUsageTest, HelpOfEachCommandShowsExamples) {
    const SkRun overview = tof("--help");
    EXPECT_EQ(overview.code, 0);
    for (const char* command : kCommands) {
        EXPECT_TRUE(overview.out.contains(QLatin1String("\n  ") + QLatin1String(command))) << command;
        const SkRun run = runIn(m_folder.path(), {QString::fromLatin1(command), QStringLiteral("--help")});
        EXPECT_EQ(run.code, 0);
        EXPECT_TRUE(run.out.startsWith(QStringLiteral("Usage: tof %1 ").arg(QLatin1String(command))))
            << command;
        EXPECT_TRUE(run.out.contains(QStringLiteral("\nExamples:\n  tof %1 ").arg(QLatin1String(command))))
            << command;
        EXPECT_TRUE(run.err.isEmpty());
    }
    EXPECT_EQ(tof("--version").out, QStringLiteral("tof 1.0.0\n"));
}

TEST_F(ToFUsageTest, ManualAndCompletionKnowEveryOption) {
    const auto source = [](const char* name) {
        QFile file(QStringLiteral(TOF_SOURCES "/") + QLatin1String(name));
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    };
    const QString manual = source("tof.1").replace(QLatin1String("\\-"), QLatin1String("-"));
    const QString completion = source("tof.bash");
    int options = 0;
    for (const char* command : kCommands) {
        const SkRun run = runIn(m_folder.path(), {QString::fromLatin1(command), QStringLiteral("--help")});
        const QRegularExpression option(QStringLiteral("^  (--[a-z0-9-]+)"),
                                        QRegularExpression::MultilineOption);
        for (const QRegularExpressionMatch& match : option.globalMatch(run.out)) {
            const QRegularExpression whole(match.captured(1) + QStringLiteral("(?![a-z0-9-])"));
            EXPECT_TRUE(manual.contains(whole)) << qPrintable(match.captured(1));
            EXPECT_TRUE(completion.contains(whole)) << qPrintable(match.captured(1));
            ++options;
        }
    }
    EXPECT_EQ(options, 6 + 5 + 5 + 18 + 8 + 19);
}

TEST_F(ToFUsageTest, WrongCommandLinesAreCode2) {
    recordFloats("a.tif", {{1, 2}}, {});
    for (const char* line : {"",
                             "dance",
                             "info",
                             "info a.tif b.tif",
                             "info --dance a.tif",
                             "process a.tif b.tif",
                             "process --transform dance a.tif b.tif",
                             "process --transform depth a.tif",
                             "record --frames 0 b.tif",
                             "record --frames many b.tif",
                             "record --camera none b.tif",
                             "record --set speed=1 b.tif",
                             "record --set framerate b.tif",
                             "record --set framerate=fast b.tif",
                             "cloud --frame -1 a.tif b.ply",
                             "cloud --focal-length 0 a.tif b.ply",
                             "cloud --confidence nan a.tif b.ply",
                             "cloud --center-offset 1 a.tif b.ply",
                             "cloud --lens --no-lens a.tif b.ply",
                             "cloud --settings-file none.ini a.tif b.ply",
                             "image --map Dance a.tif b.png",
                             "image --format jpeg a.tif b.png",
                             "record --set exposure=99999999 b.tif",
                             "record --set sim_wall_distance=-1 b.tif",
                             "image --range 1 a.tif b.png",
                             "image --range 5,1 a.tif b.png",
                             "image --range 2,2 a.tif b.png",
                             "image --range 1,1.00000000001 a.tif b.png",
                             "image --range -1e300,1 a.tif b.png",
                             "image --range 0,1e39 a.tif b.png",
                             "cloud --focal-length 1e39 a.tif b.ply",
                             "cloud --cell-size 1e300 a.tif b.ply",
                             "cloud --frequency 3.5e38 a.tif b.ply",
                             "cloud --confidence 1e39 a.tif b.ply",
                             "cloud --offset -1e39 a.tif b.ply",
                             "cloud --z-zoom 1e39 a.tif b.ply",
                             "cloud --z-zoom 1e-39 a.tif b.ply",
                             "accuracy --confidence 1e39 b.json",
                             "image --channel x a.tif b.png"}) {
        const SkRun run = tof(line);
        EXPECT_EQ(run.code, 2) << line;
        EXPECT_TRUE(run.err.startsWith(QLatin1String("tof: "))) << line;
        EXPECT_TRUE(run.out.isEmpty()) << line;
    }
    EXPECT_FALSE(QFile::exists(path("b.tif")));
}

TEST_F(ToFUsageTest, WrongValuesAreToldTheRange) {
    recordFloats("a.tif", {{1, 2}}, {});
    EXPECT_EQ(tof("record --set exposure=99999999 b.tif").err,
              QStringLiteral("tof: exposure takes 1 to 20000 us, not 99999999.\n"));
    EXPECT_EQ(tof("record --set sim_seed=-1 b.tif").err.section(QLatin1Char(' '), 0, 2),
              QStringLiteral("tof: sim_seed takes"));
    EXPECT_EQ(tof("cloud --focal-length 0 a.tif b.ply").err,
              QStringLiteral("tof: --focal-length expects a number above 0, not \"0\".\n"));
    EXPECT_EQ(tof("cloud --max-width 0 a.tif b.ply").err,
              QStringLiteral("tof: --max-width expects a whole number of at least 1, not \"0\".\n"));
    EXPECT_EQ(tof("image --range -1e300,1 a.tif b.png").err,
              QStringLiteral("tof: --range expects numbers of 32-bit floats, up to 3.40282e+38, not "
                             "\"-1e300,1\".\n"));
    EXPECT_EQ(tof("cloud --offset 1e39 a.tif b.ply").err,
              QStringLiteral("tof: --offset expects numbers of 32-bit floats, up to 3.40282e+38, not "
                             "\"1e39\".\n"));
    EXPECT_EQ(tof("image --range 5,1 a.tif b.png").err,
              QStringLiteral("tof: --range expects the lower value first, not \"5,1\".\n"));
}

TEST_F(ToFUsageTest, InputsThatCannotBeReadAreCode3) {
    setContents("text.tif", "no picture");
    for (const char* line : {"info text.tif", "info none.tif", "process --transform depth text.tif b.tif",
                             "cloud text.tif b.ply", "image text.tif b.png"}) {
        const SkRun run = tof(line);
        EXPECT_EQ(run.code, 3) << line;
        EXPECT_TRUE(run.err.contains(QLatin1String(".tif"))) << line;
    }
}

TEST_F(ToFUsageTest, OutputsThatCannotBeWrittenAreCode5) {
    recordTaps("a.tif", 1);
    for (const char* line :
         {"process --transform depth a.tif no/b.tif", "cloud a.tif no/b.ply", "image a.tif no/b.png",
          "image --format tiff a.tif no/b.tif", "record --frames 1 no/b.tif"}) {
        const SkRun run = tof(line);
        EXPECT_EQ(run.code, 5) << line;
        EXPECT_TRUE(run.err.contains(QLatin1String("no/b"))) << line;
    }
}

TEST_F(ToFUsageTest, TheInputIsNeverOverwritten) {
    recordTaps("a.tif", 1);
    const QByteArray before = contents("a.tif");
    ASSERT_TRUE(QFile::link(path("a.tif"), path("link.tif")));
    EXPECT_EQ(tof("process --transform depth a.tif ./a.tif").code, 2);
    EXPECT_EQ(tof("process --transform depth a.tif link.tif").code, 2);
    EXPECT_EQ(tof("image --format tiff a.tif a.tif").code, 2);
    EXPECT_NE(tof("cloud --frame 0 a.tif a.tif").code, 0);
    EXPECT_EQ(contents("a.tif"), before);
}

TEST_F(ToFUsageTest, InfoShowsWhatIsInARecording) {
    recordTaps("a.tif", 3);
    const SkRun text = tof("info a.tif");
    EXPECT_EQ(text.code, 0);
    EXPECT_TRUE(text.out.contains(QLatin1String("Frames:       3\n")));
    EXPECT_TRUE(
        text.out.contains(QLatin1String("20 x 480, 2 channels, unsigned 16 bit, 12 significant bits")));
    EXPECT_EQ(tof("info --chain a.tif").out, QStringLiteral("<chain/>\n"));

    const SkRun json = tof("info --json --frames a.tif");
    const QJsonObject root = QJsonDocument::fromJson(json.out.toUtf8()).object();
    EXPECT_EQ(root["frameCount"].toInt(), 3);
    ASSERT_EQ(root["frames"].toArray().size(), 3);
    EXPECT_EQ(root["frames"][2]["metadata"]["frameNumber"].toInt(), 2);
    EXPECT_EQ(root["frames"][2]["room"].toInt(), 2);

    recordFloats("b.tif", {{1}}, {});
    EXPECT_TRUE(
        tof("info b.tif").out.contains(QLatin1String("1 x 1, 1 channel, float 32 bit, 32 significant bits")));
    EXPECT_EQ(tof("info --chain b.tif").code, 6);
}
