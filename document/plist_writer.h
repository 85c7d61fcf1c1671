#pragma once

#include <QByteArray>
#include <QString>

#include "output_file.h"
#include "plist_value.h"

// Renders a value as an XML property list: the XML declaration, the published
// property-list DOCTYPE, and a plist element of version 1.0 around the value.
// Reals are written in the shortest form that reads back to the same double.
QByteArray writePlist(const PlistValue& root);

// Writes the property list to a file through OutputFile: a regular file is
// either replaced whole or left as it was, a FIFO or a device is written
// directly. Returns false and sets the system's reason when it cannot be
// written.
bool writePlistFile(const QString& path, const PlistValue& root, QString* error = nullptr,
                    FifoOpen fifo = FifoOpen::FailWithoutReader);
