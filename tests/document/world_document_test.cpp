#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <bit>
#include <limits>
#include <string>
#include <tuple>
#include <vector>

#include "document/plist_reader.h"
#include "document/plist_writer.h"
#include "document/world_document.h"
#include "tests/case_names.h"
#include "tests/engine/test_support.h"

namespace {

const DocumentSections kAll{};

PlistDict readDict(const QByteArray& xml) {
  PlistReadResult read = readPlist(xml);
  EXPECT_TRUE(read.value) << read.error.toStdString();
  return read.value && read.value->dict() ? *read.value->dict() : PlistDict();
}

QByteArray rootWith(const QByteArray& entries) {
  return "<plist version=\"1.0\"><dict>" + entries + "</dict></plist>";
}

PlistDict loadInto(World& world, const QByteArray& entries, const LoadHooks& hooks = {}) {
  const PlistDict dict = readDict(rootWith(entries));
  loadToWorldFromDict(world, &dict, kAll, hooks);
  return dict;
}

QStringList keysOf(const PlistDict& dict) {
  QStringList keys;
  for (const PlistEntry& e : dict.entries()) {
    keys << e.key;
  }
  return keys;
}

std::vector<std::string> namesOf(const World& world) {
  std::vector<std::string> names;
  for (const Body* b : bodiesOf(world))
    names.emplace_back(b->name);
  return names;
}

// The parameters that stateBits leaves out.
auto parametersOf(const World& w) {
  return std::tuple(bitsOf(w.gravitationalConstant), bitsOf(w.restitution),
                    std::bit_cast<uint32_t>(w.millisecondsPerUpdate), w.adaptive, w.merge,
                    w.traceHistoryPoints, std::string(w.name));
}

// A world that uses every field the datafile holds, with values that do not
// survive a careless decimal rendering. Deleting 102 and 103 leaves 100, 101
// and 104.
void buildRichWorld(World& world) {
  world.timeStep = 1.0 / 3.0;
  world.adaptive = true;
  world.gravitationalConstant = 39.47841760435743;
  world.merge = false;
  world.restitution = 0.7000000000000001;
  world.millisecondsPerUpdate = 16.666666f;
  world.traceHistoryPoints = 1234;
  world.setName("Système solaire intérieur");
  for (int i = 0; i < 5; ++i) {
    Body* b = world.createBody();
    b->position = Vector::of(0.1 * i, -1e-300, 6.02214076e23);
    b->velocity = Vector::of(std::nextafter(1.0, 2.0), -0.0, 2.0 / 7.0);
    b->mass = 3.0034896149157645e-06 * (i + 1);
    b->radius = 0.015 + i;
    b->color[0] = 0.1f;
    b->color[1] = 1.0f / 3.0f;
    b->color[2] = 0.999f;
    b->traceEnable = i % 2 == 0;
    b->showVectors = i % 2 == 1;
  }
  copyName(bodiesOf(world)[0]->name, "Sun with spaces");
  copyName(bodiesOf(world)[1]->name, "Мерку́рий ☿");
  world.deleteBodyById(102);
  world.deleteBodyById(103);
}

TEST(WorldDocument, WriteThenReadPreservesEveryValueBitForBit) {
  World original;
  buildRichWorld(original);
  QTemporaryDir dir;
  const QString path = dir.filePath(QStringLiteral("rich.ovd"));
  ASSERT_TRUE(writePlistFile(path, PlistValue(saveWorldToDict(original, kAll))));

  const DocumentReadResult read = readDocumentFile(path);
  ASSERT_TRUE(read.dict) << read.error.toStdString();
  World loaded;
  loadToWorldFromDict(loaded, &*read.dict, kAll);
  EXPECT_EQ(stateBits(loaded), stateBits(original));
  EXPECT_EQ(parametersOf(loaded), parametersOf(original));
  EXPECT_EQ(namesOf(loaded), namesOf(original));
  EXPECT_EQ(loaded.createBody()->id, 105);
}

TEST(WorldDocument, ActiveBodiesAreWrittenUnderTheirIdentifiersInListOrder) {
  World world;
  buildRichWorld(world);
  world.findBodyById(101)->active = false;
  const PlistDict dict = saveWorldToDict(world, kAll);
  EXPECT_EQ(keysOf(*dict.find(kBodiesKey)->dict()),
            (QStringList{QStringLiteral("100"), QStringLiteral("104")}));
}

struct SectionCase {
  const char* name;
  DocumentSections sections;
  QStringList keys;
};

class WorldDocumentSections : public ::testing::TestWithParam<SectionCase> {};

TEST_P(WorldDocumentSections, SavingWritesExactlyTheSelectedKeys) {
  World world;
  world.createBody();
  const PlistValue views(PlistDict{});
  EXPECT_EQ(keysOf(saveWorldToDict(world, GetParam().sections, &views)), GetParam().keys);
}

const QStringList kSimKeys = {
    "Time step",       "Adaptive time stepping",     "Gravitational constant",
    "Collision model", "Coefficient of restitution", "Milliseconds per update",
    "World name",      "Trace history points"};

INSTANTIATE_TEST_SUITE_P(
    WorldDocument, WorldDocumentSections,
    ::testing::Values(
        SectionCase{"SimOnly", {.bodies = false, .views = false, .sim = true}, kSimKeys},
        SectionCase{"BodiesOnly", {.bodies = true, .views = false, .sim = false}, {"Bodies"}},
        SectionCase{"ViewsOnly", {.bodies = false, .views = true, .sim = false}, {"Views"}},
        SectionCase{"Nothing", {.bodies = false, .views = false, .sim = false}, {}},
        SectionCase{"All", {}, kSimKeys + QStringList{"Bodies", "Views"}}),
    [](const auto& p) { return std::string(p.param.name); });

// Keys in any order, unknown keys at every level (the reader's handling of
// comments and CDATA is tested with the reader); the rename hook receives
// each stored name.
TEST(WorldDocument, HandWrittenFileWithShuffledAndUnknownKeysLoads) {
  const QByteArray entries = R"(
    <key>Bodies</key><dict>
      <key>101</key><dict>
        <key>Velocity Y</key><real>-0.5</real> <key>Body name</key><string>Moon</string>
        <key>Colour</key><string>unknown key, ignored</string>
        <key>Position X</key><real>10</real> <key>Mass</key><integer>2</integer></dict>
      <key>100</key><dict>
        <key>Body name</key><string>Planet</string> <key>Mass</key><real>1000</real>
        <key>Radius</key><real>3</real> <key>Notes</key><array><string>n</string><dict/></array>
      </dict></dict>
    <key>Gravitational constant</key><real>1</real> <key>Author</key><string>someone</string>
    <key>World name</key><string>Hand made</string> <key>Time step</key><real>0.001</real>)";
  std::vector<std::pair<int32_t, std::string>> renamed;
  LoadHooks hooks;
  hooks.renameBody = [&](Body& body, std::string_view name) {
    renamed.emplace_back(body.id, std::string(name));
    copyName(body.name, name);
  };
  World world;
  loadInto(world, entries, hooks);
  EXPECT_STREQ(world.name, "Hand made");
  EXPECT_EQ(world.gravitationalConstant, 1.0);
  EXPECT_EQ(world.timeStep, 0.001);
  const auto bodies = bodiesOf(world);
  ASSERT_EQ(bodies.size(), 2u);
  EXPECT_EQ(bodies[0]->id, 101);
  EXPECT_EQ(namesOf(world), (std::vector<std::string>{"Moon", "Planet"}));
  EXPECT_EQ(renamed,
            (std::vector<std::pair<int32_t, std::string>>{{101, "Moon"}, {100, "Planet"}}));
  EXPECT_EQ(std::tuple(bodies[0]->position.x, bodies[0]->velocity.y, bodies[0]->mass,
                       bodies[1]->mass, bodies[1]->radius),
            std::tuple(10.0, -0.5, 2.0, 1000.0, 3.0));
  EXPECT_EQ(world.nextBodyId, 102);
}

