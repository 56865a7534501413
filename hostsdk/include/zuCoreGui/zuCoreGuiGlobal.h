#pragma once

#include <QtGlobal>

#if defined(ZUCOREGUI_LIBRARY)
#define ZUCOREGUI_EXPORT Q_DECL_EXPORT
#else
#define ZUCOREGUI_EXPORT Q_DECL_IMPORT
#endif
