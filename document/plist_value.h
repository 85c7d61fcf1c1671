#pragma once

#include <QAnyStringView>
#include <QByteArray>
#include <QHash>
#include <QString>
#include <QStringView>
#include <cstdint>
#include <memory>
#include <optional>
#include <variant>
#include <vector>

class PlistDict;
class PlistValue;
using PlistArray = std::vector<PlistValue>;

// A date is kept as the text of its element: nothing here computes with dates,
// and keeping the text lets a section pass through a load and save unchanged.
struct PlistDate {
  QString text;
};

// One property-list value. Datafiles use dictionaries, reals, integers,
// booleans and strings; arrays, data and dates are held too, so that sections
// this program does not interpret survive a load and save.
class PlistValue {
 public:
  enum class Type { Dict, Array, Real, Integer, Boolean, String, Data, Date };

  explicit PlistValue(PlistDict dict);
  explicit PlistValue(PlistArray array);
  static PlistValue real(double value);
  static PlistValue integer(int64_t value);
  static PlistValue boolean(bool value);
  static PlistValue string(QString value);
  static PlistValue data(QByteArray value);
  static PlistValue date(QString text);

  PlistValue(const PlistValue& other);
  PlistValue(PlistValue&& other) noexcept;
  PlistValue& operator=(const PlistValue& other);
  PlistValue& operator=(PlistValue&& other) noexcept;
  ~PlistValue();

  Type type() const { return static_cast<Type>(storage_.index()); }

  // Null when the value is of another type.
  const PlistDict* dict() const;
  PlistDict* dict();
  const PlistArray* array() const;
  const double* realValue() const { return std::get_if<double>(&storage_); }
  const int64_t* integerValue() const { return std::get_if<int64_t>(&storage_); }
  const bool* booleanValue() const { return std::get_if<bool>(&storage_); }
  const QString* stringValue() const { return std::get_if<QString>(&storage_); }
  const QByteArray* dataValue() const { return std::get_if<QByteArray>(&storage_); }
  const PlistDate* dateValue() const { return std::get_if<PlistDate>(&storage_); }

  // The lenient readings used when a value of another type than expected is
  // found: each gives the numeric, truth, integer or text value of whatever
  // is there, and nothing when it has none (a dictionary, an array, data, a
  // date, or a string that does not begin with a number or a truth word).
  std::optional<double> toReal() const;
  std::optional<int64_t> toInteger() const;
  std::optional<bool> toBool() const;
  std::optional<QString> toText() const;

  bool operator==(const PlistValue& other) const;

 private:
  using Storage = std::variant<std::unique_ptr<PlistDict>, std::unique_ptr<PlistArray>, double,
                               int64_t, bool, QString, QByteArray, PlistDate>;
  explicit PlistValue(Storage storage);

  Storage storage_;
};

struct PlistEntry {
  QString key;
  PlistValue value;

  bool operator==(const PlistEntry& other) const {
    return key == other.key && value == other.value;
  }
};

// A dictionary that keeps its entries in insertion order, which is the order
// of the file when it was read: that order decides the order of the body list.
// Keys are unique; inserting an existing key replaces its value in place.
class PlistDict {
 public:
  void insert(const QString& key, PlistValue value);
  const PlistValue* find(QAnyStringView key) const;
  const std::vector<PlistEntry>& entries() const { return entries_; }
  std::size_t size() const { return entries_.size(); }
  bool empty() const { return entries_.empty(); }

  bool operator==(const PlistDict& other) const { return entries_ == other.entries_; }

 private:
  std::optional<std::size_t> indexOf(QAnyStringView key) const;

  std::vector<PlistEntry> entries_;
  // Built only for large dictionaries (a "Bodies" section), where a linear
  // search per insertion would make reading quadratic in the number of bodies.
  QHash<QString, std::size_t> index_;
};

// The integer of the leading decimal digits of a text, after optional blanks
// and a sign ("  +12abc" gives 12); nothing when there are no digits.
// Saturates at the limits of int64_t.
std::optional<int64_t> leadingInteger(QStringView text);

// Clamps to the range of a 32-bit field.
int32_t saturateToInt32(int64_t value);

// The integer reading of a real, as a datafile's integer fields take one:
// truncated toward zero and held within the 64-bit range; nothing for NaN.
std::optional<int64_t> realToInteger(double value);

// Narrows to single precision; values beyond the float range become
// infinities of their sign, as the hardware conversion gives them, without
// relying on a conversion the language leaves undefined.
float narrowToFloat(double value);
