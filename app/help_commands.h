#pragma once

#include <QString>
#include <QStringList>

class Panels;
class QWidget;

// The Help menu's commands: "About Orrenvale" and "Orrenvale Help".

// The About box's text (rich text): the program's name and version, what it
// is, and its licence.
QString aboutText();
// Shows the About box.
void showAbout(Panels& panels, QWidget* parent);

// Where the manual (the README) may be, in this order: installed beside the
// program (<prefix>/share/doc/orrenvale/README.md for
// <prefix>/bin/orrenvale), in the sources the program was built from, and
// where the Debian package puts it.
QStringList helpDocumentCandidates();
// The first candidate that exists, or empty.
QString helpDocumentPath();
// Opens the manual in the desktop's viewer for its type; false, after an
// alert saying why, when there is no manual or no viewer.
bool openHelp(Panels& panels);
