#include "world_document.h"

#include <QLatin1String>
#include <limits>
#include <unordered_set>

#include "engine/body_fields.h"
#include "engine/world_fields.h"
#include "field_io.h"
#include "plist_reader.h"

namespace {

// The reset values of the world's parameters, against which the parameters
// stored only when used are compared.
const FieldValues& worldDefaults() {
  static const FieldValues defaults = [] {
    const World world;
    return readFields(worldFields(), world);
  }();
  return defaults;
}

// The identifier stored for a body: the leading integer of its entry's key.
int32_t storedBodyId(const QString& key) {
  return saturateToInt32(leadingInteger(key).value_or(0));
}

void loadBodies(World& world, const PlistValue& section, const LoadHooks& hooks) {
  const PlistDict* bodies = section.dict();
  if (bodies == nullptr) {
    return;
  }
  // An entry that is not a dictionary describes no body and is skipped.
  int32_t highest = World::kFirstBodyId - 1;
  for (const PlistEntry& entry : bodies->entries()) {
    if (entry.value.dict() != nullptr) {
      highest = std::max(highest, storedBodyId(entry.key));
    }
  }
  // Two bodies never share an identifier, but keys such as "100" and "0100",
  // or "abc" and "xyz", store the same one. A body whose stored identifier an
  // earlier body of the file already has gets a fresh one instead, numbered
  // on from the counter the world would use next: above every stored
  // identifier, so that it cannot take the identifier of a body stored later
  // in the file. Every other body keeps its stored identifier, and without
  // such duplicates the counter ends, as always, one above the highest of 99
  // and every stored identifier. Only when the counter has reached the
  // largest int32 are fresh identifiers taken from the first free one from
  // 100 up.
  std::unordered_set<int32_t> taken;
  taken.reserve(bodies->size());
  int64_t next = int64_t{highest} + 1;
  int32_t lowestFree = World::kFirstBodyId;
  const auto freshId = [&] {
    if (next <= std::numeric_limits<int32_t>::max()) {
      return static_cast<int32_t>(next++);
    }
    while (taken.contains(lowestFree)) {
      ++lowestFree;
    }
    return lowestFree;
  };
  for (const PlistEntry& entry : bodies->entries()) {
    const PlistDict* fields = entry.value.dict();
    if (fields == nullptr) {
      continue;
    }
    Body* body = world.createBody();
    body->id = storedBodyId(entry.key);
    if (!taken.insert(body->id).second) {
      body->id = freshId();
      taken.insert(body->id);
    }
    for (const PlistEntry& field : fields->entries()) {
      const FieldKey* key = findFieldKey(bodyFields(), field.key);
      if (key == nullptr) {
        continue;
      }
      const BodyField& row = bodyFields()[key->row];
      // A body's name goes through the host's rename, which keeps its Body
      // menu item in step.
      if (row.type() == FieldType::Name && hooks.renameBody) {
        if (const auto text = field.value.toText()) {
          const QByteArray utf8 = text->toUtf8();
          hooks.renameBody(
              *body, std::string_view(utf8.constData(), static_cast<std::size_t>(utf8.size())));
        }
      } else {
        readFieldKey(row, key->component, field.value, {}, *body);
      }
    }
  }
  // The counter stays at the largest identifier when that is the largest
  // int32: the next number does not exist.
  world.nextBodyId =
      static_cast<int32_t>(std::min<int64_t>(next, std::numeric_limits<int32_t>::max()));
}

QString typeName(PlistValue::Type type) {
  switch (type) {
    case PlistValue::Type::Dict:
      return QStringLiteral("a dictionary");
    case PlistValue::Type::Array:
      return QStringLiteral("an array");
    case PlistValue::Type::Real:
      return QStringLiteral("a real");
    case PlistValue::Type::Integer:
      return QStringLiteral("an integer");
    case PlistValue::Type::Boolean:
      return QStringLiteral("a boolean");
    case PlistValue::Type::String:
      return QStringLiteral("a string");
    case PlistValue::Type::Data:
      return QStringLiteral("data");
    case PlistValue::Type::Date:
      return QStringLiteral("a date");
  }
  return QString();
}

}  // namespace

void writeSimulationParameters(const World& world, PlistDict& dict) {
  writeFieldsToDict(worldFields(), worldDefaults(), dict, world);
}

void writeBodies(const World& world, PlistDict& dict) {
  // Every body field is always stored: no defaults are compared.
  static const FieldValues none;
  PlistDict bodies;
  forEachItem<Body>(*world.bodies, [&](const Body& body) {
    // A body merged into another waits inactive for its removal; it is no
    // longer part of the world.
    if (!body.active) {
      return;
    }
    PlistDict fields;
    writeFieldsToDict(bodyFields(), none, fields, body);
    bodies.insert(QString::number(body.id), PlistValue(std::move(fields)));
  });
  dict.insert(kBodiesKey, PlistValue(std::move(bodies)));
}

PlistDict saveWorldToDict(const World& world, DocumentSections sections, const PlistValue* views) {
  PlistDict dict;
  if (sections.sim) {
    writeSimulationParameters(world, dict);
  }
  if (sections.bodies) {
    writeBodies(world, dict);
  }
  if (sections.views && views != nullptr) {
    dict.insert(kViewsKey, *views);
  }
  return dict;
}

void loadToWorldFromDict(World& world, const PlistDict* dict, DocumentSections sections,
                         const LoadHooks& hooks) {
  world.reset();
  if (dict == nullptr) {
    return;
  }
  for (const PlistEntry& entry : dict->entries()) {
    if (sections.sim) {
      if (const FieldKey* key = findFieldKey(worldFields(), entry.key)) {
        readFieldKey(worldFields()[key->row], key->component, entry.value,
                     hooks.unknownChoice
                         ? [&](const QString& text) { hooks.unknownChoice(entry.key, text); }
                         : std::function<void(const QString&)>(),
                     world);
        continue;
      }
    }
    if (sections.bodies && entry.key == kBodiesKey) {
      loadBodies(world, entry.value, hooks);
    } else if (sections.views && entry.key == kViewsKey && hooks.loadViews) {
      hooks.loadViews(entry.value);
    }
  }
}

namespace {
DocumentReadResult documentFrom(PlistReadResult read) {
  if (!read.value) {
    return {std::nullopt, read.error};
  }
  const PlistDict* root = read.value->dict();
  if (root == nullptr) {
    return {std::nullopt, QStringLiteral("not a datafile: the property list holds %1, not a "
                                         "dictionary")
                              .arg(typeName(read.value->type()))};
  }
  return {std::move(*read.value->dict()), QString()};
}
}  // namespace

DocumentReadResult readDocumentFile(const QString& path) {
  return documentFrom(readPlistFile(path));
}

DocumentReadResult readDocument(const QByteArray& xml) {
  return documentFrom(readPlist(xml));
}
