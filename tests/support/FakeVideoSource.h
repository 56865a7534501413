#pragma once

#include "tests/support/PushSource.h"

/// A source that the ToF block takes for a recording, as it goes by the class name.
class CkVideoSource : public PushSource {
    Q_OBJECT

public:
    Q_INVOKABLE CkVideoSource() = default;
};