struct StoredIdCase {
  const char* name;
  QStringList keys;
  std::vector<int32_t> ids;
  int32_t nextBodyId;
};

class WorldDocumentStoredIds : public ::testing::TestWithParam<StoredIdCase> {};

// A body's identifier is the leading integer of its key (0 without one); a
// duplicate gets a fresh one; the counter goes on above the highest and
// never below 100. A save and a load keep every body.
TEST_P(WorldDocumentStoredIds, EveryBodyGetsItsOwnIdentifierAndSurvivesASave) {
  QByteArray entries;
  for (const QString& key : GetParam().keys) {
    entries += "<key>" + key.toUtf8() + "</key><dict/>";
  }
  World world;
  loadInto(world, "<key>Bodies</key><dict>" + entries + "</dict>");
  EXPECT_EQ(idsOf(world), GetParam().ids);
  EXPECT_EQ(world.nextBodyId, GetParam().nextBodyId);

  const PlistDict saved = saveWorldToDict(world, kAll);
  World again;
  loadToWorldFromDict(again, &saved, kAll);
  EXPECT_EQ(again.bodies->count(), static_cast<int>(GetParam().keys.size()));
  EXPECT_EQ(again.nextBodyId, GetParam().nextBodyId);
}

constexpr int32_t kMaxId = std::numeric_limits<int32_t>::max();

