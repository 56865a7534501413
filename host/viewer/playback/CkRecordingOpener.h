#pragma once

#include <QCoreApplication>
#include <QString>

class CkChain;
class CkVideoSource;
class CkViewArea;
class QDomDocument;
class QWidget;

/// Opens recordings and pictures as chains with a source that plays them. User-interface thread.
class CkRecordingOpener {
    Q_DECLARE_TR_FUNCTIONS(CkRecordingOpener)

public:
    /// Makes the source creatable by chain files; any number of times.
    static void registerSource();

    /// Whether a file with these first bytes is a TIFF file, as every recording is.
    static bool recognises(const QByteArray& sFirstBytes);

    /// Opens a file with views and shows its first frame; playback is left to the user.
    ///
    /// Above pWindow, a dialog shows how far the search for the frames has got; pictures that may hold depths
    /// bring up the import dialog, and a recording made with a chain the question whether it is wanted. With
    /// a null pWindow nothing is asked: samples stay as they are, without a chain. False, with sError naming
    /// the file and the reason, or empty when the user called it off.
    static bool open(const QString& sFileName, CkViewArea* pArea, QWidget* pWindow, QString& sError);

private:
    static bool askForScale(CkVideoSource& source, QWidget* pWindow);
    static bool askForChain(const CkVideoSource& source, QWidget* pWindow, QDomDocument& chain);
    static CkChain* restored(const CkVideoSource& source, const QDomDocument& doc, QString& sError);
};
