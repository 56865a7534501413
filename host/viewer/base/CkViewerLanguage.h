#pragma once

#include <QLocale>
#include <QString>
#include <QStringList>

/// The language of the viewer, its plug-ins and Qt's own texts. Set once a process, before the first text is
/// shown; user-interface thread.
class CkViewerLanguage {
public:
    /// Codes of the available languages, English ("en") first.
    static QStringList codes();

    /// The code given with "--language" on a command line that has not been parsed yet, so that errors of the
    /// command line are reported in that language, too. Empty without the option or for an unknown code.
    static QString wanted(const QStringList& arguments);

    /// Sets the default locale, which numbers and plug-ins follow, and installs the texts. An empty or
    /// unknown code keeps the user's own locale. Returns the locale now in force.
    static QLocale apply(const QString& sCode);
};
