#pragma once

#include <QLocale>
#include <QString>
#include <QStringList>

/// The language that the viewer, its plug-ins and Qt's own texts speak. Before the first text is shown, once
/// a process; user-interface thread.
class CkViewerLanguage {
public:
    /// Codes of the languages there are, English ("en") first.
    static QStringList codes();

    /// What "--language" asks for on a command line that was not parsed yet, so that even the complaint about
    /// it is in the right language. Empty when nothing or nonsense is asked for.
    static QString wanted(const QStringList& arguments);

    /// Makes a language that of the program: the default locale, which numbers and plug-ins follow, and the
    /// texts. An empty or unknown code leaves the user's own locale. The locale that is in force then.
    static QLocale apply(const QString& sCode);
};