INSTANTIATE_TEST_SUITE_P(
    WorldDocument, WorldDocumentStoredIds,
    ::testing::Values(
        StoredIdCase{"LowIdentifiers", {"5", "7"}, {5, 7}, 100},
        StoredIdCase{"LeadingInteger", {" +12abc", "none", "250"}, {12, 0, 250}, 251},
        StoredIdCase{
            "LeadingZeroAndNoDigits", {"100", "0100", "abc", "xyz"}, {100, 101, 0, 102}, 103},
        // A duplicate is numbered above a higher identifier stored after it.
        StoredIdCase{"HigherIdentifierLater", {"7", "7b", "250", "7c"}, {7, 251, 250, 252}, 253},
        StoredIdCase{"CounterAtTheLargestIdentifier",
                     {"2147483647", "2147483647b", "100"},
                     {kMaxId, 100, 101},
                     kMaxId}),
    [](const auto& p) { return std::string(p.param.name); });

TEST(WorldDocument, MissingKeysGiveResetValuesAndDefaultBodies) {
  World world;
  buildRichWorld(world);
  loadInto(world,
           "<key>Bodies</key><dict><key>300</key><dict/>"
           "<key>301</key><dict><key>Mass</key><real>2</real></dict></dict>");
  // The single-precision constants 0.01 and 6.67259e-11, widened.
  EXPECT_EQ(bitsOf(world.timeStep), 0x3F847AE140000000u);
  EXPECT_EQ(bitsOf(world.gravitationalConstant), 0x3DD2576B00000000u);
  World fresh;
  fresh.insertBody(300, 0);
  fresh.insertBody(301, 1)->mass = 2.0;
  EXPECT_EQ(stateBits(world), stateBits(fresh));
  EXPECT_EQ(parametersOf(world), parametersOf(fresh));
  EXPECT_EQ(namesOf(world), (std::vector<std::string>{"Body 0", "Body 1"}));
}

// Loading the parameters alone leaves no body and restarts the identifiers
// (loading the bodies alone is tested with the document commands).
TEST(WorldDocument, ParametersAloneLeaveNoBodyAndRestartTheIdentifiers) {
  World world;
  buildRichWorld(world);
  const PlistDict dict = saveWorldToDict(world, kAll);
  loadToWorldFromDict(world, &dict, {.bodies = false, .views = false, .sim = true});
  EXPECT_EQ(world.bodies->count(), 0);
  EXPECT_EQ(world.nextBodyId, 100);
  EXPECT_EQ(world.timeStep, 1.0 / 3.0);
}

