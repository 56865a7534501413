#pragma once

class QLocale;
class QObject;

/// The plug-in's texts in other languages; they travel inside the library. User-interface thread.
class CkToFTranslation {
public:
    /// Translates the texts from now on, for as long as pOwner lives. False when the locale's languages are
    /// not among ours; the texts then stay as they are written. Call before the first text is shown.
    static bool install(const QLocale& locale, QObject* pOwner);
};
