#pragma once

#include <QLocale>
#include <QString>
#include <QStringList>

/// The language of the viewer, of its plug-ins and of Qt's own texts. User-interface thread.
namespace ViewerLanguage {

/// Codes of the available languages, English ("en") first.
QStringList codes();

/// The code given with "--language" on a command line that has not been parsed yet; errors of the command
/// line are then reported in that language as well. Empty without the option or for an unknown code.
QString requested(const QStringList& arguments);

/// Sets the default locale, which number formats and plug-ins use, and installs the translations. To be
/// called once per process, before the first text is shown. An empty or unknown code keeps the user's own
/// locale. Returns the new default locale.
QLocale apply(const QString& sCode);

} // namespace ViewerLanguage
