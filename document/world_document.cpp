#include "world_document.h"

#include <QLatin1String>
#include <limits>
#include <unordered_set>
#include <variant>

#include "plist_reader.h"

namespace {

// The simulation parameters: root keys and the world fields they hold, in the
// order in which they are written. The speed is a single-precision field
// that is read through the clock's bound.
struct BoundedSpeed {
  float World::*member;
};
using WorldSlot = std::variant<double World::*, bool World::*, int32_t World::*, BoundedSpeed,
                               char (World::*)[kNameSize]>;
struct WorldKey {
  QLatin1String key;
  WorldSlot slot;
};
const WorldKey kWorldKeys[] = {
    {QLatin1String("Time step"), &World::timeStep},
    {QLatin1String("Adaptive time stepping"), &World::adaptive},
    {QLatin1String("Gravitational constant"), &World::gravitationalConstant},
    {QLatin1String("Collision model"), &World::merge},
    {QLatin1String("Coefficient of restitution"), &World::restitution},
    {QLatin1String("Milliseconds per update"), BoundedSpeed{&World::millisecondsPerUpdate}},
    {QLatin1String("World name"), &World::name},
    {QLatin1String("Trace history points"), &World::traceHistoryPoints},
};

// The body dictionary: keys and the body fields they hold, in the order in
// which they are written. Colours are single-precision fields.
struct VectorComponent {
  Vector Body::*vector;
  double Vector::*component;
};
struct ColorComponent {
  int index;
};
using BodySlot = std::variant<VectorComponent, double Body::*, ColorComponent, bool Body::*,
                              char (Body::*)[kNameSize]>;
struct BodyKey {
  QLatin1String key;
  BodySlot slot;
};
const BodyKey kBodyKeys[] = {
    {QLatin1String("Position X"), VectorComponent{&Body::position, &Vector::x}},
    {QLatin1String("Position Y"), VectorComponent{&Body::position, &Vector::y}},
    {QLatin1String("Position Z"), VectorComponent{&Body::position, &Vector::z}},
    {QLatin1String("Velocity X"), VectorComponent{&Body::velocity, &Vector::x}},
    {QLatin1String("Velocity Y"), VectorComponent{&Body::velocity, &Vector::y}},
    {QLatin1String("Velocity Z"), VectorComponent{&Body::velocity, &Vector::z}},
    {QLatin1String("Mass"), &Body::mass},
    {QLatin1String("Radius"), &Body::radius},
    {QLatin1String("Color R"), ColorComponent{0}},
    {QLatin1String("Color G"), ColorComponent{1}},
    {QLatin1String("Color B"), ColorComponent{2}},
    {QLatin1String("Trace enable"), &Body::traceEnable},
    {QLatin1String("Show vectors"), &Body::showVectors},
    {QLatin1String("Body name"), &Body::name},
};

template <typename Table>
const auto* findKey(const Table& table, const QString& key) {
  for (const auto& entry : table) {
    if (entry.key == key) {
      return &entry;
    }
  }
  return static_cast<decltype(&table[0])>(nullptr);
}

// Names live in the model as UTF-8 bytes. Bytes that are not UTF-8 (typed in
// through some other path) are written as replacement characters.
PlistValue nameValue(const char* name) {
  return PlistValue::string(QString::fromUtf8(name));
}

template <typename Field>
void applyIfPresent(std::optional<Field> found, Field& field) {
  if (found) {
    field = *found;
  }
}

void applyWorldKey(World& world, const WorldSlot& slot, const PlistValue& value) {
  std::visit(
      [&](auto member) {
        using M = decltype(member);
        if constexpr (std::is_same_v<M, double World::*>) {
          applyIfPresent(value.toReal(), world.*member);
        } else if constexpr (std::is_same_v<M, bool World::*>) {
          applyIfPresent(value.toBool(), world.*member);
        } else if constexpr (std::is_same_v<M, int32_t World::*>) {
          if (const auto i = value.toInteger()) {
            world.*member = saturateToInt32(*i);
          }
        } else if constexpr (std::is_same_v<M, BoundedSpeed>) {
          // The speed goes through the clock's bound rather than straight
          // into the world. The simulation is stopped while loading, so
          // storing the bounded value is all the clock would do.
          if (const auto ms = value.toReal()) {
            world.*member.member = boundedWorldSpeed(narrowToFloat(*ms));
          }
        } else {
          if (const auto text = value.toText()) {
            copyName(world.*member, text->toUtf8().toStdString());
          }
        }
      },
      slot);
}

void applyBodyKey(Body& body, const BodySlot& slot, const PlistValue& value,
                  const LoadHooks& hooks) {
  std::visit(
      [&](auto member) {
        using M = decltype(member);
        if constexpr (std::is_same_v<M, VectorComponent>) {
          applyIfPresent(value.toReal(), body.*member.vector.*member.component);
        } else if constexpr (std::is_same_v<M, double Body::*>) {
          applyIfPresent(value.toReal(), body.*member);
        } else if constexpr (std::is_same_v<M, ColorComponent>) {
          if (const auto c = value.toReal()) {
            body.color[member.index] = narrowToFloat(*c);
          }
        } else if constexpr (std::is_same_v<M, bool Body::*>) {
          applyIfPresent(value.toBool(), body.*member);
        } else {
          if (const auto text = value.toText()) {
            const QByteArray utf8 = text->toUtf8();
            const std::string_view name(utf8.constData(), static_cast<std::size_t>(utf8.size()));
            if (hooks.renameBody) {
              hooks.renameBody(body, name);
            } else {
              copyName(body.*member, name);
            }
          }
        }
      },
      slot);
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
      if (const BodyKey* key = findKey(kBodyKeys, field.key)) {
        applyBodyKey(*body, key->slot, field.value, hooks);
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
  for (const WorldKey& entry : kWorldKeys) {
    PlistValue value = std::visit(
        [&](auto member) {
          using M = decltype(member);
          if constexpr (std::is_same_v<M, double World::*>) {
            return PlistValue::real(world.*member);
          } else if constexpr (std::is_same_v<M, BoundedSpeed>) {
            // Single precision, widened.
            return PlistValue::real(static_cast<double>(world.*member.member));
          } else if constexpr (std::is_same_v<M, bool World::*>) {
            return PlistValue::boolean(world.*member);
          } else if constexpr (std::is_same_v<M, int32_t World::*>) {
            return PlistValue::integer(world.*member);
          } else {
            return nameValue(world.*member);
          }
        },
        entry.slot);
    dict.insert(entry.key, std::move(value));
  }
}

void writeBodies(const World& world, PlistDict& dict) {
  PlistDict bodies;
  forEachItem<Body>(*world.bodies, [&](const Body& body) {
    // A body merged into another waits inactive for its removal; it is no
    // longer part of the world.
    if (!body.active) {
      return;
    }
    PlistDict fields;
    for (const BodyKey& entry : kBodyKeys) {
      PlistValue value = std::visit(
          [&](auto member) {
            using M = decltype(member);
            if constexpr (std::is_same_v<M, VectorComponent>) {
              return PlistValue::real(body.*member.vector.*member.component);
            } else if constexpr (std::is_same_v<M, double Body::*>) {
              return PlistValue::real(body.*member);
            } else if constexpr (std::is_same_v<M, ColorComponent>) {
              return PlistValue::real(static_cast<double>(body.color[member.index]));
            } else if constexpr (std::is_same_v<M, bool Body::*>) {
              return PlistValue::boolean(body.*member);
            } else {
              return nameValue(body.*member);
            }
          },
          entry.slot);
      fields.insert(entry.key, std::move(value));
    }
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
      if (const WorldKey* key = findKey(kWorldKeys, entry.key)) {
        applyWorldKey(world, key->slot, entry.value);
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

float boundedWorldSpeed(float milliseconds) {
  if (static_cast<double>(milliseconds) > 0.01) {
    return milliseconds;
  }
  if (milliseconds == 0.0f) {
    return 0.0f;
  }
  return 0.01f;
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