TEST(WorldDocument, ViewsSectionReachesTheHookAndSavesBackUnchanged) {
  std::optional<PlistValue> received;
  LoadHooks hooks;
  hooks.loadViews = [&](const PlistValue& v) { received = v; };
  World world;
  const PlistDict dict = loadInto(
      world,
      "<key>Views</key><dict><key>0</key><dict><key>Camera position Z</key><real>5</real>"
      "<key>View name</key><string>Top</string><key>Extra</key><array><date>2001-01-01T00:00:00Z"
      "</date><data>AAEC</data></array></dict></dict>",
      hooks);
  ASSERT_TRUE(received);
  EXPECT_EQ(*received, *dict.find(kViewsKey));
  const PlistDict saved = saveWorldToDict(world, kAll, &*received);
  EXPECT_EQ(*readDict(writePlist(PlistValue(saved))).find(kViewsKey), *dict.find(kViewsKey));
}

TEST(WorldDocument, ValuesOfAnotherTypeGiveTheirValueOrLeaveTheDefault) {
  World world;
  loadInto(world,
           "<key>Time step</key><string>0.25 years</string>"
           "<key>Adaptive time stepping</key><integer>1</integer>"
           "<key>Gravitational constant</key><dict/>"
           "<key>Trace history points</key><real>99.9</real>"
           "<key>World name</key><integer>42</integer>"
           "<key>Collision model</key><string>No</string>"
           "<key>Bodies</key><dict><key>100</key><dict>"
           "<key>Mass</key><string>heavy</string><key>Radius</key><true/>"
           "<key>Color R</key><integer>2</integer><key>Trace enable</key><string>yes</string>"
           "<key>Show vectors</key><real>0</real></dict>"
           "<key>101</key><string>not a body</string></dict>");
  EXPECT_EQ(world.timeStep, 0.25);
  EXPECT_TRUE(world.adaptive);
  EXPECT_EQ(world.gravitationalConstant, World::kDefaultGravitationalConstant);
  EXPECT_EQ(world.traceHistoryPoints, 99);
  EXPECT_STREQ(world.name, "42");
  EXPECT_FALSE(world.merge);
  ASSERT_EQ(world.bodies->count(), 1);
  const Body& b = *bodiesOf(world)[0];
  EXPECT_EQ(std::tuple(b.mass, b.radius, b.color[0], b.traceEnable, b.showVectors),
            std::tuple(1.0, 1.0, 2.0f, true, false));
}

TEST(WorldDocument, LongNamesAreCutAtACharacterBoundary) {
  // 200 two-byte characters: 400 bytes, cut to the 127 whole characters that
  // fit in 254 bytes.
  const QByteArray name = "<string>" + QString(200, QChar(0x00E9)).toUtf8() + "</string>";
  World world;
  loadInto(world, "<key>World name</key>" + name +
                      "<key>Bodies</key><dict><key>100</key><dict><key>Body name</key>" + name +
                      "</dict></dict>");
  EXPECT_EQ(QString::fromUtf8(bodiesOf(world)[0]->name), QString(127, QChar(0x00E9)));
  EXPECT_EQ(QString::fromUtf8(world.name), QString(127, QChar(0x00E9)));
}

struct SpeedCase {
  double stored;
  float loaded;
};

class WorldDocumentSpeed : public ::testing::TestWithParam<SpeedCase> {};

TEST_P(WorldDocumentSpeed, MillisecondsPerUpdateIsBoundedLikeTheClock) {
  PlistDict root;
  root.insert(QStringLiteral("Milliseconds per update"), PlistValue::real(GetParam().stored));
  World world;
  loadToWorldFromDict(world, &root, kAll);
  EXPECT_EQ(world.millisecondsPerUpdate, GetParam().loaded);
}

INSTANTIATE_TEST_SUITE_P(WorldDocument, WorldDocumentSpeed,
                         ::testing::Values(SpeedCase{0.0, 0.0f}, SpeedCase{0.005, 0.01f},
                                           SpeedCase{-3.0, 0.01f}, SpeedCase{0.02, 0.02f},
                                           SpeedCase{10.0, 10.0f}, SpeedCase{std::nan(""), 0.01f},
                                           SpeedCase{1e300,
                                                     std::numeric_limits<float>::infinity()}),
                         caseNames({"Zero", "BelowTheBound", "Negative", "Small", "Ten",
                                    "NotANumber", "BeyondSinglePrecision"}));

}  // namespace
