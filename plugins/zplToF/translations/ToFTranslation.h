#pragma once

class QLocale;
class QObject;

/// The plug-in's texts in other languages, compiled into the library. User-interface thread.
namespace ToFTranslation {

/// Translates the texts from now on, for as long as pOwner lives. False when there is no translation for the
/// locale; the texts then stay in English. Call before the first text is shown.
bool install(const QLocale& locale, QObject* pOwner);

} // namespace ToFTranslation
