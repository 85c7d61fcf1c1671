#include "help_commands.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QUrl>

#include "palettes/panels.h"

QString aboutText() {
  return QStringLiteral(
             "<p><b>Orrenvale %1</b></p>"
             "<p>An interactive 3-D N-body gravitation simulator: design a small universe of "
             "bodies, run it, and watch gravity move them.</p>"
             "<p>Copyright &copy; 2026 The Orrenvale developers</p>"
             "<p>Licence: GPL-3.0-or-later. Orrenvale is free software: you can redistribute it "
             "and/or modify it under the terms of the GNU General Public License as published by "
             "the Free Software Foundation, either version 3 of the License, or (at your option) "
             "any later version. It is distributed in the hope that it will be useful, but "
             "WITHOUT ANY WARRANTY; without even the implied warranty of MERCHANTABILITY or "
             "FITNESS FOR A PARTICULAR PURPOSE. See the "
             "<a href=\"https://www.gnu.org/licenses/gpl-3.0.html\">GNU General Public "
             "License</a> for more details.</p>")
      .arg(QStringLiteral(ORRENVALE_VERSION));
}

void showAbout(Panels& panels, QWidget* parent) {
  panels.about(parent, QStringLiteral("About Orrenvale"), aboutText());
}

QStringList helpDocumentCandidates() {
  const QDir programFolder(QCoreApplication::applicationDirPath());
  return {
      QDir::cleanPath(programFolder.filePath(QStringLiteral(ORRENVALE_DOC_FROM_BIN "/README.md"))),
      QStringLiteral(ORRENVALE_SOURCE_DIR "/README.md"),
      QStringLiteral("/usr/share/doc/orrenvale/README.md")};
}

QString helpDocumentPath() {
  for (const QString& candidate : helpDocumentCandidates()) {
    if (QFileInfo(candidate).isFile()) {
      return candidate;
    }
  }
  return {};
}

bool openHelp(Panels& panels) {
  const QString title = QStringLiteral("Orrenvale Help");
  const QString path = helpDocumentPath();
  if (path.isEmpty()) {
    panels.alert(nullptr, title,
                 QStringLiteral("The manual was not found (looked for %1). The manual page "
                                "\"man orrenvale\" describes the program as well.")
                     .arg(helpDocumentCandidates().join(QStringLiteral(", "))));
    return false;
  }
  if (!QDesktopServices::openUrl(QUrl::fromLocalFile(path))) {
    panels.alert(nullptr, title,
                 QStringLiteral("No program to show %1 was found; open it in a text editor, "
                                "or read the manual page \"man orrenvale\".")
                     .arg(path));
    return false;
  }
  return true;
}
