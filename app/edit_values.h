#pragma once

#include <QString>
#include <cstdint>
#include <string_view>

#include "engine/field_table.h"

class Body;
class World;

// The fields of a body that the user sees and edits (the rows of the body
// table), with its identifier, as plain values: what an undo entry keeps to
// put a field, or a deleted body, back exactly.
struct BodyState {
  static BodyState of(const Body& body);
  std::string_view nameView() const;

  int32_t id = 0;
  FieldValues values;
};

// The rows of the body table whose values differ bit for bit, as bits.
uint64_t changedBodyFields(const BodyState& a, const BodyState& b);
// Every row, and the name's row.
uint64_t allBodyFields();
uint64_t bodyNameField();
// Writes the given rows of the state into the body; the name is left to the
// caller, whose rename keeps the Body menu in step.
void applyBodyFields(const BodyState& state, uint64_t fields, Body& body);
// The title of exactly one row as an undo title shows it ("Mass"); empty
// for several.
QString bodyFieldTitle(uint64_t fields);

// The world's simulation parameters (the rows of the world table), as the
// simulation palette edits them.
FieldValues worldParameters(const World& world);
void applyWorldFields(const FieldValues& parameters, uint64_t fields, World& world);
// The title of an edit of these rows ("Change Time Step").
QString worldEditTitle(uint64_t fields);
