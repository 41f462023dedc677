// SPDX-License-Identifier: Apache-2.0
#pragma once
// One configured instrument as the operator entered it.
#include <QString>

struct InstrumentConfig {
    QString name;
    QString address;
    QString sensorType = QStringLiteral("VEXA"); // short name of the sensor type

    bool operator==(const InstrumentConfig&) const = default;
};

// What is wrong with an entry (an empty text: nothing) and which field it is about.
struct InstrumentProblem {
    enum class Field { Name, Address, Type };
    QString text;
    Field field = Field::Address;

    bool IsEmpty() const { return text.isEmpty(); }
};
