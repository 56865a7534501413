#pragma once

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QSize>
#include <QString>
#include <QStringList>

/// The options of the command line.
struct SkViewerOptions {
    QStringList cameras;     ///< numbers in the list of cameras (from 0) or camera identifiers
    QStringList pluginPaths; ///< folders and libraries, loaded after the program's own plug-in folder
    QStringList chainFiles;
    QStringList files;        ///< of any kind that the viewer can open
    QStringList triggers;     ///< object names of menu entries and buttons to click after the first frame
    QString settingsFile;     ///< empty: the user's own settings
    QString screenshotFile;   ///< picture of the main window; needs frames
    QString screenshot3dFile; ///< picture of the 3D scene; needs frames
    QString plyFile;          ///< point cloud; needs frames
    QSize windowSize;         ///< empty: the saved or the default size
    int frames = 0;           ///< exit after this number of shown frames; 0: run until closed
    bool open3dView = false;  ///< open the 3D view of the first camera beside its raw picture
    bool listCameras = false;
    bool checkPlugins = false; ///< check every plug-in again, whatever the cached verdict
    bool cleanStart = false;   ///< restore nothing of the last session
    bool unattended() const { return frames > 0; }
};

/// Parses the command line. Any thread; only helpText needs an application object.
class CkCommandLine {
    Q_DECLARE_TR_FUNCTIONS(CkCommandLine)

public:
    enum class EkResult { Run, Help, Version, Error };

    CkCommandLine();

    /// Arguments with the program's name first. For Error, sError describes the error in one line.
    EkResult parse(const QStringList& arguments, SkViewerOptions& options, QString& sError);

    /// Needs an application object.
    QString helpText() const { return m_parser.helpText(); }

    /// Whether the arguments ask for help, the version or the cameras only, which needs no screen.
    static bool isInformationOnly(const QStringList& arguments);

private:
    void addUnattendedOptions();
    void readValues(SkViewerOptions& options) const;

    QCommandLineParser m_parser;
};
