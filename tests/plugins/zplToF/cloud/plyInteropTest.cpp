// Exported clouds as other programs read them: each one converts the PLY into its own text format.

#include "plugins/zplToF/cloud/CkToFDepthFrame.h"
#include "plugins/zplToF/cloud/ToFPlyText.h"
#include "tests/plugins/zplToF/cloud/CloudRig.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <cmath>
#include <gtest/gtest.h>

namespace {

/// A program that reads PLY, and the precision of its output.
struct Reader {
    const char* name;
    const char* outputSuffix;
    /// Program and arguments.
    QStringList (*command)(const QString& ply, const QString& output);
    double relative; ///< relative error of its output ...
    double absolute; ///< ... plus this absolute error
};

const Reader kReaders[] = {
#ifdef PLY2PCD
    {"PointCloudLibrary", "pcd",
     [](const QString& ply, const QString& output) {
         return QStringList{QStringLiteral(PLY2PCD), QStringLiteral("-format"), QStringLiteral("0"), ply,
                            output};
     },
     1e-7, 1e-12},
#endif
#ifdef CLOUDCOMPARE
    {"CloudCompare", "asc",
     [](const QString& ply, const QString&) {
         return QString(CLOUDCOMPARE " -SILENT -NO_TIMESTAMP -C_EXPORT_FMT ASC -PREC 12 -SEP SPACE -O %1 "
                                     "-SAVE_CLOUDS")
             .arg(ply)
             .split(QLatin1Char(' '));
     },
     1e-7, 1e-12},
#endif
#ifdef MESHLABSERVER
    // It asks for OpenGL even to convert a file.
    {"MeshLab", "xyz",
     [](const QString& ply, const QString& output) {
         return QStringList{QStringLiteral(XVFB_RUN),
                            QStringLiteral("-a"),
                            QStringLiteral(MESHLABSERVER),
                            QStringLiteral("-i"),
                            ply,
                            QStringLiteral("-o"),
                            output};
     },
     1e-7, 5.1e-7},
#endif
};

/// The points of a text with one point per line, after an optional header.
std::vector<SkToFPoint> readPoints(const QString& fileName) {
    QFile file(fileName);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << fileName.toStdString();
    std::vector<SkToFPoint> points;
    while (!file.atEnd()) {
        const QList<QByteArray> words = file.readLine().simplified().split(' ');
        bool isNumber[3] = {};
        const SkToFPoint point = {words.value(0).toFloat(&isNumber[0]), words.value(1).toFloat(&isNumber[1]),
                                  words.value(2).toFloat(&isNumber[2])};
        if (isNumber[0] && isNumber[1] && isNumber[2]) {
            points.push_back(point);
        } else {
            EXPECT_TRUE(points.empty()) << words.join(' ').toStdString();
        }
    }
    return points;
}

struct Extents {
    explicit Extents(std::span<const SkToFPoint> points) {
        for (const SkToFPoint& point : points) {
            const std::array<float, 3> values = {point.x, point.y, point.z};
            for (size_t i = 0; i < values.size(); ++i) {
                least[i] = std::min(least[i], values[i]);
                most[i] = std::max(most[i], values[i]);
            }
        }
    }
    std::array<float, 3> least = {Infinite, Infinite, Infinite};
    std::array<float, 3> most = {-Infinite, -Infinite, -Infinite};
};

class PlyInterop : public testing::TestWithParam<Reader> {
protected:
    static bool isNear(float read, float written) {
        const double allowed = GetParam().relative * std::fabs(double(written)) + GetParam().absolute;
        return std::fabs(double(read) - double(written)) <= allowed;
    }

    void expectReadBack(std::span<const SkToFPoint> points) {
        const QTemporaryDir folder;
        const QString ply = folder.filePath(QStringLiteral("cloud.ply"));
        const QString output = folder.filePath(QStringLiteral("cloud.") + GetParam().outputSuffix);
        QFile file(ply);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        const QByteArray text = buildPlyText(points);
        ASSERT_EQ(file.write(text), text.size());
        file.close();

        const QStringList command = GetParam().command(ply, output);
        QProcess program;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        // MeshLab gets a display of its own; the others need none.
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), output.endsWith(QLatin1String("xyz"))
                                                                  ? QStringLiteral("xcb")
                                                                  : QStringLiteral("offscreen"));
        environment.insert(QStringLiteral("HOME"), folder.path());
        program.setProcessEnvironment(environment);
        program.setProcessChannelMode(QProcess::MergedChannels);
        program.start(command[0], command.mid(1));
        ASSERT_TRUE(program.waitForFinished(120000)) << command.join(' ').toStdString();
        ASSERT_EQ(program.exitCode(), 0) << program.readAll().toStdString();

        const std::vector<SkToFPoint> read = readPoints(output);
        ASSERT_EQ(read.size(), points.size());
        const Extents before(points);
        const Extents after(read);
        for (size_t i = 0; i < 3; ++i) {
            EXPECT_TRUE(isNear(after.least[i], before.least[i])) << after.least[i];
            EXPECT_TRUE(isNear(after.most[i], before.most[i])) << after.most[i];
        }
        for (size_t i = 0; i < read.size(); ++i) {
            ASSERT_TRUE(isNear(read[i].x, points[i].x)) << i << ": " << read[i].x << " for " << points[i].x;
            ASSERT_TRUE(isNear(read[i].y, points[i].y)) << i << ": " << read[i].y << " for " << points[i].y;
            ASSERT_TRUE(isNear(read[i].z, points[i].z)) << i << ": " << read[i].z << " for " << points[i].z;
        }
    }
};

INSTANTIATE_TEST_SUITE_P(Readers, PlyInterop, testing::ValuesIn(kReaders),
                         [](const auto& reader) { return std::string(reader.param.name); });

TEST_P(PlyInterop, ACloudInMillimetresIsReadBackPointByPoint) {
    TestPicture input(640, 480, 2, EkImageDataType::Float32);
    for (quint32 y = 0; y < 480; y++) {
        for (quint32 x = 0; x < 640; x++) {
            input.set<float>(x, y, 0, 3.0F + std::sin(float(x) / 40.0F) * std::cos(float(y) / 30.0F));
            // Every seventh column is dropped: no placeholders may come back for them.
            input.set<float>(x, y, 1, x % 7 == 3 ? 99.0F : 0.1F);
        }
    }
    CkImageMetadata metadata;
    metadata.channelNames = {"Phase shift", "Confidence"};
    CkToFDepthFrame frame;
    ASSERT_TRUE(frame.update(*input, &metadata, 640));
    CkToFCloudBuilder builder;
    ASSERT_TRUE(builder.build(frame.pictures(), testParameters(true)));
    ASSERT_TRUE(builder.usedLens());
    ASSERT_EQ(builder.pointCount(), (640 - 91) * 480);
    expectReadBack(builder.exportPoints());
}

TEST_P(PlyInterop, SmallLargeAndNegativeNumbersAreReadBack) {
    const std::array<SkToFPoint, 4> points = {
        {{1.5F, -2.0F, 0.25F}, {1e-7F, -3.4e-5F, 123456.789F}, {-1e20F, 2e10F, 0.0F}, {1.0F, 1e6F, 1e-3F}}};
    expectReadBack(points);
}

} // namespace
