#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>

#include "document/plist_reader.h"
#include "document/plist_writer.h"
#include "tests/case_names.h"

namespace {

PlistValue roundTrip(const PlistValue& value) {
  const PlistReadResult read = readPlist(writePlist(value));
  EXPECT_TRUE(read.value.has_value()) << read.error.toStdString();
  return read.value ? *read.value : PlistValue(PlistDict());
}

QByteArray plist(const char* body) {
  return QByteArray("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">") + body +
         "</plist>\n";
}

QByteArray nested(int levels) {
  return plist((QByteArray("<array>").repeated(levels) + QByteArray("</array>").repeated(levels))
                   .constData());
}

class PlistReals : public ::testing::TestWithParam<double> {};

TEST_P(PlistReals, ReadBackBitForBit) {
  const PlistValue back = roundTrip(PlistValue::real(GetParam()));
  ASSERT_NE(back.realValue(), nullptr);
  EXPECT_EQ(std::bit_cast<uint64_t>(*back.realValue()), std::bit_cast<uint64_t>(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(
    Plist, PlistReals,
    ::testing::Values(0.0, -0.0, 0.1, 1.0 / 3.0, 0.009999999776482582, 6.672590258105515e-11,
                      39.47841760435743, -1.2345678901234567e300,
                      std::numeric_limits<double>::denorm_min(), std::numeric_limits<double>::max(),
                      std::numeric_limits<double>::infinity(),
                      -std::numeric_limits<double>::infinity(),
                      std::numeric_limits<double>::quiet_NaN()),
    caseNames({"Zero", "NegativeZero", "OneTenth", "OneThird", "DefaultTimeStep", "DefaultG",
               "FourPiSquared", "Huge", "SmallestSubnormal", "Largest", "Infinity",
               "NegativeInfinity", "NotANumber"}));

// The writer emits the XML declaration, the property-list doctype and the
// version, and every value type comes back as written.
TEST(Plist, EveryValueTypeSurvivesWritingAndReading) {
  PlistDict inner;
  inner.insert(QStringLiteral("integer"), PlistValue::integer(std::numeric_limits<int64_t>::min()));
  inner.insert(QStringLiteral("yes"), PlistValue::boolean(true));
  inner.insert(QStringLiteral("no"), PlistValue::boolean(false));
  inner.insert(QStringLiteral("empty"), PlistValue(PlistDict()));
  PlistArray array;
  array.push_back(PlistValue::string(QStringLiteral("Ærø <&> \"quoted\" 'single' ]]> tab\tend")));
  array.push_back(PlistValue::data(QByteArray("\0\1\2binary\xff", 10)));
  array.push_back(PlistValue::date(QStringLiteral("2004-03-01T12:00:00Z")));
  array.push_back(PlistValue::string(QString()));
  inner.insert(QStringLiteral("list"), PlistValue(std::move(array)));
  PlistDict root;
  root.insert(QStringLiteral("Körper 🌍"), PlistValue(std::move(inner)));
  root.insert(QStringLiteral("real"), PlistValue::real(2.5));

  const PlistValue original(std::move(root));
  EXPECT_EQ(roundTrip(original), original);
  const QByteArray xml = writePlist(original);
  EXPECT_TRUE(xml.startsWith("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n")) << xml.toStdString();
  EXPECT_TRUE(
      xml.contains("<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
                   "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">"));
  EXPECT_TRUE(xml.contains("<plist version=\"1.0\">"));
  EXPECT_TRUE(readPlist(nested(kMaxPlistDepth)).value.has_value());  // the deepest allowed
}

TEST(Plist, ControlCharactersAreDroppedSoTheFileStaysReadable) {
  const QString text = QStringLiteral("a%1b%2c").arg(QChar(1)).arg(QChar(0x1f));
  EXPECT_EQ(roundTrip(PlistValue::string(text)), PlistValue::string(QStringLiteral("abc")));
}

TEST(Plist, DictionaryKeepsFileOrderAndLaterDuplicateReplacesValueInPlace) {
  QByteArray body = "<dict>";
  // More keys than the dictionary's linear-search threshold, so the hash
  // index is exercised as well.
  for (int i = 40; i > 0; --i) {
    body +=
        "<key>k" + QByteArray::number(i) + "</key><integer>" + QByteArray::number(i) + "</integer>";
  }
  body += "<key>k7</key><string>again</string></dict>";
  const PlistReadResult read = readPlist(plist(body.constData()));
  ASSERT_TRUE(read.value) << read.error.toStdString();
  const PlistDict& dict = *read.value->dict();
  ASSERT_EQ(dict.size(), 40u);
  EXPECT_EQ(dict.entries().front().key, QStringLiteral("k40"));
  EXPECT_EQ(dict.entries()[33].key, QStringLiteral("k7"));
  EXPECT_EQ(*dict.find(u"k7")->stringValue(), QStringLiteral("again"));
}

TEST(Plist, CommentsCdataAndProcessingInstructionsAreRead) {
  const PlistReadResult read = readPlist(plist(
      "<!-- a comment --><dict><?tool hint?><key>Na<!-- inside -->me</key>"
      "<string><![CDATA[<Sol & co>]]> rest</string>\n\t<key>x</key> <real> 1.5e3 </real></dict>"));
  ASSERT_TRUE(read.value) << read.error.toStdString();
  EXPECT_EQ(*read.value->dict()->find(u"Name")->stringValue(), QStringLiteral("<Sol & co> rest"));
  EXPECT_EQ(*read.value->dict()->find(u"x")->realValue(), 1500.0);
}

struct BadPlist {
  const char* name;
  QByteArray xml;
  const char* reason;
};

class PlistErrors : public ::testing::TestWithParam<BadPlist> {};

TEST_P(PlistErrors, AreReportedWithTheirReason) {
  const PlistReadResult read = readPlist(GetParam().xml);
  EXPECT_FALSE(read.value.has_value());
  EXPECT_TRUE(read.error.contains(QLatin1String(GetParam().reason))) << read.error.toStdString();
}

INSTANTIATE_TEST_SUITE_P(
    Plist, PlistErrors,
    ::testing::Values(
        BadPlist{"Empty", QByteArray(), "ends too early"},
        BadPlist{"Truncated", plist("<dict><key>a</key><real>1</real>").left(70), "ends too early"},
        BadPlist{"WrongRoot", "<html><body/></html>",
                 "not a property list: the root element is <html>"},
        BadPlist{"NoValue", plist(""), "<plist> holds no value"},
        BadPlist{"TwoValues", plist("<dict/><dict/>"), "more than one value"},
        BadPlist{"UnknownElement", plist("<dict><key>a</key><float>1</float></dict>"),
                 "unknown element <float>"},
        BadPlist{"KeyWithoutValue", plist("<dict><key>a</key></dict>"), "has no value"},
        BadPlist{"ValueWithoutKey", plist("<dict><real>1</real></dict>"),
                 "where a <key> was expected"},
        BadPlist{"BadReal", plist("<real>1.5x</real>"), "is not a real number"},
        BadPlist{"BadInteger", plist("<integer>12.5</integer>"), "is not an integer"},
        BadPlist{"BadData", plist("<data>!!!</data>"), "base64"},
        BadPlist{"StrayText", plist("<dict>hello<key>a</key><true/></dict>"), "unexpected text"},
        BadPlist{"ElementInString", plist("<string>a<b/></string>"), "not a valid property list"},
        BadPlist{"DeepNesting", nested(10000), "nested more than 256 levels"},
        // The root value counts as the first level.
        BadPlist{"OneLevelTooDeep", nested(kMaxPlistDepth + 1), "nested more than 256 levels"},
        BadPlist{"InvalidUtf8", plist("<string>\xff\xfe</string>"),
                 "not UTF-8 (byte 0xff at line 2"},
        BadPlist{"OverlongUtf8", plist("<string>\xc0\xaf</string>"), "not UTF-8"},
        BadPlist{"Garbage", QByteArray("\x00\x01\x02\x7fGARBAGE\x80", 12), "not valid XML"},
        BadPlist{"TrailingContent", plist("<dict/>") + "<plist/>", "not valid XML"}),
    [](const auto& p) { return std::string(p.param.name); });

TEST(Plist, DeclaredOtherEncodingIsDecodedAsDeclared) {
  const PlistReadResult read = readPlist(
      "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><plist><string>K\xf6rper</string></plist>");
  ASSERT_TRUE(read.value) << read.error.toStdString();
  EXPECT_EQ(*read.value->stringValue(), QStringLiteral("Körper"));
}

struct Lenient {
  PlistValue value;
  std::optional<double> real;
  std::optional<int64_t> integer;
  std::optional<bool> truth;
};

class PlistLenientReading : public ::testing::TestWithParam<Lenient> {};

TEST_P(PlistLenientReading, GivesTheValueOfWhatIsFound) {
  EXPECT_EQ(GetParam().value.toReal(), GetParam().real);
  EXPECT_EQ(GetParam().value.toInteger(), GetParam().integer);
  EXPECT_EQ(GetParam().value.toBool(), GetParam().truth);
}

INSTANTIATE_TEST_SUITE_P(
    Plist, PlistLenientReading,
    ::testing::Values(
        Lenient{PlistValue::string(QStringLiteral(" +12abc")), 12.0, 12, true},
        Lenient{PlistValue::string(QStringLiteral("-2.5e1 m")), -25.0, -2, true},
        Lenient{PlistValue::string(QStringLiteral("abc")), std::nullopt, std::nullopt,
                std::nullopt},
        Lenient{PlistValue::string(QStringLiteral("Yes")), std::nullopt, std::nullopt, true},
        Lenient{PlistValue::string(QStringLiteral("false")), std::nullopt, std::nullopt, false},
        Lenient{PlistValue::string(QStringLiteral("0")), 0.0, 0, false},
        Lenient{PlistValue::string(QStringLiteral("99999999999999999999")), 1e20,
                std::numeric_limits<int64_t>::max(), true},
        Lenient{PlistValue::real(-7.9), -7.9, -7, true},
        Lenient{PlistValue::real(1e300), 1e300, std::numeric_limits<int64_t>::max(), true},
        Lenient{PlistValue::integer(3), 3.0, 3, true},
        Lenient{PlistValue::boolean(true), 1.0, 1, true},
        Lenient{PlistValue(PlistDict()), std::nullopt, std::nullopt, std::nullopt},
        Lenient{PlistValue::data(QByteArray("12")), std::nullopt, std::nullopt, std::nullopt}),
    caseNames({"SignedNumberThenText", "NumberThenUnit", "Word", "Yes", "False", "Zero",
               "BeyondInt64", "NegativeReal", "HugeReal", "Integer", "Boolean", "Dictionary",
               "Data"}));

TEST(Plist, NaNHasNoIntegerAndNarrowingBeyondTheFloatRangeGivesInfinity) {
  EXPECT_FALSE(PlistValue::real(std::nan("")).toInteger());
  EXPECT_EQ(narrowToFloat(-1e39), -std::numeric_limits<float>::infinity());
  EXPECT_EQ(narrowToFloat(3.4028235e38), std::numeric_limits<float>::max());
}

}  // namespace
