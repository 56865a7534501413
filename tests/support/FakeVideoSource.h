#pragma once

#include "tests/support/PushSource.h"

/// A source that the ToF block recognises as a recording by its class name.
class CkVideoSource : public PushSource {
    Q_OBJECT

public:
    Q_INVOKABLE CkVideoSource() = default;
};
