#pragma once

#include <QtGlobal>
#include <gtest/gtest.h>

/// Every C++ type that a sample can have, for typed tests.
using SampleTypes =
    ::testing::Types<qint8, quint8, qint16, quint16, qint32, quint32, qint64, quint64, float, double>;
