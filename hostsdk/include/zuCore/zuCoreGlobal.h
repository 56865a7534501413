#pragma once

#include <QtGlobal>

// Symbols are hidden by default; what plug-ins and the viewer may call carries this macro.
#if defined(ZUCORE_LIBRARY)
#define ZUCORE_EXPORT Q_DECL_EXPORT
#else
#define ZUCORE_EXPORT Q_DECL_IMPORT
#endif
