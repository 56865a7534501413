#pragma once

#include <QCoreApplication>
#include <QString>

class CkChain;
class CkVideoSource;
class CkViewArea;
class QDomDocument;
class QJsonObject;
class QWidget;

/// Opens recordings and pictures as chains whose source plays them. User-interface thread.
class CkRecordingOpener {
    Q_DECLARE_TR_FUNCTIONS(CkRecordingOpener)

public:
    /// Registers the source for chain files, and picture formats for the source; may be called repeatedly.
    static void registerSource();

    /// Whether a file with these first bytes is a TIFF file, as every recording is.
    static bool recognises(const QByteArray& sFirstBytes);

    /// Views go to the area. A progress dialog above pWindow shows the search for frames; pictures that may
    /// hold depths open the import dialog, and for a recording with a processing chain the user is asked
    /// whether to open that, too. With a null pWindow there are no dialogs: samples are kept as they are, and
    /// no stored chain is opened.
    CkRecordingOpener(CkViewArea* pArea, QWidget* pWindow) : m_area(pArea), m_window(pWindow) {}

    /// Opens a file with views and shows its first frame; playback is left to the user. False, with sError
    /// naming the file and the reason, or empty when the user cancelled.
    bool open(const QString& sFileName, QString& sError);

private:
    bool askForScale(CkVideoSource& source) const;
    bool askForChain(const CkVideoSource& source, QDomDocument& chain) const;
    void openViews(CkChain* pChain, const QString& sFileName, const QJsonObject& appearance);

    CkViewArea* m_area;
    QWidget* m_window;
};
