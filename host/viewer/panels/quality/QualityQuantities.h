#pragma once

#include "host/viewer/panels/quality/SkQualityValues.h"

#include <QString>

/// The measured quantities, in display order. Stateless; any thread.
namespace QualityQuantities {

inline constexpr int kCount = 7;

/// index: 0 to kCount - 1 in all of them; the texts are in the user's language.
QString name(int index);
QString hint(int index);
/// In unit(values, index); not a number when it is not known.
double value(const SkQualityValues& values, int index);
QString unit(const SkQualityValues& values, int index);

/// A value with its unit; a dash for one that is not known.
QString number(double value, const QString& unit);
/// The same for one of the quantities.
QString number(const SkQualityValues& values, int index);

/// All of them, one per line: name, tab, value with unit.
QString text(const SkQualityValues& values);

} // namespace QualityQuantities
