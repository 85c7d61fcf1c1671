#pragma once

#include <QLatin1String>
#include <QString>
#include <functional>
#include <string_view>

#include "engine/world.h"
#include "plist_value.h"

// The sections of a datafile; each is written and loaded only when selected.
struct DocumentSections {
  bool bodies = true;
  bool views = true;
  bool sim = true;
};

// Keys of the two nested sections of the root dictionary.
inline constexpr QLatin1String kBodiesKey("Bodies");
inline constexpr QLatin1String kViewsKey("Views");

// What the host adds to a load. Both are optional.
struct LoadHooks {
  // Renames a loaded body to the name stored for it. The GUI passes one that
  // also renames the body's menu entry; without one the name is copied into
  // the body (cut to the buffer's 254 bytes).
  std::function<void(Body& body, std::string_view name)> renameBody;
  // Receives the value of "Views" when views are loaded, at the point of the
  // root's enumeration where the key occurs. The GUI opens its windows here.
  std::function<void(const PlistValue& views)> loadViews;
  // Hears of a parameter whose text names none of its choices (an
  // "Integrator" this program does not know); the parameter keeps its reset
  // value.
  std::function<void(const QString& key, const QString& text)> unknownChoice;
};

// The simulation parameters, added to the dictionary in their fixed order
// (those added since the first datafiles only when used). Single-precision
// fields are widened to double.
void writeSimulationParameters(const World& world, PlistDict& dict);

// Adds "Bodies": one body dictionary per active body, in list order, under the
// body's identifier written in decimal.
void writeBodies(const World& world, PlistDict& dict);

// A dictionary with the selected sections. The views section is the host's:
// it is added under "Views" when selected and given.
PlistDict saveWorldToDict(const World& world, DocumentSections sections,
                          const PlistValue* views = nullptr);

// Resets the world, then applies the selected sections of the dictionary in
// the order of its keys (none at all when the dictionary is null). Keys that
// are missing leave reset values, unknown keys are ignored at every level,
// and a value of another type than expected gives its numeric, truth, integer
// or text value, or leaves the field as it is when it has none.
void loadToWorldFromDict(World& world, const PlistDict* dict, DocumentSections sections,
                         const LoadHooks& hooks = {});

// The outcome of reading a datafile: its root dictionary, or why there is
// none.
struct DocumentReadResult {
  std::optional<PlistDict> dict;
  QString error;
};

// Reads a datafile and checks that its root is a dictionary.
DocumentReadResult readDocumentFile(const QString& path);
// The same for a datafile's bytes.
DocumentReadResult readDocument(const QByteArray& xml);
