#include "tests/support/HostileFiles.h"
#include "tests/tools/tof/ToFFixture.h"
#include "tests/tools/tof/ToFMeasuredRun.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

#include <pty.h>

namespace {

using ::testing::HasSubstr;

// The limit of the manual page. The address sanitizer retains freed memory, the thread sanitizer adds several
// bytes for each byte in use.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr qint64 kPeakMiB = 10240;
constexpr qint64 kKeptMiB = 1024;
#else
constexpr qint64 kPeakMiB = 1280;
constexpr qint64 kKeptMiB = 0;
#endif

QByteArray setText(quint32 length, quint32 index) {
    return HostileFiles::tofText([=](SkFrameDescription& text) {
        text.metadata.phaseSequenceLength = qint32(length);
        text.metadata.phaseSequenceIndex = qint32(index);
    });
}

struct SkHostile {
    const char* name;
    bool (*make)(const QString& file);
};

const SkHostile kHostile[] = {
    {"PagesOfAGibibyteInHalfAMegabyte",
     [](const QString& file) { return HostileFiles::claimedPages(file, 16384, 32768, 12, 512 * 1024); }},
    {"SixtyFourMegapixelsOfDeflatedZeros",
     [](const QString& file) { return HostileFiles::deflatedPages(file, 8000, 8000, 16, 3); }},
    {"HundredMegapixelsOfDeflatedZeros",
     [](const QString& file) { return HostileFiles::deflatedPages(file, 10000, 10000, 8, 3); }},
    {"PagesThatShareOneStrip",
     [](const QString& file) { return HostileFiles::pagesOfOneStrip(file, 8000, 8000, 4); }},
    {"FramesThatAreJustNotRefused",
     [](const QString& file) { return HostileFiles::deflatedPages(file, 7000, 7000, 16, 3); }},
    {"PaddingOfTwoGibibytes",
     [](const QString& file) {
         return HostileFiles::describedPages(file, 20, 480, 2, 8, [](int) {
             return HostileFiles::tofText(
                 [](SkFrameDescription& text) { text.info.linePadding = 1U << 31U; });
         });
     }},
    {"EmptyDirectories", [](const QString& file) { return HostileFiles::emptyDirectories(file, 20'000); }},
    {"PlainPageOfNineHundredMegabytes",
     [](const QString& file) { return HostileFiles::hugePlainPage(file, 15000, 15000, 32); }},
    {"PlainPageOfHalfAGigapixel",
     [](const QString& file) { return HostileFiles::hugePlainPage(file, 20000, 25000, 16); }},
    {"TagsThatClaimTheWholeFile",
     [](const QString& file) { return HostileFiles::wideEntries(file, 30, 800'000'000); }},
    {"TextOfManySmallLists",
     [](const QString& file) {
         return HostileFiles::hugeText(file, R"({"schema":"zutof.frame","x":[[1])", ",[1]", 1'000'000, 6);
     }},
    {"TextOfTwoHundredMegabytes",
     [](const QString& file) {
         return HostileFiles::hugeText(file, R"({"schema":"zutof.frame","x":[[])", ",[]", 66'000'000, 3);
     }},
    {"AsManyStripsAsRows", [](const QString& file) { return HostileFiles::manyStrips(file, 1U << 30U); }},
    {"OneTileOfAGigapixel", [](const QString& file) { return HostileFiles::hugeTile(file, 32000); }},
    {"ASetOfEightHundredImages",
     [](const QString& file) {
         return HostileFiles::describedPages(file, 640, 480, 2, 800,
                                             [](int page) { return setText(800, quint32(page)); });
     }},
    {"SetsWithoutABeginning",
     [](const QString& file) {
         return HostileFiles::describedPages(file, 640, 480, 2, 200,
                                             [](int page) { return setText(2, page == 0 ? 0 : 1); });
     }},
    {"ASetOfABillionPixels",
     [](const QString& file) {
         return HostileFiles::describedPages(file, 1, 1, 2, 8,
                                             [](int page) { return setText(120'000'000, quint32(page)); });
     }},
    {"LargeRawPictures",
     [](const QString& file) {
         return HostileFiles::describedPages(
             file, 4000, 480, 2, 4, [](int) { return HostileFiles::tofText([](SkFrameDescription&) {}); });
     }},
};

class ToFHostileTest : public ToFFixture {
protected:
    QString file() const { return path("hostile.tif"); }
    SkMeasuredRun tof(const char* line) const {
        return measuredRun(m_folder.path(),
                           QString::fromLatin1(line).split(QLatin1Char(' '), Qt::SkipEmptyParts));
    }
};

class ToFHostileFileTest : public ToFHostileTest, public ::testing::WithParamInterface<SkHostile> {};

} // namespace

TEST_P(ToFHostileFileTest, PeakMemoryIsBoundedAndEveryAnswerIsOne) {
    ASSERT_TRUE(GetParam().make(file()));
    for (const char* line :
         {"info hostile.tif", "info --json --frames hostile.tif",
          "process --transform ab hostile.tif out.tif", "process --transform depth hostile.tif out.tif",
          "cloud hostile.tif out.ply", "image hostile.tif out.png",
          "image --format png16 hostile.tif out.png", "image hostile.tif out-float.tif"}) {
        SCOPED_TRACE(line);
        const SkMeasuredRun run = tof(line);
        EXPECT_LT(run.peakMiB, kPeakMiB);
        // Read, refused, damaged or nothing to do: never killed, never out of memory.
        EXPECT_THAT(run.code, ::testing::AnyOf(0, 3, 4, 6)) << qPrintable(run.err);
        EXPECT_LE(run.err.count(QLatin1Char('\n')), 12) << qPrintable(run.err.left(2000));
        if (run.code != 0) {
            EXPECT_THAT(run.err.toStdString(), HasSubstr("hostile.tif\", page "));
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Shapes, ToFHostileFileTest, ::testing::ValuesIn(kHostile),
                         [](const auto& about) { return about.param.name; });

TEST_F(ToFHostileTest, AMillionPagesAndMoreAreCountedAndLeftOut) {
    ASSERT_TRUE(HostileFiles::emptyDirectories(file(), 5'000'000));
    const SkMeasuredRun run = tof("image hostile.tif out.png");
    EXPECT_EQ(run.code, 3);
    EXPECT_LT(run.peakMiB, 128 + kKeptMiB); // the offsets take 8 bytes per page
    EXPECT_THAT(run.err.toStdString(), HasSubstr("page 1000001: The file has more than 1000000 pages"));
    const SkMeasuredRun fewer = tof("info --max-pages 10 hostile.tif");
    EXPECT_THAT(fewer.err.toStdString(), HasSubstr("page 11: The file has more than 10 pages"));
}

TEST_F(ToFHostileTest, TheSameComplaintIsWrittenOnceWithItsCount) {
    ASSERT_TRUE(HostileFiles::emptyDirectories(file(), 3000));
    for (const char* line : {"info --json --frames hostile.tif",
                             "process --transform depth hostile.tif out.tif", "cloud hostile.tif out.ply"}) {
        SCOPED_TRACE(line);
        const SkMeasuredRun run = tof(line);
        EXPECT_EQ(run.err.count(QLatin1String("ImageLength")), 2) << qPrintable(run.err.left(2000));
        EXPECT_THAT(run.err.toStdString(), HasSubstr("hostile.tif\", page 1: "));
        EXPECT_TRUE(run.err.contains(QRegularExpression(
            QStringLiteral("hostile\\.tif\", page 3000: .*ImageLength.* \\(3000 pages in all\\)\\n"))))
            << qPrintable(run.err.left(2000));
    }
}

TEST_F(ToFHostileTest, OptionsMoveTheLimits) {
    ASSERT_TRUE(HostileFiles::deflatedPages(file(), 5000, 5000, 8, 1)); // 25,000,000 bytes
    EXPECT_EQ(tof("image hostile.tif out.tif").code, 0);
    // 50 MB of the page as stored and as read, and 8 bytes of each of 25 million pixels: 238.4 MiB.
    EXPECT_EQ(tof("image --memory 239 hostile.tif out.tif").code, 0);
    const SkMeasuredRun run = tof("image --memory 238 hostile.tif out.tif");
    EXPECT_EQ(run.code, 6);
    EXPECT_THAT(run.err.toStdString(),
                HasSubstr("page 1: processing it needs 239 MiB; --memory 239 allows that"));
    EXPECT_THAT(tof("image --max-expansion 2 hostile.tif out.tif").err.toStdString(),
                HasSubstr("up to 2 times"));
    EXPECT_EQ(tof("image --memory 0 hostile.tif out.tif").code, 2);
    EXPECT_EQ(tof("image --max-pages 0 hostile.tif out.tif").code, 2);
    EXPECT_EQ(tof("image --max-expansion x hostile.tif out.tif").code, 2);
    // Not a raw picture, whatever the memory limit.
    EXPECT_EQ(tof("process --transform depth --memory 9999999999999999 hostile.tif out.tif").code, 6);
}

TEST_F(ToFHostileTest, LargePicturesOfOthersAreShrunkAndNotRefused) {
    ASSERT_TRUE(HostileFiles::deflatedPages(file(), 8000, 6000, 16, 1));
    const SkMeasuredRun run = tof("cloud --frame 0 hostile.tif out.ply");
    EXPECT_EQ(run.code, 0) << qPrintable(run.err);
    EXPECT_TRUE(contents("out.ply").contains("\nelement vertex 307200\n")); // 640 x 480
    EXPECT_LT(run.peakMiB, kPeakMiB);
}

TEST_F(ToFHostileTest, SettingsHaveASize) {
    recordTaps("taps.tif", 1);
    setContents("large.ini", QByteArray((4 << 20) + 1, '\n'));
    const SkMeasuredRun run = tof("cloud --settings-file large.ini taps.tif out.ply");
    EXPECT_EQ(run.code, 2);
    EXPECT_THAT(run.err.toStdString(), HasSubstr("large.ini\" is larger"));
    EXPECT_EQ(tof("cloud --settings-file . taps.tif out.ply").code, 2);
}

TEST_F(ToFHostileTest, EveryFrameOfALongListIsWritten) {
    recordTaps("taps.tif", 3);
    const SkRun all = ToFFixture::tof("info --json --frames taps.tif");
    const QJsonArray frames =
        QJsonDocument::fromJson(all.out.toUtf8()).object().value(QLatin1String("frames")).toArray();
    ASSERT_EQ(frames.size(), 3);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(frames[i].toObject().value(QLatin1String("room")).toInt(-1), i);
    }
    // Indented as in a document of its own.
    EXPECT_EQ(all.out.trimmed(),
              QString::fromUtf8(QJsonDocument::fromJson(all.out.toUtf8()).toJson()).trimmed());
}

TEST_F(ToFHostileTest, WhoeverWatchesSeesProgressFromTheBeginning) {
    ASSERT_TRUE(HostileFiles::tinyPages(file(), 20'000));
    int terminal = -1;
    const pid_t child = ::forkpty(&terminal, nullptr, nullptr, nullptr);
    if (child == 0) {
        ::execl(TOF_PROGRAM, TOF_PROGRAM, "process", "--transform", "ab", qPrintable(file()),
                qPrintable(path("out.tif")), nullptr);
        ::_exit(127);
    }
    ASSERT_GT(child, 0);
    QByteArray seen;
    char bytes[4096];
    for (ssize_t got = 0; (got = ::read(terminal, bytes, sizeof(bytes))) > 0;) {
        seen.append(bytes, got);
    }
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    ::close(terminal);
    for (const char* task : {"Opening [", "Scanning [", "Processing ["}) {
        EXPECT_TRUE(seen.contains(task)) << task;
    }
    EXPECT_LT(seen.indexOf("  0 %"), seen.indexOf("100 %"));
}
