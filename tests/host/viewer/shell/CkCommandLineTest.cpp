#include "host/viewer/shell/CkCommandLine.h"

#include "host/viewer/base/ViewerVersion.h"

#include <gtest/gtest.h>

namespace {

using Result = CkCommandLine::EkResult;

struct Parsed {
    Result result;
    SkViewerOptions options;
    QString error;
};

Parsed parse(const QStringList& arguments) {
    CkCommandLine commandLine;
    Parsed parsed;
    parsed.result =
        commandLine.parse(QStringList{QStringLiteral("zuviewer")} + arguments, parsed.options, parsed.error);
    return parsed;
}

TEST(CommandLine, NothingGivenRunsAttendedWithoutCameras) {
    const Parsed parsed = parse({});
    EXPECT_EQ(parsed.result, Result::Run);
    EXPECT_TRUE(parsed.options.cameras.isEmpty());
    EXPECT_FALSE(parsed.options.unattended());
    EXPECT_FALSE(parsed.options.open3dView);
}

TEST(CommandLine, ReadsEverything) {
    const Parsed parsed =
        parse({"--camera",     "0",       "--camera",        "sim:grey",  "--3d",         "--plugin-path",
               "/p",           "--chain", "a.zuchain",       "b.zuchain", "--frames",     "7",
               "--screenshot", "w.png",   "--screenshot-3d", "s.png",     "--export-ply", "c.ply",
               "--settings",   "s.ini",   "--size",          "1600x1000"});
    ASSERT_EQ(parsed.result, Result::Run) << qPrintable(parsed.error);
    EXPECT_EQ(parsed.options.cameras, QStringList({"0", "sim:grey"}));
    EXPECT_TRUE(parsed.options.open3dView);
    EXPECT_EQ(parsed.options.pluginPaths, QStringList({"/p"}));
    EXPECT_EQ(parsed.options.chainFiles, QStringList({"a.zuchain"}));
    EXPECT_EQ(parsed.options.files, QStringList({"b.zuchain"}));
    EXPECT_EQ(parsed.options.frames, 7);
    EXPECT_TRUE(parsed.options.unattended());
    EXPECT_EQ(parsed.options.screenshotFile, "w.png");
    EXPECT_EQ(parsed.options.screenshot3dFile, "s.png");
    EXPECT_EQ(parsed.options.plyFile, "c.ply");
    EXPECT_EQ(parsed.options.settingsFile, "s.ini");
    EXPECT_EQ(parsed.options.windowSize, QSize(1600, 1000));
}

TEST(CommandLine, PluginsAreCheckedAgainOnlyWhenAsked) {
    EXPECT_FALSE(parse({}).options.checkPlugins);
    EXPECT_TRUE(parse({"--check-plugins"}).options.checkPlugins);
}

TEST(CommandLine, FilesOfThe3dViewImplyIt) {
    EXPECT_TRUE(parse({"--camera", "0", "--frames", "1", "--export-ply", "c.ply"}).options.open3dView);
    EXPECT_TRUE(parse({"--camera", "0", "--frames", "1", "--screenshot-3d", "c.png"}).options.open3dView);
}

TEST(CommandLine, LanguageAndCleanStart) {
    EXPECT_FALSE(parse({}).options.cleanStart);
    const Parsed clean = parse({"--clean", "--language", "de"});
    ASSERT_EQ(clean.result, Result::Run) << qPrintable(clean.error);
    EXPECT_TRUE(clean.options.cleanStart);
    const Parsed unknown = parse({"--language", "fr"});
    EXPECT_EQ(unknown.result, Result::Error);
    EXPECT_TRUE(unknown.error.contains("en or de")) << qPrintable(unknown.error);
    EXPECT_TRUE(unknown.error.contains("\"fr\"")) << qPrintable(unknown.error);
}

TEST(CommandLine, HelpAndVersionWin) {
    EXPECT_EQ(parse({"--help"}).result, Result::Help);
    EXPECT_EQ(parse({"-h", "--frames", "nonsense"}).result, Result::Help);
    EXPECT_EQ(parse({"--version"}).result, Result::Version);
    EXPECT_TRUE(ViewerVersion::text().startsWith(QStringLiteral("zuviewer ")));
}

TEST(CommandLine, HelpNamesEveryOption) {
    const QString help = CkCommandLine().helpText();
    for (const char* option : {"--camera", "--3d", "--plugin-path", "--chain", "--frames", "--screenshot",
                               "--screenshot-3d", "--export-ply", "--settings", "--check-plugins",
                               "--list-cameras", "--size", "--help", "--version"}) {
        EXPECT_TRUE(help.contains(QLatin1String(option))) << option;
    }
}

TEST(CommandLine, KnowsWhatNeedsNoScreen) {
    EXPECT_TRUE(CkCommandLine::isInformationOnly({"zuviewer", "--help"}));
    EXPECT_TRUE(CkCommandLine::isInformationOnly({"zuviewer", "--camera", "0", "-v"}));
    EXPECT_TRUE(CkCommandLine::isInformationOnly({"zuviewer", "--list-cameras"}));
    EXPECT_FALSE(CkCommandLine::isInformationOnly({"zuviewer", "--camera", "0"}));
    EXPECT_FALSE(CkCommandLine::isInformationOnly({"zuviewer", "--", "--help"}));
}

struct BadLine {
    const char* name;
    QStringList arguments;
    const char* inError;
};

class BadCommandLine : public ::testing::TestWithParam<BadLine> {};

TEST_P(BadCommandLine, IsRefusedWithTheReason) {
    const Parsed parsed = parse(GetParam().arguments);
    EXPECT_EQ(parsed.result, Result::Error);
    EXPECT_TRUE(parsed.error.contains(QLatin1String(GetParam().inError))) << qPrintable(parsed.error);
}

INSTANTIATE_TEST_SUITE_P(
    All, BadCommandLine,
    ::testing::Values(BadLine{"unknown", {"--no-such-option"}, "no-such-option"},
                      BadLine{"framesText", {"--frames", "many"}, "many"},
                      BadLine{"framesZero", {"--frames", "0"}, "--frames"},
                      BadLine{"framesNegative", {"--frames=-3"}, "-3"},
                      BadLine{"framesHuge", {"--frames", "99999999999"}, "--frames"},
                      BadLine{"screenshotAlone", {"--screenshot", "a.png"}, "--frames"},
                      BadLine{"plyAlone", {"--camera", "0", "--export-ply", "a.ply"}, "--frames"},
                      BadLine{"sizeText", {"--size", "large"}, "large"},
                      BadLine{"sizeTiny", {"--size", "10x10"}, "10x10"},
                      BadLine{"view3dAlone", {"--3d"}, "--camera"}),
    [](const auto& test) { return std::string(test.param.name); });

} // namespace
