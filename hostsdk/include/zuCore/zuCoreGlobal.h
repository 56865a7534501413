#pragma once

#include <QtGlobal>

// Symbols are hidden by default; this macro exports those that plug-ins and the viewer may use.
#if defined(ZUCORE_LIBRARY)
#define ZUCORE_EXPORT Q_DECL_EXPORT
#else
#define ZUCORE_EXPORT Q_DECL_IMPORT
#endif
