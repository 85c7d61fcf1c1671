// libFuzzer target for the datafile reader and loader: any input must give a
// value or an error, never a crash, a hang or a leak; a loaded world must
// save to a file that reads back, with every one of its bodies.
#include <QByteArray>
#include <cstdint>
#include <cstdlib>

#include "document/plist_reader.h"
#include "document/plist_writer.h"
#include "document/world_document.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const QByteArray bytes =
      QByteArray::fromRawData(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
  const PlistReadResult read = readPlist(bytes);
  if (!read.value) {
    return 0;
  }
  // Whatever was read must be writable and read back.
  if (!readPlist(writePlist(*read.value)).value) {
    std::abort();
  }
  const PlistDict* root = read.value->dict();
  if (root == nullptr) {
    return 0;
  }
  World world;
  std::optional<PlistValue> views;
  LoadHooks hooks;
  hooks.loadViews = [&](const PlistValue& value) { views = value; };
  loadToWorldFromDict(world, root, DocumentSections{}, hooks);
  const PlistDict saved = saveWorldToDict(world, DocumentSections{}, views ? &*views : nullptr);
  const PlistReadResult again = readPlist(writePlist(PlistValue(saved)));
  if (!again.value || again.value->dict() == nullptr) {
    std::abort();
  }
  const PlistValue* bodies = saved.find(kBodiesKey);
  if (bodies == nullptr ||
      bodies->dict()->size() != static_cast<std::size_t>(world.bodies->count())) {
    std::abort();
  }
  return 0;
}
