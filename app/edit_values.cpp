#include "edit_values.h"

#include <QCoreApplication>
#include <bit>

#include "engine/body_fields.h"
#include "engine/world_fields.h"

namespace {

QString tr(std::string_view text) {
  return QCoreApplication::translate(
      "EditValues", QByteArray(text.data(), static_cast<qsizetype>(text.size())).constData());
}

// The title of exactly one row; empty for several or none.
template <typename Table>
QString rowTitle(Table table, uint64_t fields) {
  if (std::popcount(fields) != 1) {
    return {};
  }
  const auto row = static_cast<std::size_t>(std::countr_zero(fields));
  return row < table.size() ? tr(table[row].title) : QString();
}

}  // namespace

BodyState BodyState::of(const Body& body) {
  return BodyState{body.id, readFields(bodyFields(), body)};
}

std::string_view BodyState::nameView() const {
  return std::get<std::string>(values[fieldRow(bodyFields(), &Body::name)]);
}

uint64_t changedBodyFields(const BodyState& a, const BodyState& b) {
  return changedFields(a.values, b.values);
}

uint64_t allBodyFields() {
  return (uint64_t{1} << bodyFields().size()) - 1;
}

uint64_t bodyNameField() {
  return fieldBit(bodyFields(), &Body::name);
}

void applyBodyFields(const BodyState& state, uint64_t fields, Body& body) {
  writeFields(bodyFields(), state.values, fields & ~bodyNameField(), body);
}

QString bodyFieldTitle(uint64_t fields) {
  return rowTitle(bodyFields(), fields);
}

FieldValues worldParameters(const World& world) {
  return readFields(worldFields(), world);
}

void applyWorldFields(const FieldValues& parameters, uint64_t fields, World& world) {
  writeFields(worldFields(), parameters, fields, world);
}

QString worldEditTitle(uint64_t fields) {
  // The collision model is the pair of merge and restitution.
  const uint64_t model = fieldBit(worldFields(), &World::merge);
  if (fields & model) {
    fields = model;
  }
  if (fields == fieldBit(worldFields(), &World::name)) {
    return QCoreApplication::translate("EditValues", "Rename World");
  }
  const QString field = rowTitle(worldFields(), fields);
  return field.isEmpty() ? QCoreApplication::translate("EditValues", "Change Simulation Parameters")
                         : QCoreApplication::translate("EditValues", "Change %1").arg(field);
}
