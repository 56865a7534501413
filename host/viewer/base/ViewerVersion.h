#pragma once

#include <QString>

/// Which viewer this is, for the log, the command line and the files it writes. Any thread.
namespace ViewerVersion {

/// "1.0.0"
QString number();
/// "zuviewer 1.0.0"
QString text();

} // namespace ViewerVersion
