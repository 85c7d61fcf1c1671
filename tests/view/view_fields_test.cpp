#include "view/view_fields.h"

#include <gtest/gtest.h>

#include <optional>

#include "view/view.h"

namespace {

struct ReferenceCase {
  const char* name;
  std::optional<PlistValue> stored;
  TraceReference expected;
};

class TracesRelativeToKey : public ::testing::TestWithParam<ReferenceCase> {};

// A view dictionary without the key (every file written before it existed)
// gives the world; a value that names no choice leaves the view as it was.
TEST_P(TracesRelativeToKey, IsReadAndAbsentOrUnknownValuesLeaveTheWorld) {
  const PlistDict written = writeViewDict(View(0));
  PlistDict dict;
  for (const PlistEntry& entry : written.entries()) {
    if (entry.key != QLatin1String("Traces relative to")) {
      dict.insert(entry.key, entry.value);
    }
  }
  if (GetParam().stored) {
    dict.insert(QStringLiteral("Traces relative to"), *GetParam().stored);
  }
  View v(1);
  applyViewDict(v, dict);
  EXPECT_EQ(v.traceReference, GetParam().expected);

  // The reference read is written so that it reads back the same.
  View reread(2);
  reread.traceReference = TraceReference::TrackedBody;
  applyViewDict(reread, writeViewDict(v));
  EXPECT_EQ(reread.traceReference, GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Values, TracesRelativeToKey,
    ::testing::Values(ReferenceCase{"Absent", std::nullopt, TraceReference::World},
                      ReferenceCase{"World", PlistValue::string("World"), TraceReference::World},
                      ReferenceCase{"TrackedBody", PlistValue::string("Tracked body"),
                                    TraceReference::TrackedBody},
                      ReferenceCase{"CenterOfMass", PlistValue::string("Center of mass"),
                                    TraceReference::CenterOfMass},
                      ReferenceCase{"OtherSpelling", PlistValue::string("centre of mass"),
                                    TraceReference::World},
                      ReferenceCase{"Number", PlistValue::integer(2), TraceReference::World}),
    [](const auto& p) { return std::string(p.param.name); });

}  // namespace
